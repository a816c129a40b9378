// IsValid: the sample trees, the version, multiplexer and adapter rules, and its trace.
#include <gtest/gtest.h>

#include <string>

#include "storage/TLRaidData.h"
#include "storage/TreeText.h"
#include "support/CaptureTraceServer.h"

namespace {

bool Valid(const std::string& text) {
    CTLRaidData doc;
    doc.SetDoc(text);
    return doc.IsValid();
}

const char* const kAdapterOk = "<Adapter Nr=\"0\"><Status>OK</Status></Adapter>";

TEST(TLRaidDataIsValid, SampleTrees) {
    struct Row {
        const char* file;
        bool valid;
    };
    const Row rows[] = {
        {"demo.xml", true},
        {"cabinets.xml", true},
        {"port-list.xml", true},
        {"channel-list.xml", true},
        {"sas-port.xml", true},
        {"sata-port.xml", true},
        {"scsi-channel.xml", true},
        {"flat.xml", true},
        {"two-adapters-enclosures.xml", true},
        {"batteries.xml", true},
        {"logical-drives.xml", true},
        {"smart-drives.xml", true},
        {"mux-not-operational.xml", false},
        {"adapter-initializing.xml", false},
        {"version1-sasport.xml", false},
    };
    EXPECT_EQ(std::size(rows), SampleTreeNames().size()) << "a sample tree without a row here";
    for (const Row& row : rows) {
        std::string text = SampleTree(row.file);
        ASSERT_FALSE(text.empty()) << row.file;
        EXPECT_EQ(Valid(text), row.valid) << row.file;
    }
}

TEST(TLRaidDataIsValid, VersionMustBeThereAndNotOne) {
    struct Row {
        const char* root;
        bool valid;
    };
    const Row rows[] = {
        {"<amEMTL Version=\"2\">", true},  {"<amEMTL Version=\"1.0\">", true},
        {"<amEMTL Version=\"01\">", true}, {"<amEMTL Version=\"1\">", false},
        {"<amEMTL Version=\"\">", false},  {"<amEMTL>", false},
        {"<amEMTL Nr=\"2\">", false},
    };
    for (const Row& row : rows) {
        std::string text = std::string(row.root) +
                           "<System><Multiplexer><Status>Operational</Status></Multiplexer>" +
                           kAdapterOk + "</System></amEMTL>";
        EXPECT_EQ(Valid(text), row.valid) << row.root;
    }
}

TEST(TLRaidDataIsValid, MultiplexerMustBeOperationalCaseIncluded) {
    EXPECT_TRUE(Valid(WholeTree(kAdapterOk)));
    const char* const refused[] = {
        "<amEMTL Version=\"2\"><System><Multiplexer><Status>operational</Status>"
        "</Multiplexer></System></amEMTL>",
        "<amEMTL Version=\"2\"><System><Multiplexer><Status>Operational </Status>"
        "</Multiplexer></System></amEMTL>",
        "<amEMTL Version=\"2\"><System><Multiplexer><StatusOverall>OK</StatusOverall>"
        "</Multiplexer></System></amEMTL>",
        "<amEMTL Version=\"2\"><System><Adapter><Status>OK</Status></Adapter></System></amEMTL>",
        "<amEMTL Version=\"2\"><Multiplexer><Status>Operational</Status></Multiplexer></amEMTL>",
        "<Tree Version=\"2\"><System><Multiplexer><Status>Operational</Status></Multiplexer>"
        "</System></Tree>",
    };
    for (const char* text : refused) {
        EXPECT_FALSE(Valid(text)) << text;
    }
}

TEST(TLRaidDataIsValid, AnyInitializingAdapterRefusesTheTree) {
    std::string many;
    for (int i = 0; i < 5; ++i) {
        many += kAdapterOk;
    }
    const std::string initializing = "<Adapter><Status>Initializing</Status></Adapter>";
    EXPECT_FALSE(Valid(WholeTree(many + initializing)));
    EXPECT_FALSE(Valid(WholeTree(initializing + many)));
    // The adapters may stand before the multiplexer too.
    EXPECT_FALSE(
        Valid("<amEMTL Version=\"2\"><System>" + initializing +
              "<Multiplexer><Status>Operational</Status></Multiplexer></System></amEMTL>"));
    // Exact comparison; an adapter without Status or without children passes.
    EXPECT_TRUE(Valid(WholeTree(many + "<Adapter><Status>initializing</Status></Adapter>")));
    EXPECT_TRUE(Valid(WholeTree("<Adapter><Name>x</Name></Adapter><Adapter/>" + many)));
    // A Status deeper down in an adapter is not the adapter's.
    EXPECT_TRUE(Valid(
        WholeTree("<Adapter><Ports><Port><Status>Initializing</Status></Port></Ports></Adapter>")));
    // A tree without adapters is usable.
    EXPECT_TRUE(Valid(WholeTree("")));
}

TEST(TLRaidDataIsValid, IllFormedTextsAreRefused) {
    const char* const texts[] = {
        "",
        "not xml at all",
        "<amEMTL Version=\"2\"><System><Multiplexer><Status>Operational</Status></Multiplexer>",
        "<amEMTL Version=\"2\"><System><Multiplexer><Status>Operational</Status></Multiplexer>"
        "</System></amEMTL><amEMTL Version=\"2\"/>",
    };
    for (const char* text : texts) {
        EXPECT_FALSE(Valid(text)) << text;
    }
}

TEST(TLRaidDataIsValid, TracesEachStepAtLevelFive) {
    ScopedTraceLevel level(5);
    EXPECT_TRUE(Valid(SampleTree("demo.xml")));
    EXPECT_EQ(Debug.Take(),
              "\nCTLRaidData         : IsValid(), well formed"
              "\nCTLRaidData         : amEMTLVersion, 2"
              "\nCTLRaidData         : amEMTLVersion != 1"
              "\nCTLRaidData         : Multiplexer status: \"Operational\""
              "\nCTLRaidData         : Adapter status: \"OK\""
              "\nCTLRaidData         : Adapter status: \"OK\"");

    EXPECT_FALSE(Valid(SampleTree("version1-sasport.xml")));
    EXPECT_EQ(Debug.Take(),
              "\nCTLRaidData         : IsValid(), well formed"
              "\nCTLRaidData         : amEMTLVersion, 1");

    EXPECT_FALSE(Valid("<amEMTL>"));
    EXPECT_EQ(Debug.Take(), "\nCTLRaidData         : IsValid(), not well formed");

    EXPECT_FALSE(Valid(SampleTree("adapter-initializing.xml")));
    std::string trace = Debug.Take();
    EXPECT_NE(trace.find("Adapter status: \"Initializing\""), std::string::npos) << trace;
}

TEST(TLRaidDataIsValid, KeepsThePositionsAndWorksOnAPlainDocument) {
    CXmlDoc doc;
    ASSERT_TRUE(doc.SetDoc(SampleTree("demo.xml")));
    ASSERT_TRUE(doc.FindElem("amEMTL") && doc.IntoElem() && doc.FindElem("System"));
    ASSERT_TRUE(doc.FindChildElem("Adapter") && doc.FindChildElem("Adapter"));
    uint32_t parent = doc.GetParentPos(), main = doc.GetMainPos(), child = doc.GetChildPos();
    EXPECT_TRUE(CTLRaidData::IsValid(doc));
    EXPECT_EQ(doc.GetParentPos(), parent);
    EXPECT_EQ(doc.GetMainPos(), main);
    EXPECT_EQ(doc.GetChildPos(), child);
}

}  // namespace
