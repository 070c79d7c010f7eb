#include "ctablet.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace
{

using Area = std::array<int, 4>;

struct Tap {
    int x;
    int y;
};

// A tablet of 1000 by 600 hundredths of an inch, in the middle of a selection.
class AreaSelection : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_Tablet.m_DeviceAttributes.Width = 1000;
        m_Tablet.m_DeviceAttributes.Height = 600;
        m_Tablet.m_AreaSelecting = true;
    }

    void tap(Tap at)
    {
        m_Tablet.m_TabletData = TabletDataEX{};
        m_Tablet.m_TabletData.eventFlags = kEventPen | kEventPenButtons;
        m_Tablet.m_TabletData.penButtonMask = 1;
        m_Tablet.m_TabletData.penButtonState = 1;
        m_Tablet.m_TabletData.x = at.x;
        m_Tablet.m_TabletData.y = at.y;
        m_Tablet.SetAreaAction();
    }

    std::vector<Area> areas(const QSignalSpy &spy)
    {
        std::vector<Area> result;
        for (const QList<QVariant> &args : spy)
            result.push_back(
                {args.at(0).toInt(), args.at(1).toInt(), args.at(2).toInt(), args.at(3).toInt()});
        return result;
    }

    CTablet m_Tablet;
};

struct AreaCase {
    const char *name;
    int lpi;
    int16_t orientation;
    Tap first;
    Tap second;
    Area expected;
};

class AreaCases : public AreaSelection, public ::testing::WithParamInterface<AreaCase>
{
};

TEST_P(AreaCases, TwoTapsGiveTheAreaInTheDevicesOwnOrientation)
{
    const AreaCase &c = GetParam();
    m_Tablet.m_DeviceAttributes.LPI = c.lpi;
    m_Tablet.m_TabletXMLData->Orientation = c.orientation;
    QSignalSpy spy(&m_Tablet, &CTablet::SetAreaOk);
    tap(c.first);
    EXPECT_EQ(spy.count(), 0);
    EXPECT_TRUE(m_Tablet.m_AreaSelecting);
    tap(c.second);
    EXPECT_EQ(areas(spy), std::vector<Area>{c.expected});
    EXPECT_FALSE(m_Tablet.m_AreaSelecting);
}

// At 100 LPI the corners read as hundredths: x' 100, y' 50, w' 201, h' 151.
INSTANTIATE_TEST_SUITE_P(
    Device, AreaCases,
    ::testing::Values(
        // 1 * 100 / 5080 is 0 for both sides; only the width is raised to 1.
        AreaCase{"sameSpot", 5080, 0, {5080, 10160}, {5080, 10160}, {100, 200, 1, 0}},
        AreaCase{"secondLeftOfFirst", 100, 0, {300, 200}, {100, 50}, {100, 50, 201, 151}},
        AreaCase{"quarter", 100, 1, {100, 50}, {300, 200}, {399, 100, 151, 201}},
        AreaCase{"half", 100, 2, {100, 50}, {300, 200}, {699, 399, 201, 151}},
        AreaCase{"threeQuarters", 100, 3, {100, 50}, {300, 200}, {50, 699, 151, 201}},
        AreaCase{"unknownOrientation", 100, 4, {100, 50}, {300, 200}, {0, 0, 0, 0}},
        // y is W - w' = 1000 - 1.
        AreaCase{"threeQuartersAtOrigin", 5080, 3, {0, 0}, {0, 0}, {0, 999, 0, 1}}),
    [](const ::testing::TestParamInfo<AreaCase> &info) { return std::string(info.param.name); });

// The reader's path: while selecting, hovering and lifting the tip do not count.
TEST_F(AreaSelection, ReportsWhileSelectingAreConsumedByTheSelection)
{
    m_Tablet.m_DeviceAttributes.LPI = 100;
    m_Tablet.m_Active = true;
    QSignalSpy spy(&m_Tablet, &CTablet::SetAreaOk);
    // Kind 0xA0 hovers, 0xA1 has the tip down; x and y little-endian from byte 2.
    const std::vector<std::vector<quint8>> reports = {{0x02, 0xA0, 100, 0, 50, 0, 0, 0, 0, 0},
                                                      {0x02, 0xA1, 100, 0, 50, 0, 0, 0, 0, 0},
                                                      {0x02, 0xA0, 44, 1, 200, 0, 0, 0, 0, 0},
                                                      {0x02, 0xA1, 44, 1, 200, 0, 0, 0, 0, 0}};
    for (std::vector<quint8> frame : reports)
        m_Tablet.ReceiveTabletPackets(frame.data(), static_cast<int>(frame.size()));
    EXPECT_EQ(areas(spy), (std::vector<Area>{{100, 50, 201, 151}}));
}

} // namespace
