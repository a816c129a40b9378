// The exported tree: the sample trees against their expected files, the attribute rules the
// samples don't show, wrappers, the source's positions.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>

#include "storage/StorageExport.h"
#include "storage/StorageTreeConvert.h"
#include "storage/TLRaidData.h"
#include "storage/TreeText.h"

namespace {

const char* const kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<TLRaidStorageDeviceTree Version=\"2\">\n";
const char* const kTail = "</TLRaidStorageDeviceTree>\n";

// The export of a tree in the format; false as the export's answer makes the text "refused".
std::string Export(const std::string& tree, int format = kStorageTreeXml) {
    CTLRaidData source;
    source.SetDoc(tree);
    std::string out;
    return ExportStorageTree(source, format, out) ? out : "refused";
}

// The export of the content of an amEMTL root, less the head and tail lines.
std::string ExportBody(const std::string& content) {
    const std::string out = Export("<amEMTL Version=\"2\">" + content + "</amEMTL>");
    const std::string head = kHead, tail = kTail;
    EXPECT_EQ(out.substr(0, head.size()), head);
    EXPECT_EQ(out.substr(out.size() - std::min(out.size(), tail.size())), tail);
    return out.substr(head.size(), out.size() - head.size() - tail.size());
}

TEST(StorageExport, EverySampleTreeAsItsExpectedFiles) {
    for (const std::string& name : SampleTreeNames()) {
        const std::string base = name.substr(0, name.size() - 4);
        const std::string tree = SampleTree(name);
        const std::string xml = SourceText("samples/export/" + base + ".xml");
        const std::string json = SourceText("samples/export/" + base + ".json");
        ASSERT_FALSE(xml.empty()) << "no expected XML for " << name;
        ASSERT_FALSE(json.empty()) << "no expected JSON for " << name;
        EXPECT_EQ(Export(tree, kStorageTreeXml), xml) << name;
        EXPECT_EQ(Export(tree, kStorageTreeJson), json) << name;
    }
}

TEST(StorageExport, AttributesByTheTable) {
    const std::tuple<const char*, const char*> rows[] = {
        {"<LogicalDrive LogDriveNumber=\"0\" Nr=\"7\" NrOfProperties=\"0\"/>",
         "<LogicalDrive Nr=\"0\"></LogicalDrive>\n"},
        {"<Container Name=\"c &amp; d\" Nr=\"2\" Type=\"x\" NrOfProperties=\"0\"/>",
         "<Container Name=\"c &amp; d\" Nr=\"2\"></Container>\n"},
        // Both numbers of a port go to Nr: the later one stays.
        {"<Port Nr=\"1\" DeviceNumber=\"9\" NrOfProperties=\"0\"/>", "<Port Nr=\"9\"></Port>\n"},
        {"<Port DeviceNumber=\"9\" Nr=\"1\" NrOfProperties=\"0\"/>", "<Port Nr=\"1\"></Port>\n"},
        // A type becomes the first child, the number stays an attribute, names go.
        {"<Adapter Type=\"SAS\" Nr=\"0\" Name=\"A (0)\" NrOfProperties=\"1\"><Status>OK</Status>"
         "</Adapter>",
         "<Adapter Nr=\"0\">\n<Type>SAS</Type>\n<Status>OK</Status>\n</Adapter>\n"},
        {"<Port Type=\"\" NrOfProperties=\"0\"/>", "<Port>\n<Type/>\n</Port>\n"},
        // Attributes of other tags, and of properties, are dropped.
        {"<Enclosure Name=\"E\" Nr=\"4\" NrOfProperties=\"1\"><Status Nr=\"1\">OK</Status>"
         "</Enclosure>",
         "<Enclosure>\n<Status>OK</Status>\n</Enclosure>\n"},
    };
    for (const auto& [source, exported] : rows) {
        EXPECT_EQ(ExportBody(std::string("<System NrOfProperties=\"0\">") + source + "</System>"),
                  std::string("<System>\n") + exported + "</System>\n")
            << source;
    }
}

TEST(StorageExport, WrappersVanishAndTheirObjectsMoveUp) {
    // Ports under an object goes, and its ports come up one level. A property is copied, but
    // the unmarked elements under it are wrappers, with their text.
    EXPECT_EQ(ExportBody("<System NrOfProperties=\"0\"><Adapter NrOfProperties=\"1\">"
                         "<Status>OK</Status><Ports><Port Nr=\"0\" NrOfProperties=\"0\"/>"
                         "<Port Nr=\"1\" NrOfProperties=\"0\"/></Ports>"
                         "<Notes>n<Note>x</Note></Notes></Adapter></System>"),
              "<System>\n<Adapter>\n<Status>OK</Status>\n<Port Nr=\"0\"></Port>\n"
              "<Port Nr=\"1\"></Port>\n<Notes></Notes>\n</Adapter>\n</System>\n");
    // An unmarked element under an unmarked parent goes with its text and attributes; the
    // objects beneath it stay.
    EXPECT_EQ(ExportBody("<Group Kind=\"g\">text<Inner><PhysicalDrive DeviceNumber=\"5\" "
                         "NrOfProperties=\"1\"><Status>OK</Status></PhysicalDrive></Inner>"
                         "<Loose>l</Loose></Group>"),
              "<PhysicalDrive Nr=\"5\">\n<Status>OK</Status>\n</PhysicalDrive>\n");
    // So is an unmarked System: its objects stand under the root.
    EXPECT_EQ(ExportBody("<System><Multiplexer NrOfProperties=\"1\"><Status>Operational"
                         "</Status></Multiplexer></System>"),
              "<Multiplexer>\n<Status>Operational</Status>\n</Multiplexer>\n");
}

TEST(StorageExport, DeepNesting) {
    const int kDepth = 10000;
    std::string source, exported = "<O></O>\n";
    for (int i = 0; i < kDepth; ++i) {
        source = "<O NrOfProperties=\"0\"><Ports>" + source + "</Ports></O>";
    }
    for (int i = 1; i < kDepth; ++i) {
        exported = "<O>\n" + exported + "</O>\n";
    }
    EXPECT_EQ(ExportBody(source), exported);
}

TEST(StorageExport, SourceWithoutRootLeavesTargetEmpty) {
    CTLRaidData source, target;
    source.SetDoc("<Tree><System NrOfProperties=\"0\"/></Tree>");
    BuildStorageDeviceTree(target, source);
    EXPECT_EQ(target.GetDoc(), "");
    std::string out = "before";
    EXPECT_TRUE(ConvertStorageTree(target, out, kStorageTreeJson));
    EXPECT_EQ(out, "before");
}

// An unknown format and an ill-formed document leave the output alone.
TEST(StorageExport, ConvertByFormat) {
    CTLRaidData doc;
    doc.SetDoc("<a><b>1</b></a>");
    std::string out = "untouched";
    EXPECT_TRUE(ConvertStorageTree(doc, out, 3));
    EXPECT_EQ(out, "untouched");
    doc.SetDoc("<a><b></a>");
    out = "untouched";
    EXPECT_TRUE(ConvertStorageTree(doc, out, kStorageTreeXml));
    EXPECT_EQ(out, "untouched");
}

}  // namespace
