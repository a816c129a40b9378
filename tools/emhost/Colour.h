#pragma once

#include <string>

#include "InventoryWords.h"

enum class ColourMode { kAuto, kAlways, kNever };

// Whether the text views colour their statuses: "always" and "never" say so; "auto" colours
// on a terminal only, and not when NO_COLOR is set to a text that is not empty.
bool ColourWanted(ColourMode mode, bool terminal, const char* noColor);

// Paints texts by their severity: failed red, warning yellow, OK green; or leaves them be.
class Palette {
  public:
    explicit Palette(bool enabled = false) : m_bEnabled(enabled) {}
    std::string Paint(const std::string& text, Severity severity) const;

  private:
    bool m_bEnabled;
};
