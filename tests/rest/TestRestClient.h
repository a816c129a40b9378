#pragma once

#include "rest/TLRAIDRestClient.h"

// The client with its steps and its held JWT opened up for tests.
class CTestRestClient : public TLRAIDRestClient {
  public:
    using TLRAIDRestClient::TLRAIDRestClient;

    using TLRAIDRestClient::AddAuthBearerHeader;
    using TLRAIDRestClient::CreateJwt;
    using TLRAIDRestClient::GetAccessToken;
    using TLRAIDRestClient::GetMainServerIpAddress;
    using TLRAIDRestClient::HeldJwt;
    using TLRAIDRestClient::IsJwtValid;
    using TLRAIDRestClient::JwtForLogin;
    using TLRAIDRestClient::SendGet;
    using TLRAIDRestClient::SendPost;
    using TLRAIDRestClient::SetAuthToken;

    using TLRAIDRestClient::m_sJwt;
};
