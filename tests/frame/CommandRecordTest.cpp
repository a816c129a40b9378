// Command records: reading numbers, texts and bytes out of a record, and writing answers.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "frame/CabinetNumber.h"
#include "frame/CommandRecord.h"

namespace {

// A record with one command whose members are the given JSON text.
std::string WithCommand(const std::string& members) {
    return R"({"SIP":{"V":1,"CMD":[{)" + members + "}]}}";
}

struct Record : CommandRecord {
    explicit Record(const std::string& json) { EXPECT_TRUE(SetJson(json)) << json; }
};

Record WithData(const std::string& da) {
    return Record(WithCommand(R"("DA":)" + da));
}

TEST(CommandRecordTest, FieldTextsReadInBasesByTheirPrefix) {
    struct Row {
        const char* st;
        uint32_t want;
    } rows[] = {{R"("0x13")", 19},  {R"("0X1f")", 31}, {R"("0x5")", 5}, {R"("013")", 11},
                {R"("13")", 13},    {R"("09")", 0},    {"19", 19},      {"4294967297", 1},
                {"-1", 0xFFFFFFFF}, {"2.9", 2},        {"true", 22},    {"null", 22}};
    for (const Row& row : rows) {
        Record r(WithCommand(std::string(R"("ST":)") + row.st));
        EXPECT_EQ(r.GetField("ST", 22), row.want) << "ST " << row.st;
    }
}

TEST(CommandRecordTest, MissingPathsReadAsTheDefault) {
    for (const char* doc : {"{}", R"({"SIP":1})", R"({"SIP":{"CMD":{}}})", R"({"SIP":{"CMD":[]}})",
                            R"({"SIP":{"CMD":[5]}})", "[1,2]", R"({"SIP":{"CMD":[{}]}})"}) {
        Record r(doc);
        EXPECT_EQ(r.GetField("ST", 22), 22u) << doc;
        EXPECT_FALSE(r.HasField("ST")) << doc;
        EXPECT_FALSE(r.HasData()) << doc;
        EXPECT_TRUE(r.IsForThisCabinet()) << doc;
    }
}

TEST(CommandRecordTest, AccessorsWorkOnTheCurrentCommand) {
    Record r(R"({"SIP":{"CMD":[{"OC":1,"DA":5},{"OC":8464,"OE":2,"DA":"abc"}]}})");
    r.SelectCommand(1);
    EXPECT_EQ(r.GetField("OC", 0), 0x2110u);
    EXPECT_EQ(r.GetField("OE", 0), 2u);
    std::string text;
    EXPECT_TRUE(r.GetDataString(1, text, 0));
    EXPECT_EQ(text, "abc");
    r.SetDataUInt(9, 0);
    EXPECT_EQ(r.ToJson(), R"({"SIP":{"CMD":[{"OC":1,"DA":5},{"OC":8464,"OE":2,"DA":9,"ST":0}]}})");
    // Members are found by their exact name, the first of a name.
    Record exact(WithCommand(R"("OCX":1,"O":2,"OC":3,"OC":4)"));
    EXPECT_EQ(exact.GetField("OC", 0), 3u);
}

TEST(CommandRecordTest, DataAsUnsignedNumber) {
    const int64_t kRefused = -1;
    const std::pair<const char*, int64_t> rows[] = {{R"({"RAW":[1,2]})", 0x0201},
                                                    {R"({"RAW":[1,2,3]})", 0x030201},
                                                    {R"({"RAW":[1,2,3,4]})", 0x04030201},
                                                    {R"({"RAW":[300]})", 300},
                                                    {R"({"RAW":[]})", kRefused},
                                                    {R"({"RAW":5})", kRefused},
                                                    {"7", 7},
                                                    {"-2", 0xFFFFFFFE},
                                                    {"4294967296", kRefused},
                                                    {"1.5", kRefused},
                                                    {"false", 0},
                                                    {"true", 1},
                                                    {R"("5")", kRefused},
                                                    {"null", kRefused}};
    for (const auto& [da, want] : rows) {
        uint32_t value = 0xDEAD;
        EXPECT_EQ(WithData(da).GetDataUInt(0, value), want != kRefused) << da;
        EXPECT_EQ(value, want != kRefused ? want : 0xDEAD) << da;
    }
}

TEST(CommandRecordTest, DataLengthByKind) {
    const std::pair<const char*, size_t> rows[] = {{"5", 8},
                                                   {"2.5", 0},
                                                   {R"("abc")", 4},
                                                   {R"(["ab","c"])", 6},
                                                   {"[1,256,65536,4294967296]", 15},
                                                   {"[-1,-200]", 3},
                                                   {"[]", 0},
                                                   {R"({"RAW":[1,2]})", 2},
                                                   {R"({"X":1})", 0},
                                                   {"true", 1}};
    for (const auto& [da, want] : rows)
        EXPECT_EQ(WithData(da).GetDataLength(0), want) << da;
}

TEST(CommandRecordTest, DataAsText) {
    const std::tuple<const char*, uint32_t, const char*> rows[] = {
        {R"({"RAW":[104,105,0,106]})", 0, "hi"},
        {R"({"RAW":[104,105,106]})", 1, "ij"},
        {R"({"RAW":[104,105]})", 2, nullptr},
        {R"({"RAW":["a",105]})", 0, nullptr},
        {R"({"RAW":[360,105]})", 0, "hi"},
        {R"("text")", 0, "text"},
        {R"("text")", 1, nullptr},
        {"null", 0, ""},
        {"5", 0, nullptr}};
    for (const auto& [da, start, want] : rows) {
        std::string text = "unchanged";
        EXPECT_EQ(WithData(da).GetDataString(0, text, start), want != nullptr) << da;
        EXPECT_EQ(text, want ? want : "unchanged") << da;
    }
    // An empty text is data, null is none.
    EXPECT_TRUE(Record(WithCommand(R"("DA":"")")).HasData());
    EXPECT_FALSE(Record(WithCommand(R"("DA":null)")).HasData());
}

TEST(CommandRecordTest, DataAsBytes) {
    const std::tuple<const char*, bool, std::vector<uint8_t>> rows[] = {
        {R"({"RAW":[1,258]})", true, {1, 2}},
        {"{}", true, {}},
        {R"(["ab","c"])", true, {'a', 'b', 0, 'c', 0, 0}},
        {R"("ab")", true, {'a', 'b', 0}},
        {"0", true, {0}},
        {"258", true, {2, 1}},
        {"65536", true, {0, 0, 1, 0}},
        {"4294967296", true, {0, 0, 0, 0, 1, 0, 0, 0}},
        {"-1", false, {}},
        {"[1,2]", false, {}},
        {"true", false, {}}};
    for (const auto& [da, ok, want] : rows) {
        std::vector<uint8_t> bytes = {9, 9};
        EXPECT_EQ(WithData(da).GetDataBytes(0, bytes), ok) << da;
        EXPECT_EQ(bytes, want) << da;
    }
}

TEST(CommandRecordTest, CabinetAddress) {
    g_nCabinetNumber = 5;
    for (const char* ca : {"-1", "5", R"("0x5")"})
        EXPECT_TRUE(Record(WithCommand(std::string(R"("CA":)") + ca)).IsForThisCabinet()) << ca;
    EXPECT_FALSE(Record(WithCommand(R"("CA":800)")).IsForThisCabinet());
    g_nCabinetNumber = 0;
}

TEST(CommandRecordTest, ConstructorLeavesOutZeroCodesAndNumbersKeepTheirForm) {
    CommandRecord request(0x2110, 0, 0, 3, status::kNone);
    EXPECT_EQ(request.ToJson(), R"({"SIP":{"V":1,"CMD":[{"OC":8464,"CA":3}]}})");
    EXPECT_EQ(request.GetField("OE", 5), 5u);
    CommandRecord full(1, 2, 3, 0xFFFFFFFF, 0);
    EXPECT_EQ(full.ToJson(),
              R"({"SIP":{"V":1,"CMD":[{"OC":1,"OE":2,"OI":3,"CA":4294967295,"ST":0}]}})");
    Record r(WithCommand(""));
    r.SetDataByte(0x1FF, 0);
    EXPECT_EQ(r.GetField("DA", 0), 0xFFu);
    r.SetDataUInt64(0x100000000ull, 0);
    EXPECT_EQ(r.ToJson(), WithCommand(R"("DA":4294967296,"ST":0)"));
    EXPECT_EQ(r.GetDataLength(0), 8u);
}

TEST(CommandRecordTest, WritesKeepMemberPlacesMakeMissingCommandsAndReplaceRawData) {
    Record r(WithCommand(R"("ST":19,"OC":1)"));
    r.SetDataString("x", 0);
    EXPECT_EQ(r.ToJson(), WithCommand(R"("ST":0,"OC":1,"DA":"x")"));
    r.SelectCommand(2);
    r.SetStatus(6);
    EXPECT_EQ(r.ToJson(), R"({"SIP":{"V":1,"CMD":[{"ST":0,"OC":1,"DA":"x"},{},{"ST":6}]}})");

    // Raw data replaces DA or removes it.
    Record raw(WithCommand(R"("DA":{"RAW":[9],"K":1},"OC":3)"));
    raw.SetDataRaw({1, 2}, 0);
    EXPECT_EQ(raw.ToJson(), WithCommand(R"("DA":{"K":1,"RAW":[1,2]},"OC":3,"ST":0)"));
    raw.SetDataRaw({}, 4);
    // The last member moves into the place of DA.
    EXPECT_EQ(raw.ToJson(), WithCommand(R"("ST":4,"OC":3)"));
    EXPECT_FALSE(raw.HasData());
    raw.SetDataString("t", 0);
    raw.SetDataRaw({7}, 0);
    EXPECT_EQ(raw.ToJson(), WithCommand(R"("ST":0,"OC":3,"DA":{"RAW":[7]})"));
}

TEST(CommandRecordTest, AnythingThatIsJsonIsReadWithoutHarm) {
    for (const char* doc : {"{}", R"({"SIP":{}})", R"({"SIP":{"CMD":[3]}})", "[]", "1", "null",
                            R"({"SIP":{"CMD":[{"DA":[[],{},null]}]}})",
                            R"({"SIP":{"CMD":[{"DA":{"RAW":[{},[],-1,1e300]}}]}})"}) {
        Record r(doc);
        std::vector<uint8_t> bytes;
        std::string text;
        uint32_t value = 0;
        static_cast<void>(r.GetDataLength(0) + r.GetDataBytes(0, bytes) +
                          r.GetDataString(0, text, 0) + r.GetDataUInt(0, value));
        // Writes into a record without commands are lost.
        r.SetDataRaw({1, 2}, 0);
        EXPECT_TRUE(std::string(doc).find("[{") != std::string::npos || r.ToJson() == doc) << doc;
    }
    EXPECT_FALSE(CommandRecord().SetJson("{bad"));
}

TEST(CommandRecordTest, CopiesOwnTheirDocument) {
    const std::string text = R"({"SIP":{"V":1,"CMD":[{"OC":1},{"OC":2,"DA":"text","ST":19}]}})";
    auto original = std::make_unique<Record>(text);
    original->SelectCommand(1);
    CommandRecord copy(*original);
    CommandRecord assigned(5, 0, 0, 0, 0);
    assigned = *original;
    original->SetDataString("changed", 0);
    original.reset();
    copy.SetStatus(255);
    EXPECT_EQ(assigned.ToJson(), text);
    EXPECT_EQ(copy.GetField("OC", 0), 2u) << "the copy keeps the current command";
    EXPECT_EQ(copy.GetField("ST", 0), 255u);
}

}  // namespace
