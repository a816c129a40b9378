#pragma once

#include <chrono>
#include <functional>

// Ctrl-C and SIGTERM end the loops of watch and metrics: the handlers only set a flag, and
// the loop ends at its next wait, so that the module is stopped and deleted as usual.
void CatchInterrupts();
bool Interrupted();

// Waits until the time comes; false when an interrupt came, the deadline passed, or stop
// said so, first.
bool WaitUntil(std::chrono::steady_clock::time_point when,
               std::chrono::steady_clock::time_point deadline,
               const std::function<bool()>& stop = nullptr);
