#include <rapidjson/document.h>

#include "rest/JsonReply.h"
#include "rest/Jwt.h"
#include "rest/TLRAIDRestClient.h"
#include "runtime/DebugClient.h"

std::string TLRAIDRestClient::CreateJwt() {
    // Two readings of the clock: exp may fall one second later than iat plus the lifetime.
    const int64_t issuedAt = m_pNow() / tlr_rest::kNanosPerSecond;
    const int64_t expiresAt =
        (m_pNow() + m_nTokenLifetime * tlr_rest::kNanosPerSecond) / tlr_rest::kNanosPerSecond;
    m_sJwt = tlr_jwt::MakeSignedToken(issuedAt, expiresAt);
    return m_sJwt;
}

unsigned TLRAIDRestClient::IsJwtValid() {
    if (m_sJwt.empty())
        return 0;
    const int64_t expiresAt = tlr_jwt::ReadExpiry(m_sJwt);
    const int64_t now = m_pNow();
    // At the very nanosecond of exp the token still holds.
    return now <= expiresAt * tlr_rest::kNanosPerSecond ? 1 : 0;
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
