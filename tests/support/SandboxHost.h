#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

// The host that a test binary sees when it runs inside the sandbox (its ctest command goes
// through build/sandbox). Tests change it freely: every path here lies on the sandbox's
// own tmpfs, and the daemon's port on its private loopback.
namespace sandbox_host {

// True inside the sandbox: its state directory exists and /opt is a tmpfs.
bool Inside();
// The RAID manager's install mark and the pid file of its service.
void SetInstalled(bool installed);
void SetRunning(bool running);
// What the sandbox's lsof prints.
void SetLsof(const std::string& text);

}  // namespace sandbox_host

// The REST daemon simulator, started for one test on the daemon's address and stopped with
// the object. The tree file and the control file are read at every request.
class SimProcess {
  public:
    explicit SimProcess(const std::string& treePath, const std::string& controlPath = "",
                        const std::string& logPath = "");
    ~SimProcess();
    SimProcess(const SimProcess&) = delete;
    SimProcess& operator=(const SimProcess&) = delete;

    bool Ready() const { return m_bReady; }
    // Requests that reached the simulator so far whose path contains this text.
    size_t Requests(const std::string& pathPart) const;

  private:
    pid_t m_Pid = -1;
    bool m_bReady = false;
    std::string m_sLog;
};

// Writes a file whole under a temporary name and renames it over the old one, so that a
// reader never sees half of it.
void ReplaceFile(const std::string& path, const std::string& content);
std::string ReadWholeFile(const std::string& path);
