// tlrcd-sim: a stand-in for the RAID manager's REST daemon, for tests and demonstrations.

#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>

#include "SimControl.h"
#include "SimOptions.h"
#include "SimScenario.h"
#include "SimServer.h"
#include "TlsIdentity.h"

namespace {

constexpr int kExitServeFailed = 1;
constexpr int kExitUsage = 2;

int Fail(int status, const std::string& message) {
    fprintf(stderr, "tlrcd-sim: %s\n", message.c_str());
    if (status == kExitUsage)
        fprintf(stderr, "Try 'tlrcd-sim --help'.\n");
    return status;
}

// Files are read anew at every request; at start they must at least be readable. A scenario
// is read whole at start.
bool CheckFiles(const CSimOptions& options, std::unique_ptr<CSimScenario>& scenario,
                std::string& error) {
    if (!options.sScenarioFile.empty()) {
        scenario = std::make_unique<CSimScenario>();
        if (!scenario->Load(options.sScenarioFile, error))
            return false;
    }
    std::string text;
    if (!options.sTreeFile.empty() && !ReadWholeFile(options.sTreeFile, text)) {
        error = "cannot read tree file '" + options.sTreeFile + "'";
        return false;
    }
    if (!options.sRedfishFile.empty()) {
        if (!ReadWholeFile(options.sRedfishFile, text)) {
            error = "cannot read Redfish file '" + options.sRedfishFile + "'";
            return false;
        }
        const nlohmann::json map = nlohmann::json::parse(text, nullptr, false);
        if (map.is_discarded() || !map.is_object()) {
            error = "Redfish file '" + options.sRedfishFile + "' is not a JSON object";
            return false;
        }
    }
    CEndpointFault fault;
    return ReadEndpointFault(options.sControlFile, "sdt", fault, error);
}

}  // namespace

int main(int argc, char** argv) {
    CSimOptions options;
    std::string error;
    if (!ParseSimOptions(argc, argv, options, error))
        return Fail(kExitUsage, error);
    if (options.bHelp) {
        fputs(SimUsage(), stdout);
        return 0;
    }
    if (options.bVersion) {
        printf("tlrcd-sim %s\n", TLR_VERSION);
        return 0;
    }
    std::unique_ptr<CSimScenario> scenario;
    if (!CheckFiles(options, scenario, error))
        return Fail(kExitUsage, error);

    CTlsIdentity identity;
    const bool haveIdentity =
        options.sCertFile.empty()
            ? MakeSelfSignedIdentity(identity, error)
            : LoadIdentity(options.sCertFile, options.sKeyFile, identity, error);
    if (!haveIdentity)
        return Fail(options.sCertFile.empty() ? kExitServeFailed : kExitUsage, error);

    // The server's threads inherit this mask; one thread of our own takes the signals.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGTERM);
    sigaddset(&stopSignals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    signal(SIGPIPE, SIG_IGN);

    CSimServer server(options, std::move(scenario));
    if (!server.Open(identity, error))
        return Fail(error.rfind("cannot open log", 0) == 0 ? kExitUsage : kExitServeFailed, error);

    // A stop that comes before the accept loop runs is lost by the server, so the stop is
    // repeated until the loop has ended.
    std::atomic<bool> runDone{false};
    std::thread stopper([&server, &runDone, stopSignals] {
        int signalNumber = 0;
        sigwait(&stopSignals, &signalNumber);
        while (!runDone) {
            server.Stop();
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    });

    fprintf(stderr, "tlrcd-sim: listening on https://%s:%d\n", options.sHost.c_str(),
            server.Port());
    bool served = server.Run();
    runDone = true;
    pthread_kill(stopper.native_handle(), SIGTERM);  // wakes the stopper if it still waits
    stopper.join();
    return served ? 0 : kExitServeFailed;
}
