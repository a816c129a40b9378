#pragma once

#include <cstdint>
#include <string>

// Everything that ties the REST client to one host: the daemon's paths and port, the login
// data and the time base. The shipped client uses these values and no others.
namespace tlr_rest {

// The daemon's address is the fifth column of the first lsof line that names it.
constexpr const char kLsofCommand[] =
    "lsof | grep -i tlrcd | grep -i INET | awk '{ print $5 }' | uniq";

constexpr const char kScheme[] = "https://";
// The daemon's fixed port and its endpoints: the login, the tree, the pass-through.
constexpr uint16_t kDaemonPort = 34246;
constexpr const char kAuthEndpoint[] = "/api/v1/authJwt";
constexpr const char kSdtEndpoint[] = "/api/v1/sdt/vbmc";
constexpr const char kRedfishEndpoint[] = "/api/v1/redfishOp";

// Port and path as they stand behind the host in every URL: ":PORT/api/...".
inline std::string PortAndPath(const char* endpoint) {
    return ":" + std::to_string(kDaemonPort) + endpoint;
}

constexpr const char kClientId[] = "TLRM_CLIENT_TLAS";

// The JWT: its issuer, the key shared with the daemon, and how long a new one holds.
constexpr const char kJwtIssuer[] = "TLRM_CLIENT_TLAS";
constexpr const char kJwtKey[] = "kite_mox";
constexpr int64_t kTokenLifetime = 300;

// The login form, with the JWT in it, is traced from this level on: a trace at this level or
// above holds secrets (and from level 5 the access tokens and whole replies too).
constexpr uint32_t kSecretsTraceLevel = 3;

constexpr int64_t kNanosPerSecond = 1000000000;

// Nanoseconds since the epoch on the system clock.
using NowFunction = int64_t (*)();
int64_t SystemNowNanos();

}  // namespace tlr_rest
