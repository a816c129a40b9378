#include "SessionKit.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>

#include "support/Process.h"

std::vector<rapidjson::Document> ParseLines(const std::string& text) {
    std::vector<rapidjson::Document> lines;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        rapidjson::Document doc;
        doc.Parse(text.c_str() + start, end - start);
        if (!doc.HasParseError())
            lines.push_back(std::move(doc));
        start = end + 1;
    }
    return lines;
}

std::string Str(const rapidjson::Value& object, const char* key) {
    if (!object.IsObject() || !object.HasMember(key) || !object[key].IsString())
        return "<none>";
    return std::string(object[key].GetString(), object[key].GetStringLength());
}

std::string IssuedToken(const rapidjson::Value& request) {
    rapidjson::Document reply;
    reply.Parse(Str(request, "reply").c_str());
    return Str(reply, "access_token");
}

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteFile(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

void RestSandboxTest::SetUp() {
    char dir[] = "/tmp/tlr-rest-session.XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    m_sDir = dir;
    m_sTree = m_sDir + "/tree.xml";
    m_sControl = m_sDir + "/control.json";
    m_sLog = m_sDir + "/requests.jsonl";
    WriteFile(m_sTree, m_sInitialTree);
}

void RestSandboxTest::TearDown() {
    if (!m_sDir.empty())
        std::filesystem::remove_all(m_sDir);
}

Session RestSandboxTest::Run(const std::vector<std::string>& steps,
                             const std::vector<std::string>& sandboxOptions, bool withSim) {
    std::vector<std::string> options = {"--trace-level", "6"};
    options.insert(options.end(), sandboxOptions.begin(), sandboxOptions.end());
    if (withSim) {
        options.insert(options.end(), {"--sim", "--tree " + m_sTree + " --control " + m_sControl +
                                                    " --log " + m_sLog});
    }
    std::vector<std::string> argv = {BuildPath("tests/tlr-rest-driver")};
    argv.insert(argv.end(), steps.begin(), steps.end());
    const ProcessResult result = RunProcess(InSandbox(options, argv));
    Session session;
    session.nStatus = result.exitCode;
    session.sOut = result.out;
    session.steps = ParseLines(result.out);
    session.requests = ParseLines(ReadFile(m_sLog));
    return session;
}
