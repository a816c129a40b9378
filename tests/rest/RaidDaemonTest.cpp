// The probe of the real daemon: the first line of its lsof pipeline must name the daemon's
// port before a tree is asked for. No daemon runs here, so a probe that goes on to the tree
// fails at the address lookup.
#include <gtest/gtest.h>

#include <string>

#include "rest/RaidDaemon.h"
#include "rest/RestConstants.h"
#include "support/CaptureTraceServer.h"

namespace {

TEST(RaidDaemonProbe, OnlyTheDaemonsPortOnTheFirstLineGoesOnToTheTree) {
    const std::string port = std::to_string(tlr_rest::kDaemonPort);
    struct Row {
        const char* what;
        std::string probeOutput;
        bool goesOn;
    };
    const Row rows[] = {
        {"nothing listed", "", false},
        {"another port", "tlrcd 2101 root 12u SOCKET_INET TCP 127.0.0.1:443\n", false},
        {"the port on the second line only", "x\ntlrcd SOCKET_INET 127.0.0.1:" + port + "\n",
         false},
        {"the daemon's port", "tlrcd 2101 root 12u SOCKET_INET TCP 127.0.0.1:" + port + "\n", true},
    };
    ScopedTraceLevel trace(4);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        RaidDaemonSettings settings;
        settings.sProbeCommand = "printf '" + row.probeOutput + "'";
        settings.rest.sLsofCommand = "true";
        CRaidDaemon daemon(settings);
        Debug.Take();
        EXPECT_FALSE(daemon.ProbeRestServer(1));
        const std::string t = Debug.Take();
        EXPECT_EQ(t.find("\nCDeviceTLRaid::DetectTLRaid: TLRCD REST server is running") !=
                      std::string::npos,
                  row.goesOn);
        EXPECT_EQ(t.find("GetMainServerIpAddress") != std::string::npos, row.goesOn);
    }
}

}  // namespace
