#include "keypreviewswitch.h"

#include "cglobaldata.h"
#include "keypreviewwindow.h"

KeyPreviewSwitch::KeyPreviewSwitch(QObject *parent) : QObject(parent) {}

KeyPreviewSwitch::~KeyPreviewSwitch()
{
    delete m_Window;
}

void KeyPreviewSwitch::Toggle(_stAppConfigNode *record, int orientation, const QRect &frame)
{
    if (m_Window) {
        const bool wasShown = m_Window->isVisible();
        delete m_Window;
        if (wasShown)
            return;
    }
    m_Window = new KeyPreviewWindow();
    m_Window->LoadKeypadHotkeysFunctionsPreview(record, orientation, true);
    m_Window->UpdateWidgetFrame(frame);
    m_Window->show();
}

void KeyPreviewSwitch::Refresh(_stAppConfigNode *record, int orientation)
{
    if (m_Window && m_Window->isVisible())
        m_Window->LoadKeypadHotkeysFunctionsPreview(record, orientation, false);
}

void KeyPreviewSwitch::Close()
{
    if (m_Window)
        m_Window->close();
}

QRect KeyPreviewSwitch::FrameAt(const QPoint &cursor)
{
    const int count = qBound(0, CGlobalData::ScreenNum, kScreenSlots - 1);
    for (int i = 1; i <= count; ++i) {
        if (CGlobalData::LogicScreenArray[i].contains(cursor))
            return CGlobalData::LogicScreenArray[i];
    }
    return CGlobalData::ScreenArray[0];
}
