#include "actionmessages.h"
#include "batterywidget.h"
#include "devicefixture.h"
#include "mainwindow.h"
#include "mylrc.h"
#include "settingform.h"
#include "traymenu.h"

#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QMouseEvent>
#include <QResource>
#include <QTabWidget>
#include <QTimer>

#include <string>
#include <vector>

namespace
{

struct PageRows {
    const char *model;
    uint16_t pid;
    const char *deviceInfo;
    std::vector<const char *> rows;
    std::vector<bool> hidden;
    int selectedRow;
    int page;
};

// Row texts are the built-in ones: the test folder has no language file.
const PageRows kPageRows[] = {
    {"QTB0610",
     0x0B40,
     "<DeviceKeyNum>4</DeviceKeyNum>",
     {"Work Area", "Pen", "Shortcut Key"},
     {false, false, false},
     0,
     0},
    {"QTB0860",
     0x0B44,
     "<DeviceKeyNum>8</DeviceKeyNum><DeviceRingNum>1</DeviceRingNum>",
     {"Work Area", "Pen", "Shortcut Key", "Wheel"},
     {false, false, false, false},
     0,
     0},
    {"TQR4470",
     0xA101,
     "<DeviceKeyNum>4</DeviceKeyNum><DeviceTrackPad>1</DeviceTrackPad>",
     {"Work Area", "Pen", "Shortcut Key", "Wheel"},
     {false, false, false, false},
     0,
     0},
    {"QPD1200",
     0x0A18,
     "<DeviceKeyNum>0</DeviceKeyNum>",
     {"Work Area", "Pen"},
     {false, false},
     0,
     0},
    {"QRK12",
     0x03E1,
     "<DeviceKeyNum>10</DeviceKeyNum><DeviceRingNum>1</DeviceRingNum>",
     {"Work Area", "Pen", "Shortcut Key", "Wheel"},
     {true, true, false, false},
     2,
     2},
    // Group keys keep the wheel off the list and always land on the keypad page.
    {"QRM07",
     0x03E2,
     "<DeviceKeyNum>11</DeviceKeyNum><DeviceRingNum>1</DeviceRingNum>"
     "<SupportGroupKeys>1</SupportGroupKeys>",
     {"Work Area", "Pen", "Shortcut Key"},
     {true, true, false},
     2,
     5},
};

QString sectionWith(const QString &model, const QString &deviceInfo, const QString &apps = {})
{
    return QString("<%1><DeviceInfo>%2</DeviceInfo><Common><ScreenMapping id=\"0\"><SX>0</SX>"
                   "<SY>0</SY><SW>0</SW><SH>0</SH></ScreenMapping><TabletPannel "
                   "Orientation=\"0\"><TX>0</TX><TY>0</TY><TW>0</TW><TH>0</TH></TabletPannel></"
                   "Common><CommonAPP/><Apps>%3</Apps></%1>")
        .arg(model, deviceInfo, apps);
}

class Shell : public DeviceFixture
{
protected:
    void SetUp() override
    {
        DeviceFixture::SetUp();
        QString sections;
        for (const PageRows &kind : kPageRows)
            sections += sectionWith(kind.model, kind.deviceInfo);
        writeConfig(sections);
        m_Window = std::make_unique<MainWindow>();
        m_List = m_Window->findChild<QListWidget *>("listWidget_left");
        m_Pages = m_Window->findChild<QTabWidget *>("tabWidget");
        ASSERT_TRUE(m_List && m_Pages);
    }

    void TearDown() override
    {
        m_Window.reset();
        DeviceFixture::TearDown();
    }

    void plug(const std::string &name, uint16_t pid, uint8_t port)
    {
        fakeusb::addDevice(tablet(name, pid, port));
        ASSERT_TRUE(m_Window->EnumDeviceLinux(0));
    }

    QByteArray configFile() const
    {
        QFile file(m_Folder.filePath("config.xml"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::vector<fakeusb::Bytes> framesTo(const std::string &name) const
    {
        std::vector<fakeusb::Bytes> frames;
        for (const fakeusb::Write &write : fakeusb::writesTo(name))
            frames.push_back(write.data);
        return frames;
    }

    void press(const char *object, int y)
    {
        auto *target = m_Window->findChild<QWidget *>(object);
        QMouseEvent press(QEvent::MouseButtonPress, QPointF(300, y), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(target, &press);
        QMouseEvent move(QEvent::MouseMove, QPointF(340, y + 25), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(target, &move);
        // The window followed the cursor, so the release is where the press was.
        QMouseEvent release(QEvent::MouseButtonRelease, QPointF(300, y), Qt::LeftButton,
                            Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(target, &release);
    }

    std::unique_ptr<MainWindow> m_Window;
    QListWidget *m_List = nullptr;
    QTabWidget *m_Pages = nullptr;
};

class ShellPages : public Shell, public ::testing::WithParamInterface<PageRows>
{
};

TEST_P(ShellPages, ListRowsAndFirstPageFollowTheDeviceKind)
{
    const PageRows &kind = GetParam();
    plug(kind.model, kind.pid, 1);
    ASSERT_EQ(m_List->count(), static_cast<int>(kind.rows.size()));
    for (int row = 0; row < m_List->count(); ++row) {
        EXPECT_EQ(m_List->item(row)->text(), kind.rows[row]) << "row " << row;
        EXPECT_EQ(m_List->item(row)->isHidden(), kind.hidden[row]) << "row " << row;
    }
    EXPECT_EQ(m_List->currentRow(), kind.selectedRow);
    EXPECT_EQ(m_Pages->currentIndex(), kind.page);
}

INSTANTIATE_TEST_SUITE_P(Kinds, ShellPages, ::testing::ValuesIn(kPageRows),
                         [](const auto &info) { return std::string(info.param.model); });

TEST_F(Shell, GroupKeyDeviceStaysOnTheKeypadPageWhicheverRowIsClicked)
{
    plug("remote", 0x03E2, 1);
    for (int row = 0; row < m_List->count(); ++row) {
        emit m_List->itemClicked(m_List->item(row));
        EXPECT_EQ(m_Pages->currentIndex(), 5) << "row " << row;
    }
}

TEST_F(Shell, ApplicationButtonsKeepOneToEightApplications)
{
    const struct {
        int apps;
        bool canDelete;
        bool canAdd;
    } cases[] = {{1, false, true}, {2, true, true}, {8, true, false}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.apps);
        QString apps;
        for (int i = 0; i < c.apps; ++i)
            apps += QString("<app><path>/usr/bin/app%1</path></app>").arg(i);
        writeConfig(sectionWith("QTB0610", "<DeviceKeyNum>4</DeviceKeyNum>", apps));
        m_Window.reset();
        fakeusb::reset();
        m_Window = std::make_unique<MainWindow>();
        plug("tab" + std::to_string(c.apps), 0x0B40, static_cast<uint8_t>(c.apps));
        EXPECT_EQ(m_Window->findChild<QWidget *>("pushButton_delete")->isEnabled(), c.canDelete);
        EXPECT_EQ(m_Window->findChild<QWidget *>("pushButton_add")->isEnabled(), c.canAdd);
    }
}

TEST_F(Shell, PenPageAloneAsksForLiveData)
{
    plug("tab", 0x0B40, 1);
    CTablet *tablet = m_Window->currentTablet();
    emit m_List->itemClicked(m_List->item(1));
    EXPECT_EQ(m_Pages->currentIndex(), 1);
    EXPECT_TRUE(tablet->m_SendMultiData);
    emit m_List->itemClicked(m_List->item(2));
    EXPECT_FALSE(tablet->m_SendMultiData);
}

TEST_F(Shell, OkSavesEveryTabletAndCancelRevertsToTheSaved)
{
    plug("a", 0x0B40, 1);
    plug("b", 0x0B44, 2);
    CTablet *first = CGlobalData::TabletArray[0];
    CTablet *second = CGlobalData::TabletArray[1];
    first->m_TabletXMLData->TX = 2;
    second->m_TabletXMLData->TX = 8;
    m_Window->on_pushButton_ok_clicked();
    first->m_TabletXMLData->TX = 9;
    second->m_TabletXMLData->TX = 1;
    m_Window->on_pushButton_cancel_clicked();
    EXPECT_EQ(first->m_TabletXMLData->TX, 2);
    EXPECT_EQ(second->m_TabletXMLData->TX, 8);
    EXPECT_TRUE(configFile().contains("<TX>2</TX>"));
    EXPECT_TRUE(configFile().contains("<TX>8</TX>"));
}

TEST_F(Shell, CloseWithoutDeviceHidesWithoutSavingOrTip)
{
    const QByteArray before = configFile();
    m_Window->show();
    m_Window->on_closeBtn_clicked();
    EXPECT_FALSE(m_Window->isVisible());
    ASSERT_NE(m_Window->trayIcon(), nullptr);
    EXPECT_EQ(configFile(), before);
    QApplication::processEvents();
    EXPECT_FALSE(dynamic_cast<QWidget *>(CGlobalData::Show_Info)->isVisible());
}

TEST_F(Shell, CloseSavesAndLeavesTheDriverInTheTray)
{
    plug("tab", 0x0B40, 1);
    m_Window->show();
    CGlobalData::TabletArray[0]->m_TabletXMLData->TX = 3;
    m_Window->on_closeBtn_clicked();
    EXPECT_FALSE(m_Window->isVisible());
    EXPECT_TRUE(configFile().contains("<TX>3</TX>"));
    EXPECT_NE(CGlobalData::TabletArray[0], nullptr) << "the device keeps working";
}

TEST_F(Shell, ExitSavesGivesEveryDeviceBackAndQuits)
{
    plug("a", 0x0B40, 1);
    plug("b", 0x0B44, 2);
    CGlobalData::TabletArray[1]->m_TabletXMLData->TX = 7;
    QTimer::singleShot(0, m_Window.get(), &MainWindow::OnQuiqDriver);
    QTimer::singleShot(5000, qApp, [] { QCoreApplication::exit(1); });
    EXPECT_EQ(QCoreApplication::exec(), 0) << "Exit ends the event loop";
    EXPECT_TRUE(configFile().contains("<TX>7</TX>"));
    const fakeusb::Bytes giveBack = {0x02, 0xB0, 0x02, 0, 0, 0, 0, 0, 0, 0};
    for (const char *name : {"a", "b"})
        EXPECT_EQ(framesTo(name).back(), giveBack) << name;
}

TEST_F(Shell, TrayMenuReadsShowAndExit)
{
    m_Window->InitSystemTray();
    const QList<QAction *> entries = m_Window->trayMenu()->actions();
    ASSERT_EQ(entries.size(), 2);
    EXPECT_EQ(entries[0]->text(), "Show");
    EXPECT_EQ(entries[1]->text(), "Exit");
    EXPECT_EQ(m_Window->trayIcon()->toolTip(), "Scribora");
}

TEST_F(Shell, HeadStripDragsUpToEighty)
{
    m_Window->move(100, 100);
    const QPoint start = m_Window->pos();
    press("groupBox_head", 81);
    EXPECT_EQ(m_Window->pos(), start) << "below the strip";
    press("groupBox_head", 80);
    EXPECT_EQ(m_Window->pos(), start + QPoint(40, 25));
}

TEST_F(Shell, LastDeviceGoneShowsTheDisconnectedPanel)
{
    plug("tab", 0x0B40, 1);
    EXPECT_FALSE(m_Pages->isHidden());
    m_Window->DeleteUI();
    EXPECT_TRUE(m_Pages->isHidden());
    EXPECT_EQ(m_List->count(), 0);
    EXPECT_FALSE(m_Window->findChild<QLabel *>("DisconnectTipsLabel")->isHidden());
    EXPECT_TRUE(m_Window->batteryWidget()->isHidden());
}

TEST_F(Shell, BatteryOfTheShownTabletUpdatesItsWidget)
{
    plug("tab", 0x0B40, 1);
    CTablet *tablet = CGlobalData::TabletArray[0];
    tablet->m_BatteryValue = 45;
    m_Window->ReceivActionMsg(0, kMsgBattery, 1);
    BatteryWidget *battery = m_Window->batteryWidget();
    EXPECT_FALSE(battery->isHidden());
    EXPECT_EQ(battery->GetValue(), 45);
    EXPECT_EQ(battery->barStyle(),
              "border-image:url(:/image/Res/battery_charging.png) 39 0 39 0 0;");
}

TEST_F(Shell, SettingFormSwitchesStoreTheirFlagInTheShownProfile)
{
    plug("tab", 0x0B40, 1);
    m_Window->show();
    m_Window->ShowSettingForm();
    SettingForm *form = m_Window->settingForm();
    ASSERT_TRUE(form && form->isVisible());
    EXPECT_EQ(form->pos(), m_Window->frameGeometry().topLeft() + QPoint(590, 70));
    const stTablet_XMLData &settings = *CGlobalData::TabletArray[0]->m_TabletXMLData;
    const struct {
        const char *box;
        const int16_t &flag;
    } switches[] = {{"checkBox_pressure", settings.DisablePressure},
                    {"checkBox_slope", settings.DisableSlope},
                    {"checkBox_shortcuts", settings.DisableQuickKey},
                    {"checkBox_tips", settings.DisableInfo}};
    for (const auto &entry : switches) {
        form->findChild<QCheckBox *>(entry.box)->click();
        EXPECT_EQ(entry.flag, 1) << entry.box;
    }
}

TEST_F(Shell, PagesShowThePicturesOfTheModel)
{
    ASSERT_TRUE(QResource::registerResource(RESOURCE_FILE));
    writeConfig(sectionWith("QTB0860", "<DeviceKeyNum>8</DeviceKeyNum><DeviceRingNum>1"
                                       "</DeviceRingNum><DevicePenType>2</DevicePenType>"
                                       "<DevicePenNum>1</DevicePenNum>"));
    plug("tab", 0x0B44, 1);
    const struct {
        const char *label;
        const char *picture;
    } pages[] = {{"label_penbg", ":/image/Res/pen2.png"},
                 {"label_keyimage", ":/image/tablet/QTB0860_K0.png"},
                 {"label_ringimage", ":/image/tablet/QTB0860_R.png"}};
    for (const auto &page : pages) {
        auto *label = m_Window->findChild<QLabel *>(page.label);
        const QImage expected =
            QPixmap(page.picture)
                .scaled(label->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation)
                .toImage();
        ASSERT_FALSE(expected.isNull()) << page.picture;
        EXPECT_EQ(label->pixmap(Qt::ReturnByValue).toImage(), expected) << page.label;
    }
    QResource::unregisterResource(RESOURCE_FILE);
}

TEST_F(Shell, PenChangeShowsThePenNowOnTheTablet)
{
    ASSERT_TRUE(QResource::registerResource(RESOURCE_FILE));
    writeConfig(sectionWith("QTB0610", "<DeviceKeyNum>4</DeviceKeyNum><DevicePenNum>3"
                                       "</DevicePenNum><DeviceCurPenID>0</DeviceCurPenID>") +
                sectionWith("QTB0860", "<DeviceKeyNum>8</DeviceKeyNum><DevicePenNum>3"
                                       "</DevicePenNum><DeviceCurPenID>0</DeviceCurPenID>"));
    plug("shown", 0x0B40, 1);
    plug("other", 0x0B44, 2);
    auto *label = m_Window->findChild<QLabel *>("label_penbg");
    const auto shows = [label](int number) {
        return label->pixmap(Qt::ReturnByValue).toImage() ==
               QPixmap(QString(":/image/Res/pen%1.png").arg(number))
                   .scaled(label->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation)
                   .toImage();
    };
    EXPECT_TRUE(shows(1));
    CGlobalData::TabletArray[1]->m_TabletXMLData->DeviceCurPenID = 1;
    m_Window->ReceivActionMsg(1, kMsgPenChange, 1);
    EXPECT_TRUE(shows(1)) << "a tablet not shown leaves the page alone";
    CGlobalData::TabletArray[0]->m_TabletXMLData->DeviceCurPenID = 2;
    m_Window->ReceivActionMsg(0, kMsgPenChange, 2);
    EXPECT_TRUE(shows(3));
    QResource::unregisterResource(RESOURCE_FILE);
}

struct BatteryBar {
    int value;
    int stored;
    int row;
};

TEST(BatteryWidgetBar, PicksTheSpriteRowOfTheCharge)
{
    const BatteryBar bars[] = {{-5, 0, 6},  {0, 0, 6},   {1, 1, 5},   {20, 20, 5},   {21, 21, 4},
                               {60, 60, 3}, {61, 61, 2}, {99, 99, 1}, {100, 100, 0}, {140, 100, 0}};
    BatteryWidget widget;
    for (const BatteryBar &bar : bars) {
        widget.SetBatteryValue(bar.value, 0);
        EXPECT_EQ(widget.GetValue(), bar.stored) << bar.value;
        EXPECT_EQ(widget.barStyle(),
                  QString("border-image:url(:/image/Res/battery_uncharing.png) %1 0 %2 0 0;")
                      .arg(13 * bar.row)
                      .arg(78 - 13 * bar.row))
            << bar.value;
    }
}

} // namespace
