#include "cvtkeycode.h"
#include "penringsetting.h"
#include "ringfunctionswitch.h"
#include "rollerkey.h"
#include "textfield.h"
#include "wheelslot.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSlider>
#include <gtest/gtest.h>

#include <optional>

namespace
{

// Pressed in order, then released in order; the scan code is the Linux key code plus 8.
void tap(QWidget *field, std::initializer_list<std::pair<int, quint32>> keys)
{
    for (QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        for (const auto &[qt, scan] : keys) {
            QKeyEvent event(type, qt, Qt::NoModifier, scan, 1, 0);
            QCoreApplication::sendEvent(field, &event);
        }
    }
}

const std::pair<int, quint32> kCtrl{Qt::Key_Control, 37}, kShift{Qt::Key_Shift, 50},
    kZ{Qt::Key_Z, 52};

QString data(RollerKey &dialog)
{
    QString out;
    dialog.GetData(out);
    return out;
}

TEST(RollerKeyEditor, EachWayGetsItsKeysAndTheStringComesBack)
{
    cvtKeyCode::init();
    RollerKey dialog;
    tap(dialog.findChild<QLineEdit *>("lineEdit_keys1"), {kCtrl, kZ});
    tap(dialog.findChild<QLineEdit *>("lineEdit_keys2"), {kCtrl, kShift, kZ});
    // The engine's case WheelEditorFunctionEvents plays this very string.
    const QString wheel =
        "4|Ctrl+Z / Ctrl+Shift+Z|Ctrl+Z|Ctrl+Shift+Z|29:37+44:52|29:37+42:50+44:52";
    EXPECT_EQ(data(dialog), wheel);
    RollerKey again;
    again.LoadDataForDialog(wheel);
    EXPECT_EQ(data(again), wheel);
    again.findChild<QAbstractButton *>("pushButton_clear1")->click();
    EXPECT_EQ(data(again), "4|Ctrl+Shift+Z||Ctrl+Shift+Z||29:37+42:50+44:52");
    again.LoadDataForDialog("4|Undo|Ctrl+Z||29:37+44:52|");
    EXPECT_TRUE(again.findChild<QCheckBox *>("checkBox_customName")->isChecked());
    again.findChild<QAbstractButton *>("pushButton_delete1")->click();
    EXPECT_EQ(data(again), "4|Undo||||") << "an own name stays";
}

TEST(WheelSlotChoice, CustomOnlyWhenAcceptedAndAWrongFormKeepsTheString)
{
    QComboBox box;
    const WheelSlot slot(&box);
    stRingItem item{};
    copyTextField(item.func, "TR.Item.3");
    slot.Show(item, 3);
    slot.Show(item, 3);
    ASSERT_EQ(box.count(), 3) << "own function, no action, custom; shown twice";
    ASSERT_EQ(box.itemText(WheelSlot::kDefaultEntry), "TR.Item.3");
    const auto editorGiving = [](std::optional<QString> result) {
        return [result](QString &func) {
            func = result.value_or(func);
            return result.has_value();
        };
    };
    box.setCurrentIndex(WheelSlot::kCustomEntry);
    slot.Activate(item, editorGiving(std::nullopt));
    EXPECT_EQ(item.id, 0);
    EXPECT_EQ(box.currentIndex(), WheelSlot::kDefaultEntry) << "cancel leaves the slot";
    box.setCurrentIndex(WheelSlot::kCustomEntry);
    slot.Activate(item, editorGiving("1|Copy|Ctrl+C|29:37+46:54"));
    EXPECT_EQ(item.id, 2);
    EXPECT_EQ(fieldText(item.func), "TR.Item.3");
    slot.Activate(item, editorGiving("4|Undo|a|b|30:38|48:56"));
    EXPECT_EQ(fieldText(item.func), "4|Undo|a|b|30:38|48:56");
    EXPECT_EQ(box.itemText(WheelSlot::kCustomEntry), "Undo");
    box.setCurrentIndex(WheelSlot::kNullEntry);
    slot.Activate(item, editorGiving(std::nullopt));
    EXPECT_EQ(item.id, 1);
    EXPECT_EQ(fieldText(item.func), box.itemText(WheelSlot::kNullEntry));
}

TEST(RingFunctionSwitch, NextUsableSlotAfterTheSelectedOne)
{
    const struct {
        int ids[kRingItemCount];
        int selected;
        int next; // -1: nothing usable, the ring stays
        QStringList names;
        int index;
    } rows[] = {{{1, 1, 1, 1}, 2, -1, {}, 0},
                {{1, 1, 1, 0}, 3, 3, {"TR.Item.4"}, 0},
                {{0, 0, 0, 0}, 3, 0, {"TR.Item.1", "TR.Item.2", "TR.Item.3", "TR.Item.4"}, 0},
                {{2, 1, 0, 1}, 0, 2, {"Mine", "TR.Item.3"}, 1},
                {{0, 0, 1, 1}, 1, 0, {"TR.Item.1", "TR.Item.2"}, 0}};
    for (const auto &row : rows) {
        stRingConfig ring{};
        for (int slot = 0; slot < kRingItemCount; ++slot) {
            ring.Item[slot].id = row.ids[slot];
            copyTextField(ring.Item[slot].func, "2|Mine|x");
        }
        ring.id = row.selected;
        const auto choice = NextRingFunction(ring, [](int slot) { return slot + 1; });
        SCOPED_TRACE(row.names.join(',').toStdString());
        EXPECT_EQ(ring.id, row.next < 0 ? row.selected : row.next);
        ASSERT_EQ(choice.has_value(), row.next >= 0);
        if (choice) {
            EXPECT_EQ(choice->names, row.names);
            EXPECT_EQ(choice->index, row.index);
        }
    }
}

// A tablet with one wheel: the roller is ring 1, whose slots the engine runs from zoom on.
TEST(PenRollerDialog, EditsTheRollerRingOfTheRecord)
{
    stTablet_XMLData settings{};
    settings.DeviceRingNum = 1;
    _stAppConfigNode &record = settings.CommonAPP;
    record.Ring[1].type = 3;
    record.Ring[1].id = 2;
    PenRingSetting dialog;
    dialog.LoadDefaultHotkeyInfo(&record, &settings);
    EXPECT_EQ(dialog.findChild<QComboBox *>("comboBox_ring1")->itemText(0), "TR.Item.1");
    EXPECT_TRUE(dialog.findChild<QAbstractButton *>("radioButton_ring3")->isChecked());
    dialog.findChild<QAbstractButton *>("radioButton_ring1")->click();
    EXPECT_EQ(record.Ring[1].id, 0);
    dialog.findChild<QAbstractButton *>("radioButton_ring4")->click();
    dialog.findChild<QSlider *>("horizontalSlider_speed")->setValue(0);
    EXPECT_EQ(record.Ring[1].id, 3);
    EXPECT_EQ(record.Ring[1].Speed, 1);
    QSignalSpy usage(&dialog, &PenRingSetting::SendJsonDataToServer);
    dialog.findChild<QComboBox *>("comboBox_ring2")->setCurrentIndex(WheelSlot::kNullEntry);
    dialog.onWheelComboBoxActivated(1);
    EXPECT_EQ(record.Ring[1].Item[1].id, 1);
    EXPECT_EQ(record.Ring[0].Item[1].id, 0);
    ASSERT_EQ(usage.size(), 1);
    EXPECT_TRUE(usage[0][0].toString().startsWith(
        "\"WheelComboBoxActivated\":{\"ringMode\":\"0\",\"nCurRingIndex\":\"1\""));
}

} // namespace
