#pragma once

#include <httplib.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "SimControl.h"
#include "SimFiles.h"
#include "SimOptions.h"
#include "SimScenario.h"
#include "TlsIdentity.h"
#include "runtime/Pipe.h"

// The simulated REST daemon: login, storage tree and Redfish pass-through over HTTPS.
class CSimServer {
  public:
    // A scenario, if given, counts its time from Open.
    explicit CSimServer(const CSimOptions& options, std::unique_ptr<CSimScenario> scenario = {});
    ~CSimServer();

    // Opens the log, sets up TLS with identity and binds the address; false with a message.
    bool Open(const CTlsIdentity& identity, std::string& error);
    // The port bound, also when the system chose it.
    int Port() const { return m_nPort; }
    // Serves until Stop, but not in the closed steps of a scenario; false if serving failed.
    bool Run();
    // Ends Run and cuts injected delays short; callable from any thread.
    void Stop();

  private:
    void HandleLogin(const httplib::Request& req, httplib::Response& res);
    void HandleTree(const httplib::Request& req, httplib::Response& res);
    void HandleRedfish(const httplib::Request& req, httplib::Response& res);

    // Reads the endpoint's faults, waits its delay and answers what replaces its own answer.
    // True when the request has been answered here.
    bool ApplyFaults(const char* endpoint, CEndpointFault& fault, httplib::Response& res);
    // True for "Authorization: Bearer <a token issued here>"; answers 401 otherwise.
    bool CheckBearer(const httplib::Request& req, httplib::Response& res);
    std::string IssueToken();
    void WaitMs(int64_t ms);
    void LogRequest(const httplib::Request& req, const httplib::Response& res);
    // Seconds since Open; tells the scenario's steps on stderr as requests first meet them.
    double ScenarioTime();
    // Stops listening whenever a closed step of the scenario holds, until Run ends.
    void CloseInClosedSteps();
    // Waits until no closed step holds, or Stop; false on Stop.
    bool WaitUntilOpen();
    bool IsStopping();

    CSimOptions m_Options;
    std::unique_ptr<const CSimScenario> m_pScenario;
    std::chrono::steady_clock::time_point m_Start;
    std::atomic<size_t> m_nToldStep{SIZE_MAX};
    std::unique_ptr<httplib::SSLServer> m_pServer;
    int m_nPort = 0;

    std::mutex m_TokenLock;
    std::set<std::string> m_IssuedTokens;

    std::mutex m_LogLock;
    FilePtr m_pLog;

    std::mutex m_StopLock;
    std::condition_variable m_StopWake;
    bool m_bStopping = false;
    bool m_bRunDone = false;
};

// The tree answered when no --tree file is given.
const char* BuiltInTree();
