#include <rapidjson/document.h>

#include "rest/JsonReply.h"
#include "rest/Jwt.h"
#include "rest/TLRAIDRestClient.h"
#include "runtime/DebugClient.h"

std::string TLRAIDRestClient::MakeJwt() const {
    // Two readings of the clock: exp may fall one second later than iat plus the lifetime.
    const int64_t issuedAt = m_pNow() / tlr_rest::kNanosPerSecond;
    const int64_t expiresAt =
        (m_pNow() + m_nTokenLifetime * tlr_rest::kNanosPerSecond) / tlr_rest::kNanosPerSecond;
    return tlr_jwt::MakeSignedToken(issuedAt, expiresAt);
}

unsigned TLRAIDRestClient::JwtHolds(const std::string& token) const {
    if (token.empty())
        return 0;
    const int64_t expiresAt = tlr_jwt::ReadExpiry(token);
    const int64_t now = m_pNow();
    // At the very nanosecond of exp the token still holds.
    return now <= expiresAt * tlr_rest::kNanosPerSecond ? 1 : 0;
}

std::string TLRAIDRestClient::JwtForLogin() {
    // Only signing and decoding happen under the lock, never a request.
    std::lock_guard<std::mutex> lock(m_JwtLock);
    if (JwtHolds(m_sJwt) == 0)
        m_sJwt = MakeJwt();
    return m_sJwt;
}

std::string TLRAIDRestClient::CreateJwt() {
    std::string token = MakeJwt();
    std::lock_guard<std::mutex> lock(m_JwtLock);
    m_sJwt = token;
    return token;
}

unsigned TLRAIDRestClient::IsJwtValid() {
    return JwtHolds(HeldJwt());
}

std::string TLRAIDRestClient::HeldJwt() {
    std::lock_guard<std::mutex> lock(m_JwtLock);
    return m_sJwt;
}

std::string TLRAIDRestClient::GetAccessToken(const std::string& reply) {
    TLR_TRACE(5, "\nTLRAIDRestClient    : GetAccessToken [%s]", reply.c_str());
    rapidjson::Document doc;
    tlr_rest::ParseReply(doc, reply);
    const rapidjson::Value* token = tlr_rest::FindTopLevelMember(doc, "access_token");
    if (!token || !token->IsString())
        return std::string();
    std::string accessToken(token->GetString(), token->GetStringLength());
    TLR_TRACE(5, "\nTLRAIDRestClient    : GetAccessToken FOUND[%s]", accessToken.c_str());
    return accessToken;
}
