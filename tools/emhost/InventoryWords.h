#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

// How bad a status is: it chooses the colour of the text views and the health bits of the
// exit status. kNone for a value that says nothing about health (a type, a location, an
// unknown state).
enum class Severity { kNone, kOk, kWarning, kFailed };

// What the numbers of one kind of answer mean, in words, and how bad each is.
class Vocabulary {
  public:
    struct Word {
        uint32_t value;
        const char* name;
        Severity severity;
    };
    Vocabulary(std::initializer_list<Word> words) : m_Words(words) {}

    // "unknown" and kNone for a value that is not in it.
    const char* Name(uint32_t value) const;
    Severity SeverityOf(uint32_t value) const;
    // The number with its name behind it: "11 failed".
    std::string Show(uint32_t value) const;
    // Every value with its name: "0 OK, 1 warning, 2 failed".
    std::string Legend() const;

  private:
    const Word* Find(uint32_t value) const;
    std::vector<Word> m_Words;
};

// The meanings of the module's answers.
namespace inventory_words {

const Vocabulary& AdapterType();
const Vocabulary& AdapterStatus();
const Vocabulary& DriveStatus();
const Vocabulary& DriveType();
const Vocabulary& SmartFlag();
const Vocabulary& LogicalDriveStatus();
const Vocabulary& BatteryStatus();
const Vocabulary& LearnCycle();
// 1, 2, 3 as OK, warning, failed; 0 as unknown.
const Vocabulary& ComponentStatus();

// A cabinet's objects: each kind has a code set of its own.
const Vocabulary& FanStatus();
const Vocabulary& FanLocation();
const Vocabulary& TempSensorStatus();
const Vocabulary& TempSensorLocation();
const Vocabulary& PowerSupplyStatus();
const Vocabulary& Redundancy();

}  // namespace inventory_words
