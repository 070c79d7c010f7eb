#include "cscreeninfos.h"

#include <QApplication>
#include <QDebug>
#include <QDesktopWidget>
#include <QScreen>

// The desktop widget's screen calls are deprecated in Qt 5.15, yet they are
// what this class stands for.
QT_WARNING_DISABLE_DEPRECATED

namespace
{

float primaryScreenRatio()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen)
        return 1.0f;
    const qreal physical = screen->physicalDotsPerInchX();
    const qreal logical = screen->logicalDotsPerInchX();
    const float ratio = static_cast<float>(logical / physical);
    qDebug() << "Ratio:" << screen->devicePixelRatio();
    qDebug() << "X dot" << physical << logical;
    qDebug() << "ratio:" << ratio;
    return ratio;
}

} // namespace

CScreenInfos::CScreenInfos()
{
    if (qobject_cast<QApplication *>(QCoreApplication::instance()))
        m_Desktop = QApplication::desktop();
}

int CScreenInfos::GetScreenCount() const
{
    return m_Desktop ? m_Desktop->numScreens() : 0;
}

QRect CScreenInfos::GetScreenRect(int index) const
{
    return m_Desktop ? m_Desktop->screenGeometry(index) : QRect();
}

QRect CScreenInfos::GetFirstScreenRect() const
{
    return GetScreenCount() < 1 ? QRect() : GetScreenRect(0);
}

QRect CScreenInfos::GetLastScreenRect() const
{
    const int count = GetScreenCount();
    return count < 1 ? QRect() : GetScreenRect(count - 1);
}

QRect CScreenInfos::GetAllScreenRect() const
{
    return GetScreenCount() < 1 ? QRect() : m_Desktop->frameGeometry();
}

float CScreenInfos::GetScreenRatio(bool ownApplication) const
{
    if (!ownApplication || QCoreApplication::instance())
        return primaryScreenRatio();
    int argc = 1;
    char name[] = "scribora";
    char *argv[] = {name, nullptr};
    QApplication application(argc, argv);
    return primaryScreenRatio();
}

float GetScreenRatio(bool ownApplication)
{
    const CScreenInfos infos;
    return infos.GetScreenRatio(ownApplication);
}
