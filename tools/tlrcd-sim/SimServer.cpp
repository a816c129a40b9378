#include "SimServer.h"

#include <openssl/rand.h>

#include <chrono>
#include <thread>

#include "SimJwt.h"
#include "rest/RestConstants.h"
#include "runtime/PrivateFile.h"

namespace {

constexpr const char* kLoginPath = tlr_rest::kAuthEndpoint;
constexpr const char* kTreePath = tlr_rest::kSdtEndpoint;
constexpr const char* kRedfishPath = tlr_rest::kRedfishEndpoint;
constexpr const char kJson[] = "application/json";
constexpr size_t kTokenBytes = 16;
constexpr int64_t kScenarioTickMs = 20;  // how often closed steps are looked for
constexpr int kRebindTries = 50;
constexpr int64_t kRebindWaitMs = 100;

// When the request on this connection's thread arrived: set before routing, read by the log.
thread_local int64_t t_nReceivedUs = 0;

int64_t SteadyMicros() {
    return std::chrono::duration_cast<std::chrono::microseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// httplib adds the peer's address to the headers; they are not the client's.
bool IsPseudoHeader(const std::string& name) {
    return name == "REMOTE_ADDR" || name == "REMOTE_PORT" || name == "LOCAL_ADDR" ||
           name == "LOCAL_PORT";
}

void AnswerJson(httplib::Response& res, int status, const nlohmann::json& body) {
    res.status = status;
    res.set_content(body.dump(), kJson);
}

void AnswerError(httplib::Response& res, int status, const std::string& text) {
    AnswerJson(res, status, {{"error", text}});
}

// The login form, split as it was sent: the client doesn't URL-encode it, nor do we decode.
std::string FormField(const std::string& body, const std::string& name) {
    size_t start = 0;
    while (start <= body.size()) {
        size_t end = body.find('&', start);
        if (end == std::string::npos)
            end = body.size();
        const std::string pair = body.substr(start, end - start);
        const size_t equals = pair.find('=');
        if (equals != std::string::npos && pair.compare(0, equals, name) == 0 &&
            equals == name.size())
            return pair.substr(equals + 1);
        start = end + 1;
    }
    return std::string();
}

std::string BearerToken(const httplib::Request& req) {
    // The server trims header values, so a bare "Bearer " arrives as "Bearer".
    const std::string value = req.get_header_value("Authorization");
    const std::string prefix = "Bearer ";
    if (value.compare(0, prefix.size(), prefix) != 0)
        return std::string();
    return value.substr(prefix.size());
}

}  // namespace

const char* BuiltInTree() {
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<amEMTL Version="2">
  <System>
    <Multiplexer>
      <Status>Operational</Status>
      <StatusOverall>OK</StatusOverall>
      <StatusAdapters>OK</StatusAdapters>
      <StatusDisks>OK</StatusDisks>
      <StatusLogicalDrives>OK</StatusLogicalDrives>
    </Multiplexer>
    <Adapter Type="SAS" Nr="0" Name="Simulated RAID Adapter" NrOfProperties="6">
      <Status>Operational</Status>
      <Name>Simulated RAID Adapter</Name>
      <PCIBus>59</PCIBus>
      <PCIDevice>0</PCIDevice>
      <PCIFunction>0</PCIFunction>
      <PCISegment>0</PCISegment>
    </Adapter>
  </System>
</amEMTL>
)";
}

CSimServer::CSimServer(const CSimOptions& options, std::unique_ptr<CSimScenario> scenario)
    : m_Options(options), m_pScenario(std::move(scenario)) {}

CSimServer::~CSimServer() = default;

bool CSimServer::Open(const CTlsIdentity& identity, std::string& error) {
    if (!m_Options.sLogFile.empty()) {
        // Every request's headers and body, tokens among them: for the owner only.
        m_pLog = OpenPrivateFile(m_Options.sLogFile);
        if (!m_pLog) {
            error = "cannot open log file '" + m_Options.sLogFile + "'";
            return false;
        }
    }
    m_pServer = std::make_unique<httplib::SSLServer>(identity.cert.get(), identity.key.get());
    if (!m_pServer->is_valid()) {
        error = "cannot set up TLS with this certificate and key";
        return false;
    }
    m_pServer->Post(kLoginPath, [this](const httplib::Request& req, httplib::Response& res) {
        HandleLogin(req, res);
    });
    m_pServer->Get(kTreePath, [this](const httplib::Request& req, httplib::Response& res) {
        HandleTree(req, res);
    });
    m_pServer->Post(kRedfishPath, [this](const httplib::Request& req, httplib::Response& res) {
        HandleRedfish(req, res);
    });
    m_pServer->set_pre_routing_handler([](const httplib::Request&, httplib::Response&) {
        t_nReceivedUs = SteadyMicros();
        return httplib::Server::HandlerResponse::Unhandled;
    });
    m_pServer->set_exception_handler(
        [](const httplib::Request&, httplib::Response& res, std::exception_ptr failure) {
            std::string text = "internal error";
            try {
                std::rethrow_exception(failure);
            } catch (const std::exception& e) {
                text += std::string(": ") + e.what();
            } catch (...) {
            }
            AnswerError(res, 500, text);
        });
    m_pServer->set_error_handler([](const httplib::Request&, httplib::Response& res) {
        if (res.body.empty())
            AnswerError(res, res.status, "no such endpoint or method");
    });
    // Address reuse for quick restarts, but no shared port: a second simulator on the same
    // address must fail rather than take half of the connections.
    m_pServer->set_socket_options([](socket_t sock) {
        int yes = 1;
        setsockopt(sock, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    m_pServer->set_logger([this](const httplib::Request& req, const httplib::Response& res) {
        LogRequest(req, res);
    });

    if (m_Options.nPort == 0) {
        m_nPort = m_pServer->bind_to_any_port(m_Options.sHost);
    } else if (m_pServer->bind_to_port(m_Options.sHost, m_Options.nPort)) {
        m_nPort = m_Options.nPort;
    }
    if (m_nPort <= 0) {
        error = "cannot listen on " + m_Options.sHost + ":" + std::to_string(m_Options.nPort);
        return false;
    }
    m_Start = std::chrono::steady_clock::now();
    return true;
}

double CSimServer::ScenarioTime() {
    const double dElapsed =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - m_Start).count();
    const size_t nStep = m_pScenario->StepIndexAt(dElapsed);
    if (m_nToldStep.exchange(nStep) != nStep) {
        const CSimScenario::Step& step = m_pScenario->Steps()[nStep];
        fprintf(stderr, "tlrcd-sim: scenario step %zu of %zu (from %g s)%s%s\n", nStep + 1,
                m_pScenario->Steps().size(), step.dAtSec, step.sNote.empty() ? "" : ": ",
                step.sNote.c_str());
    }
    return dElapsed;
}

bool CSimServer::Run() {
    if (!m_pScenario || !m_pScenario->HasClosedSteps())
        return m_pServer->listen_after_bind();
    std::thread closer([this] { CloseInClosedSteps(); });
    bool served = true;
    for (;;) {
        served = m_pServer->listen_after_bind();
        if (!served || !WaitUntilOpen())
            break;
        // Listening again on the same address; the old socket may linger a moment.
        bool bound = false;
        for (int tries = 0; !bound && tries < kRebindTries && !IsStopping(); ++tries) {
            bound = m_pServer->bind_to_port(m_Options.sHost, m_nPort);
            if (!bound)
                WaitMs(kRebindWaitMs);
        }
        if (!bound) {
            served = IsStopping();
            if (!served)
                fprintf(stderr, "tlrcd-sim: cannot listen again on port %d\n", m_nPort);
            break;
        }
    }
    {
        std::lock_guard<std::mutex> lock(m_StopLock);
        m_bRunDone = true;
    }
    m_StopWake.notify_all();
    closer.join();
    return served;
}

bool CSimServer::IsStopping() {
    std::lock_guard<std::mutex> lock(m_StopLock);
    return m_bStopping;
}

bool CSimServer::WaitUntilOpen() {
    std::unique_lock<std::mutex> lock(m_StopLock);
    while (!m_bStopping) {
        lock.unlock();
        const bool closed = m_pScenario->ClosedAt(ScenarioTime());
        lock.lock();
        if (!closed)
            return true;
        m_StopWake.wait_for(lock, std::chrono::milliseconds(kScenarioTickMs),
                            [this] { return m_bStopping; });
    }
    return false;
}

void CSimServer::CloseInClosedSteps() {
    std::unique_lock<std::mutex> lock(m_StopLock);
    while (!m_bStopping && !m_bRunDone) {
        lock.unlock();
        // Repeated while the step holds: a stop that comes before the accept loop runs is
        // lost by the server.
        if (m_pScenario->ClosedAt(ScenarioTime()) && m_pServer->is_running())
            m_pServer->stop();
        lock.lock();
        m_StopWake.wait_for(lock, std::chrono::milliseconds(kScenarioTickMs),
                            [this] { return m_bStopping || m_bRunDone; });
    }
}

void CSimServer::Stop() {
    {
        std::lock_guard<std::mutex> lock(m_StopLock);
        m_bStopping = true;
    }
    m_StopWake.notify_all();
    if (m_pServer)
        m_pServer->stop();
}

void CSimServer::WaitMs(int64_t ms) {
    std::unique_lock<std::mutex> lock(m_StopLock);
    m_StopWake.wait_for(lock, std::chrono::milliseconds(ms), [this] { return m_bStopping; });
}

bool CSimServer::ApplyFaults(const char* endpoint, CEndpointFault& fault, httplib::Response& res) {
    std::string error;
    if (!ReadEndpointFault(m_Options.sControlFile, endpoint, fault, error)) {
        fprintf(stderr, "tlrcd-sim: %s\n", error.c_str());
        AnswerError(res, 500, "control file: " + error);
        return true;
    }
    if (m_pScenario && fault.IsEmpty())
        m_pScenario->FaultAt(ScenarioTime(), endpoint, fault);
    WaitMs(fault.nDelayMs);
    if (fault.ReplacesAnswer()) {
        res.status = fault.nStatus != 0 ? fault.nStatus : 200;
        if (fault.sBody) {
            res.set_content(*fault.sBody, kJson);
        } else {
            AnswerError(res, res.status, "injected status " + std::to_string(res.status));
        }
        return true;
    }
    if (fault.bRefuse) {
        AnswerError(res, 401, "refused by the control file");
        return true;
    }
    return false;
}

std::string CSimServer::IssueToken() {
    unsigned char bytes[kTokenBytes];
    RAND_bytes(bytes, sizeof bytes);
    static const char kHex[] = "0123456789abcdef";
    std::string token;
    for (unsigned char byte : bytes) {
        token += kHex[byte >> 4];
        token += kHex[byte & 0xF];
    }
    std::lock_guard<std::mutex> lock(m_TokenLock);
    m_IssuedTokens.insert(token);
    return token;
}

bool CSimServer::CheckBearer(const httplib::Request& req, httplib::Response& res) {
    const std::string token = BearerToken(req);
    bool known = false;
    if (!token.empty()) {
        std::lock_guard<std::mutex> lock(m_TokenLock);
        known = m_IssuedTokens.count(token) != 0;
    }
    if (!known)
        AnswerError(res, 401, token.empty() ? "no bearer token" : "unknown bearer token");
    return known;
}

void CSimServer::HandleLogin(const httplib::Request& req, httplib::Response& res) {
    CEndpointFault fault;
    if (ApplyFaults("authJwt", fault, res))
        return;
    const std::string token = FormField(req.body, "jwt");
    if (token.empty()) {
        AnswerError(res, 401, "no jwt in the form");
        return;
    }
    if (FormField(req.body, "client_id") != m_Options.sClientId) {
        AnswerError(res, 401, "unknown client_id");
        return;
    }
    const CJwtCheck check = CheckJwt(token, tlr_rest::kJwtKey, tlr_rest::kJwtIssuer);
    if (!check.bValid) {
        AnswerError(res, 401, check.sReason);
        return;
    }
    AnswerJson(res, 200, {{"access_token", IssueToken()}});
}

void CSimServer::HandleTree(const httplib::Request& req, httplib::Response& res) {
    CEndpointFault fault;
    if (ApplyFaults("sdt", fault, res) || !CheckBearer(req, res))
        return;
    if (fault.sdtValue) {
        AnswerJson(res, 200, {{"SDT", *fault.sdtValue}});
        return;
    }
    std::string tree = BuiltInTree();
    if (m_pScenario) {
        tree = m_pScenario->TreeAt(ScenarioTime());
    } else if (!m_Options.sTreeFile.empty() && !ReadWholeFile(m_Options.sTreeFile, tree)) {
        AnswerError(res, 500, "cannot read tree file '" + m_Options.sTreeFile + "'");
        return;
    }
    AnswerJson(res, 200, {{"SDT", tree}});
}

void CSimServer::HandleRedfish(const httplib::Request& req, httplib::Response& res) {
    CEndpointFault fault;
    if (ApplyFaults("redfishOp", fault, res) || !CheckBearer(req, res))
        return;
    if (!m_Options.sRedfishFile.empty()) {
        std::string text;
        if (!ReadWholeFile(m_Options.sRedfishFile, text)) {
            AnswerError(res, 500, "cannot read Redfish file '" + m_Options.sRedfishFile + "'");
            return;
        }
        const nlohmann::json map = nlohmann::json::parse(text, nullptr, false);
        if (map.is_discarded() || !map.is_object()) {
            AnswerError(res, 500, "Redfish file is not a JSON object");
            return;
        }
        const auto reply = map.find(req.body);
        if (reply != map.end()) {
            res.status = 200;
            res.set_content(reply->is_string() ? reply->get<std::string>() : reply->dump(), kJson);
            return;
        }
    }
    res.status = 200;
    res.set_content(req.body, kJson);
}

void CSimServer::LogRequest(const httplib::Request& req, const httplib::Response& res) {
    if (!m_pLog)
        return;
    nlohmann::json line;
    line["method"] = req.method;
    line["path"] = req.path;
    nlohmann::json headers = nlohmann::json::array();
    for (const auto& [name, value] : req.headers) {
        if (!IsPseudoHeader(name))
            headers.push_back(name + ": " + value);
    }
    line["headers"] = headers;
    line["body"] = req.body;
    line["jwt"] = nullptr;
    if (req.path == kLoginPath) {
        const std::string token = FormField(req.body, "jwt");
        const CJwtCheck check = CheckJwt(token, tlr_rest::kJwtKey, tlr_rest::kJwtIssuer);
        line["jwt"] = {{"token", token},
                       {"header", check.header},
                       {"payload", check.payload},
                       {"valid", check.bValid},
                       {"reason", check.sReason}};
    }
    line["bearer"] = req.has_header("Authorization") ? nlohmann::json(BearerToken(req))
                                                     : nlohmann::json(nullptr);
    line["status"] = res.status;
    line["reply"] = res.body;
    // On one monotonic clock, so that a test sees which requests overlapped.
    line["received_us"] = t_nReceivedUs;
    line["answered_us"] = SteadyMicros();
    // Bytes that are not UTF-8 are replaced rather than refused.
    const std::string text =
        line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    std::lock_guard<std::mutex> lock(m_LogLock);
    fputs(text.c_str(), m_pLog.get());
    fflush(m_pLog.get());
}
