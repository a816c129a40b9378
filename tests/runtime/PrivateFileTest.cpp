// Files for secrets: private to their owner whatever the umask and whatever mode an old file
// had, appended to, and devices and pipes left as they are.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "runtime/PrivateFile.h"
#include "support/SandboxHost.h"
#include "support/TempDir.h"

namespace {

// Sets the process's umask for the life of the object.
class ScopedUmask {
  public:
    explicit ScopedUmask(mode_t mask) : m_Old(umask(mask)) {}
    ~ScopedUmask() { umask(m_Old); }

  private:
    mode_t m_Old;
};

mode_t ModeOf(const std::string& path) {
    struct stat st {};
    EXPECT_EQ(stat(path.c_str(), &st), 0) << path;
    return st.st_mode & 07777;
}

void Append(const std::string& path, const std::string& text) {
    FilePtr file = OpenPrivateFile(path);
    ASSERT_TRUE(file) << path << ": " << strerror(errno);
    fputs(text.c_str(), file.get());
}

TEST(PrivateFile, RegularFilesEndUpPrivateAndKeepWhatTheyHeld) {
    struct Row {
        const char* what;
        mode_t umask;
        int oldMode;  // -1: no file yet
    };
    const Row rows[] = {
        {"new, usual umask", 022, -1},
        {"new, no umask", 0, -1},
        {"new, umask that takes the owner's write", 0277, -1},
        {"old, readable by all", 022, 0644},
        {"old, writable by all", 022, 0666},
        {"old, already private", 022, 0600},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        TempDir dir;
        const std::string path = dir.Path() + "/secrets";
        std::string before;
        if (row.oldMode >= 0) {
            before = "old line\n";
            dir.Write("secrets", before);
            ASSERT_EQ(chmod(path.c_str(), static_cast<mode_t>(row.oldMode)), 0);
        }
        ScopedUmask mask(row.umask);
        Append(path, "token\n");
        EXPECT_EQ(ModeOf(path), 0600u);
        EXPECT_EQ(ReadWholeFile(path), before + "token\n");
    }
}

TEST(PrivateFile, PipeKeepsItsMode) {
    TempDir dir;
    const std::string path = dir.Path() + "/pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0644), 0);
    ASSERT_EQ(chmod(path.c_str(), 0644), 0);
    // A reader first, so that opening for writing doesn't wait.
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    {
        FilePtr file = OpenPrivateFile(path);
        EXPECT_TRUE(file) << strerror(errno);
    }
    close(reader);
    EXPECT_EQ(ModeOf(path), 0644u);
}

TEST(PrivateFile, MissingDirectoryFailsWithItsReason) {
    TempDir dir;
    errno = 0;
    EXPECT_FALSE(OpenPrivateFile(dir.Path() + "/none/secrets"));
    EXPECT_EQ(errno, ENOENT);
}

}  // namespace
