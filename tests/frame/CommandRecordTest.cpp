// Command records: reading numbers, texts and bytes out of a record, and writing answers.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "frame/CabinetNumber.h"
#include "frame/CommandRecord.h"

namespace {

// A record with one command whose members are the given JSON text.
std::string WithCommand(const std::string& members) {
    return "{\"SIP\":{\"V\":1,\"CMD\":[{" + members + "}]}}";
}

struct Record : CommandRecord {
    explicit Record(const std::string& json) { EXPECT_TRUE(SetJson(json)) << json; }
};

TEST(CommandRecordTest, FieldTextsReadInBasesByTheirPrefix) {
    struct Row {
        const char* st;
        uint32_t want;
    } rows[] = {
        {"\"0x13\"", 19}, {"\"0X1f\"", 31},  {"\"013\"", 11},    {"\"13\"", 13}, {"\"09\"", 0},
        {"\"0\"", 0},     {"\"7\"", 7},      {"\"08\"", 0},      {"\"010\"", 8}, {"\"x\"", 0},
        {"19", 19},       {"4294967297", 1}, {"-1", 0xFFFFFFFF}, {"2.9", 2},     {"true", 22},
        {"null", 22},     {"[1]", 22},
    };
    for (const Row& row : rows) {
        Record r(WithCommand(std::string("\"ST\":") + row.st));
        EXPECT_EQ(r.GetField("ST", 22), row.want) << "ST " << row.st;
    }
}

TEST(CommandRecordTest, MissingPathsReadAsTheDefault) {
    const char* docs[] = {"{}",
                          "{\"SIP\":1}",
                          "{\"SIP\":{\"CMD\":{}}}",
                          "{\"SIP\":{\"CMD\":[]}}",
                          "{\"SIP\":{\"CMD\":[5]}}",
                          "[1,2]",
                          "{\"SIP\":{\"CMD\":[{}]}}"};
    for (const char* doc : docs) {
        Record r(doc);
        EXPECT_EQ(r.GetField("ST", 22), 22u) << doc;
        EXPECT_FALSE(r.HasField("ST")) << doc;
        EXPECT_FALSE(r.HasData()) << doc;
        EXPECT_TRUE(r.IsForThisCabinet()) << doc;
        uint32_t value = 77;
        EXPECT_FALSE(r.GetDataUInt(0, value)) << doc;
        EXPECT_EQ(value, 77u);
    }
}

TEST(CommandRecordTest, FindMemberMatchesExactNamesFirstInOrder) {
    Record r(WithCommand("\"OCX\":1,\"O\":2,\"OC\":3,\"OC\":4"));
    EXPECT_EQ(r.GetField("OC", 0), 3u);
}

TEST(CommandRecordTest, AccessorsWorkOnTheCurrentCommand) {
    Record r("{\"SIP\":{\"CMD\":[{\"OC\":1,\"DA\":5},{\"OC\":8464,\"OE\":2,\"DA\":\"abc\"}]}}");
    r.SelectCommand(1);
    EXPECT_EQ(r.GetField("OC", 0), 0x2110u);
    EXPECT_EQ(r.GetField("OE", 0), 2u);
    std::string text;
    EXPECT_TRUE(r.GetDataString(1, text, 0));
    EXPECT_EQ(text, "abc");
    r.SetDataUInt(9, 0);
    EXPECT_EQ(r.ToJson(),
              "{\"SIP\":{\"CMD\":[{\"OC\":1,\"DA\":5},{\"OC\":8464,\"OE\":2,\"DA\":9,\"ST\":0}]}}");
}

TEST(CommandRecordTest, DataAsUnsignedNumber) {
    struct Row {
        const char* da;
        bool ok;
        uint32_t want;
    } rows[] = {
        {"{\"RAW\":[1,2]}", true, 0x0201},
        {"{\"RAW\":[1,2,3,4]}", true, 0x04030201},
        {"{\"RAW\":[1,2,3]}", true, 0x030201},
        {"{\"RAW\":[1,2,3,4,5]}", true, 0x04030201},
        {"{\"RAW\":[300]}", true, 300},
        {"{\"RAW\":[]}", false, 0},
        {"{\"RAW\":5}", false, 0},
        {"{}", false, 0},
        {"7", true, 7},
        {"-2", true, 0xFFFFFFFE},
        {"4294967296", false, 0},
        {"1.5", false, 0},
        {"false", true, 0},
        {"true", true, 1},
        {"\"5\"", false, 0},
        {"null", false, 0},
    };
    for (const Row& row : rows) {
        Record r(WithCommand(std::string("\"DA\":") + row.da));
        uint32_t value = 0xDEAD;
        EXPECT_EQ(r.GetDataUInt(0, value), row.ok) << row.da;
        EXPECT_EQ(value, row.ok ? row.want : 0xDEAD) << row.da;
    }
}

TEST(CommandRecordTest, DataLengthByKind) {
    struct Row {
        const char* da;
        size_t want;
    } rows[] = {
        {"5", 8},
        {"-5", 8},
        {"2.5", 0},
        {"\"\"", 1},
        {"\"abc\"", 4},
        {"[\"ab\",\"c\"]", 6},
        {"[1,256,65536,4294967296]", 15},
        {"[-1,-200]", 3},
        {"[]", 0},
        {"{\"RAW\":[1,2]}", 2},
        {"{\"X\":1}", 0},
        {"true", 1},
        {"null", 0},
    };
    for (const Row& row : rows) {
        Record r(WithCommand(std::string("\"DA\":") + row.da));
        EXPECT_EQ(r.GetDataLength(0), row.want) << row.da;
    }
}

TEST(CommandRecordTest, EmptyTextCountsAsData) {
    Record r(WithCommand("\"DA\":\"\""));
    EXPECT_TRUE(r.HasData());
    std::string text = "old";
    EXPECT_TRUE(r.GetDataString(0, text, 0));
    EXPECT_EQ(text, "");
    Record n(WithCommand("\"DA\":null"));
    EXPECT_FALSE(n.HasData());
}

TEST(CommandRecordTest, DataAsText) {
    struct Row {
        const char* da;
        uint32_t start;
        bool ok;
        const char* want;
    } rows[] = {
        {"{\"RAW\":[104,105,0,106]}", 0, true, "hi"},
        {"{\"RAW\":[104,105,106]}", 1, true, "ij"},
        {"{\"RAW\":[104,105]}", 2, false, ""},
        {"{\"RAW\":[\"a\",105]}", 0, false, ""},
        {"{\"RAW\":[360,105]}", 0, true, "hi"},
        {"\"text\"", 0, true, "text"},
        {"\"text\"", 1, false, ""},
        {"null", 0, true, ""},
        {"5", 0, false, ""},
    };
    for (const Row& row : rows) {
        Record r(WithCommand(std::string("\"DA\":") + row.da));
        std::string text = "unchanged";
        EXPECT_EQ(r.GetDataString(0, text, row.start), row.ok) << row.da;
        EXPECT_EQ(text, row.ok ? row.want : "unchanged") << row.da;
    }
}

TEST(CommandRecordTest, DataAsBytes) {
    struct Row {
        const char* da;
        bool ok;
        std::vector<uint8_t> want;
    } rows[] = {
        {"{\"RAW\":[1,258]}", true, {1, 2}},
        {"{}", true, {}},
        {"[\"ab\",\"c\"]", true, {'a', 'b', 0, 'c', 0, 0}},
        {"\"ab\"", true, {'a', 'b', 0}},
        {"0", true, {0}},
        {"258", true, {2, 1}},
        {"65536", true, {0, 0, 1, 0}},
        {"4294967296", true, {0, 0, 0, 0, 1, 0, 0, 0}},
        {"-1", false, {}},
        {"[1,2]", false, {}},
        {"true", false, {}},
    };
    for (const Row& row : rows) {
        Record r(WithCommand(std::string("\"DA\":") + row.da));
        std::vector<uint8_t> bytes = {9, 9};
        EXPECT_EQ(r.GetDataBytes(0, bytes), row.ok) << row.da;
        EXPECT_EQ(bytes, row.want) << row.da;
    }
}

TEST(CommandRecordTest, CabinetAddress) {
    g_nCabinetNumber = 5;
    EXPECT_TRUE(Record(WithCommand("\"CA\":-1")).IsForThisCabinet());
    EXPECT_TRUE(Record(WithCommand("\"CA\":4294967295")).IsForThisCabinet());
    EXPECT_TRUE(Record(WithCommand("\"CA\":5")).IsForThisCabinet());
    EXPECT_TRUE(Record(WithCommand("\"CA\":\"0x5\"")).IsForThisCabinet());
    EXPECT_FALSE(Record(WithCommand("\"CA\":800")).IsForThisCabinet());
    EXPECT_TRUE(Record(WithCommand("\"OC\":1")).IsForThisCabinet());
    g_nCabinetNumber = 0;
}

TEST(CommandRecordTest, ConstructorLeavesOutZeroCodesAndMissingStatus) {
    CommandRecord request(0x2110, 0, 0, 3, status::kNone);
    EXPECT_EQ(request.ToJson(), "{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":8464,\"CA\":3}]}}");
    EXPECT_EQ(request.GetField("OE", 5), 5u);
    CommandRecord full(1, 2, 3, 0xFFFFFFFF, 0);
    EXPECT_EQ(
        full.ToJson(),
        "{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":1,\"OE\":2,\"OI\":3,\"CA\":4294967295,\"ST\":0}]}}");
}

TEST(CommandRecordTest, WritesKeepMemberPlacesAndMakeMissingCommands) {
    Record r(WithCommand("\"ST\":19,\"OC\":1"));
    r.SetDataString("x", 0);
    EXPECT_EQ(r.ToJson(), WithCommand("\"ST\":0,\"OC\":1,\"DA\":\"x\""));
    r.SelectCommand(2);
    r.SetStatus(6);
    EXPECT_EQ(r.ToJson(),
              "{\"SIP\":{\"V\":1,\"CMD\":[{\"ST\":0,\"OC\":1,\"DA\":\"x\"},{},{\"ST\":6}]}}");
}

TEST(CommandRecordTest, WritesIntoARecordWithoutCommandsAreLost) {
    for (const char* doc : {"{}", "{\"SIP\":{}}", "{\"SIP\":{\"CMD\":[3]}}", "[]"}) {
        Record r(doc);
        r.SetDataUInt(1, 0);
        r.SetDataRaw({1, 2}, 0);
        EXPECT_EQ(r.ToJson(), doc);
    }
}

TEST(CommandRecordTest, NumberWritesUseTheirForms) {
    Record r(WithCommand(""));
    r.SetDataByte(0x1FF, 0);
    EXPECT_EQ(r.GetField("DA", 0), 0xFFu);
    r.SetDataUInt64(0x100000000ull, 0);
    EXPECT_EQ(r.ToJson(), WithCommand("\"DA\":4294967296,\"ST\":0"));
    EXPECT_EQ(r.GetDataLength(0), 8u);
}

TEST(CommandRecordTest, RawDataReplacesOrRemovesDA) {
    Record r(WithCommand("\"DA\":{\"RAW\":[9],\"K\":1},\"OC\":3"));
    r.SetDataRaw({1, 2}, 0);
    EXPECT_EQ(r.ToJson(), WithCommand("\"DA\":{\"K\":1,\"RAW\":[1,2]},\"OC\":3,\"ST\":0"));
    r.SetDataRaw({}, 4);
    // The last member moves into the place of DA.
    EXPECT_EQ(r.ToJson(), WithCommand("\"ST\":4,\"OC\":3"));
    EXPECT_FALSE(r.HasData());
    r.SetDataString("t", 0);
    r.SetDataRaw({7}, 0);
    EXPECT_EQ(r.ToJson(), WithCommand("\"ST\":0,\"OC\":3,\"DA\":{\"RAW\":[7]}"));
}

TEST(CommandRecordTest, AnythingThatIsJsonIsReadWithoutHarm) {
    const char* docs[] = {"1", "\"s\"", "null", "{\"SIP\":{\"CMD\":[{\"DA\":[[],{},null]}]}}",
                          "{\"SIP\":{\"CMD\":[{\"DA\":{\"RAW\":[{},[],-1,1e300]}}]}}"};
    for (const char* doc : docs) {
        Record r(doc);
        std::vector<uint8_t> bytes;
        std::string text;
        uint32_t value = 0;
        r.GetDataBytes(0, bytes);
        r.GetDataString(0, text, 0);
        r.GetDataUInt(0, value);
        r.GetDataLength(0);
        r.HasData();
        r.SetDataRaw({1}, 0);
    }
    CommandRecord r;
    EXPECT_FALSE(r.SetJson("{bad"));
}

TEST(CommandRecordTest, CopiesOwnTheirDocument) {
    const std::string text =
        "{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":1},{\"OC\":2,\"DA\":\"text\",\"ST\":19}]}}";
    auto original = std::make_unique<Record>(text);
    original->SelectCommand(1);
    CommandRecord copy(*original);
    CommandRecord assigned(5, 0, 0, 0, 0);
    assigned = *original;
    original->SetDataString("changed", 0);
    original.reset();
    for (const CommandRecord* r : {&copy, &assigned}) {
        EXPECT_EQ(r->ToJson(), text);
        EXPECT_EQ(r->GetField("OC", 0), 2u);
        std::string data;
        EXPECT_TRUE(r->GetDataString(1, data, 0));
        EXPECT_EQ(data, "text");
    }
    copy.SetStatus(255);
    EXPECT_EQ(assigned.GetField("ST", 0), 19u);
}

}  // namespace
