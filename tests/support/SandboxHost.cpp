#include "support/SandboxHost.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "rest/DaemonHost.h"
#include "rest/RestConstants.h"
#include "support/Process.h"

namespace {

constexpr char kStateDir[] = "/run/tlr-sandbox";
constexpr const char* kPidFile = raid_host::kPidFiles[0];
constexpr uint16_t kDaemonPort = tlr_rest::kDaemonPort;
constexpr int kReadyTries = 200;  // of 25 ms
constexpr long kTmpfsMagic = 0x01021994;

// The first install mark under /opt, where the sandbox's tmpfs lets a test write.
std::string InstallMark() {
    for (const char* path : raid_host::kInstallMarks) {
        if (std::string(path).rfind("/opt/", 0) == 0)
            return path;
    }
    throw std::logic_error("no install mark under /opt");
}

void Require() {
    if (!sandbox_host::Inside()) {
        throw std::runtime_error("this test changes host paths and must run inside the sandbox");
    }
}

void WriteFile(const std::string& path, const std::string& content) {
    Require();
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

bool PortAccepts() {
    int fd = socket(AF_INET, SOCK_STREAM, 0);
    if (fd < 0)
        return false;
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(kDaemonPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bool ok = connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0;
    close(fd);
    return ok;
}

}  // namespace

namespace sandbox_host {

bool Inside() {
    struct stat st;
    struct statfs fs;
    return stat(kStateDir, &st) == 0 && statfs("/opt", &fs) == 0 && fs.f_type == kTmpfsMagic;
}

void SetInstalled(bool installed) {
    if (installed) {
        WriteFile(InstallMark(), "");
    } else {
        Require();
        std::filesystem::remove(InstallMark());
    }
}

void SetRunning(bool running) {
    if (running) {
        WriteFile(kPidFile, "2101\n");
    } else {
        Require();
        std::filesystem::remove(kPidFile);
    }
}

void SetLsof(const std::string& text) {
    WriteFile(std::string(kStateDir) + "/lsof.out", text);
}

}  // namespace sandbox_host

SimProcess::SimProcess(const std::string& treePath, const std::string& controlPath,
                       const std::string& logPath)
    : m_sLog(logPath) {
    Require();
    std::vector<std::string> argv = {BuildPath("tlrcd-sim"), "--tree", treePath};
    if (!controlPath.empty())
        argv.insert(argv.end(), {"--control", controlPath});
    if (!logPath.empty())
        argv.insert(argv.end(), {"--log", logPath});
    m_Pid = fork();
    if (m_Pid == 0) {
        std::vector<char*> args;
        for (std::string& a : argv)
            args.push_back(a.data());
        args.push_back(nullptr);
        freopen("/dev/null", "w", stderr);
        execv(args[0], args.data());
        _exit(127);
    }
    for (int i = 0; i < kReadyTries && m_Pid > 0; ++i) {
        if (PortAccepts()) {
            m_bReady = true;
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(25));
    }
}

SimProcess::~SimProcess() {
    if (m_Pid <= 0)
        return;
    kill(m_Pid, SIGTERM);
    int status = 0;
    waitpid(m_Pid, &status, 0);
}

size_t SimProcess::Requests(const std::string& pathPart) const {
    size_t count = 0;
    for (const std::string& line : Lines(ReadWholeFile(m_sLog))) {
        if (line.find("\"path\":\"") != std::string::npos &&
            line.find(pathPart) != std::string::npos) {
            ++count;
        }
    }
    return count;
}

void ReplaceFile(const std::string& path, const std::string& content) {
    std::string temporary = path + ".new";
    std::ofstream(temporary, std::ios::binary | std::ios::trunc) << content;
    std::rename(temporary.c_str(), path.c_str());
}

std::string ReadWholeFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}
