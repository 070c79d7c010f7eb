#include "ctablet.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace
{

using Area = std::array<int, 4>;

std::vector<Area> areas(const QSignalSpy &spy)
{
    std::vector<Area> result;
    for (const QList<QVariant> &a : spy)
        result.push_back({a.at(0).toInt(), a.at(1).toInt(), a.at(2).toInt(), a.at(3).toInt()});
    return result;
}

// A tablet of 1000 by 600 hundredths of an inch, in the middle of a selection.
void select(CTablet &tablet, int lpi, int16_t orientation)
{
    tablet.m_DeviceAttributes.Width = 1000;
    tablet.m_DeviceAttributes.Height = 600;
    tablet.m_DeviceAttributes.LPI = lpi;
    tablet.m_TabletXMLData->Orientation = orientation;
    tablet.m_AreaSelecting = true;
}

void tap(CTablet &tablet, int x, int y)
{
    tablet.m_TabletData = TabletDataEX{};
    tablet.m_TabletData.eventFlags = kEventPen | kEventPenButtons;
    tablet.m_TabletData.penButtonMask = 1;
    tablet.m_TabletData.penButtonState = 1;
    tablet.m_TabletData.x = x;
    tablet.m_TabletData.y = y;
    tablet.SetAreaAction();
}

// At 100 LPI the corners read as hundredths: x' 100, y' 50, w' 201, h' 151.
TEST(AreaSelection, TwoTapsGiveTheAreaInTheDevicesOwnOrientation)
{
    const struct {
        int lpi;
        int16_t orientation;
        int x1, y1, x2, y2;
        Area expected;
    } cases[] = {
        // 1 * 100 / 5080 is 0 for both sides; only the width is raised to 1.
        {5080, 0, 5080, 10160, 5080, 10160, {100, 200, 1, 0}},
        {100, 0, 300, 200, 100, 50, {100, 50, 201, 151}},
        {100, 1, 100, 50, 300, 200, {399, 100, 151, 201}},
        {100, 2, 100, 50, 300, 200, {699, 399, 201, 151}},
        {100, 3, 100, 50, 300, 200, {50, 699, 151, 201}},
        {100, 4, 100, 50, 300, 200, {0, 0, 0, 0}},
        // y is W - w' = 1000 - 1.
        {5080, 3, 0, 0, 0, 0, {0, 999, 0, 1}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.orientation);
        CTablet tablet;
        select(tablet, c.lpi, c.orientation);
        QSignalSpy spy(&tablet, &CTablet::SetAreaOk);
        tap(tablet, c.x1, c.y1);
        EXPECT_EQ(spy.count(), 0);
        EXPECT_TRUE(tablet.m_AreaSelecting);
        tap(tablet, c.x2, c.y2);
        EXPECT_EQ(areas(spy), std::vector<Area>{c.expected});
        EXPECT_FALSE(tablet.m_AreaSelecting);
    }
}

// The reader's path: while selecting, hovering and lifting the tip do not count.
TEST(AreaSelection, ReportsWhileSelectingAreConsumedByTheSelection)
{
    CTablet tablet;
    select(tablet, 100, 0);
    tablet.m_Active = true;
    QSignalSpy spy(&tablet, &CTablet::SetAreaOk);
    // Kind 0xA0 hovers, 0xA1 has the tip down; x and y little-endian from byte 2.
    for (std::vector<quint8> frame :
         std::vector<std::vector<quint8>>{{0x02, 0xA0, 100, 0, 50, 0, 0, 0, 0, 0},
                                          {0x02, 0xA1, 100, 0, 50, 0, 0, 0, 0, 0},
                                          {0x02, 0xA0, 44, 1, 200, 0, 0, 0, 0, 0},
                                          {0x02, 0xA1, 44, 1, 200, 0, 0, 0, 0, 0}})
        tablet.ReceiveTabletPackets(frame.data(), static_cast<int>(frame.size()));
    EXPECT_EQ(areas(spy), (std::vector<Area>{{100, 50, 201, 151}}));
}

} // namespace
