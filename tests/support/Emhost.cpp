#include "support/Emhost.h"

#include <sys/stat.h>

#include "support/SandboxHost.h"
#include "support/TempDir.h"

namespace {
constexpr char kElapsed[] = "\"ms\":";
}

std::string WithoutElapsed(const std::string& line) {
    std::string out = line;
    size_t at = out.find(kElapsed);
    if (at == std::string::npos)
        return out;
    size_t digits = at + sizeof(kElapsed) - 1;
    size_t end = out.find_first_not_of("0123456789", digits);
    out.replace(digits, (end == std::string::npos ? out.size() : end) - digits, "T");
    return out;
}

std::vector<std::string> Inputs(const std::vector<Exchange>& exchanges) {
    std::vector<std::string> input;
    for (const Exchange& e : exchanges) {
        if (!e.input.empty() || e.output.empty())
            input.push_back(e.input);
    }
    return input;
}

std::vector<std::string> SampleHostOptions(std::vector<std::string> options) {
    const std::string dir = SourcePath("samples/localcli/");
    options.insert(options.end(),
                   {"--localcli-pci", dir + "pci-list.txt", "--localcli-nic", dir + "nic-list.txt",
                    "--adapter-ini", dir + "Adapter.ini", "--pci-devices", dir + "pci-devices"});
    return options;
}

EmhostRun RunEmhost(const std::vector<std::string>& inputLines, const EmhostOptions& options) {
    TempDir dir;
    std::string tracePath = dir.Path() + "/trace.txt";
    std::vector<std::string> argv = {"env"};
    argv.insert(argv.end(), options.env.begin(), options.env.end());
    argv.push_back(BuildPath("emhost"));
    argv.insert(argv.end(), {"--trace", tracePath});
    argv.insert(argv.end(), options.emhost.begin(), options.emhost.end());

    std::string input;
    for (const std::string& line : inputLines)
        input += line + "\n";

    EmhostRun run;
    run.process = RunProcess(InSandbox(options.sandbox, argv), input);
    run.lines = Lines(run.process.out);
    run.trace = ReadWholeFile(tracePath);
    struct stat st {};
    if (stat(tracePath.c_str(), &st) == 0)
        run.traceMode = st.st_mode & 07777;
    return run;
}
