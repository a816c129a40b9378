// The host simulator's line protocol, driven with a probe module that sends requests and
// events on demand.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Emhost.h"

namespace {

EmhostOptions Probe(std::vector<std::string> emhostOptions = {}) {
    EmhostOptions o;
    o.emhost = {"--module", BuildPath("tests/emhost_probe_module.so")};
    o.emhost.insert(o.emhost.end(), emhostOptions.begin(), emhostOptions.end());
    return o;
}

// Result lines without the asynchronous ones.
std::vector<std::string> Results(const std::vector<std::string>& lines) {
    std::vector<std::string> results;
    for (const std::string& l : lines) {
        if (l.rfind("{\"event\":", 0) != 0 && l.rfind("{\"switch-request\":", 0) != 0) {
            results.push_back(l);
        }
    }
    return results;
}

TEST(EmhostTest, EveryLineGetsOneResultInOrder) {
    auto run =
        RunEmhost({"", "# a comment", "not json", "[1,2]", "{\"host\":\"detected\"}",
                   "{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":9}]}}", "{\"host\":\"create\"}",
                   "{\"host\":\"bogus\"}", "{\"host\":7}", "{\"other\":1}",
                   "{\"host\":\"cabinet\"}", "{\"host\":\"cabinet\",\"nr\":\"x\"}",
                   "{\"host\":\"detach\",\"ci\":4294967296}", "{\"host\":\"sleep\",\"ms\":1}"},
                  Probe());
    ASSERT_EQ(run.process.exitCode, 0) << run.process.err;
    std::vector<std::string> want = {
        "{\"error\":\"the line is no JSON object\"}",
        "{\"error\":\"the line is no JSON object\"}",
        "{\"error\":\"no module object for \\\"detected\\\": send {\\\"host\\\":\\\"create\\\"} "
        "first\"}",
        "{\"error\":\"no module object: send {\\\"host\\\":\\\"create\\\"} first\"}",
        "{\"host\":\"create\",\"ret\":1}",
        "{\"error\":\"unknown action \\\"bogus\\\"\"}",
        "{\"error\":\"member \\\"host\\\" must be a text\"}",
        "{\"error\":\"the line has neither \\\"SIP\\\" nor \\\"host\\\"\"}",
        "{\"error\":\"member \\\"nr\\\" is missing\"}",
        "{\"error\":\"member \\\"nr\\\" must be an integer\"}",
        "{\"error\":\"member \\\"ci\\\" is out of range (0 to 4294967295)\"}",
        "{\"host\":\"sleep\",\"ret\":0}",
    };
    EXPECT_EQ(run.lines, want);
}

TEST(EmhostTest, DeeplyNestedLinesAreRefusedNotFollowed) {
    std::string deep = "{\"SIP\":{\"CMD\":[{\"DA\":" + std::string(100000, '[') +
                       std::string(100000, ']') + "}]}}";
    auto run = RunEmhost({"{\"host\":\"create\"}", deep, "{\"host\":\"sleep\",\"ms\":0}"}, Probe());
    EXPECT_EQ(run.process.exitCode, 0);
    EXPECT_EQ(run.lines,
              (std::vector<std::string>{"{\"host\":\"create\",\"ret\":1}",
                                        "{\"error\":\"the line nests deeper than 512 levels\"}",
                                        "{\"host\":\"sleep\",\"ret\":0}"}));
}

// Random lines of every shape, with members of every type, never crash the host: each gets
// exactly one result line. (Actions that wait or start threads are left out.)
TEST(EmhostTest, RandomLinesEachGetOneAnswer) {
    const char* actions[] = {"create",   "delete",  "name",   "setup",  "info",
                             "detected", "cabinet", "notify", "detach", "selist",
                             "answer",   "request", "bogus"};
    const char* members[] = {"action", "size", "nr",    "code",   "param",
                             "ci",     "oc",   "reply", "record", "index"};
    const char* values[] = {"0",
                            "-1",
                            "1",
                            "246",
                            "4294967295",
                            "4294967296",
                            "1e300",
                            "2.5",
                            "\"x\"",
                            "null",
                            "true",
                            "[]",
                            "{}",
                            "{\"ST\":1,\"DA\":[1]}",
                            "{\"SIP\":{\"CMD\":[{\"OC\":8464,\"DA\":{\"RAW\":[1,\"a\"]}}]}}",
                            "-9223372036854775808",
                            "18446744073709551615"};
    uint32_t seed = 12345;
    auto next = [&seed](size_t n) {
        seed = seed * 1103515245u + 12345u;
        return static_cast<size_t>((seed >> 8) % n);
    };
    std::vector<std::string> lines = {"{\"host\":\"create\"}"};
    for (int i = 0; i < 400; ++i) {
        std::string line = "{\"host\":\"" + std::string(actions[next(std::size(actions))]) + "\"";
        for (size_t m = next(4); m > 0; --m) {
            line += ",\"" + std::string(members[next(std::size(members))]) +
                    "\":" + values[next(std::size(values))];
        }
        line += next(20) == 0 ? "" : "}";  // now and then a line cut short
        lines.push_back(line);
    }
    auto run = RunEmhost(lines, Probe());
    EXPECT_EQ(run.process.exitCode, 0) << run.process.err;
    EXPECT_EQ(run.lines.size(), lines.size());
}

TEST(EmhostTest, RecordsComeBackWhole) {
    auto run =
        RunEmhost({"{\"host\":\"create\"}",
                   "{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":9,\"CI\":7,\"DA\":{\"x\":[1]}}]}}",
                   "{\"host\":\"request\",\"index\":1,\"record\":{\"SIP\":{\"CMD\":[{\"OC\":9}]}}}",
                   "{\"host\":\"request\",\"record\":5}"},
                  Probe());
    std::vector<std::string> want = {
        "{\"host\":\"create\",\"ret\":1}",
        "{\"ret\":0,\"record\":{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":9,\"CI\":7,\"DA\":{\"x\":[1]},"
        "\"ST\":1}]}}}",
        "{\"ret\":0,\"record\":{\"SIP\":{\"CMD\":[{\"OC\":9},{\"ST\":1}]}}}",
        "{\"error\":\"member \\\"record\\\" must be a JSON object\"}",
    };
    EXPECT_EQ(run.lines, want);
}

TEST(EmhostTest, SwitchRequestsAreShownAndAnswered) {
    auto run = RunEmhost({"{\"host\":\"create\"}", "{\"host\":\"start\"}",
                          "{\"SIP\":{\"CMD\":[{\"OC\":1,\"OE\":8464,\"OI\":2500}]}}",
                          "{\"SIP\":{\"CMD\":[{\"OC\":1,\"OE\":8465}]}}",
                          "{\"host\":\"answer\",\"oc\":8465,\"reply\":{\"ST\":21,\"DA\":3}}",
                          "{\"SIP\":{\"CMD\":[{\"OC\":1,\"OE\":8465}]}}",
                          "{\"host\":\"answer\",\"oc\":1,\"reply\":[]}"},
                         Probe({"--answer", "0x2110={\"ST\":12,\"DA\":1}"}));
    std::vector<std::string> want = {
        "{\"host\":\"create\",\"ret\":1}",
        "{\"host\":\"start\",\"ret\":1,\"ms\":T}",
        "{\"switch-request\":{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":8464,\"CA\":0}]}},\"timeout_ms\":"
        "2500}",
        "{\"ret\":1,\"record\":{\"SIP\":{\"CMD\":[{\"OC\":1,\"OE\":8464,\"OI\":2500,\"DA2\":1,"
        "\"DA\":12,\"ST\":0}]}}}",
        "{\"switch-request\":{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":8465,\"CA\":0}]}},\"timeout_ms\":"
        "0}",
        "{\"ret\":1,\"record\":{\"SIP\":{\"CMD\":[{\"OC\":1,\"OE\":8465,\"DA2\":0,\"DA\":99,\"ST\":"
        "0}]}}}",
        "{\"host\":\"answer\",\"ret\":1}",
        "{\"switch-request\":{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":8465,\"CA\":0}]}},\"timeout_ms\":"
        "0}",
        "{\"ret\":1,\"record\":{\"SIP\":{\"CMD\":[{\"OC\":1,\"OE\":8465,\"DA2\":3,\"DA\":21,\"ST\":"
        "0}]}}}",
        "{\"error\":\"member \\\"reply\\\" must be a JSON object\"}",
    };
    std::vector<std::string> got;
    for (const auto& l : run.lines)
        got.push_back(WithoutElapsed(l));
    EXPECT_EQ(got, want);
}

TEST(EmhostTest, EventsAreShownWithStatus255AndCounted) {
    auto run = RunEmhost({"{\"host\":\"create\"}", "{\"host\":\"start\"}",
                          "{\"SIP\":{\"CMD\":[{\"OC\":2,\"OE\":57344,\"OI\":2}]}}",
                          "{\"host\":\"wait-events\",\"count\":2,\"timeout_ms\":0}",
                          "{\"SIP\":{\"CMD\":[{\"OC\":4,\"OE\":5,\"OI\":3}]}}",
                          "{\"host\":\"wait-events\",\"count\":5,\"timeout_ms\":20000}",
                          "{\"host\":\"wait-events\",\"count\":9,\"timeout_ms\":50}"},
                         Probe());
    ASSERT_EQ(run.process.exitCode, 0);
    auto results = Results(run.lines);
    ASSERT_EQ(results.size(), 7u);
    EXPECT_EQ(results[3], "{\"host\":\"wait-events\",\"ret\":2}");
    EXPECT_EQ(results[5], "{\"host\":\"wait-events\",\"ret\":5}");
    EXPECT_EQ(results[6], "{\"host\":\"wait-events\",\"ret\":5}");
    EXPECT_EQ(run.lines[2],
              "{\"event\":{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":57344,\"CA\":0,\"ST\":255}]}}}");
    EXPECT_EQ(
        run.lines[3],
        "{\"event\":{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":57344,\"OI\":1,\"CA\":0,\"ST\":255}]}}}");
    size_t events = run.lines.size() - results.size();
    EXPECT_EQ(events, 5u);
}

TEST(EmhostTest, SwitchTypeInfoSeListAndBurst) {
    auto run = RunEmhost(
        {"{\"host\":\"create\"}", "{\"host\":\"start\"}", "{\"SIP\":{\"CMD\":[{\"OC\":3}]}}",
         "{\"host\":\"selist\"}", "{\"host\":\"info\",\"size\":300}",
         "{\"host\":\"burst\",\"record\":{\"SIP\":{\"CMD\":[{\"OC\":3}]}},"
         "\"threads\":4,\"repeat\":50}",
         "{\"host\":\"burst\",\"record\":{\"SIP\":{\"CMD\":[{\"OC\":9}]}},"
         "\"threads\":0,\"repeat\":1}"},
        Probe({"--switch-type", "10"}));
    ASSERT_GE(run.lines.size(), 7u);
    EXPECT_EQ(run.lines[2],
              "{\"ret\":1,\"record\":{\"SIP\":{\"CMD\":[{\"OC\":3,\"DA\":10,\"ST\":0}]}}}");
    EXPECT_EQ(run.lines[3], "{\"host\":\"selist\",\"ret\":1,\"list\":[800,801,1000]}");
    // The base answers 0 and leaves the block alone: 300 bytes shown, size first.
    std::string filler;
    for (int i = 0; i < 296; ++i)
        filler += "a5";
    EXPECT_EQ(run.lines[4], "{\"host\":\"info\",\"ret\":0,\"block\":\"2c010000" + filler + "\"}");
    EXPECT_EQ(WithoutElapsed(run.lines[5]),
              "{\"host\":\"burst\",\"ret\":1,\"count\":200,\"statuses\":{\"0\":200},\"ms\":T}");
    EXPECT_EQ(run.lines[6], "{\"error\":\"member \\\"threads\\\" is out of range (1 to 256)\"}");
}

TEST(EmhostTest, ExitEndsAtOnceAndEndOfInputToo) {
    auto run =
        RunEmhost({"{\"host\":\"create\"}", "{\"host\":\"exit\"}", "{\"host\":\"name\"}"}, Probe());
    EXPECT_EQ(run.process.exitCode, 0);
    EXPECT_EQ(run.lines, std::vector<std::string>{"{\"host\":\"create\",\"ret\":1}"});
    // Module threads still running at the end do not keep the host alive.
    auto running =
        RunEmhost({"{\"host\":\"create\"}", "{\"SIP\":{\"CMD\":[{\"OC\":4,\"OI\":1}]}}"}, Probe());
    EXPECT_EQ(running.process.exitCode, 0);
}

TEST(EmhostTest, BadOptionsAndModulesAreRefusedClearly) {
    struct Row {
        std::vector<std::string> args;
        const char* message;
    } rows[] = {
        {{"--switch-type", "x"}, "--switch-type takes a number"},
        {{"--answer", "12"}, "--answer takes OC=JSON"},
        {{"--answer", "12=[1]"}, "is no JSON object"},
        {{"--module", "/nonexistent.so"}, "cannot load module /nonexistent.so"},
        {{"--bogus"}, "unknown option --bogus"},
        {{"--trace", "/nonexistent/dir/t"}, "cannot open trace file"},
        {{"/nonexistent-script"}, "cannot read script"},
    };
    for (const Row& row : rows) {
        std::vector<std::string> argv = {BuildPath("emhost")};
        argv.insert(argv.end(), row.args.begin(), row.args.end());
        ProcessResult r = RunProcess(argv, "");
        EXPECT_EQ(r.exitCode, 2) << row.args[0];
        EXPECT_NE(r.err.find(row.message), std::string::npos) << r.err;
    }
    ProcessResult help = RunProcess({BuildPath("emhost"), "--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("--switch-type N"), std::string::npos);
}

}  // namespace
