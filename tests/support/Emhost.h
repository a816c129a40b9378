#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Process.h"

// One run of build/emhost inside the sandbox: the lines sent, the lines that came back,
// and the trace that its trace server wrote, with the mode of its file.
struct EmhostRun {
    ProcessResult process;
    std::vector<std::string> lines;
    std::string trace;
    unsigned traceMode = 0;  // the trace file's permission bits
};

struct EmhostOptions {
    std::vector<std::string> sandbox = {"--trace-level", "6"};
    std::vector<std::string> emhost;  // options of emhost itself, besides --trace
    std::vector<std::string> env;     // NAME=VALUE set for emhost
};

// A line sent and the line that comes back for it: an empty input for a line that comes
// unasked (a switch's request, an event), an empty output for a line that gets none.
struct Exchange {
    std::string input;
    std::string output;
};
// The lines that these exchanges send.
std::vector<std::string> Inputs(const std::vector<Exchange>& exchanges);

// A result line with its elapsed milliseconds ("ms":N) shown as "ms":T, since they vary.
std::string WithoutElapsed(const std::string& line);

// These sandbox options and those that give its host the sample inventory of samples/localcli
// (PCI and NIC lists, device names, the kernel's device list), as scripts/demo gives it.
std::vector<std::string> SampleHostOptions(std::vector<std::string> options);

EmhostRun RunEmhost(const std::vector<std::string>& inputLines, const EmhostOptions& options = {});

// Success when each of lines stands in text, in their order (a line may begin where the one
// before it was found); otherwise names the first line missing, and shows the text.
template <class Lines>
::testing::AssertionResult ContainsInOrder(const std::string& text, const Lines& lines) {
    size_t at = 0;
    for (const auto& line : lines) {
        size_t found = text.find(line, at);
        if (found == std::string::npos)
            return ::testing::AssertionFailure() << "missing in order: " << line << "\n" << text;
        at = found;
    }
    return ::testing::AssertionSuccess();
}
