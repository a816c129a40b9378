#include "CommandLine.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "ExitStatus.h"
#include "ModuleLocation.h"

namespace {

struct ModeEntry {
    Mode mode;
    const char* name;  // empty for the line protocol
    const char* usage;
    const char* about;
};

const ModeEntry kModes[] = {
    {Mode::kLines, "", "[OPTIONS] [SCRIPT]",
     "Loads an extension module and drives it with JSON lines, one per line, from SCRIPT or "
     "standard input. Each line gets one JSON result line on standard output. "
     "Lines: a command record {\"SIP\":{...}}, or an action {\"host\":ACTION,...} with ACTION "
     "one of create, delete, name, setup, info, detected, cabinet, start, switch-started, "
     "notify, detach, selist, stop, answer, request, burst, wait-events, sleep, exit. "
     "Empty lines and lines beginning with # are skipped. See docs/tools.md for the members."},
    {Mode::kInventory, "inventory", "inventory [OPTIONS]",
     "Creates and starts the module, prints what a client of the switch sees (adapters, "
     "drives, logical drives, batteries, ports, enclosures, overall status, and the cabinets "
     "of the external enclosures with their fans, sensors and power supplies) as tables or as "
     "one JSON document, then stops and deletes the module."},
    {Mode::kExport, "export", "export [OPTIONS]",
     "Creates and starts the module, asks it for the whole storage tree as a client does "
     "(object code 0x21D0) and writes the answer to standard output exactly as it came: XML, "
     "or with --json its JSON form. Then stops and deletes the module. Exit status 1 when the "
     "module gave no tree."},
    {Mode::kWatch, "watch", "watch [OPTIONS]",
     "Creates and starts the module, then at every polling cycle (15 s) renews the snapshot "
     "of a client and prints, with the time, what changed since the last look: drive and "
     "battery statuses, logical drive states and progress, overall statuses. Prints every "
     "event record that the module sends and every drop of the snapshots by the polling "
     "thread (from the trace, at trace level 3 or more, and from a second client that never "
     "renews). Ends on Ctrl-C, SIGTERM or after --duration SECONDS, then stops and deletes "
     "the module. Without --trace the trace is not written."},
    {Mode::kMetrics, "metrics", "metrics [OPTIONS]",
     "Creates and starts the module, reads the storage as a client does after renewing its "
     "snapshot, and writes it in the Prometheus text format: a gauge per adapter, drive, "
     "logical drive, battery, enclosure and cabinet component with its status code, and the "
     "names as labels; rebuild and check progress; the overall statuses; the monitor's own "
     "health. With --interval it goes on until Ctrl-C or SIGTERM. Then stops and deletes the "
     "module. Without --trace the trace is not written."},
};

constexpr unsigned Bit(Mode mode) {
    return 1u << static_cast<unsigned>(mode);
}
constexpr unsigned kViews = Bit(Mode::kInventory) | Bit(Mode::kWatch) | Bit(Mode::kMetrics);
constexpr unsigned kAll = Bit(Mode::kLines) | Bit(Mode::kExport) | kViews;

const ModeEntry& EntryOf(Mode mode) {
    for (const ModeEntry& entry : kModes) {
        if (entry.mode == mode)
            return entry;
    }
    return kModes[0];
}

std::string Command(Mode mode) {
    const ModeEntry& entry = EntryOf(mode);
    return *entry.name ? std::string("emhost ") + entry.name : "emhost";
}

bool ParseU32(const std::string& text, uint32_t& value) {
    if (text.empty() || text[0] == '-' || text[0] == '+' ||
        isspace(static_cast<unsigned char>(text[0])))
        return false;
    char* end = nullptr;
    errno = 0;
    unsigned long long v = strtoull(text.c_str(), &end, 0);
    if (errno || *end || v > 0xFFFFFFFFull)
        return false;
    value = static_cast<uint32_t>(v);
    return true;
}

// An option: its value's name (null for a flag, "[=WHEN]" style when the value may be left
// out), the modes that take it, its help, and what it does with the value; false with the
// error's text for a bad value.
struct OptionSpec {
    const char* name;
    const char* value;
    unsigned modes;
    const char* help;
    bool (*apply)(Options& o, const std::string& value, std::string& error);
};

bool Seconds(const std::string& value, uint32_t& seconds, const char* option, std::string& error) {
    if (ParseU32(value, seconds) && seconds > 0)
        return true;
    error = std::string(option) + " takes a whole number of seconds from 1 to 4294967295";
    return false;
}

const OptionSpec kOptions[] = {
    {"--json", nullptr, Bit(Mode::kInventory) | Bit(Mode::kExport) | Bit(Mode::kWatch),
     "JSON instead of text: inventory one document (docs/inventory.schema.json), watch one "
     "line per change and per event, export the tree's JSON form",
     [](Options& o, const std::string&, std::string&) { return o.bJson = true; }},
    {"--color", "[=WHEN]", Bit(Mode::kInventory) | Bit(Mode::kWatch),
     "colour the statuses in the text views: auto (the default: on a terminal, unless "
     "NO_COLOR is set), always (also what --color alone means) or never",
     [](Options& o, const std::string& value, std::string& error) {
         const std::pair<const char*, ColourMode> modes[] = {{"auto", ColourMode::kAuto},
                                                             {"always", ColourMode::kAlways},
                                                             {"never", ColourMode::kNever},
                                                             {"", ColourMode::kAlways}};
         for (const auto& [name, mode] : modes) {
             if (value == name) {
                 o.colour = mode;
                 return true;
             }
         }
         error = "--color takes auto, always or never";
         return false;
     }},
    {"--duration", "SECONDS", Bit(Mode::kWatch), "end after this many seconds",
     [](Options& o, const std::string& value, std::string& error) {
         return Seconds(value, o.nDurationSec, "--duration", error);
     }},
    {"--exit-on-change", nullptr, Bit(Mode::kWatch),
     "end at the first look that shows a change, or at the first event record",
     [](Options& o, const std::string&, std::string&) { return o.bExitOnChange = true; }},
    {"--exit-on-failure", nullptr, Bit(Mode::kWatch),
     "end at the first look at which something has failed",
     [](Options& o, const std::string&, std::string&) { return o.bExitOnFailure = true; }},
    {"--output", "FILE", Bit(Mode::kMetrics),
     "write the metrics to FILE (default: standard output), each time whole: into a new "
     "file beside it that is then renamed over FILE, as a text-file collector needs",
     [](Options& o, const std::string& value, std::string& error) {
         const size_t slash = value.rfind('/');
         const std::string dir = slash == std::string::npos ? "." : value.substr(0, slash + 1);
         if (value.empty() || value.back() == '/' || access(dir.c_str(), W_OK) != 0) {
             error =
                 "--output needs a file in a directory that can be written, not '" + value + "'";
             return false;
         }
         o.output = value;
         return true;
     }},
    {"--interval", "SECONDS", Bit(Mode::kMetrics),
     "renew and write the metrics again every SECONDS until Ctrl-C or SIGTERM",
     [](Options& o, const std::string& value, std::string& error) {
         return Seconds(value, o.nIntervalSec, "--interval", error);
     }},
    {"--module", "PATH", kAll,
     "the shared object to load (default: em_tlraid.so beside emhost, else the installed one)",
     [](Options& o, const std::string& value, std::string& error) {
         if (value.empty())
             error = "--module takes the path of a shared object";
         o.module = value;
         return !value.empty();
     }},
    {"--switch-type", "N", kAll,
     "what the switch's GetSwitchType answers (default 1; 5 and 10 are the agentless "
     "service)",
     [](Options& o, const std::string& value, std::string& error) {
         if (!ParseU32(value, o.nSwitchType))
             error = "--switch-type takes a number from 0 to 4294967295";
         return error.empty();
     }},
    {"--answer", "OC=JSON", kAll,
     "how the switch answers requests of object code OC (decimal or 0x hex): JSON is an "
     "object whose ST and DA are written into the request; may be given several times",
     [](Options& o, const std::string& value, std::string& error) {
         const size_t eq = value.find('=');
         uint32_t oc = 0;
         if (eq == std::string::npos || !ParseU32(value.substr(0, eq), oc)) {
             error = "--answer takes OC=JSON, OC a number such as 8464 or 0x2110";
             return false;
         }
         o.answers.emplace_back(oc, value.substr(eq + 1));
         return true;
     }},
    {"--trace", "FILE", kAll,
     "append every trace message to FILE, for its owner only (mode 0600; default: standard "
     "error; for watch and metrics: none)",
     [](Options& o, const std::string& value, std::string& error) {
         if (value.empty())
             error = "--trace takes the path of a file";
         o.trace = value;
         return !value.empty();
     }},
};

// The words of a text in lines of at most width characters, each after the indent but the
// first.
std::string Wrapped(const std::string& text, size_t width, size_t indent) {
    std::string out, line;
    size_t at = 0;
    while (at < text.size()) {
        const size_t end = std::min(text.find(' ', at), text.size());
        const std::string word = text.substr(at, end - at);
        if (!line.empty() && line.size() + 1 + word.size() > width) {
            out += line + "\n" + std::string(indent, ' ');
            line.clear();
        }
        line += (line.empty() ? "" : " ") + word;
        at = end + 1;
    }
    return out + line;
}

void PrintHelp(Mode mode) {
    constexpr size_t kWidth = 79, kColumn = 22;
    const ModeEntry& entry = EntryOf(mode);
    printf("Usage: emhost %s\n", entry.usage);
    if (mode == Mode::kLines) {
        for (const ModeEntry& other : kModes) {
            if (other.mode != Mode::kLines)
                printf("  or:  emhost %s\n", other.usage);
        }
    }
    printf("\n%s\n", Wrapped(entry.about, kWidth, 0).c_str());
    if (mode == Mode::kLines)
        printf("\nCommands, each with its --help: inventory, export, watch, metrics.\n");
    printf("\nOptions:\n");
    auto item = [&](const std::string& head, const char* help) {
        printf("  %-*s%s\n", static_cast<int>(kColumn - 2), (head + " ").c_str(),
               Wrapped(help, kWidth - kColumn, kColumn).c_str());
    };
    for (const OptionSpec& option : kOptions) {
        if (!(option.modes & Bit(mode)))
            continue;
        std::string head = option.name;
        if (option.value)
            head += std::string(option.value[0] == '[' ? "" : " ") + option.value;
        item(head, option.help);
    }
    item("--help", "this text");
    item("--version", "the version of emhost");
    if (Bit(mode) & (kViews | Bit(Mode::kLines))) {
        printf("\nExit status%s: the sum of\n",
               mode == Mode::kLines ? " of inventory, watch and metrics" : "");
        for (const exit_status::Bit& bit : exit_status::kBits) {
            if (bit.value != exit_status::kChanged || mode == Mode::kWatch || mode == Mode::kLines)
                printf("  %-3d %s\n", bit.value, bit.meaning);
        }
        printf("0 when all is well; 2 stands alone.\n");
    }
}

}  // namespace

void UsageError(Mode mode, const std::string& text) {
    const std::string command = Command(mode);
    fprintf(stderr, "%s: %s\nTry '%s --help' for more information.\n", command.c_str(),
            text.c_str(), command.c_str());
    exit(exit_status::kUsage);
}

Options ParseCommandLine(int argc, char** argv) {
    Options o;
    int first = 1;
    for (const ModeEntry& entry : kModes) {
        if (argc > 1 && *entry.name && strcmp(argv[1], entry.name) == 0) {
            o.mode = entry.mode;
            first = 2;
        }
    }
    for (int i = first; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            PrintHelp(o.mode);
            exit(0);
        }
        if (arg == "--version") {
            printf("emhost %s\n", TLR_VERSION);
            exit(0);
        }
        if (arg.size() < 2 || arg[0] != '-') {
            if (o.mode != Mode::kLines)
                UsageError(o.mode, EntryOf(o.mode).name + std::string(" takes no argument, not '") +
                                       arg + "'");
            if (!o.script.empty())
                UsageError(o.mode, "only one SCRIPT may be given, not also '" + arg + "'");
            o.script = arg;
            continue;
        }
        const size_t eq = arg.find('=');
        const std::string name = arg.substr(0, eq);
        const OptionSpec* option = nullptr;
        for (const OptionSpec& candidate : kOptions) {
            if (name == candidate.name)
                option = &candidate;
        }
        if (!option)
            UsageError(o.mode, "unknown option " + name);
        if (!(option->modes & Bit(o.mode))) {
            UsageError(o.mode, name + " is no option of " +
                                   (o.mode == Mode::kLines ? std::string("the line protocol")
                                                           : EntryOf(o.mode).name));
        }
        std::string value;
        if (eq != std::string::npos) {
            if (!option->value)
                UsageError(o.mode, name + " takes no value");
            value = arg.substr(eq + 1);
        } else if (option->value && option->value[0] != '[') {
            if (i + 1 >= argc)
                UsageError(o.mode, name + " needs a value: " + option->value);
            value = argv[++i];
        }
        std::string error;
        if (!option->apply(o, value, error))
            UsageError(o.mode, error + ", not '" + value + "'");
    }
    if (o.module.empty())
        o.module = DefaultModulePath();
    return o;
}
