#include "FuzzKit.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "runtime/Pipe.h"
#include "support/CaptureTraceServer.h"

void DropTrace() {
    static const bool bTracing = EnableTracing(5);
    (void)bTracing;
    Debug.Take();
}

namespace {

class PrivateFile {
  public:
    PrivateFile() {
        const char* dir = getenv("TMPDIR");
        m_sPath = std::string(dir && *dir ? dir : "/tmp") + "/tlr-fuzz-XXXXXX";
        const int fd = mkstemp(m_sPath.data());
        if (fd < 0)
            throw std::runtime_error("fuzz: can't make a temporary file in " + m_sPath);
        close(fd);
    }
    ~PrivateFile() { unlink(m_sPath.c_str()); }

    const std::string& Write(std::string_view bytes) const {
        FilePtr file(fopen(m_sPath.c_str(), "wb"));
        const bool ok = file && fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
        if (!ok || fclose(file.release()) != 0)
            abort();
        return m_sPath;
    }

  private:
    std::string m_sPath;
};

}  // namespace

const std::string& WriteInputFile(std::string_view bytes) {
    static const PrivateFile file;
    return file.Write(bytes);
}

std::pair<std::string_view, std::string_view> SplitAtSeparator(std::string_view text) {
    static constexpr std::string_view kLine = "----\n";
    for (size_t at = 0; at < text.size();) {
        if (text.compare(at, kLine.size(), kLine) == 0)
            return {text.substr(0, at), text.substr(at + kLine.size())};
        const size_t end = text.find('\n', at);
        if (end == std::string_view::npos)
            break;
        at = end + 1;
    }
    return {text, std::string_view()};
}
