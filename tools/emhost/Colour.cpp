#include "Colour.h"

bool ColourWanted(ColourMode mode, bool terminal, const char* noColor) {
    switch (mode) {
        case ColourMode::kAlways:
            return true;
        case ColourMode::kNever:
            return false;
        default:
            return terminal && !(noColor && *noColor);
    }
}

std::string Palette::Paint(const std::string& text, Severity severity) const {
    static const char kReset[] = "\033[0m";
    const char* start = nullptr;
    switch (severity) {
        case Severity::kFailed:
            start = "\033[31m";
            break;
        case Severity::kWarning:
            start = "\033[33m";
            break;
        case Severity::kOk:
            start = "\033[32m";
            break;
        default:
            break;
    }
    return m_bEnabled && start ? start + text + kReset : text;
}
