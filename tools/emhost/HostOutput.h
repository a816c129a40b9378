#pragma once

#include <cstdio>
#include <mutex>
#include <string>

// The protocol's output: whole lines under a lock, flushed at once, so that the
// asynchronous lines of other threads never cut into a result line.
class HostOutput {
  public:
    // Null: the lines are dropped.
    explicit HostOutput(FILE* out) : m_pOut(out) {}
    // Writes one JSON line, with every byte that is not part of valid UTF-8 escaped.
    void WriteLine(const std::string& json);
    void Flush();

  private:
    std::mutex m_Mutex;
    FILE* m_pOut;
};

// The JSON text with each byte that is not part of a valid UTF-8 sequence written as the
// escape \udcXX (its value in lower-case hex), which a reader can turn back into the same
// byte. Such bytes can only stand inside strings, where the escape is valid JSON.
std::string EscapeInvalidUtf8(const std::string& json);
