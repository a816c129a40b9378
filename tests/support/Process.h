#pragma once

#include <string>
#include <vector>

// The outcome of a program run to its end.
struct ProcessResult {
    int exitCode = -1;  // 128 + signal when a signal ended it
    std::string out;
    std::string err;
};

// Runs a program with the given standard input and collects both outputs.
ProcessResult RunProcess(const std::vector<std::string>& argv, const std::string& input = "");

// The command line that runs argv inside the test sandbox with the given sandbox options.
std::vector<std::string> InSandbox(const std::vector<std::string>& sandboxOptions,
                                   const std::vector<std::string>& argv);

// Paths of the build's outputs and of the source tree.
std::string BuildPath(const std::string& relative);
std::string SourcePath(const std::string& relative);

// The lines of a text, without their newlines.
std::vector<std::string> Lines(const std::string& text);
