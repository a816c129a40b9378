#include "support/Process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>
#include <stdexcept>

#include "support/SandboxHost.h"
#include "support/TempDir.h"

ProcessResult RunProcess(const std::vector<std::string>& argv, const std::string& input) {
    // Files instead of pipes: the child never blocks on a full pipe, whatever it prints.
    TempDir dir;
    std::string inPath = dir.Write("stdin", input);
    std::string outPath = dir.Path() + "/stdout";
    std::string errPath = dir.Path() + "/stderr";

    std::vector<char*> args;
    for (const std::string& a : argv)
        args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);

    pid_t pid = fork();
    if (pid < 0)
        throw std::runtime_error("fork failed");
    if (pid == 0) {
        int in = open(inPath.c_str(), O_RDONLY);
        int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (in < 0 || out < 0 || err < 0)
            _exit(126);
        dup2(in, 0);
        dup2(out, 1);
        dup2(err, 2);
        execvp(args[0], args.data());
        _exit(127);
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
    }
    ProcessResult result;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = ReadWholeFile(outPath);
    result.err = ReadWholeFile(errPath);
    return result;
}

std::vector<std::string> InSandbox(const std::vector<std::string>& sandboxOptions,
                                   const std::vector<std::string>& argv) {
    std::vector<std::string> command = {BuildPath("sandbox")};
    command.insert(command.end(), sandboxOptions.begin(), sandboxOptions.end());
    command.push_back("--");
    command.insert(command.end(), argv.begin(), argv.end());
    return command;
}

std::string BuildPath(const std::string& relative) {
    return std::string(TLR_BUILD_DIR) + "/" + relative;
}

std::string SourcePath(const std::string& relative) {
    return std::string(TLR_SOURCE_DIR) + "/" + relative;
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line))
        lines.push_back(line);
    return lines;
}
