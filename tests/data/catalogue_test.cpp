#include "zelkdevice.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <tuple>

namespace
{

using Columns = std::tuple<uint32_t, uint32_t, uint16_t, uint16_t>;

const ZelkDevice *findRow(uint32_t pid)
{
    for (const ZelkDevice &row : zelkDevList) {
        if (row.pid == pid)
            return &row;
    }
    return nullptr;
}

Columns columnsOf(const ZelkDevice &row)
{
    return Columns(row.interfaceNumber, row.collection, row.reportMode, row.deviceType);
}

bool isTagName(const char *name)
{
    if (!std::isalpha(static_cast<unsigned char>(name[0])) && name[0] != '_')
        return false;
    for (const char *c = name; *c != '\0'; ++c) {
        if (!std::isalnum(static_cast<unsigned char>(*c)) && std::strchr("_.-", *c) == nullptr)
            return false;
    }
    return true;
}

void expectRow(uint32_t pid, const Columns &columns, uint16_t type, const char *name)
{
    const ZelkDevice *row = findRow(pid);
    ASSERT_NE(row, nullptr) << std::hex << pid;
    EXPECT_EQ(columnsOf(*row), columns) << std::hex << pid;
    EXPECT_EQ(row->deviceType, type) << std::hex << pid;
    if (name != nullptr) {
        EXPECT_STREQ(row->name, name);
    }
}

} // namespace

TEST(Catalogue, HoldsTheRowsOfEveryColumnCombination)
{
    std::map<Columns, int> counts;
    for (const ZelkDevice &row : zelkDevList)
        ++counts[columnsOf(row)];
    const std::map<Columns, int> expected = {
        {Columns(2, 0, 4, 1), 27}, {Columns(2, 0, 4, 2), 27}, {Columns(2, 0, 2, 1), 9},
        {Columns(2, 1, 4, 1), 8},  {Columns(1, 0, 4, 1), 1},  {Columns(2, 1, 2, 1), 1},
        {Columns(2, 0, 2, 2), 1},  {Columns(1, 0, 2, 4), 1},  {Columns(2, 1, 4, 4), 1},
    };
    EXPECT_EQ(counts, expected);
}

TEST(Catalogue, EveryRowBelongsToTheVendorAndIdsAreUnique)
{
    std::set<uint32_t> pids;
    for (const ZelkDevice &row : zelkDevList) {
        EXPECT_EQ(row.vid, kVendorId);
        EXPECT_LE(row.pid, 0xFFFFu);
        EXPECT_TRUE(pids.insert(row.pid).second) << "repeated product " << std::hex << row.pid;
    }
    EXPECT_EQ(pids.size(), static_cast<size_t>(kCatalogueSize));
}

TEST(Catalogue, NamesFitTheProfileRecordAndAreTagNames)
{
    for (const ZelkDevice &row : zelkDevList) {
        const size_t length = strnlen(row.name, sizeof(row.name));
        EXPECT_GE(length, 1u) << std::hex << row.pid;
        EXPECT_LE(length, 29u) << row.name;
        EXPECT_TRUE(isTagName(row.name)) << row.name;
        for (size_t i = length; i < sizeof(row.name); ++i)
            EXPECT_EQ(row.name[i], '\0') << row.name;
    }
}

TEST(Catalogue, ProductsSharingANameShareTheDeviceType)
{
    std::map<std::string, uint16_t> typeByName;
    for (const ZelkDevice &row : zelkDevList) {
        const auto inserted = typeByName.emplace(row.name, row.deviceType);
        EXPECT_EQ(inserted.first->second, row.deviceType) << row.name;
    }
}

TEST(Catalogue, RemotesHaveTheirOwnRows)
{
    expectRow(0x03E1, Columns(1, 0, 2, 4), DeviceTypeRemote, nullptr);
    expectRow(0x03E2, Columns(2, 1, 4, 4), DeviceTypeRemote, "QRM07");
}

TEST(Catalogue, HoldsTheDocumentedExampleRows)
{
    expectRow(0x0B40, Columns(2, 0, 4, 1), DeviceTypeTablet, "QTB0610");
    expectRow(0x0B41, Columns(2, 1, 4, 1), DeviceTypeTablet, "QTB0610W");
    expectRow(0xA20C, Columns(2, 0, 4, 2), DeviceTypePenDisplay, "QPD1600");
}

TEST(Catalogue, HoldsTheProductsThatCodeTestsByNumber)
{
    for (const uint32_t pid : {0xA101u, 0xA102u, 0xA103u, 0xA104u, 0xA105u, 0x07C9u, 0x00A1u})
        EXPECT_NE(findRow(pid), nullptr) << std::hex << pid;
    const ZelkDevice *reminder = findRow(0xA105);
    ASSERT_NE(reminder, nullptr);
    EXPECT_STREQ(reminder->name, "TQR4470C-C");
}

TEST(Catalogue, PenDisplaysLieOnBothSidesOfTheDisplayThresholds)
{
    for (const uint32_t pid : {0x0A5Au, 0x0A5Bu, 0x0A5Fu}) {
        const ZelkDevice *row = findRow(pid);
        ASSERT_NE(row, nullptr) << std::hex << pid;
        EXPECT_EQ(row->deviceType, DeviceTypePenDisplay) << std::hex << pid;
    }
    int below = 0;
    int between = 0;
    int above = 0;
    for (const ZelkDevice &row : zelkDevList) {
        if (row.deviceType != DeviceTypePenDisplay)
            continue;
        below += row.pid < 0x0A2A;
        between += row.pid > 0x0A2A && row.pid < 0x0A5A;
        above += row.pid > 0x0A5A;
    }
    EXPECT_GT(below, 0);
    EXPECT_GT(between, 0);
    EXPECT_GT(above, 0);
}
