// The host simulator's line protocol, driven with a probe module that sends requests and
// events on demand: its exact replies and its errors.
#include <gtest/gtest.h>
#include <sys/stat.h>

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

// Runs the inputs and compares every line that came back, in order.
void ExpectExchanges(const std::vector<Exchange>& exchanges, const EmhostOptions& options) {
    std::vector<std::string> expected;
    for (const Exchange& e : exchanges) {
        if (!e.output.empty())
            expected.push_back(e.output);
    }
    EmhostRun run = RunEmhost(Inputs(exchanges), options);
    EXPECT_EQ(run.process.exitCode, 0) << run.process.err;
    std::vector<std::string> got;
    for (const std::string& line : run.lines)
        got.push_back(WithoutElapsed(line));
    EXPECT_EQ(got, expected);
}

TEST(EmhostTest, ErrorsAndRecordsLineByLine) {
    const std::string deep = "{\"SIP\":{\"CMD\":[{\"DA\":" + std::string(100000, '[') +
                             std::string(100000, ']') + "}]}}";
    ExpectExchanges(
        {
            {"", ""},
            {"# a comment", ""},
            {"not json", R"({"error":"the line is no JSON object"})"},
            {R"({"host":"detected"})",
             R"({"error":"no module object for \"detected\": send {\"host\":\"create\"} first"})"},
            {R"({"SIP":{"V":1,"CMD":[{"OC":9}]}})",
             R"({"error":"no module object: send {\"host\":\"create\"} first"})"},
            {R"({"host":"create"})", R"({"host":"create","ret":1})"},
            {R"({"host":"bogus"})", R"({"error":"unknown action \"bogus\""})"},
            {R"({"host":7})", R"({"error":"member \"host\" must be a text"})"},
            {R"({"other":1})", R"({"error":"the line has neither \"SIP\" nor \"host\""})"},
            {R"({"host":"cabinet"})", R"({"error":"member \"nr\" is missing"})"},
            {R"({"host":"cabinet","nr":"x"})", R"({"error":"member \"nr\" must be an integer"})"},
            {R"({"host":"detach","ci":4294967296})",
             R"*({"error":"member \"ci\" is out of range (0 to 4294967295)"})*"},
            {deep, R"({"error":"the line nests deeper than 512 levels"})"},
            {R"({"SIP":{"V":1,"CMD":[{"OC":9,"CI":7,"DA":{"x":[1]}}]}})",
             R"({"ret":0,"record":{"SIP":{"V":1,"CMD":[{"OC":9,"CI":7,"DA":{"x":[1]},"ST":1}]}}})"},
            {R"({"host":"request","index":1,"record":{"SIP":{"CMD":[{"OC":9}]}}})",
             R"({"ret":0,"record":{"SIP":{"CMD":[{"OC":9},{"ST":1}]}}})"},
            // Bytes of the answer that are no UTF-8 come back escaped, valid text unchanged.
            {"{\"SIP\":{\"CMD\":[{\"OC\":9,\"DA\":\"\\u00e9\xc3\xa9\xff\xe2\x82x"
             "\xc0\xaf\xed\xa0\x80\"}]}}",
             R"({"ret":0,"record":{"SIP":{"CMD":[{"OC":9,"DA":")"
             "\xc3\xa9\xc3\xa9"
             R"(\udcff\udce2\udc82x\udcc0\udcaf\udced\udca0\udc80","ST":1}]}}})"},
            {R"({"host":"request","record":5})",
             R"({"error":"member \"record\" must be a JSON object"})"},
            {R"({"host":"sleep","ms":1})", R"({"host":"sleep","ret":0})"},
            // Numbers that would make the host pad, allocate or wait without bound.
            {R"({"host":"info","size":4294967296})",
             R"*({"error":"member \"size\" is out of range (0 to 1048576)"})*"},
            {R"({"host":"info","size":1e300})",
             R"({"error":"member \"size\" must be an integer"})"},
            {R"({"host":"sleep","ms":-1})",
             R"*({"error":"member \"ms\" is out of range (0 to 86400000)"})*"},
            // Exit ends at once: the lines behind it get no answer.
            {R"({"host":"exit"})", ""},
            {R"({"host":"name"})", ""},
        },
        Probe());
}

// Probe codes: OC 1 asks the switch for OE with time-out OI, OC 2 sends OI events of OE,
// OC 3 answers the switch type.
TEST(EmhostTest, SwitchRequestsEventsAndHostActions) {
    std::string filler;  // of the info block
    while (filler.size() < 2 * 296)
        filler += "a5";
    ExpectExchanges(
        {
            {R"({"host":"create"})", R"({"host":"create","ret":1})"},
            {R"({"host":"start"})", R"({"host":"start","ret":1,"ms":T})"},
            {R"({"SIP":{"CMD":[{"OC":1,"OE":8464,"OI":2500}]}})",
             R"({"switch-request":{"SIP":{"V":1,"CMD":[{"OC":8464,"CA":0}]}},"timeout_ms":2500})"},
            {"",
             R"({"ret":1,"record":{"SIP":{"CMD":[{"OC":1,"OE":8464,"OI":2500,"DA2":1,"DA":12,"ST":0}]}}})"},
            // No answer given: the request stays as it came.
            {R"({"SIP":{"CMD":[{"OC":1,"OE":8465}]}})",
             R"({"switch-request":{"SIP":{"V":1,"CMD":[{"OC":8465,"CA":0}]}},"timeout_ms":0})"},
            {"",
             R"({"ret":1,"record":{"SIP":{"CMD":[{"OC":1,"OE":8465,"DA2":0,"DA":99,"ST":0}]}}})"},
            {R"({"host":"answer","oc":8465,"reply":{"ST":21,"DA":3}})",
             R"({"host":"answer","ret":1})"},
            {R"({"SIP":{"CMD":[{"OC":1,"OE":8465}]}})",
             R"({"switch-request":{"SIP":{"V":1,"CMD":[{"OC":8465,"CA":0}]}},"timeout_ms":0})"},
            {"",
             R"({"ret":1,"record":{"SIP":{"CMD":[{"OC":1,"OE":8465,"DA2":3,"DA":21,"ST":0}]}}})"},
            {R"({"host":"answer","oc":1,"reply":[]})",
             R"({"error":"member \"reply\" must be a JSON object"})"},
            // Events show status 255 during the call; the host counts them.
            {R"({"SIP":{"CMD":[{"OC":2,"OE":57344,"OI":2}]}})",
             R"({"event":{"SIP":{"V":1,"CMD":[{"OC":57344,"CA":0,"ST":255}]}}})"},
            {"", R"({"event":{"SIP":{"V":1,"CMD":[{"OC":57344,"OI":1,"CA":0,"ST":255}]}}})"},
            {"", R"({"ret":1,"record":{"SIP":{"CMD":[{"OC":2,"OE":57344,"OI":2,"ST":0}]}}})"},
            {R"({"host":"wait-events","count":2,"timeout_ms":0})",
             R"({"host":"wait-events","ret":2})"},
            {R"({"host":"wait-events","count":9,"timeout_ms":50})",
             R"({"host":"wait-events","ret":2})"},
            {R"({"SIP":{"CMD":[{"OC":3}]}})",
             R"({"ret":1,"record":{"SIP":{"CMD":[{"OC":3,"DA":10,"ST":0}]}}})"},
            {R"({"host":"selist"})", R"({"host":"selist","ret":1,"list":[800,801,1000]})"},
            // The base answers 0 and leaves the block alone: 300 bytes shown, size first.
            {R"({"host":"info","size":300})",
             R"({"host":"info","ret":0,"block":"2c010000)" + filler + "\"}"},
            {R"({"host":"burst","record":{"SIP":{"CMD":[{"OC":3}]}},"threads":4,"repeat":50})",
             R"({"host":"burst","ret":1,"count":200,"statuses":{"0":200},"ms":T})"},
            {R"({"host":"burst","record":{"SIP":{"CMD":[{"OC":9}]}},"threads":0,"repeat":1})",
             R"*({"error":"member \"threads\" is out of range (1 to 256)"})*"},
            {R"({"host":"burst","record":{"SIP":{"CMD":[{"OC":9}]}},"threads":1,"repeat":0})",
             R"*({"error":"member \"repeat\" is out of range (1 to 10000000)"})*"},
            {R"({"host":"request","record":{"SIP":{"CMD":[{"OC":3}]}},"index":65536})",
             R"*({"error":"member \"index\" is out of range (0 to 65535)"})*"},
        },
        Probe({"--switch-type", "10", "--answer", "0x2110={\"ST\":12,\"DA\":1}"}));
}

// Events that the module sends from a thread of its own (probe code 4) come between the
// result lines; waiting for them ends when they are all there. Module threads still running
// at the end of the input do not keep the host alive.
TEST(EmhostTest, WaitingForEventsFromTheModulesThread) {
    auto run = RunEmhost({"{\"host\":\"create\"}", "{\"host\":\"start\"}",
                          "{\"SIP\":{\"CMD\":[{\"OC\":4,\"OE\":5,\"OI\":3}]}}",
                          "{\"host\":\"wait-events\",\"count\":3,\"timeout_ms\":20000}",
                          "{\"SIP\":{\"CMD\":[{\"OC\":4,\"OI\":1}]}}"},
                         Probe());
    ASSERT_EQ(run.process.exitCode, 0);
    ASSERT_GE(run.lines.size(), 7u);
    EXPECT_EQ(run.lines[6], "{\"host\":\"wait-events\",\"ret\":3}");
}

// The trace holds secrets from level 3 on: emhost says so once, and its file is private to
// its owner whatever the umask. The level is the one the module reads: the file's for its
// section, or the environment's, which wins.
TEST(EmhostTest, TraceWithSecretsIsNotedAndPrivate) {
    struct Row {
        const char* fileLevel;
        std::vector<std::string> env;
        bool noted;
    };
    const Row rows[] = {
        {"2", {}, false},
        {"3", {}, true},
        {"2", {"TL_LOG_DEBUG_LEVEL=5"}, true},
    };
    const mode_t oldMask = umask(022);
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string("level ") + row.fileLevel);
        EmhostOptions options;
        options.sandbox = {"--trace-level", row.fileLevel};
        options.env = row.env;
        EmhostRun run = RunEmhost({R"({"host":"exit"})"}, options);
        EXPECT_EQ(run.process.exitCode, 0) << run.process.err;
        const size_t note = run.process.err.find("emhost: trace level ");
        EXPECT_EQ(note != std::string::npos, row.noted) << run.process.err;
        if (note != std::string::npos) {
            EXPECT_EQ(run.process.err.find("emhost: trace level ", note + 1), std::string::npos);
        }
        EXPECT_EQ(run.traceMode, 0600u);
    }
    umask(oldMask);
}

// Bad input to any option or argument: one line naming it, one line with the hint, exit 2,
// nothing on standard output and nothing done.
TEST(EmhostTest, BadCommandLinesAreRefusedWithAHint) {
    const struct {
        std::vector<std::string> args;
        const char* command;
        const char* error;
    } rows[] = {
        {{"inventory", "--bogus"}, "emhost inventory", "unknown option --bogus"},
        {{"inventory", "--duration", "5"},
         "emhost inventory",
         "--duration is no option of inventory"},
        {{"inventory", "--json=yes"}, "emhost inventory", "--json takes no value"},
        {{"inventory", "extra"}, "emhost inventory", "inventory takes no argument, not 'extra'"},
        {{"inventory", "--color=blue"},
         "emhost inventory",
         "--color takes auto, always or never, not 'blue'"},
        {{"watch", "--duration", "0"},
         "emhost watch",
         "--duration takes a whole number of seconds from 1 to 4294967295, not '0'"},
        {{"watch", "--duration"}, "emhost watch", "--duration needs a value: SECONDS"},
        {{"metrics", "--interval", "-5"},
         "emhost metrics",
         "--interval takes a whole number of seconds"},
        {{"metrics", "--interval=4294967296"}, "emhost metrics", "not '4294967296'"},
        {{"metrics", "--output", "/nonexistent/storage.prom"},
         "emhost metrics",
         "--output needs a file in a directory that can be written"},
        {{"export", "--exit-on-change"},
         "emhost export",
         "--exit-on-change is no option of export"},
        {{"--switch-type", "0x1x"},
         "emhost",
         "--switch-type takes a number from 0 to 4294967295, not '0x1x'"},
        {{"--answer", "8464"}, "emhost", "--answer takes OC=JSON"},
        {{"watch", "--answer", "8464={"}, "emhost watch", "8464"},
        {{"metrics", "--module", "/nonexistent/em.so"}, "emhost metrics", "/nonexistent/em.so"},
        {{"inventory", "--trace", "/nonexistent/trace.txt"},
         "emhost inventory",
         "cannot open trace file /nonexistent/trace.txt"},
        {{"one.jsonl", "two.jsonl"}, "emhost", "only one SCRIPT may be given"},
    };
    for (const auto& row : rows) {
        std::vector<std::string> argv = {BuildPath("emhost")};
        argv.insert(argv.end(), row.args.begin(), row.args.end());
        const ProcessResult r = RunProcess(argv);
        const std::vector<std::string> err = Lines(r.err);
        SCOPED_TRACE(row.args.back());
        EXPECT_EQ(r.exitCode, 2);
        EXPECT_EQ(r.out, "");
        ASSERT_EQ(err.size(), 2u) << r.err;
        EXPECT_EQ(err[0].rfind(std::string(row.command) + ": ", 0), 0u) << err[0];
        EXPECT_NE(err[0].find(row.error), std::string::npos) << err[0];
        EXPECT_EQ(err[1], "Try '" + std::string(row.command) + " --help' for more information.");
    }
}

// Every subcommand has its help, on standard output, in the form that man pages are made from.
TEST(EmhostTest, HelpAndVersionForEverySubcommand) {
    for (const char* command : {"", "inventory", "export", "watch", "metrics"}) {
        std::vector<std::string> argv = {BuildPath("emhost")};
        if (*command)
            argv.push_back(command);
        argv.push_back("--help");
        const ProcessResult r = RunProcess(argv);
        SCOPED_TRACE(command);
        EXPECT_EQ(r.exitCode, 0);
        EXPECT_EQ(r.out.rfind("Usage: emhost " + std::string(command), 0), 0u) << r.out;
        EXPECT_NE(r.out.find("\nOptions:\n  --"), std::string::npos) << r.out;
        EXPECT_NE(r.out.find("\n  --version "), std::string::npos) << r.out;
    }
    const ProcessResult version = RunProcess({BuildPath("emhost"), "watch", "--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.out.rfind("emhost 1.", 0), 0u) << version.out;
}

}  // namespace
