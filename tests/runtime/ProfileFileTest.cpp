// Reading profile files: values, key and section lists, comments, cut lines and small buffers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <tuple>

#include "runtime/ProfileFile.h"
#include "support/Process.h"
#include "support/TempDir.h"

namespace {

// A list of NUL-ended names as one text with '|' for each NUL.
std::string Names(const char* buffer, uint32_t count) {
    std::string out(buffer, count);
    std::replace(out.begin(), out.end(), '\0', '|');
    return out;
}

class ProfileFile : public ::testing::Test {
  protected:
    uint32_t Get(const char* section, const char* key, const char* def, uint32_t size = 64) {
        m_Buffer.assign(size + 8, '#');
        return GetPrivateProfileString(section, key, def, m_Buffer.data(), size, m_sPath.c_str());
    }
    const char* Text() const { return m_Buffer.data(); }

    std::string m_sPath = SourcePath("tests/runtime/testdata/profile.ini");
    std::string m_Buffer;
};

TEST_F(ProfileFile, ValuesByKey) {
    // Section, key and the value read.
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"Sect", "Name", "abc"},       // comment cut, trailing blanks gone; the first match wins
        {"Sect", "Spaced", "v"},       // blanks around '='
        {"Sect", "Padded", "tabbed"},  // tabs count as whitespace
        {"Sect", "name", "lower"},     // keys compare case-sensitively
        {"Sect", "Path", "a"},         // a ';' inside a value cuts it too
        {"Sect", "Empty", "dflt"},     // an empty value stores nothing: the default
        {"Sect", "NoEquals", "dflt"},  // a line without '=' is no key
        {"Sect", "Other", "dflt"},     // the section ended at the next '['
        {"Sec", "Name", "dflt"},       // ']' must follow the name straight away
    };
    for (const auto& [section, key, expected] : rows) {
        EXPECT_EQ(Get(section, key, "dflt"), strlen(expected)) << section << "/" << key;
        EXPECT_STREQ(Text(), expected) << section << "/" << key;
    }
}

TEST_F(ProfileFile, ListsEndWithDoubleNulAndSmallBuffersCutTheAnswer) {
    uint32_t count = Get("Sect", nullptr, "ignored");
    EXPECT_EQ(Names(Text(), count + 1), "Name|Spaced|Empty|Name|name|Padded|Path||");

    // Sections: the text up to ']', also behind blanks; "[Broken" has none and is skipped.
    count = Get(nullptr, "any", "ignored");
    EXPECT_EQ(Names(Text(), count + 1), "Sect1|sect|Sect|Other|Last||");

    EXPECT_EQ(Get("Missing", nullptr, "ignored"), 0u);
    EXPECT_EQ(Text()[0], '\0');

    // A value is cut to size - 1 bytes with a NUL behind.
    EXPECT_EQ(Get("Other", "Other", "", 1), 0u);
    EXPECT_EQ(Get("Sect", "Spaced", "", 2), 0u);  // a 2-byte buffer reads nothing: default ""
    EXPECT_EQ(Get("Sect1", "Name", "", 6), 5u);
    EXPECT_STREQ(Text(), "wrong");

    // A list that doesn't fit ends in two NULs at the buffer's end.
    count = Get(nullptr, nullptr, nullptr, 9);
    EXPECT_EQ(count, 7u);
    EXPECT_EQ(Names(Text(), 9), "Sect1|s||");
    EXPECT_EQ(Text()[9], '#');  // nothing behind the buffer

    // Exactly full: "Sect1|sect|" is 11 bytes; the loop stops at size - 2.
    count = Get(nullptr, nullptr, nullptr, 13);
    EXPECT_EQ(Names(Text(), count + 1), "Sect1|sect||");
}

TEST_F(ProfileFile, DefaultWhenTheFileIsMissingNothingWithoutBufferOrPath) {
    std::string missing = m_sPath + ".none";
    char buffer[8] = "xxxxxxx";
    EXPECT_EQ(GetPrivateProfileString("S", "K", "a long default", buffer, 8, missing.c_str()), 7u);
    EXPECT_STREQ(buffer, "a long ");
    EXPECT_EQ(GetPrivateProfileString("S", nullptr, "dflt", buffer, 8, missing.c_str()), 0u);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(GetPrivateProfileString("S", "K", nullptr, buffer, 8, missing.c_str()), 0u);
    // No buffer or no path: nothing, not even the default.
    EXPECT_EQ(GetPrivateProfileString("Sect", "Name", "d", nullptr, 4, m_sPath.c_str()), 0u);
    memcpy(buffer, "xyz", 4);
    EXPECT_EQ(GetPrivateProfileString("Sect", "Name", "d", buffer, 4, nullptr), 0u);
    EXPECT_STREQ(buffer, "xyz");
}

TEST(ProfileFileLines, ALongLineIsReadInPieces) {
    TempDir dir;
    // 1023 bytes make one read: the text behind them is a line of its own.
    std::string filler(1023 - 1, 'x');
    std::string path = dir.Write(
        "long.ini", "[S]\n;" + filler + "Hidden=yes\nLong=" + std::string(1100, 'v') + "\n");
    char buffer[2048];
    EXPECT_EQ(GetPrivateProfileString("S", "Hidden", "", buffer, sizeof(buffer), path.c_str()), 3u);
    EXPECT_STREQ(buffer, "yes");
    EXPECT_EQ(GetPrivateProfileString("S", "Long", "", buffer, sizeof(buffer), path.c_str()),
              1023u - 5u);
    EXPECT_EQ(GetPrivateProfileString("S", nullptr, "", buffer, sizeof(buffer), path.c_str()),
              strlen("Hidden|Long|"));
}

}  // namespace
