#pragma once

#include "ctablet.h"

#include <QMutex>

#include <memory>

class DeviceThread;
class HidDevice;

// A tablet reached through hidapi, with its own reader thread.
class CUSBTablet : public CTablet
{
    Q_OBJECT
public:
    CUSBTablet() = default;
    ~CUSBTablet() override;

    bool InitTablet(const char *path, const ZelkDevice &row) override;
    void SentCmd(int command, int p1, int p2) override;
    void SentSaveFileCmd(int mode, unsigned char *data, int length) override;
    void SentReadFileCmd(int mode, int value) override;
    void SaveConfigToDevice(QString name, _stAppConfigNode *node) override;
    void DelTablet() override;

    std::unique_ptr<HidDevice> m_HidDevice;
    DeviceThread *m_DeviceThread = nullptr;

signals:
    // The device node could not be opened, which in practice means missing rights.
    void OpenFailed();
    void SendDeviceChangeMsg(unsigned short vid, unsigned short pid, short state, char *path);

private:
    bool openDevice(const char *path);
    void readIdentity(const ZelkDevice &row);
    void readCapabilities();
    void chooseShowName();
    bool takeSettings();
    void sendStartPacket(const ZelkDevice &row);
    void startReader();
    void liftPen();
    void askLights();
    bool displayCommandsAllowed() const;
    // hidapi allows a write beside a read, but not two writes at once.
    int writeReport(const unsigned char *data, int length);

    QMutex m_WriteMutex;
};
