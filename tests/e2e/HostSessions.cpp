#include "e2e/HostSessions.h"

#include "support/SandboxHost.h"
#include "support/TempDir.h"

std::shared_future<EmhostRun> HostSessions::s_Session;
std::shared_future<ProcessResult> HostSessions::s_Inventory, HostSessions::s_ExportJson,
    HostSessions::s_ExportWithoutService, HostSessions::s_Watch, HostSessions::s_WatchJson;

namespace {

// Files the runs read and write: kept until the program ends.
const TempDir& Files() {
    static const TempDir dir;
    return dir;
}

std::string Tree(const std::string& name) {
    return "--tree " + SourcePath("samples/trees/" + name);
}

std::shared_future<ProcessResult> Start(const std::vector<std::string>& sandbox,
                                        const std::vector<std::string>& argv) {
    return std::async(std::launch::async, [=] { return RunProcess(InSandbox(sandbox, argv)); });
}

// A tree whose logical drive's MDC progress moves from 37 to 50 after 3 s, long before the
// polling thread's second cycle; the watch's second look comes some 18 s after its start,
// and it runs 25 s, to leave a slow machine room.
std::string WatchScenario() {
    const std::string demo = ReadWholeFile(SourcePath("samples/trees/demo.xml"));
    const std::string from = "<MDCProgress>37</MDCProgress>";
    std::string moved = demo;
    moved.replace(moved.find(from), from.size(), "<MDCProgress>50</MDCProgress>");
    Files().Write("at-37.xml", demo);
    Files().Write("at-50.xml", moved);
    return Files().Write("scenario.json", R"({"steps": [{"at_s": 0, "tree": "at-37.xml"},
                                                        {"at_s": 3, "tree": "at-50.xml"}]})");
}

// The demo tree, whose drive 4 fails after 3 s: that of the failing-drive scenario.
std::string FailingScenario() {
    Files().Write("failed.xml",
                  ReadWholeFile(SourcePath("samples/scenarios/trees/drive-failed.xml")));
    return Files().Write("failing.json", R"({"steps": [{"at_s": 0, "tree": "at-37.xml"},
                                                       {"at_s": 3, "tree": "failed.xml"}]})");
}

}  // namespace

void HostSessions::SetUpTestSuite() {
    EmhostOptions options;
    options.sandbox =
        SampleHostOptions({"--trace-level", "4", "--sim",
                           Tree("cabinets.xml") + " --log " + Files().Path() + "/log"});
    // The switch's answers to its questions after the switch has started.
    options.emhost = {"--answer", "0x2113={\"ST\":0,\"DA\":1}", "--answer",
                      "8468={\"ST\":12,\"DA\":0}"};
    s_Session = std::async(std::launch::async,
                           [=] { return RunEmhost(Inputs(SessionExchanges()), options); });

    const std::string emhost = BuildPath("emhost");
    s_Inventory = Start(SampleHostOptions({"--sim", Tree("two-adapters-enclosures.xml")}),
                        {emhost, "inventory"});
    s_ExportJson = Start({"--sim", Tree("demo.xml")}, {emhost, "export", "--json"});
    s_ExportWithoutService = Start({"--raid", "none"}, {emhost, "export"});
    s_Watch = Start({"--trace-level", "3", "--sim", "--scenario " + WatchScenario()},
                    {emhost, "watch", "--duration", "25"});
    s_WatchJson = Start({"--sim", "--scenario " + FailingScenario()},
                        {emhost, "watch", "--json", "--exit-on-failure", "--duration", "100"});
}

void HostSessions::TearDownTestSuite() {
    for (const auto* run :
         {&s_Inventory, &s_ExportJson, &s_ExportWithoutService, &s_Watch, &s_WatchJson})
        run->wait();
    s_Session.wait();
}

std::string HostSessions::SessionRequests() {
    return ReadWholeFile(Files().Path() + "/log");
}
