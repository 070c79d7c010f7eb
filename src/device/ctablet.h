#pragma once

#include "cparsetabletdata.h"
#include "deviceattributes.h"
#include "multidata.h"
#include "settingsrecords.h"
#include "tabletdata.h"
#include "zelkdevice.h"

#include <QByteArray>
#include <QMap>
#include <QMutex>
#include <QObject>
#include <QRect>
#include <QWaitCondition>

class CAction;
class XMLHelp;

// One connected device as the rest of the system sees it: identity,
// capabilities, settings and session state.
class CTablet : public QObject
{
    Q_OBJECT
public:
    CTablet();
    ~CTablet() override;

    virtual bool InitTablet(const char *path, const ZelkDevice &row);
    virtual void SentCmd(int command, int p1, int p2);
    virtual void SentSaveFileCmd(int mode, unsigned char *data, int length);
    virtual void SentReadFileCmd(int mode, int value);
    virtual void SaveConfigToDevice(QString name, _stAppConfigNode *node);
    virtual void DelTablet();
    virtual void SendCMDToGetTabletInfo();

    int LoadXML(const char *name);
    void SaveXML();
    // Takes over the settings of an active tablet of the same product, sharing nothing.
    void CopySettingsFrom(const CTablet &other);
    void ClearAppConfigs();
    // Sets the pen of this tablet to eraser or back, as another tablet's switch asks.
    void ChangeTabletPenOrErase(bool value);
    // Takes the two pen-down points of an area selection, one per call.
    void SetAreaAction();

    QMap<QString, _stAppConfigNode *> m_AppConfigs;
    int m_BatteryValue = -1;
    int m_LowBatteryNoted = 0;
    short m_MappedScreenId = 0;
    QRect m_MappedScreenRect;
    QByteArray m_OutgoingFile;
    QByteArray m_IncomingFile;
    int m_IncomingSize = 0;
    _stAppConfigNode *m_IncomingNode = nullptr;
    int m_IncomingCount = 0;
    int m_ExpectedMark = 0;
    bool m_Receiving = false;
    bool m_Sending = false;
    bool m_Active = false;
    short m_ReportMode = 0;
    _DEVICE_ATTRIBUTES m_DeviceAttributes;
    XMLHelp *m_XMLHelp = nullptr;
    CAction *m_Action = nullptr;
    stTablet_XMLData *m_TabletXMLData = nullptr;
    CParseTabletData m_Parser;
    TabletDataEX m_TabletData{};
    QMutex m_ReplyMutex;
    QWaitCondition m_ReplyCondition;
    QWaitCondition m_StartCondition;
    int m_ProductId = 0;
    int m_Index = -1;
    // The first corner, then the current pen point, of an area selection.
    int m_AreaCorners[4] = {};
    bool m_SendMultiData = false;
    bool m_AreaSelecting = false;
    bool m_DefaultMappingPending = false;
    short m_PenSeenMask = -1;

signals:
    void SetAreaOk(short x, short y, short w, short h);
    void SentMultiData(CTablet *tablet, MultiData data);
    void PostActionMsg(int tabletId, int msgId, int msgData);
    void PostActionMsg(int tabletId, int msgId, QString appPath);
    void SentTabletLightData(CTablet *tablet);
    void PostDeviceOperatorMsg(int op, int value);

public slots:
    void ReceiveTabletPackets(quint8 *packet, int length);
    void ReceivActionMsg(int tabletId, int msgId, int msgData);
    void ReceivActionMsg(int tabletId, int msgId, QString appPath);

private:
    void refreshCachedMapping();
    void applyDefaultMapping();

    // Replies take a frame of kReportBufferSize bytes; bytes past `length` read as 0.
    bool takeReply(const quint8 *frame, int length);
    void onLightReply(const quint8 *frame);
    void onBattery(const quint8 *frame);
    void onDeviceInformation(const quint8 *frame, int length);
    void onRangeReply(const quint8 *frame, int length);
    void onConnectionNotice(const quint8 *frame);
    void onStartReply(const quint8 *frame);
    void onDisplayReply(const quint8 *frame);

    void onFileReply(const quint8 *frame, int length);
    void onWriteAccepted(quint8 code);
    void readFileHeader(const quint8 *frame);
    void collectFileData(const quint8 *frame, int length);
    void endFileTransfer(quint8 code);
    bool failShortRead();
    void finishFileRead();
    bool storeIncomingFile();

    void actOnInput(quint8 *frame, int length);
    void announcePenChange();
    void replayPenEntry();
};
