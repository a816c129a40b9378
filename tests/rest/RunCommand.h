#pragma once

#include <string>

// The outcome of a shell command: its exit status (128 + signal when killed) and stdout.
struct CommandResult {
    int nStatus = -1;
    std::string sOut;
};

CommandResult RunCommand(const std::string& command);
// text in single quotes, safe as one word of a shell command.
std::string ShellQuote(const std::string& text);
