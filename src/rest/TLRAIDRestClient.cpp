#include "rest/TLRAIDRestClient.h"

#include <curl/curl.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>

#include "rest/JsonReply.h"
#include "runtime/DebugClient.h"
#include "runtime/Pipe.h"

namespace tlr_rest {

int64_t SystemNowNanos() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

}  // namespace tlr_rest

namespace {

constexpr size_t kLsofLineSize = 256;

// Every public exchange ends with a global cleanup, without a matching init at its start:
// libcurl counts the calls, and the next easy handle brings the library up again. The
// platform's libcurl does both under its own lock, and its TLS back end has nothing to tear
// down, so one exchange's cleanup leaves another thread's transfer running.
struct CurlGlobalCleanupAtEnd {
    ~CurlGlobalCleanupAtEnd() { curl_global_cleanup(); }
};

}  // namespace

TLRAIDRestClient::TLRAIDRestClient() : TLRAIDRestClient(TLRAIDRestClientSettings()) {}

TLRAIDRestClient::TLRAIDRestClient(const TLRAIDRestClientSettings& settings)
    : m_nTokenLifetime(settings.nTokenLifetime),
      m_sClientId(tlr_rest::kClientId),
      m_sAuthPath(settings.sAuthPath),
      m_sSdtPath(settings.sSdtPath),
      m_sRedfishPath(settings.sRedfishPath),
      m_sLsofCommand(settings.sLsofCommand),
      m_pNow(settings.pNow ? settings.pNow : tlr_rest::SystemNowNanos) {
    curl_global_init(CURL_GLOBAL_ALL);
}

TLRAIDRestClient::~TLRAIDRestClient() {
    curl_global_cleanup();
}

bool TLRAIDRestClient::FindDaemonAndLogIn(std::string& host, std::string& accessToken) {
    if (!GetMainServerIpAddress(host) || host.empty())
        return false;
    // A failed exchange leaves an empty access token; the request goes out all the same.
    accessToken = SetAuthToken(tlr_rest::kScheme + host + m_sAuthPath);
    return true;
}

bool TLRAIDRestClient::GetXmlSdt(std::string& xml, uint32_t timeoutSec) {
    CurlGlobalCleanupAtEnd cleanup;
    TLR_TRACE(5, "\nTLRAIDRestClient::GetXmlSdt");

    std::string host;
    std::string accessToken;
    if (!FindDaemonAndLogIn(host, accessToken))
        return false;
    const std::string sdtUrl = tlr_rest::kScheme + host + m_sSdtPath;

    std::string reply;
    if (SendGet(sdtUrl, accessToken, reply, timeoutSec) != 0) {
        TLR_TRACE(2, "\nTLRAIDRestClient::GetXmlSdt: REST request failed");
        return false;
    }
    TLR_TRACE(5, "\nTLRAIDRestClient::GetXmlSdt: reply received");

    rapidjson::Document doc;
    tlr_rest::ParseReply(doc, reply);
    const rapidjson::Value* sdt = tlr_rest::FindTopLevelMember(doc, "SDT");
    if (!sdt) {
        TLR_TRACE(2, "\nTLRAIDRestClient::GetXmlSdt: SDT not found in JSON response");
        return false;
    }
    TLR_TRACE(5, "\nTLRAIDRestClient    : SDT fetched successfully, size %d",
              static_cast<int>(reply.size()));
    if (!sdt->IsString()) {
        TLR_TRACE(2, "\nTLRAIDRestClient::GetXmlSdt: SDT de-jsonization failed");
        return false;
    }
    xml.assign(sdt->GetString(), sdt->GetStringLength());
    TLR_TRACE(4, "\nTLRAIDRestClient    : SDT de-jsonized successfully, size: %d",
              static_cast<int>(xml.size()));
    return true;
}

bool TLRAIDRestClient::SendRedfishRequest(const std::string& body, std::string& reply,
                                          uint32_t timeoutSec) {
    CurlGlobalCleanupAtEnd cleanup;
    // Both exchanges with the daemon open under the tree request's name: a trace shows
    // each daemon session's start by the same line.
    TLR_TRACE(5, "\nTLRAIDRestClient::GetXmlSdt");

    std::string host;
    std::string accessToken;
    if (!FindDaemonAndLogIn(host, accessToken))
        return false;
    const std::string redfishUrl = tlr_rest::kScheme + host + m_sRedfishPath;
    TLR_TRACE(5, "\nTLRAIDRestClient::SendRedfishRequest: sending Redfish request");
    if (SendPost(redfishUrl, accessToken, body, reply, timeoutSec) != 0) {
        TLR_TRACE(2, "\nTLRAIDRestClient::SendRedfishRequest: REST request failed");
        return false;
    }
    return true;
}

bool TLRAIDRestClient::GetMainServerIpAddress(std::string& host) {
    PipePtr pipe(popen(m_sLsofCommand.c_str(), "re"));
    if (!pipe) {
        TLR_TRACE(2, "\nTLRAIDRestClient::GetMainServerIpAddress: failed to query hostname");
        return false;
    }
    // Only the first line counts; closing the pipe drops the rest.
    char line[kLsofLineSize];
    if (!fgets(line, sizeof line, pipe.get())) {
        TLR_TRACE(2, "\nTLRAIDRestClient::GetMainServerIpAddress: failed to read output");
        return false;
    }
    // The last character goes, whatever it is: normally the newline.
    const size_t length = strlen(line);
    host.assign(line, length > 0 ? length - 1 : 0);
    if (host.empty()) {
        TLR_TRACE(2, "\nTLRAIDRestClient::GetMainServerIpAddress : could not read hostname");
        return false;
    }
    TLR_TRACE(5, "\nTLRAIDRestClient::GetMainServerIpAddress : hostname read: %s", host.c_str());
    return true;
}
