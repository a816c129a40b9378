#pragma once

#include <cstdio>
#include <memory>

// Owners of stdio streams: the one home of their closers.

// A file of fopen, closed by fclose when it goes. To see whether the close succeeded
// (buffered writes can fail there), call fclose(file.release()) instead.
struct FileCloser {
    void operator()(FILE* file) const { fclose(file); }
};
using FilePtr = std::unique_ptr<FILE, FileCloser>;

// A pipe of popen, closed by pclose when it goes; its exit status is not looked at. To read
// it, call pclose(pipe.release()) instead.
struct PipeCloser {
    void operator()(FILE* pipe) const { pclose(pipe); }
};
using PipePtr = std::unique_ptr<FILE, PipeCloser>;
