#pragma once

#include <cstdio>
#include <memory>

// A pipe of popen, closed by pclose when it goes; its exit status is not looked at.
struct PipeCloser {
    void operator()(FILE* pipe) const { pclose(pipe); }
};
using PipePtr = std::unique_ptr<FILE, PipeCloser>;
