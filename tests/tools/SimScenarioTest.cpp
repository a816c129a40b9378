// Scenarios of the REST daemon simulator: which tree and which faults hold at which time,
// and the shipped scenarios.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "SimScenario.h"
#include "storage/TLRaidData.h"
#include "support/Process.h"
#include "support/TempDir.h"

namespace {

// Trees a.xml ("A") and b.xml ("B @PROGRESS@") and a scenario that uses them.
TEST(SimScenario, TreesAndFaultsByTime) {
    TempDir dir;
    dir.Write("a.xml", "A");
    dir.Write("b.xml", "B @PROGRESS@ @PROGRESS@");
    CSimScenario s;
    std::string error;
    ASSERT_TRUE(s.Load(dir.Write("scenario.json", R"({"note": "n", "steps": [
        {"at_s": 0, "tree": "a.xml"},
        {"at_s": 2.5, "faults": {"sdt": {"status": 503}}},
        {"at_s": 4, "tree": "b.xml", "progress": {"from": 10, "by": 20, "every_s": 1.5, "to": 50}},
        {"at_s": 9, "faults": {"authJwt": {"refuse": true}}},
        {"at_s": 10, "tree": "a.xml"}]})"),
                       error))
        << error;
    struct Row {
        double at;
        std::string tree;
        int sdtStatus;
        bool loginRefused;
    } const rows[] = {
        {0, "A", 0, false},         {2.499, "A", 0, false},   {2.5, "A", 503, false},
        {3.999, "A", 503, false},   {4, "B 10 10", 0, false}, {5.499, "B 10 10", 0, false},
        {5.5, "B 30 30", 0, false}, {7, "B 50 50", 0, false}, {8.9, "B 50 50", 0, false},
        {9, "B 50 50", 0, true},    {10, "A", 0, false},      {1e6, "A", 0, false},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(s.TreeAt(row.at), row.tree) << row.at;
        CEndpointFault sdt, login;
        s.FaultAt(row.at, "sdt", sdt);
        s.FaultAt(row.at, "authJwt", login);
        EXPECT_EQ(sdt.nStatus, row.sdtStatus) << row.at;
        EXPECT_EQ(login.bRefuse, row.loginRefused) << row.at;
    }
    EXPECT_EQ(s.StepIndexAt(9.5), 3u);
    EXPECT_FALSE(s.ProgressAt(1).has_value());
}

// The MDC progress of the RAID-5 "Data" in the tree at a time; -1 without one.
int DataProgress(const CSimScenario& scenario, double at) {
    CTLRaidData doc;
    EXPECT_TRUE(doc.SetDoc(scenario.TreeAt(at)));
    EXPECT_TRUE(doc.IsValid()) << at;
    return doc.GetMDCProgressMap().at("TL RAID EP540i A0L1");
}

// Looked at every 15 s, the way the module polls: valid trees, and the failing drive's story.
TEST(SimScenario, ShippedScenariosHoldValidTrees) {
    for (const char* name : {"failing-drive", "daemon-away"}) {
        std::string error;
        CSimScenario scenario;
        ASSERT_TRUE(scenario.Load(SourcePath("samples/scenarios/") + name + ".json", error))
            << error;
        std::vector<int> progress;
        for (double at = 0; at <= 120; at += 15)
            progress.push_back(DataProgress(scenario, at));
        if (std::string(name) == "failing-drive") {
            EXPECT_EQ(progress, (std::vector<int>{37, 37, -1, 10, 30, 50, 70, 90, -1}));
        }
    }
}

}  // namespace
