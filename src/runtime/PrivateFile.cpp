#include "runtime/PrivateFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace {

constexpr mode_t kPrivateMode = S_IRUSR | S_IWUSR;
constexpr mode_t kPermissionBits = 07777;

// A descriptor closed when it goes, unless it was handed on.
class OwnedFd {
  public:
    explicit OwnedFd(int fd) : m_nFd(fd) {}
    ~OwnedFd() {
        if (m_nFd >= 0) {
            const int saved = errno;
            close(m_nFd);
            errno = saved;
        }
    }
    OwnedFd(const OwnedFd&) = delete;
    OwnedFd& operator=(const OwnedFd&) = delete;

    int Get() const { return m_nFd; }
    int Release() {
        const int fd = m_nFd;
        m_nFd = -1;
        return fd;
    }

  private:
    int m_nFd;
};

}  // namespace

FilePtr OpenPrivateFile(const std::string& path) {
    OwnedFd fd(open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, kPrivateMode));
    if (fd.Get() < 0)
        return FilePtr();
    struct stat st {};
    if (fstat(fd.Get(), &st) != 0)
        return FilePtr();
    // The umask may have taken bits off a new file, and an old file may be open to others.
    if (S_ISREG(st.st_mode) && (st.st_mode & kPermissionBits) != kPrivateMode &&
        fchmod(fd.Get(), kPrivateMode) != 0)
        return FilePtr();
    FilePtr file(fdopen(fd.Get(), "a"));
    if (file)
        fd.Release();
    return file;
}
