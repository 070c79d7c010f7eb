// The keyboard part of the dialog: keys typed into the key field, the Super key's window,
// and the buttons that take entries out again.
#include "hotkeywin.h"

#include "inputkeyform.h"
#include "keycapture.h"
#include "ui_hotkeywin.h"

#include <QDebug>
#include <QKeyEvent>

namespace
{

constexpr int kMaxKeyEntries = 20;

// The last ","-separated entry dropped, or everything when there is one entry.
QString withoutLastEntry(const QString &text)
{
    const int comma = text.lastIndexOf(QLatin1Char(','));
    return comma < 0 ? QString() : text.left(comma);
}

// The key text of a combination still waiting for its key ends with a modifier's "+"; a "+"
// that is the key itself stays.
bool endsWithOpenModifier(const QString &keys)
{
    for (const char *name : {"Shift+", "Alt+", "Ctrl+", "Super+"}) {
        if (keys.endsWith(QLatin1String(name)))
            return true;
    }
    return false;
}

} // namespace

bool HotKeyWin::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != ui->lineEdit_keys)
        return ScriboraDialog::eventFilter(watched, event);
    // A dialog gives its first field the focus as if by Tab, which would select all the keys.
    if (event->type() == QEvent::FocusIn &&
        static_cast<QFocusEvent *>(event)->reason() != Qt::OtherFocusReason) {
        QFocusEvent plain(QEvent::FocusIn, Qt::OtherFocusReason);
        QCoreApplication::sendEvent(watched, &plain);
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        keyPressed(*static_cast<QKeyEvent *>(event));
        return true;
    }
    if (event->type() == QEvent::KeyRelease) {
        keyReleased(*static_cast<QKeyEvent *>(event));
        return true;
    }
    // A modifier let go elsewhere would leave the combination open for the next key.
    if (event->type() == QEvent::FocusOut && m_keyHeld)
        AddKeyboardString(QStringLiteral("-1"), false);
    return false;
}

void HotKeyWin::keyPressed(const QKeyEvent &event)
{
    if (event.isAutoRepeat())
        return;
    if (!m_keyHeld) {
        if (m_keyNum >= kMaxKeyEntries)
            return;
        ++m_keyNum;
    }
    const CapturedKey key = captureKey(event, openCombination());
    if (!isModifierKey(event.key())) {
        AddKeyboardString(key.name, m_keyHeld);
        appendToken(key.token, m_keyHeld);
        return;
    }
    const QString name = event.key() == Qt::Key_Meta ? QStringLiteral("Super") : key.name;
    AddKeyboardString(name + QLatin1Char('+'), m_keyHeld);
    appendToken(key.token, m_keyHeld);
    m_keyHeld = true;
}

void HotKeyWin::keyReleased(const QKeyEvent &event)
{
    if (event.isAutoRepeat() || !m_keyHeld || !isModifierKey(event.key()))
        return;
    AddKeyboardString(QStringLiteral("-1"), false);
}

QString HotKeyWin::openCombination() const
{
    return m_keyHeld ? m_keyScanCodes.section(QLatin1Char(','), -1) : QString();
}

void HotKeyWin::appendToken(const QString &token, bool held)
{
    if (!m_keyScanCodes.isEmpty())
        m_keyScanCodes += held ? QLatin1Char('+') : QLatin1Char(',');
    m_keyScanCodes += token;
}

void HotKeyWin::AddKeyboardString(QString text, bool held)
{
    QString keys = ui->lineEdit_keys->text();
    if (text == QLatin1String("-1")) {
        if (endsWithOpenModifier(keys))
            keys.chop(1);
        m_keyHeld = false;
    } else {
        if (!held && !keys.isEmpty())
            keys += QLatin1Char(',');
        keys += text;
    }
    ui->lineEdit_keys->setText(keys);
    ui->lineEdit_keys->end(false);
    UpdateFunctionNameShow();
}

void HotKeyWin::BtnClickClearFuc()
{
    ui->lineEdit_keys->clear();
    m_keyScanCodes.clear();
    m_keyNum = 0;
    m_keyHeld = false;
    UpdateFunctionNameShow();
    ui->lineEdit_keys->setFocus();
}

void HotKeyWin::BtnClickDeleteFuc()
{
    ui->lineEdit_keys->setText(withoutLastEntry(ui->lineEdit_keys->text()));
    m_keyScanCodes = withoutLastEntry(m_keyScanCodes);
    m_keyNum = qMax(0, m_keyNum - 1);
    m_keyHeld = false;
    UpdateFunctionNameShow();
    ui->lineEdit_keys->setFocus();
}

// The Super key does not reach the dialog reliably; a window of its own takes the rest of
// the combination.
void HotKeyWin::on_pushButton_super_clicked()
{
    if (m_inputKeyForm) {
        m_inputKeyForm->activateWindow();
        return;
    }
    m_inputKeyForm = new InputKeyForm(this);
    connect(m_inputKeyForm, &InputKeyForm::InputKeyBoard, this,
            &HotKeyWin::onGetInputKeyFormString);
    connect(m_inputKeyForm, &InputKeyForm::CloseKeyForm, this, &HotKeyWin::onCloseInputKeyForm);
    m_inputKeyForm->move(geometry().center() - m_inputKeyForm->rect().center());
    m_inputKeyForm->show();
    m_inputKeyForm->activateWindow();
}

void HotKeyWin::onGetInputKeyFormString(QString title, QString codes)
{
    qDebug() << "keyTitleStr:" << title << ",keyScanCodeStr:" << codes;
    if (m_keyNum >= kMaxKeyEntries)
        return;
    ++m_keyNum;
    AddKeyboardString(QStringLiteral("Super+") + title, false);
    appendToken(QLatin1String(kSuperToken) + QLatin1Char('+') + codes, false);
}

void HotKeyWin::onCloseInputKeyForm()
{
    activateWindow();
    ui->lineEdit_keys->setFocus();
}
