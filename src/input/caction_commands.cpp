#include "caction.h"

#include "actionmessages.h"
#include "cactiontext.h"
#include "cinputglobals.h"
#include "ctipsink.h"
#include "languagetexts.h"

#include <QDebug>
#include <QThread>
#include <linux/input-event-codes.h>

namespace
{

using actiontext::actionTipKey;

} // namespace

void CAction::ShowDriver(bool pressed, bool flag)
{
    qDebug() << "ShowDriver No Implement" << flag;
    if (pressed)
        emit PostActionMsg(m_deviceIndex, kMsgShowDriver, 1);
}

void CAction::ChangeScreenMapping(bool pressed)
{
    if (pressed)
        emit PostActionMsg(m_deviceIndex, kMsgScreenMapping, 0);
}

void CAction::ChangeBEKey(bool value, bool forced)
{
    if (forced) {
        m_penAsEraser = value;
        m_beChanged = true;
    } else {
        if (!value)
            return;
        m_penAsEraser = !m_penAsEraser;
        m_beChanged = true;
        emit PostActionMsg(m_deviceIndex, kMsgPenEraser, m_penAsEraser ? 1 : 0);
        if (!m_disableTip)
            showTip(m_penAsEraser ? m_labelErase : m_labelPen);
    }
    if (m_beNotify != 1)
        return;
    tapKey(m_penAsEraser ? KEY_E : KEY_B);
}

// The letter tapped is the one of the state before a press, so a release repeats the next one.
void CAction::PressBEKey(bool pressed)
{
    const bool eraser = m_penTipActive != 0;
    tapKey(eraser ? KEY_E : KEY_B);
    if (pressed)
        m_penTipActive = !m_penTipActive;
    showTip(eraser ? QStringLiteral("[E]") : QStringLiteral("[B]"));
}

void CAction::OpenFineMode(bool pressed, short pen)
{
    Q_UNUSED(pen)
    if (!pressed)
        return;
    qDebug() << "Fine Mode";
    emit PostActionMsg(m_deviceIndex, kMsgFineMode, 0);
}

void CAction::ChangeKLRFunctions(bool pressed, int ring)
{
    qDebug() << "ChangeKLRFunctions No Implement";
    if (pressed)
        emit PostActionMsg(m_deviceIndex, kMsgRingFunctions + ring, currentAppName());
}

void CAction::ChangeTrackPadMode(bool pressed)
{
    if (pressed)
        emit PostActionMsg(m_deviceIndex, kMsgTrackPad, 0);
}

// Moves to the next enabled group, wrapping; with none enabled the group stays.
void CAction::ChangeKeyFunctions(bool pressed)
{
    if (!pressed)
        return;
    if (m_pCurAppConfig) {
        int group = m_pCurAppConfig->SelectID;
        for (int tries = 0; tries < kKeyGroupCount; ++tries) {
            group = group < 0 || group + 1 >= kKeyGroupCount ? 0 : group + 1;
            if (m_pCurAppConfig->KeyGroup[group].bEnable) {
                m_pCurAppConfig->SelectID = static_cast<int16_t>(group);
                break;
            }
        }
    }
    emit PostActionMsg(m_deviceIndex, kMsgKeyGroup, currentAppName());
}

void CAction::KeypadPreviewMode(bool pressed)
{
    if (pressed)
        emit PostActionMsg(m_deviceIndex, kMsgKeyPreview, currentAppName());
}

void CAction::showTip(const QString &text)
{
    if (CInputGlobals::Show_Info)
        CInputGlobals::Show_Info->EmitInfo(text);
}

void CAction::showActionTip(int id, const QString &suffix)
{
    showTip(languageText(actionTipKey(id).toLatin1().constData()) + suffix);
}

QString CAction::currentAppName() const
{
    return m_pCurAppConfig ? fieldText(m_pCurAppConfig->path) : QString();
}

void CAction::postUsage(const QString &event, const QStringList &fields)
{
    emit PostActionMsg(m_deviceIndex, kMsgUsage,
                       GetJsonDataSon(event, fields.join(QLatin1Char(','))));
}

void CAction::SleepFuctions(int ms)
{
    QThread::msleep(static_cast<unsigned long>(ms));
}

QString CAction::GetJsonData(QString key, QString value)
{
    return QStringLiteral("\"%1\":\"%2\"").arg(key, value);
}

QString CAction::GetJsonDataSon(QString key, QString value)
{
    return QStringLiteral("\"%1\":{%2}").arg(key, value);
}
