// Every kind of operation leaves the document's positions as it found them.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "storage/StorageExport.h"
#include "storage/TLRaidData.h"
#include "storage/TreeText.h"

namespace {

using D = CTLRaidData;
using Operation = std::function<void(D&)>;

// One operation of each kind that keeps positions on its own; the property reads and the
// three-way status words share one reader each.
std::vector<Operation> AllOperations(D& drive, D& enclosure) {
    auto out = std::make_shared<D>();
    auto n = std::make_shared<uint32_t>();
    std::vector<Operation> ops = {
        [](D& d) { d.IsValid(); },
        [out](D& d) { d.GetMultiplexerData(*out); },
        [out](D& d) { d.GetAdapterData(*out, 1); },
        [out](D& d) { d.GetPortData(*out, 1); },
        [out](D& d) { d.GetPhysicalDriveData(*out, 3); },
        [out](D& d) { d.GetRaidLogicalDriveData(*out, 1); },
        [out](D& d) { d.GetBatteryData(*out, 0); },
        [out](D& d) { d.GetEnclosureData(*out, 0); },
        [](D& d) { d.GetAdapterCount(); },
        [](D& d) { d.GetPhysicalDriveCount(); },
        [](D& d) { d.GetEnclosureCount(); },
        [n, &drive](D& d) { d.GetPhysicalDriveIndex(*n, drive); },
        [n, &drive](D& d) { d.GetEnclosureIndexOfDrive(*n, drive); },
        [n, &enclosure](D& d) { d.GetEnclosureIndex(*n, enclosure); },
        [](D& d) {
            int32_t status = 0;
            d.GetPhysicalDiskOverallComponentStatus(status);
        },
        [n](D& d) { d.GetBbuOverallComponentStatus(*n); },
        [](D& d) {
            AdapterPciAddress address;
            d.GetAdapterPciAddress(address);
        },
        [](D& d) { d.GetMDCProgressMap(); },
        [out](D& d) { BuildStorageDeviceTree(*out, d); },
        [](D& d) {
            std::string value;
            d.GetPhysicalDriveProperty(value, "Name");
        },
    };
    for (int32_t (D::*get)() :
         {&D::GetPhysicalDriveStatusIndex, &D::GetPhysicalDriveStatus,
          &D::GetPhysicalDriveSmartFlag, &D::GetPhysicalDriveType, &D::GetLogicalDriveStatus,
          &D::GetBatteryStatus, &D::GetBatteryLearnCycleStatus, &D::GetAdapterType,
          &D::GetOverallStatus}) {
        ops.push_back([get](D& d) { (d.*get)(); });
    }
    return ops;
}

// The three positions of a document.
std::vector<uint32_t> Positions(const CXmlDoc& doc) {
    return {doc.GetParentPos(), doc.GetMainPos(), doc.GetChildPos()};
}

TEST(TLRaidDataPositions, EveryOperationLeavesThemAsFound) {
    CTLRaidData tree, adapter, cut;
    ASSERT_TRUE(tree.SetDoc(SampleTree("demo.xml")));
    // Each operation on the kind of document it is written for, and on the whole tree.
    std::vector<std::string> docs = {tree.GetDoc()};
    ASSERT_TRUE(tree.GetAdapterData(adapter, 0));
    docs.push_back(adapter.GetDoc());
    ASSERT_TRUE(adapter.GetPhysicalDriveData(cut, 2));
    docs.push_back(cut.GetDoc());
    ASSERT_TRUE(adapter.GetBatteryData(cut, 0));
    docs.push_back(cut.GetDoc());
    // The drive and enclosure given to the index searches keep theirs too.
    CTLRaidData drive, enclosure;
    drive.SetDoc(
        std::string("<PhysicalDrive><SerialNumber>MV4N02G7Q8</SerialNumber>"
                    "<EnclosureNumber>2</EnclosureNumber></PhysicalDrive>"));
    enclosure.SetDoc(std::string("<Enclosure><EnclosureNumber>2</EnclosureNumber></Enclosure>"));
    ASSERT_TRUE(drive.FindElem() && drive.FindChildElem("EnclosureNumber") && enclosure.FindElem());
    const auto given = Positions(drive), givenEnclosure = Positions(enclosure);
    const std::vector<Operation> ops = AllOperations(drive, enclosure);
    for (size_t k = 0; k < docs.size(); ++k) {
        for (size_t o = 0; o < ops.size(); ++o) {
            // Parent, main and child all at elements; then inside an element with main 0.
            for (int nDeeper : {0, 1}) {
                CTLRaidData doc;
                doc.SetDoc(docs[k]);
                doc.FindElem() && doc.IntoElem() && doc.FindElem() && doc.FindChildElem();
                if (nDeeper) {
                    doc.IntoElem();
                }
                const auto before = Positions(doc);
                ops[o](doc);
                EXPECT_EQ(Positions(doc), before) << "doc " << k << " op " << o;
                EXPECT_EQ(Positions(drive), given) << "doc " << k << " op " << o;
                EXPECT_EQ(Positions(enclosure), givenEnclosure) << "doc " << k << " op " << o;
            }
        }
    }
}

TEST(TLRaidDataPositions, ADocumentMayBeItsOwnOutDocument) {
    CTLRaidData doc;
    ASSERT_TRUE(doc.SetDoc(SampleTree("demo.xml")));
    EXPECT_TRUE(doc.GetAdapterData(doc, 1));
    EXPECT_EQ(doc.GetPhysicalDriveCount(), 2u);
    uint32_t index = 7;
    EXPECT_TRUE(doc.GetPhysicalDriveData(doc, 1));
    EXPECT_FALSE(doc.GetPhysicalDriveIndex(index, doc));  // a drive is no adapter
    EXPECT_EQ(index, 7u);
}

}  // namespace
