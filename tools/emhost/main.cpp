// emhost: loads a module's shared object as the agent daemon does, plays the switch and the
// trace server, and lets a person or a test drive the module with JSON lines.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "Export.h"
#include "HostOutput.h"
#include "HostSwitch.h"
#include "HostTraceServer.h"
#include "Inventory.h"
#include "LineProtocol.h"
#include "ModuleLibrary.h"
#include "ModuleLocation.h"
#include "SecretsNote.h"
#include "Watch.h"
#include "raid/RaidSettings.h"

namespace {

constexpr int kUsageError = 2;

const char kUsage[] =
    "usage: emhost [--module PATH] [--switch-type N] [--answer OC=JSON]... [--trace FILE] "
    "[SCRIPT]\n"
    "       emhost inventory [--module PATH] [--switch-type N] [--answer OC=JSON]... "
    "[--trace FILE]\n"
    "       emhost export [--json] [--module PATH] [--switch-type N] [--answer OC=JSON]... "
    "[--trace FILE]\n"
    "       emhost watch [--duration SECONDS] [--module PATH] [--switch-type N] "
    "[--answer OC=JSON]... [--trace FILE]\n"
    "\n"
    "Loads an extension module and drives it with JSON lines, one per line, from SCRIPT or\n"
    "standard input. Each line gets one JSON result line on standard output.\n"
    "\n"
    "  --module PATH      the shared object to load (default: em_tlraid.so beside emhost, else\n"
    "                     the installed one)\n"
    "  --switch-type N    what the switch's GetSwitchType answers (default 1; 5 and 10 are\n"
    "                     the agentless service)\n"
    "  --answer OC=JSON   how the switch answers requests of object code OC (decimal or 0x hex):\n"
    "                     JSON is an object whose ST and DA are written into the request;\n"
    "                     may be given several times\n"
    "  --trace FILE       append every trace message to FILE, for its owner only (mode 0600;\n"
    "                     default: standard error)\n"
    "  --help             this text\n"
    "\n"
    "Lines: a command record {\"SIP\":{...}}, or an action {\"host\":ACTION,...} with ACTION one\n"
    "of create, delete, name, setup, info, detected, cabinet, start, switch-started, notify,\n"
    "detach, selist, stop, answer, request, burst, wait-events, sleep, exit.\n"
    "Empty lines and lines beginning with # are skipped. See docs/tools.md for the members.\n"
    "\n"
    "inventory: creates and starts the module, prints what a client of the switch sees\n"
    "(adapters, drives, logical drives, batteries, ports, enclosures, overall status, and\n"
    "the cabinets of the external enclosures with their fans, sensors and power supplies)\n"
    "as tables, then stops and deletes the module.\n"
    "\n"
    "export: creates and starts the module, asks it for the whole storage tree as a client\n"
    "does (object code 0x21D0) and writes the answer to standard output exactly as it came:\n"
    "XML, or with --json its JSON form. Then stops and deletes the module. Exit status 1\n"
    "when the module gave no tree.\n"
    "\n"
    "watch: creates and starts the module, then at every polling cycle (15 s) renews the\n"
    "snapshot of a client and prints, with the time, what changed since the last look: drive\n"
    "and battery statuses, logical drive states and progress, overall statuses. Prints every\n"
    "event record that the module sends and every drop of the snapshots by the polling\n"
    "thread (from the trace, at trace level 3 or more, and from a second client that never\n"
    "renews). Ends on Ctrl-C or after --duration SECONDS, then stops and deletes the module.\n"
    "Without --trace the trace is not written.\n";

enum class Mode { kLines, kInventory, kExport, kWatch };

const char* ModeName(Mode mode) {
    switch (mode) {
        case Mode::kInventory:
            return "inventory";
        case Mode::kExport:
            return "export";
        case Mode::kWatch:
            return "watch";
        default:
            return "";
    }
}

struct Options {
    Mode mode = Mode::kLines;
    bool json = false;
    uint32_t durationSec = 0;
    std::string module;
    uint32_t switchType = 1;
    std::vector<std::pair<uint32_t, std::string>> answers;
    std::string trace;
    std::string script;
};

[[noreturn]] void UsageError(const std::string& text) {
    fprintf(stderr, "emhost: %s\n(see emhost --help)\n", text.c_str());
    exit(kUsageError);
}

bool ParseU32(const std::string& text, uint32_t& value) {
    if (text.empty())
        return false;
    char* end = nullptr;
    errno = 0;
    unsigned long long v = strtoull(text.c_str(), &end, 0);
    if (errno || *end || v > 0xFFFFFFFFull || text[0] == '-')
        return false;
    value = static_cast<uint32_t>(v);
    return true;
}

Options ParseOptions(int argc, char** argv) {
    Options o;
    int first = 1;
    if (argc > 1 && std::string(argv[1]) == "inventory") {
        o.mode = Mode::kInventory;
        first = 2;
    } else if (argc > 1 && std::string(argv[1]) == "export") {
        o.mode = Mode::kExport;
        first = 2;
    } else if (argc > 1 && std::string(argv[1]) == "watch") {
        o.mode = Mode::kWatch;
        first = 2;
    }
    for (int i = first; i < argc; ++i) {
        std::string arg = argv[i];
        auto value = [&](const char* name) -> std::string {
            if (i + 1 >= argc)
                UsageError(std::string(name) + " needs a value");
            return argv[++i];
        };
        if (arg == "--help" || arg == "-h") {
            fputs(kUsage, stdout);
            exit(0);
        } else if (arg == "--module") {
            o.module = value("--module");
        } else if (arg == "--switch-type") {
            if (!ParseU32(value("--switch-type"), o.switchType)) {
                UsageError("--switch-type takes a number from 0 to 4294967295");
            }
        } else if (arg == "--answer") {
            std::string answer = value("--answer");
            size_t eq = answer.find('=');
            uint32_t oc = 0;
            if (eq == std::string::npos || !ParseU32(answer.substr(0, eq), oc)) {
                UsageError("--answer takes OC=JSON, OC a number such as 8464 or 0x2110");
            }
            o.answers.emplace_back(oc, answer.substr(eq + 1));
        } else if (arg == "--duration" && o.mode == Mode::kWatch) {
            if (!ParseU32(value("--duration"), o.durationSec) || o.durationSec == 0) {
                UsageError("--duration takes a number of seconds from 1 to 4294967295");
            }
        } else if (arg == "--trace") {
            o.trace = value("--trace");
        } else if (arg == "--json" && o.mode == Mode::kExport) {
            o.json = true;
        } else if (arg.size() > 1 && arg[0] == '-') {
            UsageError("unknown option " + arg);
        } else if (o.mode != Mode::kLines) {
            UsageError(std::string(ModeName(o.mode)) + " takes no SCRIPT");
        } else if (o.script.empty()) {
            o.script = arg;
        } else {
            UsageError("only one SCRIPT may be given");
        }
    }
    if (o.module.empty())
        o.module = DefaultModulePath();
    return o;
}

// Ends the process at once: the module may run threads, and nothing of it is called.
[[noreturn]] void ExitNow(HostOutput& output) {
    output.Flush();
    Debug.Flush();
    _exit(0);
}

// Creates the module, prints its inventory or its tree and deletes it again.
int RunOnce(const Options& options, ModuleLibrary& library, ISwitch& hostSwitch) {
    CIExtensionModule* module = nullptr;
    if (!library.Create(&module, 0) || !module) {
        fprintf(stderr, "emhost: the module could not be created\n");
        return 1;
    }
    const bool inventory = options.mode == Mode::kInventory;
    int status = inventory ? PrintInventory(*module, hostSwitch)
                           : PrintExport(*module, hostSwitch, options.json);
    library.Delete();
    if (inventory)
        printf("Module deleted.\n");
    return status;
}

// Creates the module, watches it until the end and deletes it again.
int RunWatchSession(ModuleLibrary& library, HostSwitch& hostSwitch, uint32_t durationSec) {
    CIExtensionModule* module = nullptr;
    if (!library.Create(&module, 0) || !module) {
        fprintf(stderr, "emhost: the module could not be created\n");
        return 1;
    }
    WatchOptions watch;
    watch.durationSec = durationSec;
    // A look at every cycle of the module's polling thread.
    watch.lookIntervalMs = RaidTimings().nPollIntervalMs;
    int status = RunWatch(*module, hostSwitch, Debug, watch);
    library.Delete();
    printf("Module deleted.\n");
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    Options options = ParseOptions(argc, argv);
    if (!options.trace.empty() && !Debug.OpenFile(options.trace)) {
        fprintf(stderr, "emhost: cannot open trace file %s: %s\n", options.trace.c_str(),
                strerror(errno));
        return kUsageError;
    }
    std::ifstream scriptFile;
    if (!options.script.empty()) {
        scriptFile.open(options.script);
        if (!scriptFile) {
            fprintf(stderr, "emhost: cannot read script %s: %s\n", options.script.c_str(),
                    strerror(errno));
            return kUsageError;
        }
    }

    if (options.mode == Mode::kWatch && options.trace.empty())
        Debug.Discard();
    static HostOutput output(options.mode == Mode::kLines ? stdout : nullptr);
    static HostSwitch hostSwitch(output, options.switchType);
    for (const auto& [oc, json] : options.answers) {
        std::string error;
        if (!hostSwitch.SetAnswer(oc, json, error))
            UsageError(error);
    }
    static ModuleLibrary library;
    std::string error;
    if (!library.Load(options.module, error)) {
        fprintf(stderr, "emhost: %s\n", error.c_str());
        return kUsageError;
    }
    // A trace that is written anywhere (watch writes none without --trace) may hold secrets.
    if (options.mode != Mode::kWatch || !options.trace.empty()) {
        fputs(SecretsNote(ConfiguredTraceLevel(library.GetModuleName()), options.trace).c_str(),
              stderr);
    }

    if (options.mode == Mode::kWatch)
        return RunWatchSession(library, hostSwitch, options.durationSec);
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
