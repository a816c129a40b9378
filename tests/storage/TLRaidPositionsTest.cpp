// Every operation leaves the document's positions as it found them, and no operation
// crashes on any text, however broken.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "storage/TLRaidData.h"
#include "storage/TreeText.h"

namespace {

struct Operation {
    const char* name;
    std::function<void(CTLRaidData&)> run;
};

// Somewhere for an operation to put what it finds.
template <typename T>
T& Out() {
    static T out;
    return out;
}

// All operations, each with some arguments.
std::vector<Operation> AllOperations() {
    auto drive = std::make_shared<CTLRaidData>();
    drive->SetDoc(
        std::string("<PhysicalDrive><SerialNumber>MV4N02G7Q8</SerialNumber>"
                    "<EnclosureNumber>2</EnclosureNumber></PhysicalDrive>"));
    auto enclosure = std::make_shared<CTLRaidData>();
    enclosure->SetDoc(std::string("<Enclosure><EnclosureNumber>2</EnclosureNumber></Enclosure>"));
    using D = CTLRaidData;
    std::vector<Operation> ops = {
        {"IsValid", [](D& d) { d.IsValid(); }},
        {"GetMultiplexerData", [](D& d) { d.GetMultiplexerData(Out<D>()); }},
        {"GetAdapterCount", [](D& d) { d.GetAdapterCount(); }},
        {"GetAdapterData", [](D& d) { d.GetAdapterData(Out<D>(), 1); }},
        {"GetPhysicalDiskOverallComponentStatus",
         [](D& d) { d.GetPhysicalDiskOverallComponentStatus(Out<int32_t>()); }},
        {"GetBbuOverallComponentStatus",
         [](D& d) { d.GetBbuOverallComponentStatus(Out<uint32_t>()); }},
        {"GetAdapterPciAddress", [](D& d) { d.GetAdapterPciAddress(Out<AdapterPciAddress>()); }},
        {"GetPortData", [](D& d) { d.GetPortData(Out<D>(), 1); }},
        {"GetPhysicalDriveCount", [](D& d) { d.GetPhysicalDriveCount(); }},
        {"GetPhysicalDriveData", [](D& d) { d.GetPhysicalDriveData(Out<D>(), 3); }},
        {"GetPhysicalDriveIndex",
         [drive](D& d) { d.GetPhysicalDriveIndex(Out<uint32_t>(), *drive); }},
        {"GetRaidLogicalDriveData", [](D& d) { d.GetRaidLogicalDriveData(Out<D>(), 1); }},
        {"GetBatteryData", [](D& d) { d.GetBatteryData(Out<D>(), 0); }},
        {"GetEnclosureCount", [](D& d) { d.GetEnclosureCount(); }},
        {"GetEnclosureData", [](D& d) { d.GetEnclosureData(Out<D>(), 0); }},
        {"GetEnclosureIndexOfDrive",
         [drive](D& d) { d.GetEnclosureIndexOfDrive(Out<uint32_t>(), *drive); }},
        {"GetEnclosureIndex",
         [enclosure](D& d) { d.GetEnclosureIndex(Out<uint32_t>(), *enclosure); }},
    };
    using Property = bool (D::*)(std::string&, const char*);
    for (Property read :
         {&D::GetPhysicalDriveProperty, &D::GetPortProperty, &D::GetLogicalDriveProperty,
          &D::GetBatteryProperty, &D::GetEnclosureProperty}) {
        ops.push_back({"a property read", [read](D& d) { (d.*read)(Out<std::string>(), "Name"); }});
    }
    for (int32_t (D::*get)() :
         {&D::GetPhysicalDriveStatusIndex, &D::GetPhysicalDriveStatus,
          &D::GetPhysicalDriveSmartFlag, &D::GetPhysicalDriveType, &D::GetLogicalDriveStatus,
          &D::GetBatteryStatus, &D::GetBatteryLearnCycleStatus, &D::GetEnclosureStatus,
          &D::GetAdapterStatus, &D::GetAdapterType, &D::GetOverallStatus, &D::GetAdaptersStatus,
          &D::GetDisksStatus, &D::GetLogicalDrivesStatus}) {
        ops.push_back({"a status getter", [get](D& d) { (d.*get)(); }});
    }
    return ops;
}

// Cursor placements to start from: the three positions after some navigation.
using Placement = std::function<void(CTLRaidData&)>;

const Placement kPlacements[] = {
    [](CTLRaidData& d) { d.ResetPos(); },
    [](CTLRaidData& d) { d.FindElem(); },
    [](CTLRaidData& d) {  // parent set, main and child at elements
        d.FindElem();
        d.IntoElem();
        d.FindElem();
        d.FindChildElem();
        d.FindChildElem();
    },
    [](CTLRaidData& d) {  // inside an element with nothing found yet: main 0
        d.FindElem();
        d.IntoElem();
        d.FindElem();
        d.FindChildElem();
        d.IntoElem();
    },
};

TEST(TLRaidDataPositions, EveryOperationLeavesThemAsFound) {
    CTLRaidData tree;
    ASSERT_TRUE(tree.SetDoc(SampleTree("demo.xml")));
    // Each operation on the kind of document it is written for, and on the whole tree.
    std::vector<std::pair<std::string, std::string>> docs = {{"tree", tree.GetDoc()}};
    CTLRaidData cut;
    ASSERT_TRUE(tree.GetMultiplexerData(cut));
    docs.emplace_back("multiplexer", cut.GetDoc());
    CTLRaidData adapter;
    ASSERT_TRUE(tree.GetAdapterData(adapter, 0));
    docs.emplace_back("adapter", adapter.GetDoc());
    ASSERT_TRUE(adapter.GetPhysicalDriveData(cut, 2));
    docs.emplace_back("drive", cut.GetDoc());
    ASSERT_TRUE(adapter.GetEnclosureData(cut, 0));
    docs.emplace_back("enclosure", cut.GetDoc());
    ASSERT_TRUE(adapter.GetBatteryData(cut, 0));
    docs.emplace_back("battery", cut.GetDoc());

    for (const auto& [kind, text] : docs) {
        for (const Operation& op : AllOperations()) {
            for (size_t p = 0; p < std::size(kPlacements); ++p) {
                CTLRaidData doc;
                doc.SetDoc(text);
                kPlacements[p](doc);
                uint32_t parent = doc.GetParentPos(), main = doc.GetMainPos(),
                         child = doc.GetChildPos();
                op.run(doc);
                EXPECT_EQ(doc.GetParentPos(), parent) << op.name << " on " << kind << " " << p;
                EXPECT_EQ(doc.GetMainPos(), main) << op.name << " on " << kind << " " << p;
                EXPECT_EQ(doc.GetChildPos(), child) << op.name << " on " << kind << " " << p;
            }
        }
    }
}

TEST(TLRaidDataPositions, GivenDocumentsKeepTheirPositionsToo) {
    CTLRaidData tree;
    ASSERT_TRUE(tree.SetDoc(SampleTree("port-list.xml")));
    CTLRaidData adapter;
    ASSERT_TRUE(tree.GetAdapterData(adapter, 0));
    CTLRaidData drive;
    ASSERT_TRUE(adapter.GetPhysicalDriveData(drive, 2));
    ASSERT_TRUE(drive.FindElem() && drive.FindChildElem("Status"));
    uint32_t main = drive.GetMainPos(), child = drive.GetChildPos();
    uint32_t index = 0;
    EXPECT_TRUE(adapter.GetPhysicalDriveIndex(index, drive));
    EXPECT_TRUE(adapter.GetEnclosureIndexOfDrive(index, drive));
    EXPECT_EQ(drive.GetMainPos(), main);
    EXPECT_EQ(drive.GetChildPos(), child);
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

// Texts that no tree reader should trip over: the samples cut short at many places, with
// their end tags dropped or doubled, and a few odd shapes.
std::vector<std::string> BrokenTexts() {
    std::vector<std::string> texts = {
        "",
        "<",
        "<amEMTL",
        "<amEMTL Version=\"2\"/>",
        "text only",
        "<a><b></a></b>",
        "<amEMTL Version=\"2\"><System><Adapter><Ports><Port><Enclosure><PhysicalDrive>",
        "</Adapter></System></amEMTL>",
        "<Adapter><Ports><Port/><Port><Enclosure/></Port></Ports><Ports/></Adapter>",
        "<Adapter><Ports><Port><Enclosure><EnclosureNumber/></Enclosure></Port></Ports>"
        "</Adapter>",
        "<PhysicalDrive><Status><![CDATA[Failed]]></Status></PhysicalDrive>",
    };
    for (const std::string& name : SampleTreeNames()) {
        std::string text = SampleTree(name);
        for (size_t cut = 0; cut < text.size(); cut += 211) {
            texts.push_back(text.substr(0, cut));
        }
        std::string noEnds = text;
        for (size_t at = noEnds.find("</Enclosure>"); at != std::string::npos;
             at = noEnds.find("</Enclosure>")) {
            noEnds.erase(at, 12);
        }
        texts.push_back(noEnds);
    }
    return texts;
}

TEST(TLRaidDataRobustness, NoOperationTripsOverBrokenText) {
    std::vector<Operation> ops = AllOperations();
    size_t count = 0;
    for (const std::string& text : BrokenTexts()) {
        CTLRaidData whole;
        whole.SetDoc(text);
        // Also as an adapter document, when the text has an adapter to cut.
        CTLRaidData adapter;
        whole.GetAdapterData(adapter, 0);
        for (const Operation& op : ops) {
            op.run(whole);
            op.run(adapter);
            ++count;
        }
    }
    EXPECT_GT(count, 1000u);
}

}  // namespace
