#include "keysequencefield.h"

#include "inputkeyform.h"
#include "keycapture.h"

#include <QCoreApplication>
#include <QDebug>
#include <QKeyEvent>
#include <QLineEdit>

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

KeySequenceField::KeySequenceField(QLineEdit *edit, const QString &logName)
    : QObject(edit), m_edit(edit), m_logName(logName)
{
    m_edit->installEventFilter(this);
    m_edit->setAttribute(Qt::WA_InputMethodEnabled, false);
}

QString KeySequenceField::keys() const
{
    return m_edit->text();
}

void KeySequenceField::Load(const QString &keys, const QString &tokens)
{
    m_edit->setText(keys);
    m_keyScanCodes = tokens;
    m_keyNum = tokens.isEmpty() ? 0 : tokens.count(QLatin1Char(',')) + 1;
    m_keyHeld = false;
    m_edit->end(false);
    emit changed();
}

bool KeySequenceField::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_edit)
        return false;
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

void KeySequenceField::keyPressed(const QKeyEvent &event)
{
    if (event.isAutoRepeat())
        return;
    if (!m_logName.isEmpty())
        qDebug() << m_logName;
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

void KeySequenceField::keyReleased(const QKeyEvent &event)
{
    if (event.isAutoRepeat() || !m_keyHeld || !isModifierKey(event.key()))
        return;
    AddKeyboardString(QStringLiteral("-1"), false);
}

QString KeySequenceField::openCombination() const
{
    return m_keyHeld ? m_keyScanCodes.section(QLatin1Char(','), -1) : QString();
}

void KeySequenceField::appendToken(const QString &token, bool held)
{
    if (!m_keyScanCodes.isEmpty())
        m_keyScanCodes += held ? QLatin1Char('+') : QLatin1Char(',');
    m_keyScanCodes += token;
}

void KeySequenceField::AddKeyboardString(const QString &text, bool held)
{
    QString keys = m_edit->text();
    if (text == QLatin1String("-1")) {
        if (endsWithOpenModifier(keys))
            keys.chop(1);
        m_keyHeld = false;
    } else {
        if (!held && !keys.isEmpty())
            keys += QLatin1Char(',');
        keys += text;
    }
    m_edit->setText(keys);
    m_edit->end(false);
    emit changed();
}

void KeySequenceField::Clear()
{
    m_edit->clear();
    m_keyScanCodes.clear();
    m_keyNum = 0;
    m_keyHeld = false;
    emit changed();
    m_edit->setFocus();
}

void KeySequenceField::DeleteLast()
{
    m_edit->setText(withoutLastEntry(m_edit->text()));
    m_keyScanCodes = withoutLastEntry(m_keyScanCodes);
    m_keyNum = qMax(0, m_keyNum - 1);
    m_keyHeld = false;
    emit changed();
    m_edit->setFocus();
}

// The Super key does not reach the dialog reliably; a window of its own takes the rest of
// the combination.
void KeySequenceField::OpenSuperKeyForm()
{
    if (m_inputKeyForm) {
        m_inputKeyForm->activateWindow();
        return;
    }
    QWidget *dialog = m_edit->window();
    m_inputKeyForm = new InputKeyForm(dialog);
    connect(m_inputKeyForm, &InputKeyForm::InputKeyBoard, this,
            &KeySequenceField::onGetInputKeyFormString);
    connect(m_inputKeyForm, &InputKeyForm::CloseKeyForm, this,
            &KeySequenceField::onCloseInputKeyForm);
    m_inputKeyForm->move(dialog->geometry().center() - m_inputKeyForm->rect().center());
    m_inputKeyForm->show();
    m_inputKeyForm->activateWindow();
}

void KeySequenceField::onGetInputKeyFormString(QString title, QString codes)
{
    qDebug() << "keyTitleStr:" << title << ",keyScanCodeStr:" << codes;
    if (m_keyNum >= kMaxKeyEntries)
        return;
    ++m_keyNum;
    AddKeyboardString(QStringLiteral("Super+") + title, false);
    appendToken(QLatin1String(kSuperToken) + QLatin1Char('+') + codes, false);
}

void KeySequenceField::onCloseInputKeyForm()
{
    m_edit->window()->activateWindow();
    m_edit->setFocus();
}
