#pragma once

#include "multidata.h"
#include "settingsrecords.h"

#include <QMap>
#include <QObject>
#include <QString>

struct TabletDataEX;
struct _DEVICE_ATTRIBUTES;

// Turns one decoded report into virtual input, on the reader thread of its device.
class CAction : public QObject
{
    Q_OBJECT
public:
    explicit CAction(QObject *parent = nullptr);

    _MultiData ActionTabletData(TabletDataEX &data, _DEVICE_ATTRIBUTES &attributes,
                                stTablet_XMLData *settings,
                                QMap<QString, _stAppConfigNode *> &appConfigs);
    void FindForeAppConfig(stTablet_XMLData *settings,
                           QMap<QString, _stAppConfigNode *> &appConfigs);
    // The pen functions act on the record that FindForeAppConfig chose.
    void ParsePenData(TabletDataEX &data, _DEVICE_ATTRIBUTES &attributes,
                      stTablet_XMLData *settings);
    void ParsePenDataLinuxV1(TabletDataEX &data, _DEVICE_ATTRIBUTES &attributes,
                             stTablet_XMLData *settings);
    void ParsePenDataLinux(TabletDataEX &data, _DEVICE_ATTRIBUTES &attributes,
                           stTablet_XMLData *settings);
    void DoAction(TabletDataEX &data, stTablet_XMLData *settings);
    void ParseRingData(TabletDataEX &data, stTablet_XMLData *settings);

    // Opens the virtual devices when nothing else has; true when they are usable.
    bool InitInput();
    void setDeviceIndex(int index) { m_deviceIndex = index; }
    int deviceIndex() const { return m_deviceIndex; }

signals:
    void PostActionMsg(int tabletId, int msgId, int msgData);
    void PostActionMsg(int tabletId, int msgId, QString appPath);

private:
    const stPenConfig &currentPen(const TabletDataEX &data) const;
    // False for the first frame of a stroke, which only sets the starting point.
    bool stepMouseMode(uint64_t x, uint64_t y, uint8_t status, const stPenConfig &pen);
    // False when the screen slot of the settings is empty.
    bool mapToScreen(uint64_t x, uint64_t y, uint64_t axisW, uint64_t axisH,
                     const stTablet_XMLData &settings);
    void writePen(const TabletDataEX &data);

    int m_deviceIndex = 0;
    QString m_labelErase;
    QString m_labelPen;
    _MultiData m_data{};
    uint8_t m_penTipActive = 0;
    bool m_eraserEnd = false;
    bool m_eraserReal = false;
    bool m_penAsEraser = false;
    bool m_beChanged = false;
    _stAppConfigNode *m_pCurAppConfig = nullptr;
    stTablet_XMLData *m_pXmlData = nullptr;
    bool m_disableTip = false;
    int m_beNotify = 0;
    int m_screenX = 0;
    int m_screenY = 0;
    bool m_inRange = false;
    bool m_firstStroke = false;
};
