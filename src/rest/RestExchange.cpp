#include <algorithm>

#include "rest/CurlHandles.h"
#include "rest/TLRAIDRestClient.h"
#include "runtime/DebugClient.h"

namespace {

// The daemon's certificate is neither verified nor matched to the host.
void SetNoCertificateChecks(CURL* curl) {
    curl_easy_setopt(curl, CURLOPT_SSL_VERIFYPEER, 0L);
    curl_easy_setopt(curl, CURLOPT_SSL_VERIFYHOST, 0L);
}

}  // namespace

void TLRAIDRestClient::SetUpExchange(void* curl, const std::string& url, curl_slist* headers,
                                     std::string& reply, uint32_t timeoutSec) {
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    SetNoCertificateChecks(curl);
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, CurlWriteCallback);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &reply);
    if (timeoutSec != 0)
        curl_easy_setopt(curl, CURLOPT_TIMEOUT, static_cast<long>(timeoutSec));
}

size_t TLRAIDRestClient::CurlWriteCallback(char* data, size_t size, size_t count, void* userp) {
    TLR_TRACE(5, "\nTLRAIDRestClient: curl write callback invoked");
    const size_t bytes = size * count;
    static_cast<std::string*>(userp)->append(data, bytes);
    return bytes;
}

CurlSlistPtr TLRAIDRestClient::AddAuthBearerHeader(const std::string& accessToken) {
    TLR_TRACE(5, "\nTLRAIDRestClient::AddAuthBearerHeader");
    CurlSlistPtr headers(curl_slist_append(nullptr, "Content-Type: application/json"));
    // With an empty access token the line still goes out, as "Authorization: Bearer ".
    const std::string bearer = "Authorization: Bearer " + accessToken;
    curl_slist* withBearer = curl_slist_append(headers.get(), bearer.c_str());
    if (!withBearer) {
        return CurlSlistPtr();
    }
    // The same list, or a new one of the bearer line alone when the first line failed.
    headers.release();
    return CurlSlistPtr(withBearer);
}

std::string TLRAIDRestClient::SetAuthToken(const std::string& url) {
    std::string response;
    CurlEasyPtr curl(curl_easy_init());
    if (curl) {
        SetNoCertificateChecks(curl.get());
        curl_easy_setopt(curl.get(), CURLOPT_URL, url.c_str());

        // This exchange's own copy: a renewal by another thread doesn't change it.
        const std::string token = JwtForLogin();
        TLR_TRACE(5, "\nTLRAIDRestClient    : TOKEN [%s]", token.c_str());

        // A form without URL-encoding; libcurl's own headers, no time-out.
        const std::string postData = "jwt=" + token + "&client_id=" + m_sClientId;
        TLR_TRACE(3, "\nTLRAIDRestClient::SetAuthToken auth_addr_w [%s]", url.c_str());
        TLR_TRACE(tlr_rest::kSecretsTraceLevel, "\nTLRAIDRestClient::SetAuthToken post_data_w [%s]",
                  postData.c_str());
        curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDS, postData.c_str());
        curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, CurlWriteCallback);
        curl_easy_setopt(curl.get(), CURLOPT_WRITEDATA, &response);

        const CURLcode rc = curl_easy_perform(curl.get());
        if (rc == CURLE_OK) {
            TLR_TRACE(5, "\nTLRAIDRestClient    : GetAuthToken response_string [%s]",
                      response.c_str());
        } else {
            TLR_TRACE(2, "\nTLRAIDRestClient::SetAuthToken: failed to perform request rc=%d - %s",
                      static_cast<int>(rc), curl_easy_strerror(rc));
        }
    }
    return GetAccessToken(response);
}

int32_t TLRAIDRestClient::SendGet(const std::string& url, const std::string& accessToken,
                                  std::string& reply, uint32_t timeoutSec) {
    TLR_TRACE(5, "\nTLRAIDRestClient::SendGet");
    CurlEasyPtr curl(curl_easy_init());
    if (!curl) {
        // Reported as success: the caller goes on with an empty reply.
        TLR_TRACE(2, "\nTLRAIDRestClient::SendGet: curl initialization failure");
        return CURLE_OK;
    }
    const CurlSlistPtr headers = AddAuthBearerHeader(accessToken);
    SetUpExchange(curl.get(), url, headers.get(), reply, timeoutSec);

    TLR_TRACE(5, "\nTLRAIDRestClient::SendGet: Sending request...");
    const CURLcode rc = curl_easy_perform(curl.get());
    if (rc != CURLE_OK) {
        TLR_TRACE(2, "\nTLRAIDRestClient::SendGet: Request failed rc=%d - %s", static_cast<int>(rc),
                  curl_easy_strerror(rc));
    } else {
        TLR_TRACE(5, "\nTLRAIDRestClient::SendGet Request succeeded, response size %d",
                  static_cast<int>(reply.size()));
    }
    return static_cast<int32_t>(rc);
}

int32_t TLRAIDRestClient::SendPost(const std::string& url, const std::string& accessToken,
                                   const std::string& body, std::string& reply,
                                   uint32_t timeoutSec) {
    TLR_TRACE(5, "\nTLRAIDRestClient    : CrudMethod::POST");
    std::string response;
    CurlEasyPtr curl(curl_easy_init());
    if (!curl) {
        TLR_TRACE(5, "\nTLRAIDRestClient    : curl initialization failure");
        reply = std::move(response);
        return CURLE_OK;
    }
    // Callers hand in JSON with escaped quotes; no backslash goes over the wire.
    std::string postBody = body;
    postBody.erase(std::remove(postBody.begin(), postBody.end(), '\\'), postBody.end());

    const CurlSlistPtr headers = AddAuthBearerHeader(accessToken);
    SetUpExchange(curl.get(), url, headers.get(), response, timeoutSec);
    curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDS, postBody.c_str());

    const CURLcode rc = curl_easy_perform(curl.get());
    if (rc != CURLE_OK) {
        TLR_TRACE(5, "\nTLRAIDRestClient    : CrudMethod::POST FAILED [%d]", static_cast<int>(rc));
    } else {
        TLR_TRACE(5, "\nTLRAIDRestClient    : CrudMethod::POST response code [%d]",
                  static_cast<int>(rc));
        TLR_TRACE(5, "\nTLRAIDRestClient    : CrudMethod::POST response      [%s]",
                  response.c_str());
    }
    reply = std::move(response);
    return static_cast<int32_t>(rc);
}
