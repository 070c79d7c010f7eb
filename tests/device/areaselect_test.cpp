#include "devicefixture.h"

#include <QSignalSpy>

namespace
{

// A tablet of 1000 by 600 hundredths of an inch, in the middle of a selection.
void select(CTablet &tablet, int lpi, int orientation)
{
    tablet.m_DeviceAttributes.Width = 1000;
    tablet.m_DeviceAttributes.Height = 600;
    tablet.m_DeviceAttributes.LPI = lpi;
    tablet.m_TabletXMLData->Orientation = int16_t(orientation);
    tablet.m_AreaSelecting = true;
}

TEST(AreaSelection, TwoTapsGiveTheAreaInTheDevicesOwnOrientation)
{
    for (const QStringList &c : table("areas.txt")) {
        SCOPED_TRACE(c[0].toStdString());
        QList<int> v;
        for (const QString &number : c[0].split(' ', Qt::SkipEmptyParts))
            v << number.toInt();
        CTablet tablet;
        select(tablet, v[0], v[1]);
        QSignalSpy spy(&tablet, &CTablet::SetAreaOk);
        for (int tap = 0; tap < 2; ++tap) {
            EXPECT_EQ(spy.count(), 0);
            EXPECT_TRUE(tablet.m_AreaSelecting);
            tablet.m_TabletData = TabletDataEX{};
            tablet.m_TabletData.eventFlags = kEventPen | kEventPenButtons;
            tablet.m_TabletData.penButtonMask = tablet.m_TabletData.penButtonState = 1;
            tablet.m_TabletData.x = v[2 + 2 * tap];
            tablet.m_TabletData.y = v[3 + 2 * tap];
            tablet.SetAreaAction();
        }
        EXPECT_EQ(spy.count(), 1);
        EXPECT_EQ(QVariant(spy.value(0)).toStringList().join(' '), c[1].trimmed());
        EXPECT_FALSE(tablet.m_AreaSelecting);
    }
}

// The reader's path: while selecting, hovering and lifting the tip do not count.
// Kind 0xA0 hovers, 0xA1 has the tip down; x and y little-endian from byte 2.
TEST(AreaSelection, ReportsWhileSelectingAreConsumedByTheSelection)
{
    CTablet tablet;
    select(tablet, 100, 0);
    tablet.m_Active = true;
    QSignalSpy spy(&tablet, &CTablet::SetAreaOk);
    for (const char *report : {"02 a0 64 00 32 ..10", "02 a1 64 00 32 ..10", "02 a0 2c 01 c8 ..10",
                               "02 a1 2c 01 c8 ..10"})
        feed(tablet, bytes(report));
    EXPECT_EQ(spy.count(), 1);
    EXPECT_EQ(QVariant(spy.value(0)).toStringList().join(' '), "100 50 201 151");
}

} // namespace
