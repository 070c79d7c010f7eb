#include "actionmessages.h"
#include "cglobaldata.h"
#include "ctablet.h"
#include "jingximode.h"
#include "windowfixture.h"

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace
{

struct HoleCase {
    QPoint centre;
    QPoint hole;
};

// A window of 1920 by 1080.
TEST(JingXiModeGeometry, HoleStaysOnTheScreen)
{
    const HoleCase cases[] = {
        {{960, 540}, {800, 428}},
        {{160, 112}, {0, 0}},
        {{161, 113}, {1, 1}},
        // Far right: the hole's last column is 1919.
        {{1910, 540}, {1600, 428}},
        // Near the bottom: the hole's last row is 855 + 224 = 1079, H - 1.
        {{960, 1075}, {800, 855}},
        // Not above H: the plain rule, which ends the hole on row 1080.
        {{960, 968}, {800, 856}},
    };
    for (const HoleCase &c : cases) {
        EXPECT_EQ(JingXiMode::HoleOrigin(c.centre, QSize(1920, 1080)), c.hole)
            << c.centre.x() << "," << c.centre.y();
    }
}

// The overlay on a second screen right of the first, the pen near its bottom right.
TEST(JingXiModeGeometry, PaintingReportsTheBodyInDesktopCoordinates)
{
    const QRect screen(1920, 0, 1280, 1024);
    JingXiMode overlay(screen, QPoint(1920 + 1270, 1000));
    QSignalSpy spy(&overlay, &JingXiMode::GetModeRect);

    QImage image(screen.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(230, 230, 230));
    QPainter painter(&image);
    overlay.render(&painter, QPoint(), QRegion(), QWidget::DrawChildren);
    painter.end();

    ASSERT_GE(spy.count(), 1);
    // hx 1280 - 320 = 960, hy 1024 - 225 = 799.
    EXPECT_EQ(spy.last().at(0).toRect(), QRect(QPoint(2880, 814), QPoint(3199, 1023)));
    QDir().mkpath(SCREENSHOT_DIR);
    EXPECT_TRUE(image.save(QString(SCREENSHOT_DIR) + "/finemode_overlay.png"));
}

class FineMode : public WindowFixture
{
protected:
    void SetUp() override
    {
        WindowFixture::SetUp();
        for (int slot = 0; slot < 3; ++slot)
            CGlobalData::TabletArray[slot] = &m_Tablets[slot];
    }
    void TearDown() override
    {
        for (CTablet *&tablet : CGlobalData::TabletArray)
            tablet = nullptr;
        CGlobalData::TabletMap.clear();
        WindowFixture::TearDown();
    }

    void makeCurrent(int slot)
    {
        CGlobalData::TabletMap["Current"] = &m_Tablets[slot];
        m_Window->InitUI("Current");
    }
    int16_t &on(int slot) { return m_Tablets[slot].m_TabletXMLData->bBERectOn; }
    stBERect &area(int slot) { return m_Tablets[slot].m_TabletXMLData->BERect; }

    CTablet m_Tablets[3];
};

bool operator==(const stBERect &a, const stBERect &b)
{
    return a.x == b.x && a.y == b.y && a.w == b.w && a.h == b.h;
}

TEST_F(FineMode, AreaGoesToTheCurrentTabletOrToEveryTabletInFineMode)
{
    struct Case {
        int16_t on[3];
        bool written[3];
    };
    // The current tablet is slot 1.
    const Case cases[] = {
        {{1, 1, 1}, {false, true, false}},
        {{1, 0, 1}, {true, false, true}},
        {{0, 0, 0}, {false, false, false}},
    };
    makeCurrent(1);
    const stBERect untouched = {1, 2, 3, 4};
    const stBERect expected = {100, 200, 320, 210};
    for (const Case &c : cases) {
        for (int slot = 0; slot < 3; ++slot) {
            on(slot) = c.on[slot];
            area(slot) = untouched;
        }
        m_Window->GetBERect(QRect(100, 200, 320, 210));
        for (int slot = 0; slot < 3; ++slot)
            EXPECT_TRUE(area(slot) == (c.written[slot] ? expected : untouched)) << slot;
    }
}

// The second message closes what the first opened.
TEST_F(FineMode, MessageFourOpensOnTheMappedScreenAndClosesTheSecondTime)
{
    CGlobalData::ScreenArray[9] = QRect(0, 1024, 800, 600);
    makeCurrent(0);
    m_Tablets[0].m_TabletXMLData->ScreenId = 12;
    m_Window->ReceivActionMsg(2, kMsgFineMode, 0);
    ASSERT_NE(m_Window->fineMode(), nullptr);
    EXPECT_EQ(m_Window->fineMode()->geometry(), QRect(0, 1024, 800, 600));
    EXPECT_EQ(on(2), 1);
    EXPECT_EQ(on(0), 0);
    m_Window->ReceivActionMsg(2, kMsgFineMode, 0);
    EXPECT_EQ(m_Window->fineMode(), nullptr);
    EXPECT_EQ(on(2), 0);
}

// A remote turns fine mode on for the first other tablet; Escape ends it everywhere.
TEST_F(FineMode, RemoteOpensEscapeClosesASecondCloseIsHarmless)
{
    m_Tablets[0].m_DeviceAttributes.DeviceType = DeviceTypeRemote;
    m_Window->ReceivActionMsg(0, kMsgFineMode, 0);
    EXPECT_EQ(on(0), 0);
    EXPECT_EQ(on(1), 1);
    on(2) = 1;
    ASSERT_NE(m_Window->fineMode(), nullptr);
    QTest::keyClick(m_Window->fineMode(), Qt::Key_Escape);
    EXPECT_EQ(m_Window->fineMode(), nullptr);
    EXPECT_EQ(on(1), 0);
    EXPECT_EQ(on(2), 0);
    m_Window->CloseJingxiMode();
    EXPECT_EQ(m_Window->fineMode(), nullptr);
}

} // namespace
