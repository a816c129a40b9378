#pragma once

#include <mutex>
#include <string>

#include "Colour.h"
#include "WatchView.h"

class CommandRecord;

// What watch prints, whole lines from any thread: for a person, lines with the local time in
// front; with --json, one JSON line per change, per event and per note, with the time in
// UTC, and nothing else on standard output.
class WatchReport {
  public:
    WatchReport(bool json, const Palette& palette) : m_bJson(json), m_Palette(palette) {}

    // A line for the person only: "first look:", "no change".
    void Plain(const std::string& text);
    // Something that happened to the module or the client, told in words in both forms.
    void Note(const std::string& text);
    // A value at the first look.
    void Initial(uint32_t client, const Watched& value, const std::string& indent);
    // A value that is new, gone or changed since the look before.
    void Change(uint32_t client, const ViewChange& change, const std::string& indent);
    // An event record that the module sent.
    void Event(const CommandRecord& record);

  private:
    void Line(const std::string& text);
    void JsonChange(uint32_t client, const Watched* old, const Watched* now);

    bool m_bJson;
    Palette m_Palette;
    std::mutex m_Mutex;
};
