#include "MetricsFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "runtime/Pipe.h"

namespace {

bool Fail(const std::string& what, const char* temp, int failure, std::string& error) {
    if (temp)
        unlink(temp);
    error = what + ": " + strerror(failure);
    return false;
}

}  // namespace

bool WriteFileWhole(const std::string& path, const std::string& text, std::string& error) {
    const std::string pattern = path + ".tmp-XXXXXX";
    std::vector<char> temp(pattern.c_str(), pattern.c_str() + pattern.size() + 1);
    const int fd = mkstemp(temp.data());
    if (fd < 0)
        return Fail("cannot create a file beside " + path, nullptr, errno, error);
    FilePtr file(fdopen(fd, "w"));
    if (!file) {
        const int failure = errno;
        close(fd);
        return Fail("cannot write " + std::string(temp.data()), temp.data(), failure, error);
    }
    // The descriptor of mkstemp is private to its owner; the metrics are for every reader.
    if (fchmod(fd, 0644) != 0 || fwrite(text.data(), 1, text.size(), file.get()) != text.size() ||
        fclose(file.release()) != 0) {
        return Fail("cannot write " + std::string(temp.data()), temp.data(), errno, error);
    }
    if (rename(temp.data(), path.c_str()) != 0)
        return Fail("cannot rename a new file over " + path, temp.data(), errno, error);
    return true;
}
