#include "SessionKit.h"

#include "support/Process.h"
#include "support/SandboxHost.h"

namespace {

// One JSON document per line; lines that don't parse are left out.
std::vector<rapidjson::Document> ParseLines(const std::string& text) {
    std::vector<rapidjson::Document> documents;
    for (const std::string& line : Lines(text)) {
        rapidjson::Document doc;
        if (!doc.Parse(line.c_str()).HasParseError())
            documents.push_back(std::move(doc));
    }
    return documents;
}

}  // namespace

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

Session RestSandboxTest::Run(const std::vector<std::string>& steps,
                             const std::vector<std::string>& sandboxOptions) {
    std::vector<std::string> options = {"--trace-level", "6"};
    options.insert(options.end(), sandboxOptions.begin(), sandboxOptions.end());
    options.insert(options.end(), {"--sim", "--tree " + m_sTree + " --control " + m_sControl +
                                                " --log " + m_sLog});
    std::vector<std::string> argv = {BuildPath("tests/tlr-rest-driver")};
    argv.insert(argv.end(), steps.begin(), steps.end());
    const ProcessResult result = RunProcess(InSandbox(options, argv));
    Session session;
    session.nStatus = result.exitCode;
    session.sOut = result.out;
    session.steps = ParseLines(result.out);
    session.requests = ParseLines(ReadWholeFile(m_sLog));
    return session;
}
