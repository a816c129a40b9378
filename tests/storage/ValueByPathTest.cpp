// The path test on a raw tree: pieces, indexes in three bases, and the empty value.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "storage/StorageTreeConvert.h"
#include "storage/TLRaidData.h"
#include "storage/TreeText.h"

namespace {

std::string Adapters(int count) {
    std::string s;
    for (int i = 0; i < count; ++i) {
        s += "<Adapter Nr=\"" + std::to_string(i) + "\"><Status>S" + std::to_string(i) +
             "</Status></Adapter>";
    }
    return s;
}

TEST(ValueByPath, ExistsButDeliversNoValue) {
    CTLRaidData one, ten;
    one.SetDoc(WholeTree(Adapters(1)));
    ten.SetDoc(WholeTree(Adapters(10)));
    const std::tuple<CTLRaidData*, const char*, bool> rows[] = {
        {&one, "System/Adapter[0]/Status", true},
        {&one, "System/Adapter[1]/Status", false},
        {&one, "/System//Adapter/Status/", true},
        {&one, "System/Adapter/Name", false},
        {&one, "amEMTL/System", false},      // the path starts below the root
        {&one, "System/Adapter[-1]", true},  // no search: the last result stands
        {&one, "System[-1]/Adapter", false},
        {&one, "System/Adapter[0", false},  // no closing bracket: searched as it stands
        {&ten, "System/Adapter[10]", false},
        {&ten, "System/Adapter[0X9]", true},
        {&ten, "System/Adapter[0xA]", false},
        {&ten, "System/Adapter[011]", true},  // the tenth
        {&ten, "System/Adapter[012]", false},
        {&ten, "System/Adapter[09]", true},  // octal reads "0"
        {&ten, "System/Adapter[4294967296]", false},
    };
    for (const auto& [tree, path, found] : rows) {
        std::string value = "untouched";
        EXPECT_EQ(GetValueByPath(*tree, value, path, 1), found) << path;
        EXPECT_EQ(value, found ? "" : "untouched") << path;
    }
}

TEST(ValueByPath, RefusedPathsAndModes) {
    CTLRaidData tree;
    tree.SetDoc(SampleTree("demo.xml"));
    std::string value = "untouched";
    EXPECT_FALSE(GetValueByPath(tree, value, nullptr, 1));
    EXPECT_FALSE(GetValueByPath(tree, value, "", 1));
    EXPECT_FALSE(GetValueByPath(tree, value, "///", 1));
    EXPECT_FALSE(GetValueByPath(tree, value, "System", 0));
    EXPECT_FALSE(GetValueByPath(tree, value, "System", 2));
    EXPECT_EQ(value, "untouched");
    EXPECT_TRUE(GetValueByPath(tree, value, "System/Adapter[1]/PCIBus", 1));
    EXPECT_EQ(value, "");

    CTLRaidData exported;
    exported.SetDoc("<TLRaidStorageDeviceTree><System/></TLRaidStorageDeviceTree>");
    EXPECT_FALSE(GetValueByPath(exported, value, "System", 1));
}

}  // namespace
