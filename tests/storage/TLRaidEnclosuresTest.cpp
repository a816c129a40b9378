// Enclosures of an adapter: numbered by the first appearance of their number, port list only.
#include <gtest/gtest.h>

#include <string>

#include "storage/TLRaidData.h"
#include "storage/TreeText.h"

namespace {

void LoadAdapter(CTLRaidData& adapter, const std::string& file, uint32_t nIndex) {
    CTLRaidData tree;
    tree.SetDoc(SampleTree(file));
    ASSERT_TRUE(tree.GetAdapterData(adapter, nIndex)) << file << " adapter " << nIndex;
}

// The EnclosureNumber of each enclosure by index, comma-separated.
std::string EnclosureNumbers(CTLRaidData& adapter) {
    std::string numbers;
    uint32_t nCount = adapter.GetEnclosureCount();
    for (uint32_t i = 0; i < nCount; ++i) {
        CTLRaidData enclosure;
        EXPECT_TRUE(adapter.GetEnclosureData(enclosure, i));
        std::string number;
        EXPECT_TRUE(enclosure.GetEnclosureProperty(number, "EnclosureNumber"));
        numbers += (i ? "," : "") + number;
    }
    CTLRaidData beyond;
    EXPECT_FALSE(adapter.GetEnclosureData(beyond, nCount));
    return numbers;
}

TEST(TLRaidDataEnclosures, NumberedByFirstAppearanceOnEverySample) {
    struct Row {
        const char* file;
        uint32_t adapter;
        const char* numbers;
    };
    const Row rows[] = {
        // 5 seen again through port 1, and one without a number, take no index.
        {"port-list.xml", 0, "5,3,7"},
        {"two-adapters-enclosures.xml", 0, "2,3"},
        {"two-adapters-enclosures.xml", 1, "2,1"},
        // Only the port list is walked: these enclosures stand under a SASPort.
        {"version1-sasport.xml", 0, ""},
    };
    for (const Row& row : rows) {
        CTLRaidData adapter;
        LoadAdapter(adapter, row.file, row.adapter);
        EXPECT_EQ(EnclosureNumbers(adapter), row.numbers) << row.file << " " << row.adapter;
    }
}

TEST(TLRaidDataEnclosures, IndexOfADrivesEnclosure) {
    CTLRaidData adapter;
    LoadAdapter(adapter, "port-list.xml", 0);
    // Drives in walk order: two on port 0, 5, 5, 3, two on port 1, the unnumbered enclosure, 7.
    const int expected[] = {-1, -1, 0, 0, 1, -1, -1, -1, 2};
    for (uint32_t i = 0; i < std::size(expected); ++i) {
        CTLRaidData drive;
        ASSERT_TRUE(adapter.GetPhysicalDriveData(drive, i));
        uint32_t index = 99;
        EXPECT_EQ(adapter.GetEnclosureIndexOfDrive(index, drive), expected[i] >= 0)
            << "drive " << i;
        EXPECT_EQ(index, expected[i] >= 0 ? uint32_t(expected[i]) : 99u) << "drive " << i;
    }
}

TEST(TLRaidDataEnclosures, IndexOfAnEnclosureByItsNumber) {
    CTLRaidData adapter;
    LoadAdapter(adapter, "port-list.xml", 0);
    struct Row {
        const char* number;
        int index;
    };
    const Row rows[] = {{"5", 0}, {"3", 1}, {"7", 2}, {"9", -1}, {"05", 0}, {"x", -1}};
    for (const Row& row : rows) {
        CTLRaidData enclosure;
        ASSERT_TRUE(enclosure.SetDoc("<Enclosure Name=\"E\"><EnclosureNumber>" +
                                     std::string(row.number) + "</EnclosureNumber></Enclosure>"));
        uint32_t index = 99;
        EXPECT_EQ(adapter.GetEnclosureIndex(index, enclosure), row.index >= 0) << row.number;
        EXPECT_EQ(index, row.index >= 0 ? uint32_t(row.index) : 99u) << row.number;
    }
    // The root looked for is Enclosure, and the number must be there.
    CTLRaidData other;
    ASSERT_TRUE(other.SetDoc(
        std::string("<PhysicalDrive><EnclosureNumber>5</EnclosureNumber></PhysicalDrive>")));
    uint32_t index = 99;
    EXPECT_FALSE(adapter.GetEnclosureIndex(index, other));
    ASSERT_TRUE(other.SetDoc(std::string("<Enclosure><Status>OK</Status></Enclosure>")));
    EXPECT_FALSE(adapter.GetEnclosureIndex(index, other));
    EXPECT_EQ(index, 99u);
}

TEST(TLRaidDataEnclosures, SameNumberOnTwoPortsIsOneEnclosureAtItsFirstIndex) {
    CTLRaidData adapter;
    ASSERT_TRUE(adapter.SetDoc(std::string(
        "<Adapter><Ports>"
        "<Port><Enclosure Name=\"A\"><EnclosureNumber>4</EnclosureNumber></Enclosure></Port>"
        "<Port><Enclosure Name=\"B\"><EnclosureNumber>8</EnclosureNumber></Enclosure>"
        "<Enclosure Name=\"A2\"><EnclosureNumber>4</EnclosureNumber></Enclosure></Port>"
        "</Ports></Adapter>")));
    EXPECT_EQ(adapter.GetEnclosureCount(), 2u);
    CTLRaidData second;
    ASSERT_TRUE(adapter.GetEnclosureData(second, 1));
    ASSERT_TRUE(second.FindElem("Enclosure"));
    EXPECT_EQ(second.GetAttrib(second.GetMainPos(), "Name"), "B");
    CTLRaidData drive;
    ASSERT_TRUE(drive.SetDoc(
        std::string("<PhysicalDrive><EnclosureNumber>4</EnclosureNumber></PhysicalDrive>")));
    uint32_t index = 99;
    EXPECT_TRUE(adapter.GetEnclosureIndexOfDrive(index, drive));
    EXPECT_EQ(index, 0u);
}

}  // namespace
