#include "cases.h"
#include "cvtkeycode.h"
#include "hotkeywin.h"
#include "inputkeyform.h"
#include "keysetting.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QRegularExpression>
#include <QTest>

namespace
{

struct Key {
    int qt;
    quint32 scan;
};

// As the platform delivers it: the X11 keycode is the Linux code plus 8.
void send(QWidget *field, QEvent::Type type, Key key)
{
    QKeyEvent event(type, key.qt, Qt::NoModifier, key.scan, 1, 0);
    QCoreApplication::sendEvent(field, &event);
}

void tap(QWidget *field, std::initializer_list<Key> keys)
{
    for (const Key &key : keys)
        send(field, QEvent::KeyPress, key);
    for (const Key &key : keys)
        send(field, QEvent::KeyRelease, key);
}

const Key kCtrl{Qt::Key_Control, 37}, kShift{Qt::Key_Shift, 50}, kC{Qt::Key_C, 54},
    kX{Qt::Key_X, 53}, kS{Qt::Key_S, 39}, kExclam{Qt::Key_Exclam, 10},
    kKeypadMinus{Qt::Key_Minus, 82};

QString data(HotKeyWin &win)
{
    QString out;
    win.GetData(out);
    return out;
}

class KeyEditor : public ::testing::Test
{
protected:
    void SetUp() override { cvtKeyCode::init(); }
    QLineEdit *field(const char *name) { return m_win.findChild<QLineEdit *>(name); }

    HotKeyWin m_win;
};

TEST_F(KeyEditor, TypedKeysBecomeTheKeyTextAndTheTokensUpToTwentyEntries)
{
    QLineEdit *keys = field("lineEdit_keys");
    tap(keys, {kCtrl, kC});
    EXPECT_EQ(data(m_win), "1|Ctrl+C|Ctrl+C|29:37+46:54");
    tap(keys, {kX});
    tap(keys, {kShift, kExclam});
    tap(keys, {kKeypadMinus});
    EXPECT_EQ(data(m_win), "1|Ctrl+C,X,Shift+!,-|Ctrl+C,X,Shift+!,-|29:37+46:54,45:53,42:50+2:10,"
                           "74:82");
    m_win.BtnClickDeleteFuc();
    EXPECT_EQ(data(m_win), "1|Ctrl+C,X,Shift+!|Ctrl+C,X,Shift+!|29:37+46:54,45:53,42:50+2:10");
    for (int entry = 4; entry <= 21; ++entry)
        tap(keys, {kX});
    EXPECT_EQ(data(m_win).section('|', 3).split(',').size(), 20) << "the 21st key is dropped";
    m_win.BtnClickClearFuc();
    tap(keys, {kShift});
    EXPECT_EQ(data(m_win), "1|Shift|Shift|42:50")
        << "clearing restarts the count; a lone modifier closes";
}

TEST_F(KeyEditor, SuperCombinationComesFromItsOwnWindow)
{
    tap(field("lineEdit_keys"), {kC});
    m_win.findChild<QAbstractButton *>("pushButton_super")->click();
    QPointer<InputKeyForm> form = m_win.findChild<InputKeyForm *>();
    ASSERT_TRUE(form);
    auto *formField = form->findChild<QLineEdit *>("lineEdit_keys");
    send(formField, QEvent::KeyPress, kShift);
    send(formField, QEvent::KeyPress, kS);
    EXPECT_EQ(formField->text(), "Super+Shift+S");
    send(formField, QEvent::KeyRelease, kS);
    EXPECT_EQ(data(m_win), "1|C,Super+Shift+S|C,Super+Shift+S|46:54,125:125+42:50+31:39");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(form.isNull()) << "one combination, then it closes";
}

TEST(KeyEditorStrings, StoredStringsComeBackFromTheDialog)
{
    for (const QStringList &row : caseRows("keyfunctions.txt")) {
        const QStringList strings = row.mid(2).join(' ').split(" -> ");
        SCOPED_TRACE(strings.first().toStdString());
        HotKeyWin win;
        const QList<int> device = ints(row[0]);
        if (!device.isEmpty())
            win.LoadForRingNumber(device[0], device[1], device[2]);
        win.LoadCustomQString(strings.first());
        QString out;
        const QString name = win.GetData(out);
        EXPECT_EQ(out, strings.last());
        EXPECT_EQ(name, strings.last().section('|', 1, 1));
        EXPECT_EQ(win.findChild<QAbstractButton *>("checkBox_customName")->isChecked(),
                  row[1] == "own");
    }
}

TEST_F(KeyEditor, NameTakesNoBarAndStaysOnceTyped)
{
    QLineEdit *name = field("lineEdit_name");
    name->selectAll();
    QTest::keyClicks(name, "a|b");
    QApplication::clipboard()->setText("x|y");
    name->paste();
    EXPECT_EQ(name->text(), "abxy");
    tap(field("lineEdit_keys"), {kC});
    EXPECT_EQ(data(m_win), "1|abxy|C|46:54");
}

TEST_F(KeyEditor, SystemFunctionsFollowTheDevice)
{
    const struct {
        short ringNum, trackPad;
        int third;
        bool eraser;
        QList<int> shown;
    } devices[] = {{0, 0, 0, false, {1, 2, 3, 4, 9, 8}},
                   {1, 0, 0, false, {1, 2, 3, 4, 5, 9, 8}},
                   {1, 1, 3, true, {1, 2, 4, 5, 6, 7, 8, 12}},
                   {2, 0, 0, false, {1, 2, 3, 4, 5, 6, 9, 8}},
                   {11, 0, 0, false, {1, 2, 3, 4, 5, 6, 7, 9, 8}}};
    for (const auto &device : devices) {
        HotKeyWin win;
        win.LoadForRingNumber(device.ringNum, device.trackPad, device.third);
        win.InitUIForEraser(device.eraser);
        QList<int> shown;
        for (QAbstractButton *radio :
             win.findChildren<QAbstractButton *>(QRegularExpression("radioButton_function")))
            if (!radio->isHidden())
                shown << radio->objectName().mid(20).toInt();
        EXPECT_EQ(shown, device.shown) << device.ringNum << "," << device.trackPad;
    }
}

TEST(KeySettingForm, ShowsTheNameOfACustomFunctionAndAnActionAsItIs)
{
    KeySetting form;
    auto *function = form.findChild<QLabel *>("label_function");
    form.SetKeySetting(3, "1|Copy|Ctrl+C|29:37+46:54");
    EXPECT_EQ(function->text(), "Copy");
    form.SetKeySetting(4, "Undo (Ctrl+Z)");
    EXPECT_EQ(function->text(), "Undo (Ctrl+Z)");
    EXPECT_EQ(form.findChild<QLabel *>("label_number")->text(), "4");
}

} // namespace
