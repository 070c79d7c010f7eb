#pragma once

#include "myinput.h"
#include "tabletdata.h"

#include <QMap>
#include <QMutex>
#include <QQueue>
#include <QRect>
#include <QString>
#include <QTime>
#include <QWaitCondition>

class CTablet;
class MyLrc;
class QSettings;

constexpr int kTabletSlots = 5;
constexpr int kScreenSlots = 10;

// Process-wide state shared by the window, the devices and the engine.
class CGlobalData
{
public:
    CGlobalData() = delete;

    static QMap<QString, CTablet *> TabletMap;
    static CTablet *TabletArray[kTabletSlots];
    // Input of the queued worker; nothing feeds it while reports take the direct route.
    static QQueue<TabletDataEX> QueueTabletData;
    static QMutex DataMutex;
    static QMutex WaitMutex;
    static QWaitCondition WaitCondition;
    static QMutex XMLMutex;
    static QMutex ConfigFileWaitMutex;
    static QTime LastTabletActionTime;
    static MyLrc *Show_Info;
    static QSettings *Name_Config;
    static QSettings *Language_Config;
    static QRect ScreenArray[kScreenSlots];
    static QRect LogicScreenArray[kScreenSlots];
    static int PrimaryID;
    static int ScreenNum;
    // The virtual devices; opened once by the window, written by every reader thread.
    static MyInput MyInputDriver;

    // The configuration folder; tests point it at a folder of their own.
    static QString ConfigFolder;
    static QString configFile(const QString &name) { return ConfigFolder + name; }
};

// Looks a text up in the current language; empty when there is none.
QString languageText(const char *key);
// The same, with the built-in text for an empty result.
QString languageText(const char *key, const QString &fallback);

// Sets a widget's text in the current language; with no text the designer's text stands.
template <typename Widget> void setLanguageText(Widget *widget, const char *key)
{
    const QString text = languageText(key);
    if (!text.isEmpty())
        widget->setText(text);
}
