// The getters against their tables: case rules, "contains" rules and defaults.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "storage/StatusTables.h"
#include "storage/TLRaidData.h"

namespace {

// A sub-document of one root with one child holding the word; a child named "@Type" is the
// root's Type attribute instead, beside a Type child that must not be read.
void SetLeaf(CTLRaidData& doc, const std::string& root, const std::string& child,
             const std::string& word) {
    if (child == "@Type") {
        ASSERT_TRUE(
            doc.SetDoc("<" + root + " Type=\"" + word + "\"><Type>SAS</Type></" + root + ">"));
        return;
    }
    ASSERT_TRUE(doc.SetDoc("<" + root + " NrOfProperties=\"1\"><" + child + ">" + word + "</" +
                           child + "></" + root + ">"));
}

struct DriveStatusRow {
    const char* word;
    int32_t index;
    int32_t code;
    int32_t component;
    int32_t smartFlag;
};

// Words of the physical drive status table, one of each kind, with the component value of
// each index and the SMART flag.
const DriveStatusRow kDriveStatusRows[] = {
    {"unconfigured", 2, 2, 1, 0},
    {"Available SMART Error", 19, 4098, 0, 1},
    {"Copyback / SMART Error", 18, 4097, 2, 1},
    {"Failed", 11, 11, 3, -1},
    {"Auto replace hotspare smart", 29, 4111, 2, 0},
    {"Offline", 13, 13, 3, 0},
    {"Offline - SMART Error", 27, 4109, 0, 1},
    {"Operational", 0, 0, 1, 0},
    {"Operational SMART Error", 17, 4096, 2, 1},
    {"Rebuilding", 6, 6, 2, 0},
    {"Shield smart", 28, 4110, 2, 0},
    {"Unknown", -1, -1, 0, -1},
    // Case doesn't count for the words, but "SMART" is looked for in capitals.
    {"operational smart error", 17, 4096, 2, 0},
    {"FAILED", 11, 11, 3, -1},
    {"unknown", -1, -1, 0, -1},
    {"Reserved SMART", 16, -1, 2, 1},
    {"Reserved smart", -1, -1, 0, 0},
    {"Operational ", -1, -1, 0, 0},
    {"", -1, -1, 0, 0},
};

TEST(PhysicalDriveStatusTable, EveryWordGivesIndexCodeComponentAndSmartFlag) {
    for (const DriveStatusRow& row : kDriveStatusRows) {
        SCOPED_TRACE(std::string("word \"") + row.word + "\"");
        CTLRaidData drive;
        SetLeaf(drive, "PhysicalDrive", "Status", row.word);
        int32_t index = drive.GetPhysicalDriveStatusIndex();
        EXPECT_EQ(index, row.index);
        EXPECT_EQ(drive.GetPhysicalDriveStatus(), row.code);
        EXPECT_EQ(drive.GetPhysicalDriveSmartFlag(), row.smartFlag);
        EXPECT_EQ(PhysicalDriveComponentValue(static_cast<uint32_t>(index)), row.component);

        uint32_t toIndex = 12345;
        CTLRaidData::PhysicalDriveStatusToIndex(row.word, toIndex);
        EXPECT_EQ(toIndex, static_cast<uint32_t>(row.index));
    }
    // Index 7 has no word; past the table nothing counts; no word at all reads as empty.
    EXPECT_EQ(PhysicalDriveComponentValue(7), 2);
    EXPECT_EQ(PhysicalDriveComponentValue(30), 0);
    EXPECT_EQ(PhysicalDriveComponentValue(0xFFFFFFFFu), 0);
    uint32_t index = 0;
    CTLRaidData::PhysicalDriveStatusToIndex(nullptr, index);
    EXPECT_EQ(index, 0xFFFFFFFFu);
}

using Getter = int32_t (CTLRaidData::*)();

// Each getter of a word table with the root and child it reads, and its rows as
// "word=value|word=value".
struct WordTable {
    const char* root;
    const char* child;
    Getter get;
    const char* rows;
};

const char* const kThreeWayRows = "OK=0|ok=0|Warning=1|WARNING=1|Failed=2|Critical=-1|=-1";

const WordTable kWordTables[] = {
    // Equal words for SCSI and SATA; the others are looked for inside the word, case and all.
    {"PhysicalDrive", "Type", &CTLRaidData::GetPhysicalDriveType,
     "SCSI=0|scsi=0|SATA=1|sata=1|SAS=2|SAS-3=2|SAS SSD=2|12G SAS=2|sas=-1|SATA SSD=-1|NVMe=3|"
     "U.2 NVMe=3|nvme=-1|PCI Express=4|pci express=-1|NVMe PCI Express=3|IDE=-1|=-1"},
    {"LogicalDrive", "Status", &CTLRaidData::GetLogicalDriveStatus,
     "Operational=0|operational=0|Degraded=1|Partially degraded=2|PARTIALLY DEGRADED=2|"
     "Failed=3|Impacted=4|Initializing=-1|=-1"},
    // An unknown battery word reads as normal.
    {"Battery", "Status", &CTLRaidData::GetBatteryStatus,
     "Normal=0|Temperature Problem=7|Voltage Problem=2|Charging=3|charging=3|Discharging=4|"
     "Warning=5|Failed=6|Overheated=0|=0"},
    {"Adapter", "@Type", &CTLRaidData::GetAdapterType,
     "SCSI=0|ATAPI=1|ATA=2|1394=3|SSA=4|FIBRE=5|Fibre=5|USB=6|SATA=7|SAS=8|sas=8|PCIe=9|PCIE=9|"
     "NVMe=-1|=-1"},
    {"Enclosure", "Status", &CTLRaidData::GetEnclosureStatus, kThreeWayRows},
    {"Adapter", "Status", &CTLRaidData::GetAdapterStatus, kThreeWayRows},
    {"Multiplexer", "StatusOverall", &CTLRaidData::GetOverallStatus, kThreeWayRows},
    {"Multiplexer", "StatusAdapters", &CTLRaidData::GetAdaptersStatus, kThreeWayRows},
    {"Multiplexer", "StatusDisks", &CTLRaidData::GetDisksStatus, kThreeWayRows},
    {"Multiplexer", "StatusLogicalDrives", &CTLRaidData::GetLogicalDrivesStatus, kThreeWayRows},
};

TEST(WordTables, EveryGetterReadsItsOwnChild) {
    for (const WordTable& table : kWordTables) {
        std::istringstream rows(table.rows);
        for (std::string row; std::getline(rows, row, '|');) {
            const size_t equals = row.rfind('=');
            CTLRaidData doc;
            SetLeaf(doc, table.root, table.child, row.substr(0, equals));
            EXPECT_EQ((doc.*table.get)(), std::stoi(row.substr(equals + 1)))
                << table.root << "/" << table.child << " " << row;
        }
    }
}

TEST(LearnCycleTable, PriorityOverAllAdditionalStatusChildren) {
    struct Row {
        std::vector<std::string> words;
        int32_t expected;
    };
    const Row rows[] = {
        {{}, 0},
        {{"Learn Cycle Active", "Learn Cycle Failed"}, 4},
        {{"learn cycle timeout", "Learn Cycle Active"}, 3},
        {{"Charge Active", "Learn Cycle Requested", "Learn Cycle Active"}, 2},
        {{"Fully charged"}, -1},
        {{"Learn Cycle"}, -1},
    };
    for (const auto& [words, expected] : rows) {
        std::string text = "<Battery ComponentStatus=\"1\"><Status>Normal</Status>";
        for (const std::string& word : words) {
            text += "<AdditionalStatus>" + word + "</AdditionalStatus>";
        }
        text += "<Name>CBU</Name></Battery>";
        CTLRaidData battery;
        ASSERT_TRUE(battery.SetDoc(text));
        EXPECT_EQ(battery.GetBatteryLearnCycleStatus(), expected) << text;
    }
}

TEST(GetterDefaults, MissingRootOrChildGivesMinusOneButLearnCycleGivesZero) {
    std::vector<Getter> getters = {&CTLRaidData::GetPhysicalDriveStatusIndex,
                                   &CTLRaidData::GetPhysicalDriveStatus,
                                   &CTLRaidData::GetPhysicalDriveSmartFlag};
    // Each root present but without the child read; an unrelated root; an empty document.
    std::vector<std::string> docs = {"<Other><Status>OK</Status><Type>SAS</Type></Other>", ""};
    for (const WordTable& table : kWordTables) {
        getters.push_back(table.get);
        docs.push_back("<" + std::string(table.root) + "><Name>OK</Name></" + table.root + ">");
    }
    for (const std::string& text : docs) {
        CTLRaidData doc;
        doc.SetDoc(text);
        for (Getter getter : getters) {
            EXPECT_EQ((doc.*getter)(), -1) << text;
        }
        EXPECT_EQ(doc.GetBatteryLearnCycleStatus(), 0) << text;
    }
}

}  // namespace
