#include "devicefixture.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

void DeviceFixture::SetUp()
{
    fakeusb::reset();
    CGlobalData::ConfigFolder = m_Folder.path();
    writeConfig(section("QTB0610") + section("QTB0610W") + section("QPD1600") + section("QRK12"));
    writeNames("[Common]\nPID_0B40=Scribora Sketch S\n");
    for (QRect &screen : CGlobalData::ScreenArray)
        screen = QRect();
    CGlobalData::ScreenArray[0] = QRect(0, 0, 1920, 1080);
}

void DeviceFixture::TearDown()
{
    for (CTablet *&tablet : CGlobalData::TabletArray) {
        if (tablet)
            tablet->DelTablet();
        delete tablet;
        tablet = nullptr;
    }
    CGlobalData::TabletMap.clear();
    delete CGlobalData::Name_Config;
    CGlobalData::Name_Config = nullptr;
    fakeusb::reset();
}

void DeviceFixture::writeConfig(const QString &sections)
{
    QFile file(m_Folder.filePath("config.xml"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(("<Config version=\"3.4.9\">" + sections + "</Config>").toUtf8());
}

void DeviceFixture::writeNames(const QString &ini)
{
    QFile file(m_Folder.filePath("name_config.ini"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(ini.toUtf8());
    file.close();
    delete CGlobalData::Name_Config;
    CGlobalData::Name_Config = new QSettings(file.fileName(), QSettings::IniFormat);
}

const ZelkDevice &DeviceFixture::row(uint32_t pid)
{
    const ZelkDevice *end = zelkDevList + kCatalogueSize;
    const ZelkDevice *found =
        std::find_if(zelkDevList, end, [&](const ZelkDevice &r) { return r.pid == pid; });
    EXPECT_NE(found, end) << "no catalogue row for " << pid;
    return found == end ? zelkDevList[0] : *found;
}

fakeusb::Device DeviceFixture::tablet(const std::string &name, uint16_t pid, uint8_t port)
{
    fakeusb::Device device;
    device.name = name;
    device.pid = pid;
    device.ports = {port};
    device.strings = {
        {1, L"Maker"}, {2, L"Sketch Tablet"}, {3, L"SN001"}, {4, L"FW_1.0"}, {5, L"2024-05-06"}};
    device.rawStrings[100] = {0x64, 0xCC, 0xA0, 0x73, 0, 0, 0xFF, 0x1F, 0xD8, 0x13, 0, 0};
    return device;
}

QString DeviceFixture::section(const QString &model)
{
    QString keys;
    for (int i = 1; i <= 4; ++i)
        keys += QString("<K%1 id=\"0\" Motid=\"%1\" Actid=\"%1\" Show=\"1\"/>").arg(i);
    return QString("<%1><DeviceInfo><DeviceKeyNum>4</DeviceKeyNum></DeviceInfo><Common>"
                   "<ScreenMapping id=\"0\"><SX>0</SX><SY>0</SY><SW>0</SW><SH>0</SH>"
                   "</ScreenMapping><TabletPannel Orientation=\"0\"><TX>0</TX><TY>0</TY>"
                   "<TW>0</TW><TH>0</TH></TabletPannel></Common><CommonAPP><K>%2</K></CommonAPP>"
                   "<Apps/></%1>")
        .arg(model, keys);
}

bool DeviceFixture::waitFor(const std::function<bool()> &done)
{
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < 8000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(5);
    }
    return done();
}

Bytes frame(size_t length, std::initializer_list<uint8_t> head)
{
    Bytes bytes(head);
    bytes.resize(length, 0);
    return bytes;
}

void feed(CTablet &tablet, const Bytes &report)
{
    std::vector<quint8> buffer(report.begin(), report.end());
    tablet.ReceiveTabletPackets(buffer.data(), static_cast<int>(buffer.size()));
}
