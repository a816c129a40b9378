#include "RunCommand.h"

#include <sys/wait.h>

#include <cstdio>

#include "runtime/Pipe.h"

CommandResult RunCommand(const std::string& command) {
    CommandResult result;
    FILE* raw = popen(command.c_str(), "r");
    if (!raw)
        return result;
    PipePtr pipe(raw);
    char buffer[4096];
    size_t count = 0;
    while ((count = fread(buffer, 1, sizeof buffer, raw)) > 0)
        result.sOut.append(buffer, count);
    const int status = pclose(pipe.release());
    if (WIFEXITED(status))
        result.nStatus = WEXITSTATUS(status);
    else if (WIFSIGNALED(status))
        result.nStatus = 128 + WTERMSIG(status);
    return result;
}

std::string ShellQuote(const std::string& text) {
    std::string quoted = "'";
    for (char c : text) {
        if (c == '\'')
            quoted += "'\\''";
        else
            quoted += c;
    }
    return quoted + "'";
}
