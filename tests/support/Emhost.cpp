#include "support/Emhost.h"

#include <fstream>
#include <sstream>

#include "support/TempDir.h"

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
    std::ifstream trace(tracePath, std::ios::binary);
    std::ostringstream text;
    text << trace.rdbuf();
    run.trace = text.str();
    return run;
}
