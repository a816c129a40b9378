#pragma once

#include <string>
#include <vector>

// The host that a test binary sees when it runs inside the sandbox (its ctest command goes
// through build/sandbox): every host path lies on the sandbox's own tmpfs.
namespace sandbox_host {

// True inside the sandbox: its state directory exists and /opt is a tmpfs.
bool Inside();

}  // namespace sandbox_host

std::string ReadWholeFile(const std::string& path);
