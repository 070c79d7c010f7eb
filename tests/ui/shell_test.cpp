#include "actionmessages.h"
#include "batterywidget.h"
#include "cases.h"
#include "devicecommands.h"
#include "devicefixture.h"
#include "jingximode.h"
#include "mainwindow.h"
#include "mylrc.h"
#include "scriboradialog.h"
#include "settingform.h"
#include "traymenu.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDesktopWidget>
#include <QLabel>
#include <QListWidget>
#include <QMouseEvent>
#include <QResource>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include <array>
#include <cstring>
#include <functional>
#include <thread>

// The desktop's signals are deprecated, yet the window still follows them.
QT_WARNING_DISABLE_DEPRECATED

namespace
{

// The window over the profiles of cases/shell_config.xml and scripted devices.
class Shell : public DeviceFixture
{
protected:
    static void SetUpTestSuite() { ASSERT_TRUE(QResource::registerResource(RESOURCE_FILE)); }
    void SetUp() override
    {
        DeviceFixture::SetUp();
        QFile config(UI_CASES_DIR "/shell_config.xml");
        ASSERT_TRUE(config.open(QIODevice::ReadOnly));
        writeConfig(QString::fromUtf8(config.readAll()));
        restart();
    }
    void TearDown() override
    {
        m_Window.reset();
        DeviceFixture::TearDown();
    }
    void restart()
    {
        m_Window.reset();
        fakeusb::reset();
        m_Window = std::make_unique<MainWindow>();
        m_List = child<QListWidget>("listWidget_left");
    }
    void plug(const std::string &name, uint16_t pid, uint8_t port = 1)
    {
        fakeusb::addDevice(tablet(name, pid, port));
        ASSERT_TRUE(m_Window->EnumDeviceLinux(0));
    }
    QByteArray configFile() const
    {
        QFile file(m_Folder.filePath("config.xml"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    template <typename T = QWidget> T *child(const char *name) const
    {
        return m_Window->findChild<T *>(name);
    }
    // The label shows the picture ":/image/<picture>.png" scaled to it, or none for "-".
    bool shows(const char *label, const QString &picture) const
    {
        auto *target = child<QLabel>(label);
        const QImage shown = target->pixmap(Qt::ReturnByValue).toImage();
        const QPixmap expected =
            QPixmap(":/image/" + picture + ".png")
                .scaled(target->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation);
        return picture == "-" ? shown.isNull() : !expected.isNull() && shown == expected.toImage();
    }
    auto &data(int slot) const { return *CGlobalData::TabletArray[slot]->m_TabletXMLData; }

    std::unique_ptr<MainWindow> m_Window;
    QListWidget *m_List = nullptr;
};

// Only the pen page asks the tablet for live data; a key remote's settings have no pen.
TEST_F(Shell, ListRowsPagesPicturesAndSettingsFollowTheDeviceKind)
{
    for (const QStringList &kind : caseRows("kinds.txt")) {
        SCOPED_TRACE(kind[0].toStdString());
        restart();
        plug(kind[0].toStdString(), kind[1].toUShort(nullptr, 0));
        QStringList rows;
        for (int row = 0; row < m_List->count(); ++row)
            rows << QString(m_List->item(row)->isHidden() ? "(%1)" : "%1")
                        .arg(m_List->item(row)->text().replace(' ', '_'));
        EXPECT_EQ(rows.join(','), kind[2]);
        EXPECT_EQ(m_List->currentRow(), kind[3].toInt());
        auto *pages = child<QTabWidget>("tabWidget");
        EXPECT_EQ(pages->currentIndex(), kind[4].toInt());
        EXPECT_EQ(child("pushButton_delete")->isEnabled(), kind[5] == "1");
        EXPECT_EQ(child("pushButton_add")->isEnabled(), kind[6] == "1");
        const char *labels[] = {"label_penbg", "label_keyimage", "label_ringimage"};
        for (int i = 0; i < 3; ++i)
            EXPECT_TRUE(shows(labels[i], kind[7].section(',', i, i))) << labels[i];
        m_Window->show();
        for (int row = 0; row < m_List->count(); ++row) {
            emit m_List->itemClicked(m_List->item(row));
            EXPECT_EQ(pages->currentIndex(), kind[4] == "5" ? 5 : row) << row;
            EXPECT_EQ(m_Window->currentTablet()->m_SendMultiData, row == 1 && kind[4] != "5")
                << row;
        }
        // In the tray nobody sees the pressure bar.
        emit m_List->itemClicked(m_List->item(1));
        m_Window->hide();
        EXPECT_FALSE(m_Window->currentTablet()->m_SendMultiData);
        m_Window->ShowSettingForm();
        for (const char *box : {"checkBox_pressure", "checkBox_slope"})
            EXPECT_EQ(m_Window->settingForm()->findChild<QWidget *>(box)->isHidden(),
                      kind[4] == "5");
    }
}

// Of two tablets, only the first's messages change the pen picture and the battery. Exit
// saves, gives every device back to the system and ends the event loop.
TEST_F(Shell, TwoTabletsSaveRevertCloseToTheTrayAndExit)
{
    const QByteArray before = configFile();
    m_Window->show();
    m_Window->on_closeBtn_clicked();
    EXPECT_FALSE(m_Window->isVisible());
    ASSERT_NE(m_Window->trayIcon(), nullptr);
    const QList<QAction *> entries = m_Window->trayMenu()->actions();
    EXPECT_TRUE(entries.size() == 2 && entries[0]->text() + entries[1]->text() == "ShowExit");
    EXPECT_EQ(m_Window->trayIcon()->toolTip(), "Scribora");
    EXPECT_EQ(configFile(), before);
    QApplication::processEvents();
    EXPECT_FALSE(dynamic_cast<QWidget *>(CGlobalData::Show_Info)->isVisible()) << "no tip";

    plug("a", 0x0B40, 1);
    plug("b", 0x0B44, 2);
    BatteryWidget *battery = m_Window->batteryWidget();
    data(0).DeviceCurPenID = 2;
    for (int slot : {1, 0}) {
        CGlobalData::TabletArray[slot]->m_BatteryValue = 45;
        m_Window->ReceivActionMsg(slot, kMsgPenChange, 2);
        m_Window->ReceivActionMsg(slot, kMsgBattery, 1);
        EXPECT_TRUE(shows("label_penbg", slot ? "Res/pen1" : "Res/pen3")) << slot;
        EXPECT_EQ(battery->isHidden(), slot == 1);
    }
    EXPECT_EQ(battery->GetValue(), 45);
    EXPECT_EQ(battery->barStyle(),
              "border-image:url(:/image/Res/battery_charging.png) 39 0 39 0 0;");

    data(0).TX = 2;
    data(1).TX = 8;
    m_Window->on_pushButton_ok_clicked();
    data(0).TX = 9;
    data(1).TX = 1;
    m_Window->on_pushButton_cancel_clicked();
    EXPECT_EQ(data(0).TX + 10 * data(1).TX, 82);
    EXPECT_TRUE(configFile().contains("<TX>2</TX>") && configFile().contains("<TX>8</TX>"));
    m_Window->show();
    data(0).TX = 3;
    m_Window->on_closeBtn_clicked();
    EXPECT_TRUE(!m_Window->isVisible() && configFile().contains("<TX>3</TX>"));
    ASSERT_NE(CGlobalData::TabletArray[0], nullptr);

    data(1).TX = 7;
    QTimer::singleShot(0, m_Window.get(), &MainWindow::OnQuiqDriver);
    QTimer::singleShot(5000, qApp, [] { QCoreApplication::exit(1); });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_TRUE(configFile().contains("<TX>7</TX>"));
    for (const char *name : {"a", "b"})
        EXPECT_EQ(fakeusb::writesTo(name).back().data, frame(10, {0x02, 0xB0, 0x02})) << name;
    m_Window->DeleteUI();
    EXPECT_TRUE(child("tabWidget")->isHidden() && battery->isHidden() && m_List->count() == 0);
    EXPECT_FALSE(child("DisconnectTipsLabel")->isHidden());
}

// A dialog is a window of its own, centred over its owner. The window's head strip ends at a
// rounded y of 80 and follows the cursor's moves; a dialog's ends at 79.
TEST_F(Shell, DialogsCentreAndOnlyTheHeadStripsDrag)
{
    m_Window->move(100, 50);
    QWidget owner(m_Window.get());
    owner.setGeometry(20, 30, 400, 300);
    ScriboraDialog dialog(&owner);
    EXPECT_EQ(dialog.parentWidget(), nullptr);
    dialog.resize(101, 61);
    dialog.ShowDialogInCenter();
    EXPECT_EQ(dialog.pos(), QPoint(269, 199));
    for (const QStringList &c : caseRows("drag.txt")) {
        QWidget *target = c[0] == "head" ? child("groupBox_head") : &dialog;
        const double y = c[1].toDouble();
        target->window()->move(200, 100);
        for (const auto &[type, at] : {std::pair{QEvent::MouseButtonPress, QPointF(50, y)},
                                       {QEvent::MouseMove, QPointF(60, y + 5)},
                                       {QEvent::MouseButtonRelease, QPointF(80, y + 20)}}) {
            QMouseEvent event(type, at, at, QPointF(200, 100) + at, Qt::LeftButton, Qt::LeftButton,
                              Qt::NoModifier);
            QApplication::sendEvent(target, &event);
        }
        EXPECT_EQ(target->window()->pos(), QPoint(200, 100) + point(c[2])) << y;
    }
}

// Each switch stores its flag and shows it when the form opens again; the form hides when
// the window turns active or on a close. Setting the consent box is silent; clicking sends.
TEST_F(Shell, SettingFormSwitchesStoreTheirFlagInTheShownProfile)
{
    plug("tab", 0x0B40);
    m_Window->show();
    m_Window->ShowSettingForm();
    SettingForm *form = m_Window->settingForm();
    const auto &d = data(0);
    for (const auto &[name, flag] :
         {std::pair<const char *, const int16_t &>{"checkBox_pressure", d.DisablePressure},
          {"checkBox_slope", d.DisableSlope},
          {"checkBox_shortcuts", d.DisableQuickKey},
          {"checkBox_tips", d.DisableInfo}}) {
        auto *box = form->findChild<QAbstractButton *>(name);
        for (int value : {1, 0}) {
            box->click();
            EXPECT_EQ(flag, value) << name;
            box->setChecked(!value);
            m_Window->ShowSettingForm();
            EXPECT_EQ(box->isChecked(), value == 1) << name;
        }
    }
    EXPECT_TRUE(form->findChild<QWidget *>("SettingFormWidget2")->isHidden()) << "no consent";
    CTablet tablet;
    std::strcpy(tablet.m_DeviceAttributes.ShowName, "Pad 10");
    std::strcpy(tablet.m_DeviceAttributes.ICVersion, "20240105");
    std::strcpy(tablet.m_DeviceAttributes.SerialNumber, "SN123");
    for (const QStringList &c : caseRows("feedback.txt")) {
        form->SetCheckButtonStatus(&tablet, "German", c[0]);
        EXPECT_TRUE(form->FeedbackUrl().startsWith(c.mid(1).join(' '))) << c[0].toStdString();
    }
    QSignalSpy spy(form, &SettingForm::CollectDataChecked);
    auto *box = form->findChild<QAbstractButton *>("HotKeyWincheckBox_1");
    for (bool shown : {false, true}) {
        form->SetDataCollectVisable(shown, shown);
        EXPECT_EQ(form->findChild<QWidget *>("SettingFormWidget2")->isHidden(), !shown);
        EXPECT_EQ(box->isChecked(), shown);
    }
    box->click();
    EXPECT_TRUE(spy.count() == 1 && !spy.at(0).at(0).toBool());
    QApplication::setActiveWindow(form);
    ASSERT_TRUE(form->isActiveWindow());
    QApplication::setActiveWindow(m_Window.get());
    EXPECT_TRUE(form->isHidden());
    m_Window->ShowSettingForm();
    m_Window->CloseSettingFormDevices();
    EXPECT_TRUE(form->isHidden());
}

struct RecordingTablet : CTablet {
    void SentCmd(int command, int p1, int p2) override { m_Sent.push_back({command, p1, p2}); }
    std::vector<std::array<int, 3>> m_Sent;
};

// The fine mode overlay opens for the sender, or a remote's first other tablet; the fine area
// goes to the current tablet, or to every tablet in fine mode.
TEST_F(Shell, ActionMessagesReachTheirTablets)
{
    RecordingTablet *tablets[3];
    for (int slot = 0; slot < 3; ++slot)
        CGlobalData::TabletArray[slot] = tablets[slot] = new RecordingTablet;
    for (const QStringList &c : caseRows("lowbattery.txt")) {
        tablets[2]->m_BatteryValue = c[0].toInt();
        m_Window->ReceivActionMsg(2, kMsgBattery, c[1].toInt());
        EXPECT_EQ(tablets[2]->m_LowBatteryNoted, c[2].toInt()) << c.join(' ').toStdString();
        m_Window->InitSystemTray();
    }
    data(2).Orientation = 3;
    data(2).CommonAPP.Ring[1].type = 1;
    for (int slot : {3, 5, -1})
        m_Window->ReceivActionMsg(slot, kMsgWirelessConnected, 0);
    EXPECT_TRUE(tablets[2]->m_Sent.empty());
    for (const auto &[type, mode] : {std::pair{1, 0}, {1, 1}, {0, 1}}) {
        data(2).CommonAPP.Ring[1].type = type;
        data(2).CommonAPP.Ring[1].mode = mode;
        m_Window->ReceivActionMsg(2, kMsgWirelessConnected, 0);
    }
    EXPECT_EQ(tablets[2]->m_Sent,
              (std::vector<std::array<int, 3>>{{kCmdTouchStrip, kStripWheel, 0},
                                               {kCmdTouchStrip, kStripTouch, 3}}));

    data(0).fKX = 1.0f;
    m_Window->GetScreenCalibrate(0.5f, 1.5f, 0.75f, 1.25f);
    EXPECT_EQ(data(0).fKX, 1.0f) << "no current tablet";
    CGlobalData::TabletMap["Current"] = tablets[0];
    m_Window->InitUI("Current");
    CGlobalData::XMLMutex.lock();
    std::thread writer([this] { m_Window->GetScreenCalibrate(0.5f, 1.5f, 0.75f, 1.25f); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(data(0).fKX, 1.0f) << "waits for the lock";
    CGlobalData::XMLMutex.unlock();
    writer.join();
    EXPECT_EQ(std::vector<float>({data(0).fKX, data(0).fKY, data(0).fXLC, data(0).fYLC}),
              std::vector<float>({0.5f, 1.5f, 0.75f, 1.25f}));

    CGlobalData::ScreenArray[9] = QRect(0, 1024, 800, 600);
    data(0).ScreenId = 12;
    m_Window->ReceivActionMsg(2, kMsgFineMode, 0);
    ASSERT_NE(m_Window->fineMode(), nullptr);
    EXPECT_EQ(m_Window->fineMode()->geometry(), QRect(0, 1024, 800, 600));
    EXPECT_TRUE(data(2).bBERectOn == 1 && data(0).bBERectOn == 0);
    m_Window->ReceivActionMsg(2, kMsgFineMode, 0);
    EXPECT_TRUE(m_Window->fineMode() == nullptr && data(2).bBERectOn == 0);
    tablets[0]->m_DeviceAttributes.DeviceType = DeviceTypeRemote;
    m_Window->ReceivActionMsg(0, kMsgFineMode, 0);
    EXPECT_TRUE(data(1).bBERectOn == 1 && data(0).bBERectOn == 0);
    data(2).bBERectOn = 1;
    ASSERT_NE(m_Window->fineMode(), nullptr);
    QTest::keyClick(m_Window->fineMode(), Qt::Key_Escape);
    EXPECT_TRUE(m_Window->fineMode() == nullptr && data(1).bBERectOn + data(2).bBERectOn == 0);
    m_Window->CloseJingxiMode();

    CGlobalData::TabletMap["Current"] = tablets[1];
    m_Window->InitUI("Current");
    const QRect area(100, 200, 320, 210);
    for (const auto &[on, written] : {std::pair{"111", "010"}, {"101", "101"}, {"000", "000"}}) {
        for (int slot = 0; slot < 3; ++slot) {
            data(slot).bBERectOn = on[slot] == '1';
            data(slot).BERect = {1, 2, 3, 4};
        }
        m_Window->GetBERect(area);
        for (int slot = 0; slot < 3; ++slot) {
            const stBERect &a = data(slot).BERect;
            EXPECT_EQ(QRect(a.x, a.y, a.w, a.h), written[slot] == '1' ? area : QRect(1, 2, 3, 4))
                << on << " " << slot;
        }
    }
}

// Slot 0 of the screen table is the whole desktop; unfilled logical slots are all-zero.
TEST_F(Shell, ScreenTablesFilledByTheConstructorAndOnEveryDesktopChange)
{
    QDesktopWidget *desktop = QApplication::desktop();
    const QRect whole(0, 0, 800, 600);
    const std::function<void()> changes[] = {
        [this] { restart(); }, [=] { emit desktop->resized(0); },
        [=] { emit desktop->screenCountChanged(0); }, [=] { emit desktop->workAreaResized(0); },
        [=] { emit desktop->primaryScreenChanged(); }};
    for (const auto &change : changes) {
        for (QRect *table : {CGlobalData::ScreenArray, CGlobalData::LogicScreenArray})
            std::fill(table, table + kScreenSlots, QRect(7, 7, 7, 7));
        CGlobalData::ScreenNum = CGlobalData::PrimaryID = 5;
        change();
        for (int i = 0; i < kScreenSlots; ++i) {
            EXPECT_EQ(CGlobalData::ScreenArray[i], i < 2 ? whole : QRect()) << i;
            EXPECT_EQ(CGlobalData::LogicScreenArray[i], i == 1 ? whole : QRect(0, 0, 1, 1)) << i;
        }
        EXPECT_EQ(CGlobalData::ScreenNum + CGlobalData::PrimaryID, 1);
    }
}

// Reader threads only emit; the window shows the tip on the GUI thread, for a while.
TEST_F(Shell, TipsFromReaderThreadsShowOnTheGuiThread)
{
    MyLrc *tip = dynamic_cast<MyLrc *>(CGlobalData::Show_Info);
    ASSERT_NE(tip, nullptr);
    tip->ShowInfoText(QString(), true);
    EXPECT_FALSE(tip->isVisible() || tip->timer().isActive());
    std::thread([tip] { tip->EmitInfo("First"); }).join();
    EXPECT_FALSE(tip->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(tip->isVisible(), 2000);
    EXPECT_TRUE(tip->lines() == QStringList{"First"} && !tip->listMode());
    QTest::qWait(600);
    tip->ShowInfoText("Second", true);
    EXPECT_EQ(tip->lines(), QStringList{"Second"});
    EXPECT_GT(tip->timer().remainingTime(), 600);
    QTRY_VERIFY_WITH_TIMEOUT(!tip->isVisible(), 5000);
    EXPECT_TRUE(tip->lines().isEmpty());
    std::thread([tip] { tip->EmitRingLrcInfo({"Zoom", "Scroll", "Brush"}, 1); }).join();
    QTRY_VERIFY_WITH_TIMEOUT(tip->listMode(), 2000);
    EXPECT_EQ(tip->lines(), (QStringList{"Zoom", "Scroll", "Brush"}));
    EXPECT_EQ(tip->size().height(), 70) << "20 per line and 10 more";
    EXPECT_EQ(tip->timer().interval(), 1200);
}

} // namespace
