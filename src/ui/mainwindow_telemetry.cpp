// The usage-data channel, dormant: the window's pointer to it stays null, so every event
// below is composed only behind that test and none ever is.
#include "mainwindow.h"

#include "cglobaldata.h"
#include "ctablet.h"
#include "jsonserver.h"
#include "textfield.h"
#include "ui_mainwindow.h"

#include <QDebug>
#include <QTimer>

namespace
{
constexpr int kCollectPeriodMs = 1800000;

QString item(const QString &key, const QString &value)
{
    return JsonServer::GetJsonData(key, value);
}

QString item(const QString &key, double value)
{
    return JsonServer::GetJsonData(key, QString::number(value));
}

QString group(const QString &key, const QStringList &items)
{
    return JsonServer::GetJsonDataSon(key, items.join(','));
}

QString screenGroup(int index)
{
    const QRect &screen = CGlobalData::ScreenArray[index];
    return group(QString("Screen%1").arg(index),
                 {item("SH", screen.height()), item("SW", screen.width()), item("SY", screen.y()),
                  item("SX", screen.x())});
}

QString functionGroup(const QString &key, int id, int actid, const char (&func)[kFuncSize])
{
    return group(key, {item("id", id), item("Actid", actid), item("custom", fieldText(func))});
}

QString penGroup(int index, const stPenConfig &pen)
{
    return group(QString("Pen%1").arg(index),
                 {item("P0", pen.P0), item("P1X", pen.P1X), item("P1Y", pen.P1Y),
                  item("TablePC", pen.bTablePC), item("RelativeCoords", pen.bRelativeCoords),
                  item("Speed", pen.Speed), item("bRelativeCoords", pen.bRelativeCoords)});
}

// A ring's functions go under "W" for a wheel or pen roller and "TR" for a touch ring.
QStringList ringGroups(int index, const stRingConfig &ring)
{
    QStringList groups{
        group(QString("R%1").arg(index), {item("id", ring.id), item("type", ring.type),
                                          item("mode", ring.mode), item("Speed", ring.Speed)})};
    const QString prefix = ring.type == 1 ? "TR%1" : "W%1";
    for (int i = 0; i < kRingItemCount; ++i) {
        const stRingItem &function = ring.Item[i];
        groups << group(prefix.arg(index * kRingItemCount + i),
                        {item("id", function.id), item("custom", fieldText(function.func))});
    }
    return groups;
}
} // namespace

void MainWindow::setJsonServer(JsonServer *server)
{
    m_JsonServer = server;
    InitDataCollectAction();
}

void MainWindow::InitDataCollectAction()
{
    ui->LinkArtBtn->hide();
    if (!m_JsonServer)
        return;
    m_JsonServer->setDriverLanguage(m_Language);
    if (!m_JsonServer->BCollectDataVersion())
        return;
    m_CollectTimer = new QTimer(this);
    connect(m_CollectTimer, &QTimer::timeout, this, &MainWindow::time_handler);
    ui->version->setText(ui->version->text() + " H");
    if (!m_JsonServer->BCollectDataToServer())
        return;
    onSendJsonDataToServer(startEvent("OpenDriver"));
    m_CollectTimer->start(kCollectPeriodMs);
}

void MainWindow::onChangeCollectDataOption(bool on)
{
    if (!m_JsonServer)
        return;
    if (!on) {
        if (m_CollectTimer)
            m_CollectTimer->stop();
        m_JsonServer->setCollectDataToServerOption(false);
        return;
    }
    m_JsonServer->setCollectDataToServerOption(true);
    onSendJsonDataToServer(startEvent("OpenCollectData"));
    if (m_CollectTimer)
        m_CollectTimer->start(kCollectPeriodMs);
}

void MainWindow::onSendJsonDataToServer(QString message)
{
    if (m_JsonServer)
        m_JsonServer->SendMessageToServer(message);
}

// Reports the time from the last tick to the last pen activity.
void MainWindow::time_handler()
{
    qDebug() << "Timer out";
    const int used = m_StartTime.msecsTo(CGlobalData::LastTabletActionTime);
    if (m_JsonServer && m_CurrentTablet && used > 0) {
        onSendJsonDataToServer(item("DriverUsedMsTime", used));
        CGlobalData::LastTabletActionTime = QTime::currentTime();
    }
    m_StartTime = QTime::currentTime();
}

void MainWindow::sendUsage(const std::function<QString()> &compose)
{
    if (m_JsonServer)
        onSendJsonDataToServer(compose());
}

void MainWindow::sendUsageEvent(const char *name, const QString &value, bool withTablet)
{
    sendUsage([&] {
        const QString event = item(name, value);
        return withTablet ? event + "," + item("tablet", currentTabletName()) : event;
    });
}

QString MainWindow::currentTabletName() const
{
    return m_CurrentTablet ? fieldText(m_CurrentTablet->m_DeviceAttributes.ShowName) : QString();
}

// The desktop as the driver sees it, at start and when the user consents.
QString MainWindow::startEvent(const char *name) const
{
    QStringList items{item("System", usageSystemText()), item("PrimaryID", CGlobalData::PrimaryID),
                      item("ScreenNum", CGlobalData::ScreenNum)};
    for (int i = 0; i < qBound(0, CGlobalData::ScreenNum, kScreenSlots); ++i)
        items << screenGroup(i);
    items << item("languageStr", m_Language) << item("DriverVersion", ui->version->text());
    return group(name, items);
}

QString MainWindow::GetTabletXmlDataToJson(int slot)
{
    if (!m_JsonServer || slot < 0 || slot >= kTabletSlots || !CGlobalData::TabletArray[slot])
        return QString();
    const CTablet &tablet = *CGlobalData::TabletArray[slot];
    stTablet_XMLData &data = *tablet.m_TabletXMLData;
    QStringList groups{
        group("DeviceInfo",
              {item("DeviceRingNum", data.DeviceRingNum), item("DeviceKeyNum", data.DeviceKeyNum),
               item("DevicePenType", data.DevicePenType), item("DeviceControl", data.DeviceControl),
               item("DeviceTrackPad", data.DeviceTrackPad),
               item("DeviceKeyDirection", data.DeviceKeyDirection),
               item("DevicePenNum", data.DevicePenNum),
               item("PenMoveInTablet", data.PenMoveInTablet),
               item("DeviceCurPenID", data.DeviceCurPenID)}),
        group("ScreenMapping", {item("id", data.ScreenId), item("SX", data.SX), item("SY", data.SY),
                                item("SW", data.SW), item("SH", data.SH)}),
        group("TabletPannel", {item("Orientation", data.Orientation), item("TX", data.TX),
                               item("TY", data.TY), item("TW", data.TW), item("TH", data.TH)}),
        group("Common",
              {item("DisableInfo", data.DisableInfo), item("DisableQuickKey", data.DisableQuickKey),
               item("DisablePressure", data.DisablePressure),
               item("DisableSlope", data.DisableSlope)}),
        group("SC", {item("fKX", data.fKX), item("fKY", data.fKY), item("fXLC", data.fXLC),
                     item("fYLC", data.fYLC)}),
        GetAPPConfigDataToJson(slot, "CommonAPP", &data.CommonAPP, &data)};
    QStringList apps;
    int index = 0;
    for (_stAppConfigNode *app = data.stAppConfigPtr; app; app = app->next)
        apps << GetAPPConfigDataToJson(slot, QString("app%1").arg(++index), app, &data);
    groups << group("Apps", apps);
    return groups.join(',');
}

QString MainWindow::GetAPPConfigDataToJson(int, QString name, _stAppConfigNode *app,
                                           stTablet_XMLData *data)
{
    if (!m_JsonServer || !app || !data)
        return QString();
    QStringList items{item("path", fieldText(app->path))};
    for (int pen = 0; pen < kPenCount; ++pen) {
        items << penGroup(pen, app->Pen[pen]);
        for (int button = 0; button < kPenBtnCount; ++button) {
            const stPenBtn &penButton = app->Pen[pen].PenBtn[button];
            items << functionGroup(QString("PenBtn%1").arg(pen * kPenBtnCount + button),
                                   penButton.id, penButton.Actid, penButton.func);
        }
    }
    for (int key = 0; key < qBound(0, int(data->DeviceKeyNum), kKeyCount); ++key) {
        const stKeyConfig &config = app->Key[key];
        items << functionGroup(QString("K%1").arg(key), config.id, config.Actid, config.func);
    }
    for (int ring = 0; ring < kRingCount; ++ring)
        items << ringGroups(ring, app->Ring[ring]);
    items << item("mode", app->SelectID);
    return group(name, items);
}
