#pragma once

#include <QRect>

class QDesktopWidget;

// The desktop's screens as the application's desktop widget reports them.
class CScreenInfos
{
public:
    // Takes the running application's desktop widget, or none before it exists.
    CScreenInfos();
    explicit CScreenInfos(QDesktopWidget *desktop) : m_Desktop(desktop) {}

    int GetScreenCount() const;
    QRect GetScreenRect(int index) const;
    QRect GetFirstScreenRect() const;
    QRect GetLastScreenRect() const;
    QRect GetAllScreenRect() const;
    // Logical over physical dots per inch in X of the primary screen; 1.0 without one.
    // With ownApplication, a short-lived application is made when none exists yet.
    float GetScreenRatio(bool ownApplication) const;

private:
    QDesktopWidget *m_Desktop = nullptr;
};

float GetScreenRatio(bool ownApplication);
