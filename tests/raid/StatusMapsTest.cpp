// The numbers clients get for the storage tree's states.
#include <gtest/gtest.h>

#include "raid/StatusMaps.h"

namespace {

TEST(StatusMapsTest, DriveStatusReadsSmartVariantsAsTheirStateAndSwapsNineAndTen) {
    struct Row {
        int32_t index;
        uint8_t want;
    } rows[] = {
        {0, 0},   {2, 2},   {8, 8},   {9, 10},   {10, 9},   {11, 11}, {15, 15}, {16, 255},
        {17, 0},  {18, 1},  {19, 2},  {22, 6},   {23, 7},   {24, 10}, {25, 9},  {26, 11},
        {27, 13}, {28, 14}, {29, 15}, {30, 255}, {-1, 255}, {7, 7},
    };
    for (const Row& r : rows)
        EXPECT_EQ(status_map::DriveStatus(r.index), r.want) << r.index;
}

TEST(StatusMapsTest, ExtendedStatusKeepsPlainCodesAndMarksSmartOnes) {
    struct Row {
        int32_t code;
        uint32_t want;
    } rows[] = {
        {0, 0},       {8, 8},        {9, 10},      {10, 9},      {11, 11},     {15, 15},
        {16, 255},    {-1, 255},     {4096, 0x80}, {4097, 0x81}, {4098, 0x82}, {4099, 255},
        {4100, 0x84}, {4101, 0x85},  {4102, 0x86}, {4103, 0x87}, {4104, 255},  {4105, 0x8A},
        {4106, 0x89}, {4107, 255},   {4108, 255},  {4109, 0x8D}, {4110, 0x8E}, {4111, 0x8F},
        {4112, 255},  {0x3000, 255},
    };
    for (const Row& r : rows)
        EXPECT_EQ(status_map::DriveExtendedStatus(r.code), r.want) << r.code;
}

}  // namespace
