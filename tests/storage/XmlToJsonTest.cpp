// The JSON writer: its rules on small documents, the export's array list, the standalone
// element and value forms, agreement with a writer that searches the siblings anew for each
// element, and the sample trees read back by a JSON parser.
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <random>
#include <string>

#include "storage/StorageExport.h"
#include "storage/StorageTreeConvert.h"
#include "storage/TLRaidData.h"
#include "storage/TreeText.h"
#include "storage/XmlToJson.h"
#include "xml/XmlTree.h"

namespace {

std::string Json(const std::string& xml, const ArrayList& list = {}, bool bNumbers = true,
                 bool bAttributes = true, bool bPretty = false) {
    CXmlDoc doc;
    doc.SetDoc(xml);
    std::string out;
    XmlToJSON(out, doc, list, bNumbers, bAttributes, bPretty);
    return out;
}

TEST(XmlToJson, ElementsAttributesAndArrays) {
    struct Row {
        const char* xml;
        const char* json;
    };
    const Row rows[] = {
        {"<a x=\"1\"><b>5</b><b>t</b><c k=\"v\">u</c></a>",
         "{\"a\":{\"@x\":1,\"b\":[5,\"t\"],\"c\":{\"@k\":\"v\",\"#text\":\"u\"}}}"},
        // Siblings of a name form one array at the place of the first of them.
        {"<a><b>1</b><c/><b>2</b><d/><b/></a>", "{\"a\":{\"b\":[1,2,\"\"],\"c\":\"\",\"d\":\"\"}}"},
        {"<a><b><c>1</c></b><b><c>2</c><c>3</c></b></a>",
         "{\"a\":{\"b\":[{\"c\":1},{\"c\":[2,3]}]}}"},
        // Children without attributes: no comma before the first; with one, a comma.
        {"<a><b/></a>", "{\"a\":{\"b\":\"\"}}"},
        {"<a x=\"1\"><b/></a>", "{\"a\":{\"@x\":1,\"b\":\"\"}}"},
        {"<a x=\"1\" y=\"z\"/>", "{\"a\":{\"@x\":1,\"@y\":\"z\",\"#text\":\"\"}}"},
        // An empty attribute value counts as digits: nothing behind the colon.
        {"<a><b x=\"\">t</b></a>", "{\"a\":{\"b\":{\"@x\":,\"#text\":\"t\"}}}"},
        // Quotes in text are escaped, in attribute values not; nothing else is escaped.
        {"<a q='say \"hi\"'>say \"hi\"</a>",
         "{\"a\":{\"@q\":\"say \"hi\"\",\"#text\":\"say \\\"hi\\\"\"}}"},
        {"<a>c:\\dir\\</a>", "{\"a\":\"c:\\dir\\\"}"},
        {"<a>x\ty</a>", "{\"a\":\"x\ty\"}"},
        {"<a>&lt;&amp;</a>", "{\"a\":\"<&\"}"},
        // Texts that read as numbers.
        {"<a><b>0</b><c>00</c><d>12</d><e>007</e><f>1.5</f><g>-3</g><h>1e3</h></a>",
         "{\"a\":{\"b\":0,\"c\":\"00\",\"d\":12,\"e\":\"007\",\"f\":\"1.5\",\"g\":\"-3\","
         "\"h\":\"1e3\"}}"},
        {"<a b=\"0\" c=\"01\" d=\"10\" e=\"-1\"/>",
         "{\"a\":{\"@b\":0,\"@c\":\"01\",\"@d\":10,\"@e\":\"-1\",\"#text\":\"\"}}"},
        // Text beside children isn't written; a CDATA section is text.
        {"<a>t<b>1</b></a>", "{\"a\":{\"b\":1}}"},
        {"<a><![CDATA[<x>]]></a>", "{\"a\":\"<x>\"}"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Json(row.xml), row.json) << row.xml;
    }
}

TEST(XmlToJson, NumbersAndAttributesCanBeOff) {
    const std::string xml = "<a x=\"1\" e=\"\"><b>5</b><b></b></a>";
    EXPECT_EQ(Json(xml, {}, false, true), "{\"a\":{\"@x\":\"1\",\"@e\":\"\",\"b\":[\"5\",\"\"]}}");
    EXPECT_EQ(Json(xml, {}, true, false), "{\"a\":{\"b\":[5,\"\"]}}");
}

TEST(XmlToJson, EmptyDocumentGivesBracesAndFalse) {
    CXmlDoc doc;
    std::string out = "old";
    EXPECT_FALSE(XmlToJSON(out, doc, {}, true, true, false));
    EXPECT_EQ(out, "{}");
    doc.SetDoc("<a/>");
    EXPECT_TRUE(XmlToJSON(out, doc, {}, true, true, false));
    EXPECT_EQ(out, "{\"a\":\"\"}");
}

TEST(XmlToJson, PrettyForm) {
    EXPECT_EQ(
        Json("<a x=\"1\"><b>5</b><b>t</b><c k=\"v\">u</c><d><e/></d></a>", {}, true, true, true),
        "{\n"
        "\t\"a\":{\n"
        "\t\t\"@x\":1,\n"
        "\t\t\"b\":[5,\n"
        "\t\t\t\"t\"\n"
        "\t\t],\n"
        "\t\t\"c\":{\n"
        "\t\t\t\"@k\":\"v\",\n"
        "\t\t\t\"#text\":\"u\"},\n"
        "\t\t\"d\":{\n"
        "\t\t\t\"e\":\"\"\n"
        "\t\t}\n"
        "\t}\n"
        "\t\n"
        "}");
}

// The export's list: paths match only where every level is the first of its name.
TEST(XmlToJson, ArrayListOfTheExport) {
    const std::string tree =
        "<TLRaidStorageDeviceTree Version=\"2\"><System>"
        "<Adapter Nr=\"0\"><Port Nr=\"0\"><Enclosure><PhysicalDrive Nr=\"1\"/></Enclosure>"
        "</Port><LogicalDrive Nr=\"0\"><Layout><Container Nr=\"0\"><PhysicalDrive Nr=\"1\"/>"
        "</Container></Layout></LogicalDrive></Adapter>"
        "<Adapter Nr=\"1\"><Port Nr=\"0\"/><LogicalDrive Nr=\"0\"/></Adapter>"
        "</System></TLRaidStorageDeviceTree>";
    EXPECT_EQ(Json(tree, StorageTreeArrayList()),
              "{\"TLRaidStorageDeviceTree\":{\"@Version\":2,\"System\":{\"Adapter\":["
              "{\"@Nr\":0,\"Port\":[{\"@Nr\":0,\"Enclosure\":{\"PhysicalDrive\":"
              "{\"@Nr\":1,\"#text\":\"\"}}}],\"LogicalDrive\":[{\"@Nr\":0,\"Layout\":{"
              "\"Container\":[{\"@Nr\":0,\"PhysicalDrive\":[{\"@Nr\":1,\"#text\":\"\"}]}]}}]},"
              "{\"@Nr\":1,\"Port\":{\"@Nr\":0,\"#text\":\"\"},\"LogicalDrive\":"
              "{\"@Nr\":0,\"#text\":\"\"}}]}}}");
    // A lone adapter is an array, because its path is on the list.
    EXPECT_EQ(Json("<TLRaidStorageDeviceTree><System><Adapter>1</Adapter></System>"
                   "</TLRaidStorageDeviceTree>",
                   StorageTreeArrayList()),
              "{\"TLRaidStorageDeviceTree\":{\"System\":{\"Adapter\":[1]}}}");
}

TEST(XmlToJson, DeepNestingDoesNotUseUpTheStack) {
    const int kDepth = 100000;
    std::string xml, json = "{";
    for (int i = 0; i < kDepth; ++i) {
        xml += "<e>";
        json += "\"e\":";
        json += i + 1 < kDepth ? "{" : "1";
    }
    xml += "1";
    for (int i = 0; i < kDepth; ++i) {
        xml += "</e>";
        json += "}";
    }
    EXPECT_EQ(Json(xml), json);
}

TEST(XmlToJson, ElementAndValueAtThePosition) {
    CXmlDoc doc;
    doc.SetDoc("<r><a x=\"1\"><b>2</b></a><c/><a>3</a></r>");
    ASSERT_TRUE(doc.FindElem("r") && doc.IntoElem() && doc.FindElem("c"));
    std::string out = "<";
    EXPECT_EQ(ElementToJSON(out, doc, {}, true, true, false, 1, 1), 1);
    EXPECT_EQ(out, "<,\"c\":\"\"");
    // The second a was written with the first; the first writes both.
    ASSERT_TRUE(doc.FindElem("a"));
    out.clear();
    ElementToJSON(out, doc, {}, true, true, false, 1, 1);
    EXPECT_EQ(out, "");
    ASSERT_TRUE(doc.FindPrevElem("a"));
    const uint32_t main = doc.GetMainPos();
    ElementToJSON(out, doc, {}, true, true, false, 0, 1);
    EXPECT_EQ(out, "\"a\":[{\"@x\":1,\"b\":2},3]");
    out.clear();
    EXPECT_EQ(ValueToJSON(out, doc, {}, true, true, false, 0, 1), 1);
    EXPECT_EQ(out, "{\"@x\":1,\"b\":2}");
    EXPECT_EQ(doc.GetMainPos(), main);
    // On the list by its path.
    out.clear();
    ASSERT_TRUE(doc.IntoElem() && doc.FindElem("b"));
    ElementToJSON(out, doc, {"/r/a/b"}, true, true, false, 0, 1);
    EXPECT_EQ(out, "\"b\":[2]");
}

// The writer as the storage tree's clients have always had it: it searches the siblings anew
// for each element, and keeps its place in saved positions.
class SearchingWriter {
  public:
    SearchingWriter(CXmlDoc& doc, const ArrayList& list) : m_Doc(doc), m_List(list) {}

    std::string Convert() {
        m_sOut = "{";
        m_Doc.SavePos("XmlToJSON");
        m_Doc.ResetPos();
        for (int i = 0; m_Doc.FindElem(); ++i) {
            Element(i);
        }
        m_Doc.RestorePos("XmlToJSON");
        return m_sOut + "}";
    }

  private:
    bool Test(const char* pszGuard, bool bPrev, const std::string& name) {
        m_Doc.SavePos(pszGuard);
        bool b = bPrev ? m_Doc.FindPrevElem(name.c_str()) : m_Doc.FindElem(name.c_str());
        m_Doc.RestorePos(pszGuard);
        return b;
    }

    void Element(int nIndex) {
        const std::string name = m_Doc.GetTagName();
        const std::string path = m_Doc.GetElemPath();
        const bool bOnList = std::find(m_List.begin(), m_List.end(), path) != m_List.end();
        if (!bOnList && !Test("IsArrayElem", true, name) && !Test("IsArrayElem", false, name)) {
            m_sOut += std::string(nIndex ? "," : "") + "\"" + name + "\":";
            Value();
            return;
        }
        if (Test("IsFirstArrayElem", true, name) ||
            (!bOnList && !Test("IsFirstArrayElem", false, name))) {
            return;
        }
        m_sOut += std::string(nIndex ? "," : "") + "\"" + name + "\":[";
        Value();
        const std::string guard = "ArrayElem/" + path;
        m_Doc.SavePos(guard.c_str());
        while (m_Doc.FindElem(name.c_str())) {
            m_sOut += ",";
            Value();
        }
        m_Doc.RestorePos(guard.c_str());
        m_sOut += "]";
    }

    static bool Digits(const std::string& s) {
        return s.find_first_not_of("0123456789") == std::string::npos &&
               (s.size() < 2 || s[0] != '0');
    }

    void Value() {
        const std::string path = m_Doc.GetElemPath();
        m_Doc.SavePos(path.c_str());
        m_Doc.SavePos("IsSimpleElem");
        const bool bChildren = m_Doc.FindChildElem();
        m_Doc.RestorePos("IsSimpleElem");
        m_sOut += bChildren ? "{" : "";
        int n = 0;
        for (;; ++n) {
            const std::string name = m_Doc.GetAttribName(n);
            if (name.empty()) {
                break;
            }
            m_sOut += n ? "," : bChildren ? "" : "{";
            const std::string value = m_Doc.GetAttrib(m_Doc.GetMainPos(), name.c_str());
            m_sOut += "\"@" + name + "\":" + (Digits(value) ? value : "\"" + value + "\"");
        }
        if (!bChildren) {
            m_sOut += n ? ",\"#text\":" : "";
            std::string text = m_Doc.GetData(m_Doc.GetMainPos());
            if (text.empty()) {
                m_sOut += "\"\"";
            } else if (Digits(text)) {
                m_sOut += text;
            } else {
                m_sOut += "\"";
                for (char c : text) {
                    m_sOut += c == '"' ? std::string("\\\"") : std::string(1, c);
                }
                m_sOut += "\"";
            }
            m_sOut += n ? "}" : "";
        } else {
            m_Doc.IntoElem();
            for (int i = n; m_Doc.FindElem(); ++i) {
                Element(i);
            }
            m_Doc.OutOfElem();
            m_sOut += "}";
        }
        m_Doc.RestorePos(path.c_str());
    }

    CXmlDoc& m_Doc;
    const ArrayList& m_List;
    std::string m_sOut;
};

// Random documents: few names, so that siblings share them, some attributes and texts, and
// names that mean more than themselves to a search.
std::string RandomXml(std::mt19937& rng, int nDepth) {
    static const char* const kNames[] = {"a", "b", "c", "a", "b", "Adapter", "a[1]", "b]"};
    static const char* const kTexts[] = {"", "0", "7", "01", "x", "q\"t"};
    auto pick = [&rng](size_t n) { return size_t(rng() % n); };
    std::string name = kNames[pick(std::size(kNames))];
    std::string xml = "<" + name;
    for (size_t i = 0, n = pick(3); i < n; ++i) {
        xml += " k" + std::to_string(i) + "=\"" + kTexts[pick(4)] + "\"";
    }
    xml += ">";
    size_t nChildren = nDepth > 0 ? pick(6) : 0;
    if (nChildren == 0) {
        xml += kTexts[pick(std::size(kTexts))];
        if (xml.back() == '"') {
            xml.replace(xml.size() - 1, 1, "&quot;");
        }
    }
    for (size_t i = 0; i < nChildren; ++i) {
        xml += RandomXml(rng, nDepth - 1);
    }
    return xml + "</" + name + ">";
}

TEST(XmlToJson, SameAsSearchingTheSiblingsForEachElement) {
    std::mt19937 rng(14);
    const ArrayList lists[] = {{}, {"/a/b", "/a/a", "/a/a[2]/c", "/b/b/b"}};
    for (int i = 0; i < 300; ++i) {
        const std::string xml = RandomXml(rng, 1 + i % 4);
        for (const ArrayList& list : lists) {
            CXmlDoc doc;
            doc.SetDoc(xml);
            std::string out;
            XmlToJSON(out, doc, list, true, true, false);
            EXPECT_EQ(out, SearchingWriter(doc, list).Convert()) << xml;
        }
    }
    for (const std::string& name : SampleTreeNames()) {
        CTLRaidData source, exported;
        source.SetDoc(SampleTree(name));
        BuildStorageDeviceTree(exported, source);
        std::string out;
        XmlToJSON(out, exported, StorageTreeArrayList(), true, true, false);
        EXPECT_EQ(out, SearchingWriter(exported, StorageTreeArrayList()).Convert()) << name;
    }
}

// The element that a JSON value stands for: "@" members are attributes, "#text" or a plain
// value the text, the other members children, and an array stands for siblings of one name.
XmlTreeNode FromJson(const std::string& name, const rapidjson::Value& value) {
    auto text = [](const rapidjson::Value& v) {
        return v.IsString() ? std::string(v.GetString()) : std::to_string(v.GetUint64());
    };
    XmlTreeNode node;
    node.sName = name;
    if (!value.IsObject()) {
        node.sText = text(value);
        return node;
    }
    for (const auto& member : value.GetObject()) {
        const std::string key = member.name.GetString();
        if (key[0] == '@') {
            node.aAttribs.emplace_back(key.substr(1), text(member.value));
        } else if (key == "#text") {
            node.sText = text(member.value);
        } else if (member.value.IsArray()) {
            for (const auto& element : member.value.GetArray()) {
                node.aChildren.push_back(FromJson(key, element));
            }
        } else {
            node.aChildren.push_back(FromJson(key, member.value));
        }
    }
    return node;
}

// JSON gathers the siblings of one name at the first of them: children in a stable order by
// name compare alike.
void SortChildren(XmlTreeNode& node) {
    std::stable_sort(node.aChildren.begin(), node.aChildren.end(),
                     [](const XmlTreeNode& a, const XmlTreeNode& b) { return a.sName < b.sName; });
    for (XmlTreeNode& child : node.aChildren) {
        SortChildren(child);
    }
}

TEST(XmlToJson, SampleExportsParseAndHoldTheTree) {
    for (const std::string& name : SampleTreeNames()) {
        CTLRaidData source, exported;
        source.SetDoc(SampleTree(name));
        BuildStorageDeviceTree(exported, source);
        std::string json;
        ASSERT_TRUE(ConvertStorageTree(exported, json, kStorageTreeJson)) << name;
        rapidjson::Document parsed;
        parsed.Parse(json.c_str(), json.size());
        ASSERT_FALSE(parsed.HasParseError()) << name << " at " << parsed.GetErrorOffset();
        ASSERT_TRUE(parsed.IsObject() && parsed.MemberCount() == 1) << name;
        exported.ResetPos();
        ASSERT_TRUE(exported.FindElem("TLRaidStorageDeviceTree")) << name;
        XmlTreeNode want = ReadTree(exported);
        XmlTreeNode got = FromJson(want.sName, parsed[want.sName.c_str()]);
        SortChildren(want);
        SortChildren(got);
        EXPECT_EQ(got, want) << name;
    }
}

}  // namespace
