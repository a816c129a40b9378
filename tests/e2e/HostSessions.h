#pragma once

#include <gtest/gtest.h>

#include <future>
#include <string>
#include <vector>

#include "support/Emhost.h"

// The line protocol session, line by line (ModuleSessionTest.cpp).
const std::vector<Exchange>& SessionExchanges();

// The host simulator's runs against the shipped module. Each ends with the module's stop,
// which takes 10 s by design, so all start at once before the first test, side by side in
// sandboxes of their own; each test checks one of them. ctest runs them as one test.
class HostSessions : public ::testing::Test {
  protected:
    static void SetUpTestSuite();
    // Waits for every run, also for those whose tests were left out.
    static void TearDownTestSuite();

    // The exchanges on the sample tree with adapters and cabinets, on the sample host.
    static const EmhostRun& Session() { return s_Session.get(); }
    // The daemon's log of the requests that reached it during the session.
    static std::string SessionRequests();
    // "emhost inventory" on the sample host, with two adapters and two cabinets.
    static const ProcessResult& Inventory() { return s_Inventory.get(); }
    // "emhost export --json" of the demo tree, and "emhost export" without the service.
    static const ProcessResult& ExportJson() { return s_ExportJson.get(); }
    static const ProcessResult& ExportWithoutService() { return s_ExportWithoutService.get(); }
    // "emhost watch" on a scenario whose progress moves before the second polling cycle.
    static const ProcessResult& Watch() { return s_Watch.get(); }
    // "emhost watch --json --exit-on-failure" on a scenario whose drive fails after 3 s.
    static const ProcessResult& WatchJson() { return s_WatchJson.get(); }

  private:
    static std::shared_future<EmhostRun> s_Session;
    static std::shared_future<ProcessResult> s_Inventory, s_ExportJson, s_ExportWithoutService,
        s_Watch, s_WatchJson;
};
