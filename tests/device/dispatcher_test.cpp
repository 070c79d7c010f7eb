#include "actionmessages.h"
#include "devicecommands.h"
#include "devicefixture.h"

#include <QFile>
#include <QMutexLocker>
#include <cstring>
#include <functional>
#include <map>
#include <thread>

namespace
{

QString hex(const char *data, int size)
{
    return QString(QByteArray(data, size).toHex(' '));
}

// Everything a reply may change, as "name=value" lines.
QStringList fields(const CTablet &t)
{
    const _DEVICE_ATTRIBUTES &a = t.m_DeviceAttributes;
    const stTablet_XMLData &x = *t.m_TabletXMLData;
    QStringList lines;
    const char *texts[] = {a.ProductName, a.SerialNumber, a.ICVersion,
                           a.ICData,      a.ModelName,    a.Manufacturer};
    const int64_t numbers[] = {a.TabletLight,   a.WheelLight,  t.m_BatteryValue, a.DeviceType,
                               a.MaxX,          a.MaxY,        a.MaxPressure,    a.LPI,
                               a.Width,         a.Height,      x.DeviceCurPenID, x.PenMoveInTablet,
                               t.m_PenSeenMask, t.m_Receiving, t.m_Sending,      t.m_IncomingCount};
    const QStringList names = QString("ProductName SerialNumber ICVersion ICData ModelName "
                                      "Manufacturer TabletLight WheelLight Battery DeviceType MaxX "
                                      "MaxY MaxPressure LPI Width Height CurPen PenMoveInTablet "
                                      "PenSeenMask Receiving Sending IncomingCount")
                                  .split(' ');
    for (int i = 0; i < 6; ++i)
        lines << names[i] + "=" + texts[i];
    for (size_t i = 0; i < std::size(numbers); ++i)
        lines << QString("%1=%2").arg(names[int(i) + 6]).arg(numbers[i]);
    lines << "TabletType=" + hex(reinterpret_cast<const char *>(a.TabletType), kTabletTypeSize)
          << "SecondSerial=" + hex(reinterpret_cast<const char *>(a.SecondSerial), 8)
          << "IncomingFile=" + hex(t.m_IncomingFile.constData(), t.m_IncomingFile.size())
          << QString("IncomingSelectID=%1").arg(t.m_IncomingNode->SelectID);
    return lines;
}

// Runs one case of replies.txt: "== setting=value ... | report ; report ...", and
// gives the fields it changed and the signals it sent, in order.
QStringList run(const QString &line)
{
    CTablet tablet;
    tablet.m_Index = 3;
    _DEVICE_ATTRIBUTES &a = tablet.m_DeviceAttributes;
    for (char *field :
         {a.ProductName, a.ModelName, a.ICVersion, a.SerialNumber, a.ICData, a.Manufacturer})
        strcpy(field, "old");
    memset(a.TabletType, 0xEE, sizeof a.TabletType);
    memset(a.SecondSerial, 0xEE, sizeof a.SecondSerial);
    a.DeviceType = 7;
    a.TabletLight = a.WheelLight = 99;
    a.LPI = 1000;
    tablet.m_TabletXMLData->DeviceCurPenID = 7;
    const QStringList parts = line.mid(3).split('|');
    const std::map<QString, std::function<void(int)>> setters = {
        {"pens", [&](int v) { tablet.m_TabletXMLData->DevicePenNum = int16_t(v); }},
        {"moveMask", [&](int v) { tablet.m_TabletXMLData->PenMoveInTablet = int16_t(v); }},
        {"seenMask", [&](int v) { tablet.m_PenSeenMask = short(v); }},
        {"active", [&](int v) { tablet.m_Active = v; }},
        {"multi", [&](int v) { tablet.m_SendMultiData = v; }},
        {"selecting", [&](int v) { tablet.m_AreaSelecting = v; }}};
    for (const QString &setting : parts[0].split(' ', Qt::SkipEmptyParts))
        setters.at(setting.section('=', 0, 0))(setting.section('=', 1).toInt());
    QStringList out;
    QObject::connect(&tablet, &CTablet::SentTabletLightData,
                     [&](CTablet *t) { out << QString("signal light %1").arg(t == &tablet); });
    QObject::connect(&tablet, &CTablet::SentMultiData, [&](CTablet *t, MultiData) {
        out << QString("signal multi %1").arg(t == &tablet);
    });
    QObject::connect(&tablet, qOverload<int, int, int>(&CTablet::PostActionMsg),
                     [&](int id, int msg, int value) {
                         out << QString("signal action %1 %2 %3").arg(id).arg(msg).arg(value);
                     });
    QObject::connect(&tablet, &CTablet::PostDeviceOperatorMsg, [&](int op, int value) {
        out << QString("signal op %1 %2").arg(op).arg(value);
    });
    const QStringList before = fields(tablet);
    for (const QString &text : parts[1].split(';'))
        feed(tablet, bytes(text));
    for (const QString &field : fields(tablet)) {
        if (!before.contains(field))
            out << field;
    }
    return out;
}

// Each case starts from "old" texts, 0xEE blocks, lights 99, LPI 1000, pen 7;
// what it changes is listed below it.
TEST(Dispatcher, RepliesChangeOnlyWhatTheyCarry)
{
    QFile file(DATA_DIR "/replies.txt");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QStringList expected = QString::fromUtf8(file.readAll()).split('\n');
    QStringList actual;
    for (const QString &line : expected) {
        if (line.startsWith('#') || line.startsWith("== ") || line.isEmpty())
            actual << line;
        if (line.startsWith("== "))
            actual << run(line);
    }
    EXPECT_EQ(actual.join('\n').toStdString(), expected.join('\n').toStdString());
}

// The reply comes from another thread, which can take the mutex only once
// the waiter waits: a wake cannot be lost.
TEST(Dispatcher, RepliesWakeTheWaiterOfTheirCondition)
{
    CTablet tablet;
    // report, on the start condition (else the reply one), wakes
    for (const auto &[report, start, wakes] : std::initializer_list<std::tuple<Bytes, bool, bool>>{
             {{0x02, 0xB0, 0x00, 0x01}, true, true},
             {{0x02, 0xB0, 0x01, 0x00}, true, true},
             {{0x02, 0xB0, 0x04, 0x00}, true, false},
             {{0x02, 0x06, 0x64, 0x01, 0x10, 0x27}, false, true}}) {
        QWaitCondition &condition = start ? tablet.m_StartCondition : tablet.m_ReplyCondition;
        QMutexLocker lock(&tablet.m_ReplyMutex);
        std::thread reader([&, &report = report] { feed(tablet, report); });
        const bool woken = condition.wait(&tablet.m_ReplyMutex, wakes ? 5000 : 200);
        lock.unlock();
        reader.join();
        EXPECT_EQ(woken, wakes) << int(report[2]);
    }
}

// Every length of every kind of report, with hostile bytes, on the decoding
// products: fields stay terminated and the record around them intact.
TEST(Dispatcher, NoReportReachesOutsideItsFields)
{
    CTablet tablet;
    const Bytes kinds = bytes("b4 01 f2 00 06 02 06 03 06 04 06 05 06 6e 06 83 06 64 f8 02 b0 01 "
                              "b6 00 b6 01 b6 02 b5 01 a0 ff f0 ff c0 00 f6 50 01 ff");
    _DEVICE_ATTRIBUTES &attributes = tablet.m_DeviceAttributes;
    strcpy(attributes.DevicePath, "/dev/guard");
    tablet.m_Active = true;
    tablet.m_TabletXMLData->DevicePenNum = 8;
    for (const int product : {0x0B40, 0x03E1, 0x03E2, 0x07C9}) {
        tablet.m_ProductId = product;
        for (size_t kind = 0; kind < kinds.size(); kind += 2) {
            for (size_t length = 1; length <= 64; ++length) {
                for (const uint8_t fill : {uint8_t(0x01), uint8_t(0xFF)}) {
                    Bytes report(length, fill);
                    report[0] = 0x02;
                    std::copy_n(&kinds[kind], std::min<size_t>(2, length - 1), report.begin() + 1);
                    feed(tablet, report);
                }
            }
        }
    }
    for (const char *field :
         {attributes.ProductName, attributes.SerialNumber, attributes.ICVersion, attributes.ICData})
        EXPECT_LT(strnlen(field, kIdentitySize), size_t(kIdentitySize));
    EXPECT_STREQ(attributes.DevicePath, "/dev/guard");
}

} // namespace
