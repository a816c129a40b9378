// The trace client's configuration: files, sections, keys, environment and dynamic update.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "runtime/DebugClient.h"
#include "support/CaptureTraceServer.h"
#include "support/TempDir.h"

namespace {

time_t g_tNow = 1000000;
time_t FakeClock() {
    return g_tNow;
}

const char kModule[] = "EM_TLRAID";

std::string ModuleFile(const std::string& level, const std::string& extra = "") {
    return "[GlobalDebugSettings]\nDynamicUpdate=0\n[EM_TLRAID]\nFileDebugLevel=" + level + "\n" +
           extra + "[EndOfFile]\n";
}

void SetModified(const std::string& path, time_t when) {
    struct utimbuf times = {when, when};
    utime(path.c_str(), &times);
}

// Clears the two variables for a test and puts back what the process had.
class TraceEnvironment : public ::testing::Test {
  protected:
    void SetUp() override {
        unsetenv("TL_LOG_DEBUG_LEVEL");
        unsetenv("TL_LOG_DYNAMIC_UPDATE");
        g_tNow = 1000000;
    }
    void TearDown() override { SetUp(); }

    // A client following global_trace.ini at this level, changed last at time 5000, with
    // dynamic update every interval seconds.
    std::unique_ptr<CDebugClient> Following(const char* interval, const char* level) {
        setenv("TL_LOG_DYNAMIC_UPDATE", interval, 1);
        Rewrite(level, 5000);
        auto client = std::make_unique<CDebugClient>(m_Dir.Path().c_str(), FakeClock);
        client->Initialize(kModule);
        return client;
    }
    // Writes the file anew at this level and modification time.
    std::string Rewrite(const char* level, time_t modified) {
        std::string path = m_Dir.Write("global_trace.ini", ModuleFile(level));
        SetModified(path, modified);
        return path;
    }

    uint32_t LevelFor(const std::string& dir) {
        CDebugClient client(dir.c_str(), FakeClock);
        client.Initialize(kModule);
        return client.m_nLevel;
    }

    TempDir m_Dir;
};

TEST_F(TraceEnvironment, FileLevelIsRead) {
    m_Dir.Write("global_trace.ini", ModuleFile("3"));
    CDebugClient client(m_Dir.Path().c_str(), FakeClock);
    EXPECT_EQ(client.Initialize(kModule), 1);
    EXPECT_EQ(client.m_nLevel, 3u);
    EXPECT_EQ(client.m_nLevelCopy, 3u);
    EXPECT_EQ(client.m_nFileLevel, 3u);
    EXPECT_TRUE(client.IsEnabled());
}

TEST_F(TraceEnvironment, LevelByTheFilesOfTheDirectory) {
    const std::string end = "[EndOfFile]\n";
    struct Row {
        const char* what;
        std::vector<std::pair<std::string, std::string>> files;
        uint32_t level;
    } rows[] = {
        {"hex", {{"global_trace.ini", ModuleFile("0x5")}}, 5},
        {"octal", {{"global_trace.ini", ModuleFile("010")}}, 8},
        {"newlines skipped", {{"global_trace.ini", ModuleFile("  \n\t 4")}}, 4},
        {"no number", {{"global_trace.ini", ModuleFile("abc")}}, 0},
        {"the key's text matches inside a comment first",
         {{"t.ini", "[EM_TLRAID]\n; FileDebugLevel = 9 is loud\nFileDebugLevel=2\n" + end}},
         9},
        {"last section in any case",
         {{"t.ini", "[EM_TLRAID]\nFileDebugLevel=3\n[endoffile]\n"}},
         3},
        {"last section misspelt", {{"t.ini", "[EM_TLRAID]\nFileDebugLevel=3\n[EndOfFil]\n"}}, 0},
        {"no last section", {{"t.ini", "[EM_TLRAID]\nFileDebugLevel=3\n"}}, 0},
        {"the section ends at the next one",
         {{"t.ini", "[em_tlraid]\nTraceFlags=1\n[Other]\nFileDebugLevel=6\n" + end}},
         0},
        {"section names in any case, exactly",
         {{"t.ini", "[EM_TLRAIDX]\nFileDebugLevel=6\n[em_tlraid]\nFileDebugLevel=2\n" + end}},
         2},
        {"the first file in sorted order with the section",
         {{"b.ini", ModuleFile("4")},
          {"a.ini.bak", ModuleFile("5")},
          {".#c.ini", ModuleFile("6")},
          {"notes.txt", ModuleFile("1")}},
         5},
    };
    for (const Row& row : rows) {
        TempDir dir;
        for (const auto& [name, text] : row.files)
            dir.Write(name, text);
        EXPECT_EQ(LevelFor(dir.Path()), row.level) << row.what;
    }
}

TEST_F(TraceEnvironment, EnvironmentOverridesFileButNotAnEmptyListing) {
    setenv("TL_LOG_DEBUG_LEVEL", "3", 1);
    // An existing directory without .ini files: the environment is not looked at.
    EXPECT_EQ(LevelFor(m_Dir.Path()), 0u);
    // A missing directory: it is.
    EXPECT_EQ(LevelFor(m_Dir.Path() + "/missing"), 3u);
    m_Dir.Write("global_trace.ini", ModuleFile("1"));
    EXPECT_EQ(LevelFor(m_Dir.Path()), 3u);
}

TEST_F(TraceEnvironment, LevelTestLetsEqualLevelsPass) {
    m_Dir.Write("global_trace.ini", ModuleFile("5"));
    CDebugClient client(m_Dir.Path().c_str(), FakeClock);
    client.Initialize(kModule);
    Debug.Take();
    client.Trace(5, "\n%-20s: five", "TAG");
    client.Trace(6, "six");
    EXPECT_EQ(Debug.Take(), "\nTAG                 : five");
    EXPECT_EQ(Debug.LastModuleName(), kModule);
    client.m_nLevel = 4;
    client.Trace(5, "five");
    EXPECT_EQ(Debug.Take(), "");
}

TEST_F(TraceEnvironment, PrintIgnoresTheLevel) {
    CDebugClient client(m_Dir.Path().c_str(), FakeClock);
    Debug.Take();
    client.Print("a%d", 1);
    client.PrintLevel(99, "b%d", 2);
    EXPECT_EQ(Debug.Take(), "a1b2");
    EXPECT_EQ(Debug.LastModuleName(), "");
}

TEST_F(TraceEnvironment, DynamicUpdateReplacesTheEnvironmentLevel) {
    setenv("TL_LOG_DEBUG_LEVEL", "4", 1);
    auto client = Following("10", "2");
    EXPECT_EQ(client->m_nLevel, 4u);
    EXPECT_EQ(client->m_nUpdateInterval, 10u);

    g_tNow += 10;
    client->Trace(6, "x");  // due, but the file has not changed
    EXPECT_EQ(client->m_nLevel, 4u);

    SetModified(m_Dir.Path() + "/global_trace.ini", 6000);
    g_tNow += 5;
    client->Trace(6, "x");  // changed, but not due yet
    EXPECT_EQ(client->m_nLevel, 4u);
    g_tNow += 5;
    client->Trace(6, "x");
    EXPECT_EQ(client->m_nLevel, 2u);
    EXPECT_EQ(client->m_nLevelCopy, 2u);
}

TEST_F(TraceEnvironment, DynamicUpdateChecksWhenTheClockStepsBack) {
    auto client = Following("100", "2");
    client->Trace(6, "x");  // the first check is due at once
    Rewrite("3", 6000);
    g_tNow -= 1;
    client->Trace(6, "x");
    EXPECT_EQ(client->m_nLevel, 3u);
}

TEST_F(TraceEnvironment, DeletedFileIsDroppedForGood) {
    auto client = Following("1", "2");
    remove((m_Dir.Path() + "/global_trace.ini").c_str());
    g_tNow += 1;
    client->Trace(6, "x");
    EXPECT_TRUE(client->m_ModuleReader.Path().empty());

    Rewrite("5", 7000);
    g_tNow += 1;
    client->Trace(6, "x");
    EXPECT_EQ(client->m_nLevel, 2u);
}

TEST_F(TraceEnvironment, ClientThatStartedSilentStaysDisabled) {
    auto client = Following("1", "0");
    EXPECT_FALSE(client->IsEnabled());
    Rewrite("6", 6000);
    g_tNow += 1;
    client->Trace(6, "x");
    EXPECT_EQ(client->m_nLevel, 6u);
    EXPECT_FALSE(client->IsEnabled());
}

TEST_F(TraceEnvironment, GlobalFileSetsTheUpdateInterval) {
    std::string path = m_Dir.Write("global_trace.ini",
                                   "[GlobalDebugSettings]\nDynamicUpdate=30\n[EM_TLRAID]\n"
                                   "FileDebugLevel=1\n[EndOfFile]\n");
    CDebugClient client(m_Dir.Path().c_str(), FakeClock);
    client.Initialize(kModule);
    EXPECT_EQ(client.m_nDynamicUpdate, 30u);
    EXPECT_EQ(client.m_nUpdateInterval, 30u);
    setenv("TL_LOG_DYNAMIC_UPDATE", "7", 1);
    CDebugClient fromEnv(m_Dir.Path().c_str(), FakeClock);
    fromEnv.Initialize(kModule);
    EXPECT_EQ(fromEnv.m_nUpdateInterval, 7u);
}

}  // namespace
