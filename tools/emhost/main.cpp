// emhost: loads a module's shared object as the agent daemon does, plays the switch and the
// trace server, and lets a person or a test drive the module with JSON lines.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>

#include "CommandLine.h"
#include "ExitStatus.h"
#include "Export.h"
#include "HostOutput.h"
#include "HostSwitch.h"
#include "HostTraceServer.h"
#include "Inventory.h"
#include "LineProtocol.h"
#include "MetricsCommand.h"
#include "ModuleLibrary.h"
#include "SecretsNote.h"
#include "Watch.h"
#include "raid/RaidSettings.h"

namespace {

// Ends the process at once: the module may run threads, and nothing of it is called.
[[noreturn]] void ExitNow(HostOutput& output) {
    output.Flush();
    Debug.Flush();
    _exit(0);
}

// The text views colour their statuses as --color and the terminal say.
Palette PaletteFor(const Options& options) {
    return Palette(!options.bJson &&
                   ColourWanted(options.colour, isatty(STDOUT_FILENO), getenv("NO_COLOR")));
}

// Runs the chosen view on the module: its output and its exit status.
int RunView(const Options& options, CIExtensionModule& module, HostSwitch& hostSwitch) {
    switch (options.mode) {
        case Mode::kInventory:
            return RunInventory(module, hostSwitch, {options.bJson, PaletteFor(options)});
        case Mode::kWatch: {
            WatchOptions watch;
            watch.durationSec = options.nDurationSec;
            // A look at every cycle of the module's polling thread.
            watch.lookIntervalMs = RaidTimings().nPollIntervalMs;
            watch.bJson = options.bJson;
            watch.bExitOnChange = options.bExitOnChange;
            watch.bExitOnFailure = options.bExitOnFailure;
            watch.palette = PaletteFor(options);
            return RunWatch(module, hostSwitch, Debug, watch);
        }
        case Mode::kMetrics:
            return RunMetrics(module, hostSwitch, {options.output, options.nIntervalSec});
        default:
            return PrintExport(module, hostSwitch, options.bJson);
    }
}

// Creates the module, runs the view and deletes the module again. The views for people
// end by saying what their exit status means.
int RunOnce(const Options& options, ModuleLibrary& library, HostSwitch& hostSwitch) {
    // Where the words for the person go: standard output carries JSON, metrics and trees alone.
    FILE* chatter = options.mode == Mode::kExport || options.mode == Mode::kMetrics || options.bJson
                        ? stderr
                        : stdout;
    CIExtensionModule* module = nullptr;
    int status = exit_status::kModule;
    if (!library.Create(&module, 0) || !module) {
        fprintf(stderr, "emhost: the module could not be created\n");
    } else {
        status = RunView(options, *module, hostSwitch);
        library.Delete();
        if (options.mode != Mode::kExport)
            fprintf(chatter, "Module deleted.\n");
    }
    if (options.mode != Mode::kExport)
        fprintf(chatter, "%s\n", exit_status::Describe(status).c_str());
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    Options options = ParseCommandLine(argc, argv);
    if (!options.trace.empty() && !Debug.OpenFile(options.trace))
        UsageError(options.mode,
                   "cannot open trace file " + options.trace + ": " + strerror(errno));
    std::ifstream scriptFile;
    if (!options.script.empty()) {
        scriptFile.open(options.script);
        if (!scriptFile)
            UsageError(options.mode,
                       "cannot read script " + options.script + ": " + strerror(errno));
    }

    // Watch and metrics run for long: their trace is written only where --trace says.
    if ((options.mode == Mode::kWatch || options.mode == Mode::kMetrics) && options.trace.empty())
        Debug.Discard();
    static HostOutput output(options.mode == Mode::kLines ? stdout : nullptr);
    static HostSwitch hostSwitch(output, options.nSwitchType);
    for (const auto& [oc, json] : options.answers) {
        std::string error;
        if (!hostSwitch.SetAnswer(oc, json, error))
            UsageError(options.mode, error);
    }
    static ModuleLibrary library;
    std::string error;
    if (!library.Load(options.module, error))
        UsageError(options.mode, error);
    // A trace that is written anywhere (watch and metrics write none without --trace) may
    // hold secrets.
    if ((options.mode != Mode::kWatch && options.mode != Mode::kMetrics) ||
        !options.trace.empty()) {
        fputs(SecretsNote(ConfiguredTraceLevel(library.GetModuleName()), options.trace).c_str(),
              stderr);
    }

    if (options.mode != Mode::kLines)
        return RunOnce(options, library, hostSwitch);

    LineProtocol protocol(output, hostSwitch, library);
    std::istream& in = options.script.empty() ? std::cin : scriptFile;
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!protocol.HandleLine(line))
            break;
    }
    ExitNow(output);
}
