// IsValid: the sample trees, the version, multiplexer and adapter rules, and its trace.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <tuple>

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
    const std::set<std::string> refused = {"mux-not-operational.xml", "adapter-initializing.xml",
                                           "version1-sasport.xml"};
    ASSERT_GE(SampleTreeNames().size(), 15u);
    for (const std::string& name : SampleTreeNames()) {
        EXPECT_EQ(Valid(SampleTree(name)), refused.count(name) == 0) << name;
    }
}

TEST(TLRaidDataIsValid, VersionMustBeThereAndNotOne) {
    const std::tuple<const char*, bool> rows[] = {
        {"<amEMTL Version=\"2\">", true},
        {"<amEMTL Version=\"1.0\">", true},
        {"<amEMTL Version=\"1\">", false},
        {"<amEMTL Version=\"\">", false},
        {"<amEMTL>", false},
    };
    for (const auto& [root, valid] : rows) {
        std::string text = std::string(root) +
                           "<System><Multiplexer><Status>Operational</Status></Multiplexer>" +
                           kAdapterOk + "</System></amEMTL>";
        EXPECT_EQ(Valid(text), valid) << root;
    }
}

TEST(TLRaidDataIsValid, MultiplexerMustBeOperationalCaseIncludedAndTheTextWellFormed) {
    EXPECT_TRUE(Valid(WholeTree(kAdapterOk)));
    const char* const refused[] = {
        "",
        "<amEMTL Version=\"2\"><System><Multiplexer><Status>Operational</Status></Multiplexer>",
        "<amEMTL Version=\"2\"><System><Multiplexer><Status>Operational</Status></Multiplexer>"
        "</System></amEMTL><amEMTL Version=\"2\"/>",
        "<amEMTL Version=\"2\"><System><Multiplexer><Status>operational</Status>"
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
    const std::string many = std::string(kAdapterOk) + kAdapterOk + kAdapterOk;
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

TEST(TLRaidDataIsValid, AStartTagTooLongForTheIndexRefusesTheTreeWithAWarning) {
    ScopedTraceLevel level(1);
    std::string adapter = "<Adapter Nr=\"0\" Pad=\"" + std::string(4 << 20, 'p') + "\">";
    EXPECT_FALSE(Valid(WholeTree(adapter + "<Status>OK</Status></Adapter>")));
    EXPECT_EQ(Debug.Take(),
              "\nCTLRaidData         : Warning! A start tag of 4 MiB or more, tree refused");
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
}

}  // namespace
