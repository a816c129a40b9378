// emhost watch over a real polling cycle of 15 s: a logical drive's MDC progress moves, the
// polling thread drops the snapshots, and a client that never renews sees the new state.
#include <gtest/gtest.h>

#include <string>

#include "support/Emhost.h"
#include "support/Process.h"
#include "support/SandboxHost.h"
#include "support/TempDir.h"

namespace {

TEST(WatchTest, AClientThatNeverRenewsSeesTheNewProgressAfterTheNextCycle) {
    TempDir dir;
    const std::string demo = ReadWholeFile(SourcePath("samples/trees/demo.xml"));
    const std::string from = "<MDCProgress>37</MDCProgress>";
    ASSERT_NE(demo.find(from), std::string::npos);
    std::string moved = demo;
    moved.replace(moved.find(from), from.size(), "<MDCProgress>50</MDCProgress>");
    ReplaceFile(dir.Path() + "/at-37.xml", demo);
    ReplaceFile(dir.Path() + "/at-50.xml", moved);
    // The progress moves long before the polling thread's second cycle.
    ReplaceFile(dir.Path() + "/scenario.json",
                R"({"steps": [{"at_s": 0, "tree": "at-37.xml"},
                              {"at_s": 3, "tree": "at-50.xml"}]})");

    ProcessResult r = RunProcess(
        InSandbox({"--trace-level", "3", "--sim", "--scenario " + dir.Path() + "/scenario.json"},
                  {BuildPath("emhost"), "watch", "--duration", "20"}));
    ASSERT_EQ(r.exitCode, 0) << r.err << r.out;
    const char* expected[] = {
        "Start returned 1 after",
        " first look:",
        "   logical drive 1 'Data' of adapter 0: rebuild or check progress: 37 %",
        // The polling thread's second cycle, 15 s after its first.
        " the polling thread dropped the snapshots: MDC progress [37 -> 50] 'TL RAID EP540i "
        "A0L1'",
        // The next look: the renewed client, then the one that asked once at the start.
        " logical drive 1 'Data' of adapter 0: rebuild or check progress: 37 % -> 50 %",
        " client 2, which never renews, sees a new tree: the module dropped the snapshots.",
        "   logical drive 1 'Data' of adapter 0: rebuild or check progress: 37 % -> 50 %",
        "Time is up. Stopping the module",
        "Module deleted.",
    };
    EXPECT_TRUE(ContainsInOrder(r.out, expected));
    EXPECT_EQ(r.out.find(" event: "), std::string::npos) << r.out;
}

}  // namespace
