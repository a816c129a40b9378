// The JSON writer: its rules on small documents, the standalone element and value forms, and
// agreement with its rules written over the tree (the samples' exports stand in their expected
// files).
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <tuple>
#include <vector>

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
    const std::tuple<const char*, const char*> rows[] = {
        {"<a x=\"1\"><b>5</b><b>t</b><c k=\"v\">u</c></a>",
         "{\"a\":{\"@x\":1,\"b\":[5,\"t\"],\"c\":{\"@k\":\"v\",\"#text\":\"u\"}}}"},
        // An empty attribute value counts as digits: nothing behind the colon.
        {"<a><b x=\"\">t</b></a>", "{\"a\":{\"b\":{\"@x\":,\"#text\":\"t\"}}}"},
        // Quotes in text are escaped, in attribute values not; nothing else is escaped.
        {"<a q='say \"hi\"'>say \"hi\"</a>",
         "{\"a\":{\"@q\":\"say \"hi\"\",\"#text\":\"say \\\"hi\\\"\"}}"},
        {"<a>c:\\dir\\</a>", "{\"a\":\"c:\\dir\\\"}"},
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
        // Names that read as paths find their siblings as a search by that path does.
        {"<r><a>1</a><a[1]>2</a[1]><a>3</a><a[1]>4</a[1]></r>",
         "{\"r\":{\"a\":[1,3],\"a[1]\":[2,3]}}"},
        {"<r><b]>1</b]><c/><b]>2</b]></r>", "{\"r\":{\"b]\":1,\"c\":\"\"}}"},
        {"<r><a>0</a><a[2]><c>1</c><c>2</c></a[2]><a>3</a></r>",
         "{\"r\":{\"a\":[0,3],\"a[2]\":{\"c\":[1,2]}}}"},
    };
    for (const auto& [xml, json] : rows) {
        EXPECT_EQ(Json(xml), json) << xml;
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
    EXPECT_EQ(Json("<a/>"), "{\"a\":\"\"}");
}

TEST(XmlToJson, PrettyForm) {
    EXPECT_EQ(
        Json("<a x=\"1\"><b>5</b><b>t</b><c k=\"v\">u</c><d><e/></d></a>", {}, true, true, true),
        "{\n\t\"a\":{\n\t\t\"@x\":1,\n\t\t\"b\":[5,\n\t\t\t\"t\"\n\t\t],\n\t\t\"c\":{\n"
        "\t\t\t\"@k\":\"v\",\n\t\t\t\"#text\":\"u\"},\n\t\t\"d\":{\n\t\t\t\"e\":\"\"\n\t\t}\n"
        "\t}\n\t\n}");
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
    // The first a writes both.
    ASSERT_TRUE(doc.FindPrevElem("a"));
    out.clear();
    const uint32_t main = doc.GetMainPos();
    ElementToJSON(out, doc, {}, true, true, false, 0, 1);
    EXPECT_EQ(out, "\"a\":[{\"@x\":1,\"b\":2},3]");
    out.clear();
    EXPECT_EQ(ValueToJSON(out, doc, {}, true, true, false, 0, 1), 1);
    EXPECT_EQ(out, "{\"@x\":1,\"b\":2}");
    EXPECT_EQ(doc.GetMainPos(), main);
}

// The writer's rules over the tree as navigation reads it: siblings of one name gather at the
// first of them, as does a first of its name whose path is on the list.
std::string Scalar(const std::string& s, bool bText) {
    if (s.find_first_not_of("0123456789") == std::string::npos && (s.size() < 2 || s[0] != '0')) {
        return bText && s.empty() ? "\"\"" : s;
    }
    std::string out = "\"";
    for (char c : s) {
        out += bText && c == '"' ? std::string("\\\"") : std::string(1, c);
    }
    return out + "\"";
}

std::string Expected(const XmlTreeNode& n, const std::string& path, const ArrayList& list) {
    std::string out;
    for (const auto& [name, value] : n.aAttribs) {
        out += ",\"@" + name + "\":" + Scalar(value, false);
    }
    if (n.aChildren.empty()) {
        const std::string text = Scalar(n.sText, true);
        return n.aAttribs.empty() ? text : "{" + out.substr(1) + ",\"#text\":" + text + "}";
    }
    for (size_t i = 0; i < n.aChildren.size(); ++i) {
        const std::string& name = n.aChildren[i].sName;
        std::vector<const XmlTreeNode*> same;
        for (const XmlTreeNode& child : n.aChildren) {
            if (child.sName == name) {
                same.push_back(&child);
            }
        }
        if (same[0] != &n.aChildren[i]) {
            continue;  // written with the first of its name
        }
        const bool bArray =
            same.size() > 1 || std::find(list.begin(), list.end(), path + "/" + name) != list.end();
        out += ",\"" + name + "\":" + (bArray ? "[" : "");
        for (size_t k = 0; k < same.size(); ++k) {
            const std::string at = k ? "[" + std::to_string(k + 1) + "]" : "";
            out += (k ? "," : "") + Expected(*same[k], path + "/" + name + at, list);
        }
        out += bArray ? "]" : "";
    }
    return "{" + out.substr(1) + "}";
}

// The text of a document with one root by those rules.
std::string ExpectedOf(const std::string& xml, const ArrayList& list) {
    CXmlDoc doc;
    doc.SetDoc(xml);
    doc.FindElem();
    XmlTreeNode top;
    top.aChildren.push_back(ReadTree(doc));
    return Expected(top, "", list);
}

// Random documents: few names, so that siblings share them, and some attributes and texts.
std::string RandomXml(std::mt19937& rng, int nDepth) {
    static const char* const kNames[] = {"a", "b", "c", "Adapter"};
    static const char* const kTexts[] = {"", "0", "7", "01", "x", "q&quot;t"};
    auto pick = [&rng](size_t n) { return size_t(rng() % n); };
    std::string name = kNames[pick(std::size(kNames))];
    std::string xml = "<" + name;
    for (size_t i = 0, n = pick(3); i < n; ++i) {
        xml += " k" + std::to_string(i) + "=\"" + kTexts[pick(4)] + "\"";
    }
    xml += ">";
    const size_t nChildren = nDepth > 0 ? pick(6) : 0;
    xml += nChildren ? "" : kTexts[pick(std::size(kTexts))];
    for (size_t i = 0; i < nChildren; ++i) {
        xml += RandomXml(rng, nDepth - 1);
    }
    return xml + "</" + name + ">";
}

TEST(XmlToJson, SameAsTheRulesOverTheTree) {
    std::mt19937 rng(14);
    const ArrayList lists[] = {{}, {"/a/b", "/a/a", "/a/a[2]/c", "/b/b/b"}};
    for (int i = 0; i < 300; ++i) {
        const std::string xml = RandomXml(rng, 1 + i % 4);
        for (const ArrayList& list : lists) {
            EXPECT_EQ(Json(xml, list), ExpectedOf(xml, list)) << xml;
        }
    }
    for (const std::string& name : SampleTreeNames()) {
        CTLRaidData source, exported;
        source.SetDoc(SampleTree(name));
        BuildStorageDeviceTree(exported, source);
        const std::string xml = exported.GetDoc();
        EXPECT_EQ(Json(xml, StorageTreeArrayList()), ExpectedOf(xml, StorageTreeArrayList()))
            << name;
    }
}

}  // namespace
