#pragma once

#include "rest/TLRAIDRestClient.h"

// The client with its steps and its held JWT opened up for tests.
class CTestRestClient : public TLRAIDRestClient {
  public:
    using TLRAIDRestClient::CreateJwt;
    using TLRAIDRestClient::GetAccessToken;
    using TLRAIDRestClient::GetMainServerIpAddress;
    using TLRAIDRestClient::HeldJwt;
    using TLRAIDRestClient::JwtForLogin;
    using TLRAIDRestClient::TLRAIDRestClient;
};
