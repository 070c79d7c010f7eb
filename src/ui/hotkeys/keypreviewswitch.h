#pragma once

#include "keypreviewwindow.h"
#include "settingsrecords.h"

#include <QObject>
#include <QPointer>
#include <QRect>

// The keypad preview as the device's preview key drives it: one press shows it, the next
// takes it away. The window calls Toggle on the key's message and Refresh on a group change.
class KeyPreviewSwitch : public QObject
{
    Q_OBJECT
public:
    explicit KeyPreviewSwitch(QObject *parent = nullptr);
    ~KeyPreviewSwitch() override;

    // Closes the preview on show; otherwise shows a new one of `record` over `frame`.
    void Toggle(_stAppConfigNode *record, int orientation, const QRect &frame);
    KeyPreviewWindow *window() const { return m_Window; }
    // The logical screen under `cursor`, or the first screen when none is.
    static QRect FrameAt(const QPoint &cursor);

public slots:
    // Shows the group now in use, when the preview is on show.
    void Refresh(_stAppConfigNode *record, int orientation);
    void Close();

private:
    QPointer<KeyPreviewWindow> m_Window;
};
