// The pieces of emhost's views that need no module: when the text views colour, the exit
// bits of a look, the exposition of odd names, and the metrics file written whole.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <set>
#include <string>

#include "Colour.h"
#include "ExitStatus.h"
#include "Metrics.h"
#include "MetricsFile.h"
#include "StorageState.h"
#include "TextTable.h"
#include "support/SandboxHost.h"
#include "support/TempDir.h"

namespace {

TEST(EmhostViewsTest, ColourOnlyWhenAskedOrOnATerminalWithoutNoColor) {
    const struct {
        ColourMode mode;
        bool terminal;
        const char* noColor;
        bool expected;
    } rows[] = {
        {ColourMode::kAuto, true, nullptr, true}, {ColourMode::kAuto, true, "", true},
        {ColourMode::kAuto, true, "1", false},    {ColourMode::kAuto, false, nullptr, false},
        {ColourMode::kAlways, false, "1", true},  {ColourMode::kNever, true, nullptr, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ColourWanted(row.mode, row.terminal, row.noColor), row.expected)
            << static_cast<int>(row.mode) << " " << row.terminal << " "
            << (row.noColor ? row.noColor : "(unset)");
    }
    // The colour takes no room: the columns behind a painted cell stay where they were.
    TextTable table({"status", "name"});
    table.Add({{"11 failed", Severity::kFailed}, "A"});
    table.Add({{"0 OK", Severity::kOk}, "B"});
    table.Add({"2 unknown", "C"});
    TempDir dir;
    const std::string path = dir.Path() + "/table.txt";
    FILE* out = fopen(path.c_str(), "w");
    ASSERT_NE(out, nullptr);
    table.Print(out, "  ", Palette(true));
    fclose(out);
    EXPECT_EQ(ReadWholeFile(path),
              "  status     name\n"
              "  ---------  ----\n"
              "  \033[31m11 failed\033[0m  A\n"
              "  \033[32m0 OK\033[0m       B\n"
              "  2 unknown  C\n");
}

TEST(EmhostViewsTest, MetricsEscapeLabelsAndLeaveOutWhatDidNotCome) {
    StorageState state;
    state.adapterCount.status = status::kOk;
    state.adapters.resize(2);
    auto reply = [](uint32_t st, uint64_t number, const std::string& text = "") {
        Reply r;
        r.status = st;
        r.number = number;
        r.text = text;
        return r;
    };
    state.adapters[0].name = reply(status::kOk, 0, "a \"b\" \\ c\nd\xff");
    state.adapters[0].status = {reply(status::kOk, 2), &inventory_words::AdapterStatus()};
    state.adapters[1].status = {reply(status::kNotAvailable, 0), &inventory_words::AdapterStatus()};
    const std::string text = MetricsText(state, MonitorHealth());
    EXPECT_NE(
        text.find(
            "\nem_tlraid_adapter_status{adapter=\"0\",name=\"a \\\"b\\\" \\\\ c\\nd\\\\udcff\","
            "status=\"failed\"} 2\n"),
        std::string::npos)
        << text;
    EXPECT_EQ(text.find("adapter=\"1\""), std::string::npos) << text;
    // No tree was read yet: no age.
    EXPECT_EQ(text.find("\nem_tlraid_tree_age_seconds "), std::string::npos) << text;
}

// What a look tells of the daemon and the tree, and the severities of its statuses.
TEST(EmhostViewsTest, ExitBitsOfALook) {
    auto reply = [](uint32_t st, uint64_t number = 0) {
        Reply r;
        r.status = st;
        r.number = number;
        return r;
    };
    const Reply ok = reply(status::kOk), refused = reply(status::kNoRaidData);
    const struct {
        std::optional<Reply> renewal;
        Reply adapterCount;
        uint64_t driveStatus, logicalStatus;  // of a tree
        int expected;
    } rows[] = {
        {std::nullopt, reply(status::kOk, 1), 0, 0, 0},
        {ok, reply(status::kOk, 1), 6, 1, 16},      // rebuilding, degraded
        {ok, reply(status::kOk, 1), 11, 1, 48},     // failed, degraded
        {ok, reply(status::kOk, 1), 99, 0, 0},      // a number without words says nothing
        {refused, reply(status::kOk, 1), 0, 0, 4},  // the old tree, kept
        {refused, reply(status::kNotAvailable), 0, 0, 4},
        {ok, reply(status::kNotAvailable), 0, 0, 8},
        {std::nullopt, reply(status::kNotAvailable), 0, 0, 0},  // never asked why
    };
    for (const auto& row : rows) {
        StorageState state;
        state.renewal = row.renewal;
        state.adapterCount = row.adapterCount;
        if (row.adapterCount.Ok()) {
            state.adapters.resize(1);
            state.adapters[0].drives.resize(1);
            state.adapters[0].drives[0].status = {reply(status::kOk, row.driveStatus),
                                                  &inventory_words::DriveStatus()};
            state.adapters[0].logicalDrives.resize(1);
            state.adapters[0].logicalDrives[0].status = {reply(status::kOk, row.logicalStatus),
                                                         &inventory_words::LogicalDriveStatus()};
        }
        EXPECT_EQ(exit_status::OfStorage(state), row.expected)
            << &row - rows << ": " << exit_status::Describe(row.expected);
    }
}

TEST(EmhostViewsTest, MetricsFileIsReplacedWholeOrLeftAlone) {
    TempDir dir;
    const std::string path = dir.Path() + "/storage.prom";
    std::string error;
    const mode_t mask = umask(077);
    const bool written =
        WriteFileWhole(path, "old\n", error) && WriteFileWhole(path, "new\n", error);
    umask(mask);
    ASSERT_TRUE(written) << error;
    EXPECT_EQ(ReadWholeFile(path), "new\n");
    struct stat info {};
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0644u);

    // A directory where the file should be: the rename fails, and no new file stays beside it.
    const std::string taken = dir.Path() + "/taken";
    ASSERT_EQ(mkdir(taken.c_str(), 0755), 0);
    ASSERT_EQ(mkdir((taken + "/inside").c_str(), 0755), 0);
    EXPECT_FALSE(WriteFileWhole(taken, "x\n", error));
    EXPECT_NE(error.find(taken), std::string::npos) << error;
    EXPECT_FALSE(WriteFileWhole(dir.Path() + "/missing/storage.prom", "x\n", error));
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path()))
        names.insert(entry.path().filename());
    EXPECT_EQ(names, (std::set<std::string>{"storage.prom", "taken"}));
}

}  // namespace
