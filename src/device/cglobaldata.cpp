#include "cglobaldata.h"

#include <QSettings>

QMap<QString, CTablet *> CGlobalData::TabletMap;
CTablet *CGlobalData::TabletArray[kTabletSlots] = {};
QQueue<TabletDataEX> CGlobalData::QueueTabletData;
QMutex CGlobalData::DataMutex;
QMutex CGlobalData::WaitMutex;
QWaitCondition CGlobalData::WaitCondition;
QMutex CGlobalData::XMLMutex;
QMutex CGlobalData::ConfigFileWaitMutex;
QTime CGlobalData::LastTabletActionTime;
MyLrc *CGlobalData::Show_Info = nullptr;
QSettings *CGlobalData::Name_Config = nullptr;
QSettings *CGlobalData::Language_Config = nullptr;
QRect CGlobalData::ScreenArray[kScreenSlots];
QRect CGlobalData::LogicScreenArray[kScreenSlots];
int CGlobalData::PrimaryID = 0;
int CGlobalData::ScreenNum = 0;
MyInput CGlobalData::MyInputDriver;
QString CGlobalData::ConfigFolder = QStringLiteral("/usr/lib/scribora/conf/norva");

QString languageText(const char *key)
{
    if (!CGlobalData::Language_Config)
        return {};
    return CGlobalData::Language_Config->value(QLatin1String(key)).toString();
}

QString languageText(const char *key, const QString &fallback)
{
    const QString text = languageText(key);
    return text.isEmpty() ? fallback : text;
}
