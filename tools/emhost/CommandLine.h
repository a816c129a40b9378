#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "Colour.h"

// What emhost does: speak the line protocol, or one of the views for people and scripts.
enum class Mode { kLines, kInventory, kExport, kWatch, kMetrics };

struct Options {
    Mode mode = Mode::kLines;
    std::string module;
    uint32_t nSwitchType = 1;
    std::vector<std::pair<uint32_t, std::string>> answers;
    std::string trace;
    std::string script;
    bool bJson = false;
    ColourMode colour = ColourMode::kAuto;
    uint32_t nDurationSec = 0;  // watch; 0: until SIGINT or SIGTERM
    bool bExitOnChange = false;
    bool bExitOnFailure = false;
    std::string output;         // metrics; empty: standard output
    uint32_t nIntervalSec = 0;  // metrics; 0: once
};

// Reads the command line. --help and --version print to standard output and end the
// process with 0; bad input ends it with a one-line error, a hint and exit status 2.
Options ParseCommandLine(int argc, char** argv);

// Ends the process as bad input on the command line of this mode does.
[[noreturn]] void UsageError(Mode mode, const std::string& text);
