// Drives and enclosures of an adapter across the six layouts: count, order, cut, index; and the
// ports. Enclosures are numbered by the first appearance of their number, in a port list only.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "storage/TLRaidData.h"
#include "storage/TreeText.h"

namespace {

// Cuts the nIndex-th adapter of a sample or inline tree.
void LoadAdapter(CTLRaidData& adapter, const std::string& text, uint32_t nIndex) {
    CTLRaidData tree;
    tree.SetDoc(text);
    ASSERT_TRUE(tree.GetAdapterData(adapter, nIndex)) << "adapter " << nIndex;
}

// The numbers of an adapter's drives (their DeviceNumber) or enclosures (their EnclosureNumber)
// by index, comma-separated; checks that the cut ends where the count says.
std::string Numbers(CTLRaidData& adapter, bool bEnclosures) {
    const uint32_t nCount =
        bEnclosures ? adapter.GetEnclosureCount() : adapter.GetPhysicalDriveCount();
    std::string numbers, number;
    for (uint32_t i = 0; i <= nCount; ++i) {
        CTLRaidData cut;
        EXPECT_EQ(
            bEnclosures ? adapter.GetEnclosureData(cut, i) : adapter.GetPhysicalDriveData(cut, i),
            i < nCount)
            << i;
        if (i < nCount && cut.FindElem() && !cut.GetEnclosureProperty(number, "EnclosureNumber")) {
            number = cut.GetAttrib(cut.GetMainPos(), "DeviceNumber");
        }
        numbers += i == nCount ? "" : (i ? "," : "") + number;
    }
    return numbers;
}

TEST(TLRaidDataDrives, CountAndOrderOnEveryLayout) {
    const std::tuple<const char*, uint32_t, const char*, const char*> rows[] = {
        // Port list: port by port, the port's own drives before those of its enclosures.
        // Enclosure 5 seen again through port 1, and one without a number, take no index.
        {"port-list.xml", 0, "0,1,16,17,24,2,3,40,48", "5,3,7"},
        {"two-adapters-enclosures.xml", 0, "8,9,16", "2,3"},
        {"two-adapters-enclosures.xml", 1, "0,1", "2,1"},
        {"channel-list.xml", 0, "0,1,2,8,9", ""},
        {"sas-port.xml", 0, "4,5,6", ""},
        {"sata-port.xml", 0, "0,1", ""},
        {"scsi-channel.xml", 0, "0,1,2,3", ""},
        {"flat.xml", 0, "0,1", ""},
        // A SASPort's enclosures are not walked: only its own drives count.
        {"version1-sasport.xml", 0, "0", ""},
        {"batteries.xml", 0, "", ""},
    };
    for (const auto& [file, nAdapter, drives, enclosures] : rows) {
        SCOPED_TRACE(std::string(file) + " adapter " + std::to_string(nAdapter));
        CTLRaidData adapter;
        LoadAdapter(adapter, SampleTree(file), nAdapter);
        EXPECT_EQ(Numbers(adapter, false), drives);
        EXPECT_EQ(Numbers(adapter, true), enclosures);
    }
}

TEST(TLRaidDataDrives, LayoutsAreTestedInTheirOrder) {
    const std::tuple<const char*, const char*> rows[] = {
        {"<Adapter><Ports/><PhysicalDrive DeviceNumber=\"9\"/></Adapter>", ""},
        {"<Adapter><PhysicalDrive DeviceNumber=\"9\"/><Channels><Channel>"
         "<PhysicalDrive DeviceNumber=\"1\"/></Channel></Channels></Adapter>",
         "1"},
        {"<Adapter><Channels><Channel><PhysicalDrive DeviceNumber=\"1\"/></Channel></Channels>"
         "<Ports><Port><PhysicalDrive DeviceNumber=\"2\"/></Port></Ports></Adapter>",
         "2"},
        // SASPort before SATAPort before SCSIChannel, wherever they stand.
        {"<Adapter><SCSIChannel><PhysicalDrive DeviceNumber=\"3\"/></SCSIChannel>"
         "<SATAPort><PhysicalDrive DeviceNumber=\"2\"/></SATAPort>"
         "<SASPort><PhysicalDrive DeviceNumber=\"1\"/></SASPort></Adapter>",
         "1"},
        {"<Adapter><SCSIChannel><PhysicalDrive DeviceNumber=\"3\"/></SCSIChannel>"
         "<SATAPort><PhysicalDrive DeviceNumber=\"2\"/></SATAPort></Adapter>",
         "2"},
        // Only the first SASPort is walked.
        {"<Adapter><SASPort><PhysicalDrive DeviceNumber=\"1\"/></SASPort>"
         "<SASPort><PhysicalDrive DeviceNumber=\"2\"/></SASPort></Adapter>",
         "1"},
        // Flat: back references under a logical drive's layout are no drives of the adapter.
        {"<Adapter><PhysicalDrive DeviceNumber=\"0\"/><LogicalDrive><Layout><Container>"
         "<PhysicalDrive DeviceNumber=\"0\"/></Container></Layout></LogicalDrive>"
         "<PhysicalDrive DeviceNumber=\"1\"/></Adapter>",
         "0,1"},
        // Port list: the port's drives first, even behind its enclosures in the text.
        {"<Adapter><Ports><Port><Enclosure><PhysicalDrive DeviceNumber=\"10\"/></Enclosure>"
         "<PhysicalDrive DeviceNumber=\"1\"/><Enclosure><PhysicalDrive DeviceNumber=\"20\"/>"
         "</Enclosure><PhysicalDrive DeviceNumber=\"2\"/></Port><Port>"
         "<PhysicalDrive DeviceNumber=\"3\"/></Port></Ports></Adapter>",
         "1,2,10,20,3"},
    };
    for (const auto& [text, numbers] : rows) {
        CTLRaidData adapter;
        adapter.SetDoc(std::string(text));
        EXPECT_EQ(Numbers(adapter, false), numbers) << text;
    }
}

TEST(TLRaidDataDrives, IndexBySerialNumberAndOfTheEnclosure) {
    CTLRaidData adapter;
    LoadAdapter(adapter, SampleTree("port-list.xml"), 0);
    // Drive 5 has no serial number: it has no index, and those behind it move up by one.
    // Drives in walk order: two on port 0, 5, 5, 3, two on port 1, the unnumbered enclosure, 7.
    const int serial[] = {0, 1, 2, 3, 4, -1, 5, 6, 7};
    const int enclosure[] = {-1, -1, 0, 0, 1, -1, -1, -1, 2};
    for (uint32_t i = 0; i < std::size(serial); ++i) {
        CTLRaidData drive;
        ASSERT_TRUE(adapter.GetPhysicalDriveData(drive, i));
        uint32_t index = 99;
        EXPECT_EQ(adapter.GetPhysicalDriveIndex(index, drive), serial[i] >= 0) << "drive " << i;
        EXPECT_EQ(index, serial[i] >= 0 ? uint32_t(serial[i]) : 99u) << "drive " << i;
        index = 99;
        EXPECT_EQ(adapter.GetEnclosureIndexOfDrive(index, drive), enclosure[i] >= 0)
            << "drive " << i;
        EXPECT_EQ(index, enclosure[i] >= 0 ? uint32_t(enclosure[i]) : 99u) << "drive " << i;
    }
}

// A drive document with the given children.
std::string DriveWith(const std::string& children) {
    return "<PhysicalDrive>" + children + "</PhysicalDrive>";
}

TEST(TLRaidDataDrives, IndexIsForThePortListOnlyAndNeedsTheSerialThere) {
    CTLRaidData sasPort, portList, twice, drive;
    LoadAdapter(sasPort, SampleTree("sas-port.xml"), 0);
    LoadAdapter(portList, SampleTree("port-list.xml"), 0);
    uint32_t index = 99;
    ASSERT_TRUE(drive.SetDoc(DriveWith("<SerialNumber>HS9-00413</SerialNumber>")));
    EXPECT_FALSE(sasPort.GetPhysicalDriveIndex(index, drive));
    // Equal by length and bytes: a prefix or another case is another serial number.
    for (const char* other : {"<SerialNumber>E5-S</SerialNumber>",
                              "<SerialNumber>e5-s0</SerialNumber>", "<Name>x</Name>"}) {
        ASSERT_TRUE(drive.SetDoc(DriveWith(other)));
        EXPECT_FALSE(portList.GetPhysicalDriveIndex(index, drive)) << other;
    }
    EXPECT_EQ(index, 99u);
    // The first of two drives with one serial number wins.
    ASSERT_TRUE(
        twice.SetDoc("<Adapter><Ports><Port>" + DriveWith("<SerialNumber>A</SerialNumber>") +
                     DriveWith("<SerialNumber>B</SerialNumber>") +
                     DriveWith("<SerialNumber>B</SerialNumber>") + "</Port></Ports></Adapter>"));
    ASSERT_TRUE(drive.SetDoc(DriveWith("<SerialNumber>B</SerialNumber>")));
    EXPECT_TRUE(twice.GetPhysicalDriveIndex(index, drive));
    EXPECT_EQ(index, 1u);
}

TEST(TLRaidDataEnclosures, IndexOfAnEnclosureByItsNumber) {
    CTLRaidData adapter;
    LoadAdapter(adapter, SampleTree("port-list.xml"), 0);
    struct Row {
        const char* doc;
        int index;
    };
    // Enclosure 5 is seen again through port 1: its first index stands. The root looked for
    // is Enclosure, and the number must be there.
    const Row rows[] = {
        {"<Enclosure><EnclosureNumber>5</EnclosureNumber></Enclosure>", 0},
        {"<Enclosure><EnclosureNumber>7</EnclosureNumber></Enclosure>", 2},
        {"<Enclosure><EnclosureNumber>9</EnclosureNumber></Enclosure>", -1},
        {"<Enclosure><EnclosureNumber>05</EnclosureNumber></Enclosure>", 0},
        {"<Enclosure><EnclosureNumber>x</EnclosureNumber></Enclosure>", -1},
        {"<PhysicalDrive><EnclosureNumber>5</EnclosureNumber></PhysicalDrive>", -1},
        {"<Enclosure><Status>OK</Status></Enclosure>", -1},
    };
    for (const Row& row : rows) {
        CTLRaidData enclosure;
        ASSERT_TRUE(enclosure.SetDoc(std::string(row.doc)));
        uint32_t index = 99;
        EXPECT_EQ(adapter.GetEnclosureIndex(index, enclosure), row.index >= 0) << row.doc;
        EXPECT_EQ(index, row.index >= 0 ? uint32_t(row.index) : 99u) << row.doc;
    }
}

// The tag and the Nr attribute of a cut port.
std::string PortOf(CTLRaidData& port) {
    return port.FindElem() ? port.GetTagName() + " " + port.GetAttrib(port.GetMainPos(), "Nr") : "";
}

TEST(TLRaidDataPorts, PortAndChannelListsHandOutPortsTheOthersAnswerNoPort) {
    const std::tuple<const char*, uint32_t, bool, const char*> rows[] = {
        {"port-list.xml", 1, true, "Port 1"},
        {"port-list.xml", 2, false, "Untouched "},
        {"channel-list.xml", 1, true, "Channel 1"},
        {"channel-list.xml", 2, false, "Untouched "},
        // The single port element goes into the document, but the answer is false.
        {"sas-port.xml", 0, false, "SASPort 0"},
        {"sata-port.xml", 0, false, "SATAPort 0"},
        {"scsi-channel.xml", 0, false, "SCSIChannel 0"},
        {"flat.xml", 0, false, "Untouched "},
    };
    for (const auto& [file, index, result, expected] : rows) {
        CTLRaidData adapter, port;
        LoadAdapter(adapter, SampleTree(file), 0);
        port.SetDoc(std::string("<Untouched/>"));
        EXPECT_EQ(adapter.GetPortData(port, index), result) << file << " " << index;
        EXPECT_EQ(PortOf(port), expected) << file << " " << index;
    }
}

}  // namespace
