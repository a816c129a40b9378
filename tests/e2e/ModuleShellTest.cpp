// The module's shell through the host simulator: entry points, information block, life
// cycle and its trace, as the agent daemon would see them.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/Emhost.h"

namespace {

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// A host without the RAID manager: the module starts at once and stays idle.
EmhostOptions NoRaid(std::vector<std::string> sandbox = {"--trace-level", "6"}) {
    EmhostOptions o;
    o.sandbox = sandbox;
    o.sandbox.insert(o.sandbox.end(), {"--raid", "none"});
    return o;
}

TEST(ModuleShellTest, ExportsExactlyTheFourEntryPoints) {
    ProcessResult nm = RunProcess({"nm", "-D", "--defined-only", BuildPath("em_tlraid.so")});
    ASSERT_EQ(nm.exitCode, 0) << nm.err;
    std::vector<std::string> names;
    for (const std::string& line : Lines(nm.out))
        names.push_back(line.substr(line.rfind(' ') + 1));
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"EM_Create", "EM_Delete", "EM_GetModuleName",
                                               "EM_SetupAction"}));
}

TEST(ModuleShellTest, LifeCycleAnswersAndTraces) {
    auto run = RunEmhost(
        {
            "{\"host\":\"name\"}",
            "{\"host\":\"create\"}",
            "{\"host\":\"create\"}",
            "{\"host\":\"name\"}",
            "{\"host\":\"detected\"}",
            "{\"host\":\"cabinet\",\"nr\":1}",
            "{\"host\":\"start\"}",
            "{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":8464,\"CI\":7}]}}",
            "{\"host\":\"notify\",\"code\":131072}",
            "{\"host\":\"stop\"}",
            "{\"host\":\"delete\"}",
            "{\"host\":\"delete\"}",
            "{\"host\":\"create\"}",
        },
        NoRaid());
    ASSERT_EQ(run.process.exitCode, 0) << run.process.err;
    ASSERT_EQ(run.lines.size(), 13u);
    EXPECT_EQ(run.lines[0],
              "{\"host\":\"name\",\"ret\":1,\"name\":\"EM_TLRAID\",\"module_name\":null}");
    EXPECT_EQ(run.lines[2], "{\"host\":\"create\",\"ret\":1}");
    EXPECT_EQ(run.lines[3],
              "{\"host\":\"name\",\"ret\":1,\"name\":\"EM_TLRAID\",\"module_name\":\"EM_TLRAID\"}");
    EXPECT_EQ(run.lines[4], "{\"host\":\"detected\",\"ret\":1}");
    EXPECT_EQ(run.lines[10], "{\"host\":\"delete\",\"ret\":1}");
    EXPECT_EQ(run.lines[11], "{\"host\":\"delete\",\"ret\":0}");
    EXPECT_EQ(run.lines[12], "{\"host\":\"create\",\"ret\":1}");

    const char* expected[] = {
        "\nEM DLL (EM_TLRAID ) : Create module",
        "\nEM DLL (EM_TLRAID ) : ## ERROR: Module already existing!\n",
        "\nEM_TLRAID           : TL RAID always \"detected\"!",
        "\n\nEM_TLRAID           : ## Server cabinet number = 1 ##\n",
        "\n### Starting module EM_TLRAID ###\n",
        "\n\nEM_TLRAID           : ## NOTIFY: Code = 0Xx20000, param = 0x00000000",
        "\nEM_TLRAID           : *** SCN_SWITCH_SHUTDOWN *** \n",
        "\n### Stopping module EM_TLRAID ###\n",
        "\nEM DLL (EM_TLRAID ) : .. Module destroyed successfully!",
        "\nEM DLL (EM_TLRAID ) : Module already destroyed!",
    };
    EXPECT_TRUE(ContainsInOrder(run.trace, expected));
}

TEST(ModuleShellTest, InformationBlockNeedsItsFullSize) {
    auto run = RunEmhost({"{\"host\":\"create\"}", "{\"host\":\"info\",\"size\":245}",
                          "{\"host\":\"info\",\"size\":246}"},
                         NoRaid());
    ASSERT_EQ(run.lines.size(), 3u);
    std::string untouched = "f5000000";
    for (int i = 4; i < 246; ++i)
        untouched += "a5";
    EXPECT_EQ(run.lines[1], "{\"host\":\"info\",\"ret\":0,\"block\":\"" + untouched + "\"}");

    // Expected block of size 246: kind 3, name and description zero filled, class bits 10.
    std::string block = "f6000000a5a5a5a5a6" + std::string();
    auto hex = [](const std::string& text, size_t width) {
        static const char d[] = "0123456789abcdef";
        std::string out;
        for (size_t i = 0; i < width; ++i) {
            unsigned char c = i < text.size() ? text[i] : 0;
            out += d[c >> 4];
            out += d[c & 15];
        }
        return out;
    };
    for (int i = 9; i < 21; ++i)
        block += "a5";
    block += "a6";
    for (int i = 22; i < 42; ++i)
        block += "a5";
    block += "03000000" + hex("EM_TLRAID", 96) + hex("", 4) + hex("TLRAID extension module", 96) +
             hex("", 4);
    EXPECT_EQ(run.lines[2], "{\"host\":\"info\",\"ret\":1,\"block\":\"" + block + "\"}");
}

TEST(ModuleShellTest, SetupActionsNeedNoModuleObject) {
    auto run = RunEmhost({"{\"host\":\"setup\",\"action\":2}", "{\"host\":\"setup\",\"action\":5}",
                          "{\"host\":\"setup\",\"action\":0}"},
                         NoRaid());
    EXPECT_EQ(run.lines, std::vector<std::string>(3, "{\"host\":\"setup\",\"ret\":1}"));
    EXPECT_TRUE(Contains(run.trace,
                         "\n\nEM_TLRAID           : ## Setup action \"RESTORE\" call - no action "
                         "function defined\n"));
    EXPECT_TRUE(Contains(run.trace, "unknown action type (5) - no action defined!\n"));
    EXPECT_TRUE(Contains(run.trace, "unknown action type (0) - no action defined!\n"));
}

TEST(ModuleShellTest, TraceLevelComesFromTheConfiguration) {
    EmhostOptions quiet = NoRaid({});
    auto silent = RunEmhost({"{\"host\":\"create\"}", "{\"host\":\"detected\"}"}, quiet);
    EXPECT_EQ(silent.trace, "");

    EmhostOptions levelOne = NoRaid({"--trace-level", "1"});
    auto one = RunEmhost(
        {"{\"host\":\"create\"}", "{\"host\":\"detected\"}", "{\"host\":\"cabinet\",\"nr\":2}"},
        levelOne);
    EXPECT_TRUE(Contains(one.trace, "TL RAID always"));
    EXPECT_FALSE(Contains(one.trace, "Server cabinet number"));
    EXPECT_FALSE(Contains(one.trace, "Create module"));

    // Without a configuration directory the environment sets the level.
    EmhostOptions fromEnv = NoRaid({});
    fromEnv.env = {"TL_LOG_DEBUG_LEVEL=2"};
    auto env = RunEmhost({"{\"host\":\"create\"}", "{\"host\":\"cabinet\",\"nr\":2}"}, fromEnv);
    EXPECT_TRUE(Contains(env.trace, "Server cabinet number = 2"));
}

}  // namespace
