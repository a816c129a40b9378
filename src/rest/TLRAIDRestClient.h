#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "rest/RestConstants.h"

struct curl_slist;
struct CurlSlistFree;  // rest/CurlHandles.h

// What a client is built with. The defaults are the daemon's fixed values; tests give others.
struct TLRAIDRestClientSettings {
    std::string sLsofCommand = tlr_rest::kLsofCommand;
    std::string sAuthPath = tlr_rest::PortAndPath(tlr_rest::kAuthEndpoint);
    std::string sSdtPath = tlr_rest::PortAndPath(tlr_rest::kSdtEndpoint);
    std::string sRedfishPath = tlr_rest::PortAndPath(tlr_rest::kRedfishEndpoint);
    int64_t nTokenLifetime = tlr_rest::kTokenLifetime;
    tlr_rest::NowFunction pNow = tlr_rest::SystemNowNanos;
};

// The module's road to the RAID manager's REST daemon. Each public operation is one whole
// exchange: find the daemon through lsof, trade a JWT for an access token, send one request.
//
// Several threads may use one client at once. An exchange keeps its JWT copy, access token,
// handles and buffers on its own stack; the held JWT is the only state that outlives a call,
// and it is read and renewed under m_JwtLock, which is never held across the network.
class TLRAIDRestClient {
  public:
    TLRAIDRestClient();
    explicit TLRAIDRestClient(const TLRAIDRestClientSettings& settings);
    ~TLRAIDRestClient();
    TLRAIDRestClient(const TLRAIDRestClient&) = delete;
    TLRAIDRestClient& operator=(const TLRAIDRestClient&) = delete;

    // True when xml now holds the storage tree; false with xml untouched otherwise.
    // A time-out of 0 seconds sets none.
    bool GetXmlSdt(std::string& xml, uint32_t timeoutSec);
    // Posts a Redfish request; true unless the POST itself failed or no host was found.
    bool SendRedfishRequest(const std::string& body, std::string& reply, uint32_t timeoutSec);

  protected:
    // Finds the daemon and trades the JWT for an access token, which goes to accessToken
    // (empty when the login failed); false when no host was found.
    bool FindDaemonAndLogIn(std::string& host, std::string& accessToken);
    // True when the lsof pipeline named a non-empty host.
    bool GetMainServerIpAddress(std::string& host);
    // Trades the JWT for an access token at url: the token, or empty.
    std::string SetAuthToken(const std::string& url);
    // The member "access_token" of a reply, or the empty string.
    std::string GetAccessToken(const std::string& reply);
    // The JWT for one login: the held one while it has not expired, else a new one that
    // replaces it. Checked and renewed in one step, so that one expiry makes one new token.
    std::string JwtForLogin();
    // Makes and signs a new JWT, stored in m_sJwt.
    std::string CreateJwt();
    // 1 while m_sJwt holds a token that has not expired, else 0.
    unsigned IsJwtValid();
    // The held JWT as it stands.
    std::string HeldJwt();
    // A new header list with the JSON content type and the bearer token (CurlSlistPtr).
    std::unique_ptr<curl_slist, CurlSlistFree> AddAuthBearerHeader(const std::string& accessToken);
    // One GET or POST with the bearer header; libcurl's code.
    int32_t SendGet(const std::string& url, const std::string& accessToken, std::string& reply,
                    uint32_t timeoutSec);
    int32_t SendPost(const std::string& url, const std::string& accessToken,
                     const std::string& body, std::string& reply, uint32_t timeoutSec);
    // What a GET and a POST set alike on an easy handle (CURL*): the URL, no certificate
    // checks, the headers, the reply's buffer, and the time-out unless it is 0.
    static void SetUpExchange(void* curl, const std::string& url, curl_slist* headers,
                              std::string& reply, uint32_t timeoutSec);
    // Appends what libcurl received to the string behind userp.
    static size_t CurlWriteCallback(char* data, size_t size, size_t count, void* userp);

    // A signed token made now with this client's lifetime.
    std::string MakeJwt() const;
    // 1 while token has not expired, else 0; throws for a token that isn't ours.
    unsigned JwtHolds(const std::string& token) const;

    // Guards m_sJwt, the only field that changes after construction.
    std::mutex m_JwtLock;
    std::string m_sJwt;
    // Set once by the constructor and only read afterwards.
    const int64_t m_nTokenLifetime;
    const std::string m_sClientId;
    const std::string m_sAuthPath;
    const std::string m_sSdtPath;
    const std::string m_sRedfishPath;
    const std::string m_sLsofCommand;
    const tlr_rest::NowFunction m_pNow;
};
