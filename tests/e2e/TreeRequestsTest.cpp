// The tree requests through the host simulator and the REST daemon simulator: "emhost export"
// on every sample tree, byte for byte as the expected exports, as XML and as JSON; and a
// Redfish request passed through to the daemon.
#include <dirent.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "support/Emhost.h"
#include "support/Process.h"
#include "support/SandboxHost.h"
#include "support/TempDir.h"

namespace {

// Each run ends with the module's stop, which takes 10 s whatever happens: the runs go side
// by side, each in a sandbox of its own.
constexpr unsigned kRunsAtOnce = 8;

// Sample trees that the module refuses as invalid: at start it waits for a valid tree as long
// as its tries last (minutes), and a client then gets no tree. The table tests of the module
// show that these give no export.
const std::vector<std::string> kRefusedTrees = {"adapter-initializing", "mux-not-operational",
                                                "version1-sasport"};

std::vector<std::string> SampleTreeNames() {
    std::vector<std::string> names;
    DIR* dir = opendir(SourcePath("samples/trees").c_str());
    if (!dir)
        return names;
    while (dirent* entry = readdir(dir)) {
        std::string name = entry->d_name;
        if (name.size() > 4 && name.compare(name.size() - 4, 4, ".xml") == 0)
            names.push_back(name.substr(0, name.size() - 4));
    }
    closedir(dir);
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> AcceptedSampleTrees() {
    std::vector<std::string> names;
    for (const std::string& name : SampleTreeNames()) {
        if (std::find(kRefusedTrees.begin(), kRefusedTrees.end(), name) == kRefusedTrees.end())
            names.push_back(name);
    }
    return names;
}

struct ExportRun {
    std::string tree;
    bool json;
    ProcessResult result;
};

ProcessResult Export(const std::string& treePath, bool json) {
    std::vector<std::string> argv = {BuildPath("emhost"), "export"};
    if (json)
        argv.push_back("--json");
    return RunProcess(InSandbox({"--sim", "--tree " + treePath}, argv));
}

TEST(TreeRequestsTest, EverySampleTreeAsItsExpectedFiles) {
    std::vector<ExportRun> runs;
    for (const std::string& name : AcceptedSampleTrees()) {
        runs.push_back({name, false, {}});
        runs.push_back({name, true, {}});
    }
    ASSERT_EQ(runs.size(), 2 * (SampleTreeNames().size() - kRefusedTrees.size()));

    std::atomic<size_t> next{0};
    std::vector<std::thread> workers;
    for (unsigned w = 0; w < kRunsAtOnce; ++w) {
        workers.emplace_back([&] {
            for (size_t i = next++; i < runs.size(); i = next++) {
                runs[i].result =
                    Export(SourcePath("samples/trees/" + runs[i].tree + ".xml"), runs[i].json);
            }
        });
    }
    for (std::thread& worker : workers)
        worker.join();

    for (const ExportRun& run : runs) {
        const std::string expected = "samples/export/" + run.tree + (run.json ? ".json" : ".xml");
        EXPECT_EQ(run.result.exitCode, 0) << expected << "\n" << run.result.err;
        // Compared whole: a difference shows as the two texts.
        EXPECT_EQ(run.result.out, ReadWholeFile(SourcePath(expected))) << expected;
    }
}

TEST(TreeRequestsTest, WithoutTheServiceNothingIsPrinted) {
    ProcessResult r = RunProcess(InSandbox({"--raid", "none"}, {BuildPath("emhost"), "export"}));
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_NE(r.err.find("emhost: no tree: the module answers ST 19"), std::string::npos) << r.err;
}

// The daemon here answers a Redfish request with its body as it arrived: without the
// backslashes of the client's escaped quotes.
TEST(TreeRequestsTest, RedfishRequestPassesThroughTheHost) {
    TempDir dir;
    const std::string log = dir.Path() + "/requests.jsonl";
    EmhostOptions options;
    options.sandbox = {"--sim", "--tree " + SourcePath("samples/trees/demo.xml") + " --log " + log};
    auto run = RunEmhost({R"({"host":"create"})",
                          R"({"SIP":{"V":1,"CMD":[{"OC":8657,"CI":4,"DA":"{\\\"Id\\\":1}"}]}})"},
                         options);
    ASSERT_EQ(run.lines.size(), 2u) << run.process.out << run.process.err;
    EXPECT_EQ(
        run.lines[1],
        R"({"ret":1,"record":{"SIP":{"V":1,"CMD":[{"OC":8657,"CI":4,"DA":"{\"Id\":1}","ST":0}]}}})");
    const std::string requests = ReadWholeFile(log);
    EXPECT_NE(requests.find(R"("path":"/api/v1/redfishOp")"), std::string::npos) << requests;
    EXPECT_NE(requests.find(R"("body":"{\"Id\":1}")"), std::string::npos) << requests;
}

}  // namespace
