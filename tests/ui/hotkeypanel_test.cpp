#include "buttonlistwidget.h"
#include "cglobaldata.h"
#include "checktextbutton.h"
#include "hotkeygroups.h"
#include "hotkeysettingdialog.h"
#include "hotkeywidget.h"
#include "keypreviewswitch.h"
#include "keypreviewwindow.h"
#include "languagetexts.h"
#include "mylrc.h"
#include "textfield.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <memory>

namespace
{

// The remote QRM07: eleven keys in four groups. Group g's key k runs action g*10 + k + 1;
// group 2 starts with a named custom key and one whose string has no name field.
struct GroupedDevice {
    std::unique_ptr<stTablet_XMLData> settings = std::make_unique<stTablet_XMLData>();
    _stAppConfigNode &record = settings->CommonAPP;

    GroupedDevice()
    {
        copyTextField(settings->szPidName, "PID_03E2");
        settings->SupportGroupKeys = 1;
        settings->DeviceKeyNum = 11;
        for (int g = 0; g < kKeyGroupCount; ++g) {
            for (int k = 0; k < 11; ++k)
                record.KeyGroup[g].Key[k].Actid = g * 10 + k + 1;
        }
        setCustom(0, "1|Copy|Ctrl+C|29:37+46:54");
        setCustom(1, "3|7");
    }
    void setCustom(int key, const char *func)
    {
        record.KeyGroup[2].Key[key].id = 1;
        copyTextField(record.KeyGroup[2].Key[key].func, func);
    }
};

QString text(const QWidget &parent, const char *name)
{
    return parent.findChild<QLabel *>(name)->text();
}

TEST(HotKeyGroups, TabsShowAGroupAndTurnItOnAndOff)
{
    QTemporaryDir dir;
    QSettings texts(dir.filePath("language.ini"), QSettings::IniFormat);
    texts.setValue("Actions.112", "Group I in use");
    LanguageTexts::Language_Config = &texts;
    MyLrc tip;
    CGlobalData::Show_Info = &tip;
    GroupedDevice device;
    QWidget area;
    QVector<CheckTextButton *> tabs;
    for (int g = 0; g < kKeyGroupCount; ++g)
        tabs << new CheckTextButton(&area);
    buttonListWidget list;
    list.setHotkeyCount(11);
    HotKeyGroups groups(tabs);
    groups.SetRecord(&device.record, device.settings.get());
    groups.SetKeySlots(list.keySlots());
    auto marks = [&](bool (CheckTextButton::*mark)() const) {
        QString seen;
        for (const CheckTextButton *tab : tabs)
            seen += (tab->*mark)() ? '1' : '0';
        return seen;
    };
    const QVector<KeySlot> &keys = list.keySlots();

    tabs[2]->findChild<QPushButton *>()->click();
    EXPECT_EQ(marks(&CheckTextButton::isCurrent), "0010");
    EXPECT_EQ(marks(&CheckTextButton::isFunction), "1000");
    EXPECT_EQ(keys[0].box()->currentIndex(), 1);
    EXPECT_EQ(keys[0].label()->text(), "Copy");
    EXPECT_EQ(keys[1].box()->currentIndex(), 1);
    EXPECT_EQ(keys[1].label()->text(), "");
    EXPECT_EQ(keys[2].box()->currentText(), "Actions.23");
    EXPECT_STREQ(device.record.KeyGroup[2].Key[2].func, "Actions.23");

    tabs[2]->findChild<QCheckBox *>()->click();
    EXPECT_EQ(device.record.SelectID, 2);
    EXPECT_EQ(marks(&CheckTextButton::isFunction), "0010");
    tabs[2]->findChild<QCheckBox *>()->click();
    EXPECT_EQ(device.record.SelectID, 0);
    EXPECT_TRUE(device.record.KeyGroup[0].bEnable && !device.record.KeyGroup[2].bEnable);
    EXPECT_EQ(tip.lines(), QStringList{"Group I in use"});
    EXPECT_EQ(marks(&CheckTextButton::isCurrent) + marks(&CheckTextButton::isFunction), "00101000");
    tabs[0]->findChild<QCheckBox *>()->click();
    EXPECT_TRUE(device.record.KeyGroup[0].bEnable) << "group I cannot be turned off";

    // The device's own group key, in another application's record, leaves the page alone.
    auto other = std::make_unique<_stAppConfigNode>();
    groups.onSelectAppHotKeyItem(3, true, 0, other.get());
    EXPECT_EQ(other->SelectID, 3);
    EXPECT_EQ(groups.CurrentGroup(), 0);
    groups.onSelectAppHotKeyItem(3, true, 0, &device.record);
    EXPECT_TRUE(device.record.SelectID == 3 && device.record.KeyGroup[3].bEnable);
    EXPECT_EQ(keys[2].box()->currentText(), "Actions.33");
    EXPECT_EQ(marks(&CheckTextButton::isCurrent) + marks(&CheckTextButton::isFunction), "00010001");
    groups.SelectM07HotKeyGroup(4);
    EXPECT_EQ(groups.CurrentGroup(), 3);
    CGlobalData::Show_Info = nullptr;
    LanguageTexts::Language_Config = nullptr;
}

TEST(KeyPreview, LabelsStandByOrientationAndNameTheKeysOfTheGroupInUse)
{
    GroupedDevice device;
    device.record.SelectID = 2;
    KeyPreviewWindow preview;
    const struct {
        int orientation;
        QPoint first, fifth;
        Qt::Alignment firstAlign, fifthAlign;
    } rows[] = {{0, {0, 203}, {310, 444}, Qt::AlignRight, Qt::AlignHCenter | Qt::AlignTop},
                {1, {653, 237}, {653, 176}, Qt::AlignLeft, Qt::AlignLeft},
                {2, {760, 307}, {455, 65}, Qt::AlignLeft, Qt::AlignHCenter | Qt::AlignBottom},
                {3, {100, 277}, {100, 338}, Qt::AlignRight, Qt::AlignRight}};
    for (const auto &row : rows) {
        preview.LoadKeypadHotkeysFunctionsPreview(&device.record, row.orientation, true);
        const auto *first = preview.findChild<QLabel *>("label_1");
        const auto *fifth = preview.findChild<QLabel *>("label_5");
        EXPECT_EQ(first->pos(), row.first) << row.orientation;
        EXPECT_EQ(fifth->pos(), row.fifth) << row.orientation;
        EXPECT_EQ(int(first->alignment() & Qt::AlignHorizontal_Mask), int(row.firstAlign));
        EXPECT_EQ(int(fifth->alignment() & row.fifthAlign), int(row.fifthAlign));
    }
    EXPECT_EQ(text(preview, "label_group"), "III");
    EXPECT_EQ(text(preview, "label_1"), "Copy");
    EXPECT_EQ(text(preview, "label_2"), "Custom");
    EXPECT_EQ(text(preview, "label_3"), "Actions.23");
}

TEST(KeyPreview, TheKeyTogglesItAndAGroupChangeReloadsIt)
{
    GroupedDevice device;
    KeyPreviewSwitch preview;
    const QRect screen(1920, 0, 1280, 800);
    preview.Toggle(&device.record, 0, screen);
    ASSERT_TRUE(preview.window() && preview.window()->isVisible());
    EXPECT_EQ(preview.window()->geometry(), screen);
    EXPECT_EQ(preview.window()->findChild<QLabel *>("label_picture")->geometry().center(),
              QPoint(640, 400));
    device.record.SelectID = 1;
    preview.Refresh(&device.record, 0);
    EXPECT_EQ(text(*preview.window(), "label_group"), "II");
    preview.Toggle(&device.record, 0, screen);
    EXPECT_EQ(preview.window(), nullptr) << "the second press takes it away";

    preview.Toggle(&device.record, 0, screen);
    QTest::mouseClick(preview.window()->findChild<QLabel *>("label_bg"), Qt::LeftButton);
    ASSERT_FALSE(preview.window()->isVisible());
    preview.Toggle(&device.record, 0, screen);
    EXPECT_TRUE(preview.window() && preview.window()->isVisible()) << "a closed one comes back";
}

// Key count; boxes of the key page and how many show; the key dialog's last cell, its frame
// height and its button's top ("-": the dialog keeps its size, 460 and 407).
TEST(HotkeyLayouts, PerKeyCount)
{
    const struct {
        int count, boxes, shown;
        QPoint lastCell;
        int height, buttonY;
    } rows[] = {{0, 0, 0, {}, 460, 407},           {4, 4, 4, {330, 70}, 409, 356},
                {6, 6, 4, {560, 70}, 409, 356},    {7, 7, 4, {410, 70}, 460, 407},
                {8, 8, 4, {605, 70}, 409, 356},    {9, 9, 4, {560, 120}, 460, 407},
                {11, 11, 4, {410, 120}, 460, 407}, {16, 16, 4, {605, 170}, 534, 461},
                {21, 20, 4, {20, 270}, 460, 407}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.count);
        buttonListWidget list;
        list.setHotkeyCount(row.count);
        int shown = 0;
        for (const KeySlot &slot : list.keySlots())
            shown += slot.box()->isVisibleTo(&list);
        EXPECT_EQ(list.keySlots().size(), row.boxes);
        EXPECT_EQ(shown, row.shown);
        HotkeySettingDialog dialog;
        dialog.initWidget(row.count, 0);
        dialog.ChangeDialogSize(row.count);
        const QList<HotKeyWidget *> cells = dialog.findChildren<HotKeyWidget *>();
        ASSERT_EQ(cells.size(), row.count);
        EXPECT_EQ(cells.isEmpty() ? QPoint() : cells.last()->pos(), row.lastCell);
        EXPECT_EQ(dialog.findChild<QFrame *>("main_frame")->height(), row.height);
        EXPECT_EQ(dialog.findChild<QPushButton *>("pushButton_ok")->y(), row.buttonY);
    }
}

TEST(HotkeySettingDialog, EditsTheGroupGivenAndReportsTheChoice)
{
    GroupedDevice device;
    HotkeySettingDialog dialog;
    dialog.initWidget(11, 0x3E2);
    dialog.SetCurUISelectID(2);
    dialog.LoadDefaultHotkeyInfo(&device.record, QString(), device.settings.get());
    const KeySlot slot = dialog.findChildren<HotKeyWidget *>().first()->slot1();
    ASSERT_EQ(slot.label()->text(), "Copy");
    QSignalSpy usage(&dialog, &HotkeySettingDialog::SendJsonDataToServer);
    slot.box()->setCurrentIndex(0);
    emit slot.box()->activated(0);
    stKeyConfig &key = device.record.KeyGroup[2].Key[0];
    EXPECT_EQ(key.id, 0);
    EXPECT_STREQ(key.func, "Actions.21");
    EXPECT_EQ(slot.label()->text(), "");
    ASSERT_EQ(usage.size(), 1);
    EXPECT_EQ(usage[0][0].toString(),
              R"("ComboBoxKeyActivated":{"id":"0","curapp":""},"tablet":"PID_03E2")");

    // A custom function is stored only when the editor confirms it.
    slot.box()->setCurrentIndex(1);
    slot.Activate(key, [](QString &func) {
        EXPECT_EQ(func, "") << "an action key has no function to load";
        return false;
    });
    EXPECT_EQ(slot.box()->currentIndex(), 0);
    slot.box()->setCurrentIndex(1);
    slot.Activate(key, [](QString &func) {
        func = "2|Notes|gedit";
        return true;
    });
    EXPECT_TRUE(key.id == 1 && fieldText(key.func) == "2|Notes|gedit");
    EXPECT_EQ(slot.label()->text(), "Notes");
}

} // namespace
