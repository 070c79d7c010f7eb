// The wheel page: what each of the four functions of a wheel or touch strip does, which one is
// selected, the strip's touch and wheel modes, and the switch to the next function that the
// device asks for. The pen's roller is edited in its own dialog from the pen page.
#include "mainwindow.h"

#include "actionmessages.h"
#include "cglobaldata.h"
#include "ctablet.h"
#include "devicecommands.h"
#include "jsonserver.h"
#include "languagetexts.h"
#include "mylrc.h"
#include "penringsetting.h"
#include "ringfunctionswitch.h"
#include "ringtipnumber.h"
#include "textfield.h"
#include "ui_mainwindow.h"
#include "wheelslot.h"

#include <QButtonGroup>
#include <QDebug>

namespace
{
constexpr int kFirstRing = 0;
constexpr int kSecondRing = 1;
constexpr int kTouchRingType = 1;
constexpr int kRollerRingType = 3;
constexpr int kStripWheelMode = 0;
constexpr int kStripTouchMode = 1;
constexpr int kNullItem = 1;
constexpr int kCustomItem = 2;
// The function list moves down when the strip's mode buttons show above it.
constexpr int kItemsTop = 16;
constexpr int kItemsTopUnderModes = 70;

// The number of the "TR.Item.%1" text of a slot; the engine's tips count the same way.
int itemNumber(int ring, int type, int slot)
{
    return ringItemNumber(ring + type, slot);
}

QString ringText(const char *suffix)
{
    return languageText("TR.Ring", "Wheel ").trimmed() + suffix;
}
} // namespace

void MainWindow::InitWheelTouchUI()
{
    const QList<QComboBox *> boxes = {ui->comboBox_ringItem1, ui->comboBox_ringItem2,
                                      ui->comboBox_ringItem3, ui->comboBox_ringItem4};
    m_RingItemGroup = new QButtonGroup(this);
    const QList<QRadioButton *> radios = {ui->radioButton_ringItem1, ui->radioButton_ringItem2,
                                          ui->radioButton_ringItem3, ui->radioButton_ringItem4};
    for (int slot = 0; slot < kRingItemCount; ++slot) {
        m_WheelSlots[slot] = WheelSlot(boxes[slot]);
        connect(boxes[slot], qOverload<int>(&QComboBox::activated), this,
                [this, slot] { onWheelComboBoxActivated(slot); });
        m_RingItemGroup->addButton(radios[slot], slot);
    }
    connect(m_RingItemGroup, &QButtonGroup::idClicked, this, &MainWindow::onWheelRadioClick);
    connect(ui->Ring_tabWidget, &QTabWidget::currentChanged, this, [this](int index) {
        m_CurRingIndex = index == kSecondRing ? kSecondRing : kFirstRing;
        showRingFunctions();
    });
    connect(ui->pushButton_ring, &QPushButton::clicked, this,
            &MainWindow::onResetRingDefaultSetting);
    connect(ui->pushButton_penRing, &QPushButton::clicked, this, &MainWindow::openPenRingSetting);
}

void MainWindow::showWheelPage(CTablet *tablet)
{
    const stTablet_XMLData &settings = *tablet->m_TabletXMLData;
    ui->Ring_tabWidget->setCurrentIndex(kFirstRing);
    ui->Ring_tabWidget->setTabText(kFirstRing, ringText(settings.DeviceRingNum == 2 ? "1" : ""));
    ui->Ring_tabWidget->setTabText(kSecondRing, ringText("2"));
    ui->RingWheelRadiowidget->hide();
    ui->RingWheelRadiowidget->move(159, 24);
    ui->widget_ringItems->move(0, kItemsTop);
    if (settings.DeviceTrackPad == 0) {
        ui->Ring_tabWidget->setTabEnabled(kSecondRing, settings.DeviceRingNum == 2);
        if (settings.DeviceRingNum == 2)
            SetRingWheelRadio(true);
    } else {
        showTouchStripModes(tablet);
    }
    // A disabled tab takes no room.
    ui->Ring_tabWidget->setStyleSheet("QTabBar::tab:disabled {width: 0; color: transparent;}");
    showRingFunctions();
}

void MainWindow::showTouchStripModes(CTablet *tablet)
{
    ui->RingWheelRadiowidget->show();
    ui->RingWheelRadiowidget->move(32, 28);
    ui->widget_ringItems->move(0, kItemsTopUnderModes);
    ui->Ring_tabWidget->setTabText(kFirstRing, ringText(""));
    ui->Ring_tabWidget->setTabText(kSecondRing, languageText("TR.Touch", "Touch Pad"));
    ui->Ring_tabWidget->setTabEnabled(kSecondRing, true);
    const bool touch = editedRecord()->Ring[kSecondRing].mode != kStripWheelMode;
    sendStripMode(tablet, touch);
    SetRingWheelRadio(!touch);
}

// The four functions of the wheel of the tab shown, and the one selected. In touch mode the
// strip moves the pointer, and its functions wait.
void MainWindow::showRingFunctions()
{
    _stAppConfigNode *record = editedRecord();
    if (!record)
        return;
    const stRingConfig &ring = record->Ring[m_CurRingIndex];
    for (int slot = 0; slot < kRingItemCount; ++slot)
        m_WheelSlots[slot].Show(ring.Item[slot], itemNumber(m_CurRingIndex, ring.type, slot));
    if (QAbstractButton *selected = m_RingItemGroup->button(ring.id))
        selected->setChecked(true);
    const bool touchMode = m_CurRingIndex == kSecondRing && ui->radioButton_m_touch->isChecked() &&
                           ui->RingWheelRadiowidget->isVisibleTo(ui->widget_ringFunctions);
    for (QAbstractButton *radio : m_RingItemGroup->buttons())
        radio->setEnabled(!touchMode);
    for (const WheelSlot &slot : m_WheelSlots)
        slot.box()->setEnabled(!touchMode);
}

void MainWindow::onWheelComboBoxActivated(int slot)
{
    _stAppConfigNode *record = editedRecord();
    if (!record || slot < 0 || slot >= kRingItemCount)
        return;
    stRingConfig &ring = record->Ring[m_CurRingIndex];
    stRingItem &item = ring.Item[slot];
    m_WheelSlots[slot].Activate(
        item, [this](QString &func) { return WheelSlot::EditWheelFunction(this, func); });
    sendUsage([&] {
        return wheelActivatedEvent(ring.mode, m_CurRingIndex, item, fieldText(record->path),
                                   currentTabletName());
    });
}

void MainWindow::onWheelRadioClick(int slot)
{
    _stAppConfigNode *record = editedRecord();
    if (!record || slot < 0 || slot >= kRingItemCount)
        return;
    record->Ring[m_CurRingIndex].id = static_cast<int16_t>(slot);
    sendUsageEvent("WheelRadioClicked", QString::number(slot), true);
}

void MainWindow::on_radioButton_m_wheel_clicked()
{
    setTouchStripMode(false);
    sendUsageEvent("RadioMouseWheelClicked", "1", true);
}

void MainWindow::on_radioButton_m_touch_clicked()
{
    setTouchStripMode(true);
    sendUsageEvent("RadioMouseTouchClicked", "1", true);
}

void MainWindow::setTouchStripMode(bool touch)
{
    _stAppConfigNode *record = editedRecord();
    if (!record)
        return;
    record->Ring[kSecondRing].mode = touch ? kStripTouchMode : kStripWheelMode;
    sendStripMode(m_CurrentTablet, touch);
    m_TouchModeFlag = touch;
    SetRingWheelRadio(!touch);
}

void MainWindow::SetRingWheelRadio(int wheel)
{
    const QSignalBlocker wheelBlocker(ui->radioButton_m_wheel);
    const QSignalBlocker touchBlocker(ui->radioButton_m_touch);
    ui->radioButton_m_wheel->setChecked(wheel);
    ui->radioButton_m_touch->setChecked(!wheel);
    showRingFunctions();
}

// The device's mode key toggles its strip between touch and wheel; the window keeps one flag
// for all devices.
void MainWindow::ToggleTouchStrip(CTablet *tablet)
{
    const bool toWheel = m_TouchModeFlag;
    if (tablet == m_CurrentTablet) {
        if (toWheel)
            on_radioButton_m_wheel_clicked();
        else
            on_radioButton_m_touch_clicked();
        return;
    }
    sendStripMode(tablet, !toWheel);
    m_TouchModeFlag = !toWheel;
}

// Touch mode follows the tablet's orientation; wheel mode has none.
void MainWindow::sendStripMode(CTablet *tablet, bool touch)
{
    if (touch)
        tablet->SentCmd(kCmdTouchStrip, kStripTouch, tablet->m_TabletXMLData->Orientation);
    else
        tablet->SentCmd(kCmdTouchStrip, kStripWheel, 0);
}

void MainWindow::onRingFunctionsMessage(CTablet *tablet, int msgId, const QString &app)
{
    const int tabletId = tablet->m_Index;
    const bool shownApp = editedRecord() && app == fieldText(editedRecord()->path);
    if (msgId == kMsgPenRingFunctions) {
        ChangePenRingAction(tabletId, app);
        return;
    }
    const bool second = msgId == kMsgRing2Functions;
    if (tablet == m_CurrentTablet && shownApp)
        ChangeRingAction(second, tabletId);
    else
        ChangeRingAction(second, tabletId, app);
}

void MainWindow::ChangeRingAction(bool second, int tabletId)
{
    CTablet *tablet = CGlobalData::TabletArray[tabletId];
    if (!tablet || tablet != m_CurrentTablet)
        return;
    const int ring = second ? kSecondRing : kFirstRing;
    if (switchRingFunction(*tablet->m_TabletXMLData, *editedRecord(), ring) &&
        ring == m_CurRingIndex)
        showRingFunctions();
}

void MainWindow::ChangeRingAction(bool second, int tabletId, QString app)
{
    CTablet *tablet = CGlobalData::TabletArray[tabletId];
    if (!tablet)
        return;
    switchRingFunction(*tablet->m_TabletXMLData, *appRecord(tablet, app),
                       second ? kSecondRing : kFirstRing);
}

// A touch ring has no list to step through: the tip says which mode it is in.
bool MainWindow::switchRingFunction(const stTablet_XMLData &settings, _stAppConfigNode &record,
                                    int ring)
{
    stRingConfig &target = record.Ring[ring];
    if (ring == kSecondRing && target.type == kTouchRingType) {
        if (!settings.DisableInfo)
            m_Tip->EmitInfo(touchModeTip());
        return false;
    }
    return stepRing(settings, target, [ring](int slot) { return itemNumber(ring, 0, slot); });
}

QString MainWindow::touchModeTip() const
{
    const bool touch = ui->radioButton_m_touch->isChecked();
    const QRadioButton *on = touch ? ui->radioButton_m_touch : ui->radioButton_m_wheel;
    const QRadioButton *off = touch ? ui->radioButton_m_wheel : ui->radioButton_m_touch;
    return ui->Ring_tabWidget->tabText(kSecondRing) + ":" + on->text() + "!=" + off->text();
}

bool MainWindow::stepRing(const stTablet_XMLData &settings, stRingConfig &ring,
                          const std::function<int(int)> &numberOf)
{
    const std::optional<RingFunctionChoice> choice = NextRingFunction(ring, numberOf);
    if (!choice) {
        if (!settings.DisableInfo)
            m_Tip->EmitInfo(languageText("TR.Item.Null", "No Action"));
        return false;
    }
    if (!settings.DisableInfo)
        m_Tip->EmitRingLrcInfo(choice->names, choice->index);
    return true;
}

void MainWindow::ChangePenRingAction(int tabletId, QString app)
{
    CTablet *tablet = CGlobalData::TabletArray[tabletId];
    if (!tablet)
        return;
    stTablet_XMLData &settings = *tablet->m_TabletXMLData;
    const int ring = settings.DeviceRingNum;
    if (ring < 0 || ring >= kRingCount)
        return;
    const bool shown = tablet == m_CurrentTablet && app == fieldText(editedRecord()->path);
    _stAppConfigNode &record = shown ? *editedRecord() : *appRecord(tablet, app);
    const bool switched = stepRing(settings, record.Ring[ring], [ring](int slot) {
        return itemNumber(ring, kRollerRingType, slot);
    });
    if (switched && shown && editedPenIndex() == 3)
        UpdatePen3RingUIContext();
}

// The pen page names the roller's selected function; the dialog, when open, shows them all.
void MainWindow::UpdatePen3RingUIContext()
{
    _stAppConfigNode *record = editedRecord();
    stTablet_XMLData *settings = m_CurrentTablet ? m_CurrentTablet->m_TabletXMLData : nullptr;
    if (!record || settings->DeviceRingNum < 0 || settings->DeviceRingNum >= kRingCount)
        return;
    const int ring = settings->DeviceRingNum;
    const stRingConfig &roller = record->Ring[ring];
    const int slot = qBound(0, static_cast<int>(roller.id), kRingItemCount - 1);
    const stRingItem &item = roller.Item[slot];
    QString name = GetUserFuncShowName(fieldText(item.func));
    if (item.id == kNullItem)
        name = languageText("TR.Item.Null", "No Action");
    else if (item.id != kCustomItem)
        name = languageText(QStringLiteral("TR.Item.%1")
                                .arg(itemNumber(ring, kRollerRingType, slot))
                                .toLatin1()
                                .constData());
    ui->label_penRingFunc->setText(name);
    if (m_PenRingSetting)
        m_PenRingSetting->LoadDefaultHotkeyInfo(record, settings);
}

void MainWindow::openPenRingSetting()
{
    _stAppConfigNode *record = editedRecord();
    if (!record)
        return;
    PenRingSetting dialog(this);
    m_PenRingSetting = &dialog;
    connect(this, &MainWindow::HideDialog, &dialog, &QWidget::close);
    connect(&dialog, &PenRingSetting::SendJsonDataToServer, this,
            &MainWindow::onSendJsonDataToServer);
    dialog.LoadDefaultHotkeyInfo(record, m_CurrentTablet->m_TabletXMLData);
    dialog.ShowDialogInCenter();
    dialog.exec();
    UpdatePen3RingUIContext();
}

void MainWindow::onResetRingDefaultSetting()
{
    if (!m_CurrentTablet)
        return;
    const stTablet_XMLData &settings = *m_CurrentTablet->m_TabletXMLData;
    for (int ring = 0; ring < kRingCount; ++ring) {
        if (ring < settings.DeviceRingNum || (ring == kSecondRing && settings.DeviceTrackPad))
            resetRing(ring);
    }
    showRingFunctions();
    sendUsageEvent("ResetRingSetting", "1", true);
}

void MainWindow::resetRing(int ring)
{
    _stAppConfigNode *record = editedRecord();
    if (!record || ring < 0 || ring >= kRingCount)
        return;
    stRingConfig &target = record->Ring[ring];
    target.id = 0;
    for (stRingItem &item : target.Item) {
        item.id = 0;
        item.func[0] = '\0';
    }
}
