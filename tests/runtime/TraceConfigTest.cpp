// The trace client's configuration: files, sections, keys, environment and dynamic update.
#include <gtest/gtest.h>
#include <utime.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <tuple>

#include "runtime/DebugClient.h"
#include "support/CaptureTraceServer.h"
#include "support/TempDir.h"

namespace {

time_t g_tNow = 1000000;
time_t FakeClock() {
    return g_tNow;
}

const char kModule[] = "EM_TLRAID";

std::string ModuleFile(const std::string& level) {
    return "[GlobalDebugSettings]\nDynamicUpdate=0\n[EM_TLRAID]\nFileDebugLevel=" + level +
           "\n[EndOfFile]\n";
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
    void Rewrite(const char* level, time_t modified) {
        SetModified(m_Dir.Write("global_trace.ini", ModuleFile(level)), modified);
    }

    uint32_t LevelFor(const std::string& dir) {
        CDebugClient client(dir.c_str(), FakeClock);
        client.Initialize(kModule);
        return client.m_nLevel;
    }

    TempDir m_Dir;
};

TEST_F(TraceEnvironment, LevelByTheFilesOfTheDirectory) {
    const std::string end = "[EndOfFile]\n";
    const std::tuple<const char*, std::string, uint32_t> rows[] = {
        {"hex", ModuleFile("0x5"), 5},
        {"newlines skipped", ModuleFile("  \n\t 4"), 4},
        {"no number", ModuleFile("abc"), 0},
        {"inside a comment first",
         "[EM_TLRAID]\n; FileDebugLevel = 9 is loud\nFileDebugLevel=2\n" + end, 9},
        {"last section in any case", "[EM_TLRAID]\nFileDebugLevel=3\n[endoffile]\n", 3},
        {"last section misspelt", "[EM_TLRAID]\nFileDebugLevel=3\n[EndOfFil]\n", 0},
        {"section ends at the next", "[em_tlraid]\nTraceFlags=1\n[Other]\nFileDebugLevel=6\n" + end,
         0},
        {"section names exactly",
         "[EM_TLRAIDX]\nFileDebugLevel=6\n[em_tlraid]\nFileDebugLevel=2\n" + end, 2},
    };
    for (const auto& [what, text, level] : rows) {
        TempDir dir;
        dir.Write("t.ini", text);
        EXPECT_EQ(LevelFor(dir.Path()), level) << what;
    }
    // The first file in sorted order with the section.
    m_Dir.Write("b.ini", ModuleFile("4"));
    m_Dir.Write("a.ini.bak", ModuleFile("5"));
    m_Dir.Write(".#c.ini", ModuleFile("6"));
    m_Dir.Write("notes.txt", ModuleFile("1"));
    EXPECT_EQ(LevelFor(m_Dir.Path()), 5u);
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

TEST_F(TraceEnvironment, FileSetsLevelAndUpdateIntervalAndEqualLevelsPass) {
    m_Dir.Write("global_trace.ini",
                "[GlobalDebugSettings]\nDynamicUpdate=30\n[EM_TLRAID]\n"
                "FileDebugLevel=5\n[EndOfFile]\n");
    CDebugClient client(m_Dir.Path().c_str(), FakeClock);
    EXPECT_EQ(client.Initialize(kModule), 1);
    EXPECT_EQ(client.m_nFileLevel, 5u);
    EXPECT_TRUE(client.IsEnabled());
    EXPECT_EQ(client.m_nUpdateInterval, 30u);
    Debug.Take();
    client.Trace(5, "\n%-20s: five", "TAG");
    client.Trace(6, "six");
    EXPECT_EQ(Debug.Take(), "\nTAG                 : five");
    EXPECT_EQ(Debug.LastModuleName(), kModule);
    // Print ignores the level.
    client.Print("a%d", 1);
    client.PrintLevel(99, "b%d", 2);
    EXPECT_EQ(Debug.Take(), "a1b2");
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

TEST_F(TraceEnvironment, DynamicUpdateChecksWhenTheClockStepsBack) {
    auto client = Following("100", "0");
    client->Trace(6, "x");  // the first check is due at once
    Rewrite("3", 6000);
    g_tNow -= 1;  // the clock stepped back: due as well
    client->Trace(6, "x");
    EXPECT_EQ(client->m_nLevel, 3u);
    EXPECT_FALSE(client->IsEnabled()) << "a client that started silent stays disabled";
}

}  // namespace
