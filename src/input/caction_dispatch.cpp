#include "caction.h"

#include "actionids.h"
#include "cactiontext.h"
#include "cinputglobals.h"
#include "languagetexts.h"
#include "ringtipnumber.h"
#include "tabletdata.h"

#include <QDebug>

namespace
{

using actiontext::actionTipKey;
using actiontext::groupSuffix;

constexpr int kRingCustom = 2;
constexpr int kRingDefault = 0;
constexpr int kRingSlow = 1;

bool keyActionWithoutTip(int id)
{
    return id == kActionPenEraser || id == kActionRing1 || id == kActionRing2;
}

// A key strip is mirrored as the tablet turns.
bool keysMirrored(const stTablet_XMLData &settings)
{
    const int orientation = settings.Orientation;
    if (settings.DeviceKeyDirection == 1)
        return orientation == 2 || orientation == 3;
    return orientation == 1 || orientation == 2;
}

} // namespace

void CAction::ParseKeyData(TabletDataEX &data, stTablet_XMLData *settings)
{
    m_keysDown.clear();
    m_keysUp.clear();
    if (!settings)
        return;
    for (short key = 1; key <= kTabletKeyCount; ++key) {
        const uint8_t current = data.keys.current[key - 1];
        if (current == data.keys.previous[key - 1])
            continue;
        const bool down = current != 0;
        qDebug() << (down ? "KeyDown:" : "KeyUp:") << key;
        short index = GetKeyIndex(settings, key);
        // Also a key without record is turned; it then names DeviceKeyNum.
        if (settings->SupportGroupKeys == 0 && keysMirrored(*settings))
            index = static_cast<short>(settings->DeviceKeyNum - 1 - index);
        qDebug() << (down ? "id down:" : "id Up:") << index;
        (down ? m_keysDown : m_keysUp).append(index);
        if (index >= 0) {
            m_data.keyIndex = index;
            m_data.keyState = down ? 1 : 0;
        }
    }
}

short CAction::GetKeyIndex(stTablet_XMLData *settings, short motid)
{
    if (!settings)
        return -1;
    _stAppConfigNode &common = settings->CommonAPP;
    const stKeyConfig *keys = common.Key;
    if (settings->SupportGroupKeys) {
        const int group = common.SelectID;
        if (group < 0 || group >= kKeyGroupCount)
            return -1;
        keys = common.KeyGroup[group].Key;
    }
    for (short index = 0; index < kKeyCount; ++index) {
        if (keys[index].Motid == motid)
            return index;
    }
    return -1;
}

void CAction::DoKeyAction(short pen, bool groupKeys)
{
    const bool pressed = m_data.keyState == 1;
    if (pressed)
        m_pLatchedConfig = m_pCurAppConfig;
    if (!m_pLatchedConfig)
        return;
    _stAppConfigNode &config = *m_pLatchedConfig;
    const short index = m_data.keyIndex;
    // A mirrored index of a device that claims more keys than records lands outside.
    if (index < 0 || index >= kKeyCount)
        return;
    const int group = config.SelectID;
    if (groupKeys && (group < 0 || group >= kKeyGroupCount || !config.KeyGroup[group].bEnable))
        return;
    stKeyConfig &key = groupKeys ? config.KeyGroup[group].Key[index] : config.Key[index];
    if (key.id != 0) {
        qDebug() << "DoKeyAction CustomFun";
        ParseCustomFunction(key.func, pressed, pen);
    } else {
        qDebug() << "KeyID:" << index << "DefAction:" << key.Actid
                 << "KeyState:" << m_data.keyState;
        ActionLibrary(key.Actid, pressed, pen);
        if (pressed && !m_disableTip) {
            if (key.Actid == kActionKeyPreview)
                return;
            if (!keyActionWithoutTip(key.Actid))
                showActionTip(key.Actid, key.Actid == kActionKeyGroup ? groupSuffix(config.SelectID)
                                                                      : QString());
        }
    }
    postUsage(QStringLiteral("DoKeyAction"),
              {GetJsonData(QStringLiteral("custom"), fieldText(key.func)),
               GetJsonData(QStringLiteral("id"), QString::number(key.id)),
               GetJsonData(QStringLiteral("curapp"), fieldText(config.path)),
               GetJsonData(QStringLiteral("KeyID"), QString::number(index)),
               GetJsonData(QStringLiteral("TabletKeyState"), QString::number(m_data.keyState))});
}

void CAction::DoPenBtnAction(short pen)
{
    for (int index = 0; index < kPenBtnCount; ++index) {
        if (!(m_data.penBtn1 & (1 << index)))
            continue;
        // Button 0 is the touch of the tip; it counts only while the eraser end is in use.
        if (index == 0 && !m_eraserEnd)
            continue;
        qDebug() << "PenBtnID:" << index << m_eraserEnd;
        const bool pressed = m_data.penBtn2 != 0;
        if (pressed)
            m_pLatchedConfig = m_pCurAppConfig;
        if (!m_pLatchedConfig)
            return;
        stPenBtn &button = m_pLatchedConfig->Pen[pen & (kPenCount - 1)].PenBtn[index];
        runPenButton(button, pressed, pen);
    }
}

void CAction::runPenButton(stPenBtn &button, bool pressed, short pen)
{
    if (button.id != 0) {
        qDebug() << "DoPenBtnAction CustomFun";
        ParseCustomFunction(button.func, pressed, pen);
    } else {
        ActionLibrary(button.Actid, pressed, pen);
        // Any id with "27" in it, the eraser's own among them, shows nothing.
        if (pressed && !m_disableTip && button.Actid != kActionPenEraser &&
            !actionTipKey(button.Actid).contains(QLatin1String("27"), Qt::CaseInsensitive))
            showActionTip(button.Actid);
    }
    postUsage(QStringLiteral("DoPenBtnAction"),
              {GetJsonData(QStringLiteral("custom"), fieldText(button.func)),
               GetJsonData(QStringLiteral("id"), QString::number(button.id)),
               GetJsonData(QStringLiteral("curapp"), fieldText(m_pLatchedConfig->path)),
               GetJsonData(QStringLiteral("PenID"), QString::number(pen)),
               GetJsonData(QStringLiteral("PenKeyState"), QString::number(m_data.penBtn2))});
}

void CAction::DoRingAction()
{
    // Shared by both wheels and by all devices: the slow setting halves the rate of all.
    static bool bRingAction = false;
    m_pLatchedConfig = m_pCurAppConfig;
    if (!m_pLatchedConfig)
        return;
    const short wheel = m_data.ringRel1;
    if (wheel < 0 || wheel >= kRingCount)
        return;
    stRingConfig &ring = m_pLatchedConfig->Ring[wheel];
    const int function = ring.id;
    if (function < 0 || function >= kRingItemCount)
        return;
    stRingItem &item = ring.Item[function];
    if (ring.Speed == kRingSlow) {
        bRingAction = !bRingAction;
        if (!bRingAction)
            return;
    } else {
        bRingAction = true;
    }
    if (item.id == kRingCustom) {
        qDebug() << "DoRingAction CustomFun";
        ParseRingCustomFunction(item.func, m_data.ringRel2, true);
        ParseRingCustomFunction(item.func, m_data.ringRel2, false);
    } else if (item.id == kRingDefault) {
        const int ringType = wheel + ring.type;
        RingActionLibrary(ringType, function, m_data.ringRel2);
        const int tip = ringTipNumber(ringType, function);
        if (!m_disableTip && ring.mode == 0 && tip != 0)
            showTip(languageText(QStringLiteral("TR.Item.%1").arg(tip).toLatin1().constData()));
    }
    postUsage(QStringLiteral("DoRingAction"),
              {GetJsonData(QStringLiteral("custom"), fieldText(item.func)),
               GetJsonData(QStringLiteral("id"), QString::number(item.id)),
               GetJsonData(QStringLiteral("curapp"), fieldText(m_pLatchedConfig->path)),
               GetJsonData(QStringLiteral("RingID"), QString::number(m_data.ringRel1)),
               GetJsonData(QStringLiteral("RingDirection"), QString::number(m_data.ringRel2))});
}
