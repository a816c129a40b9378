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
    void WriteLine(const std::string& json);
    void Flush();

  private:
    std::mutex m_Mutex;
    FILE* m_pOut;
};
