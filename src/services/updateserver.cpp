#include "updateserver.h"

#include <QCryptographicHash>
#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

namespace
{
// The key shared with the service.
constexpr char kSignSalt[] = "qrvtlmwzkd71902648350331";
constexpr int kModeNewDriver = 2;

QString md5Hex(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
}

void logStatus(const char *what, QNetworkReply *reply)
{
    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (status.isValid())
        qDebug() << what << status.toInt();
}
} // namespace

UpdateServer::UpdateServer(bool check, QObject *parent, const QUrl &service)
    : QObject(parent), m_CheckUpdate(check), m_Service(service)
{
    if (m_CheckUpdate)
        CheckUpdateServer(kModeNewDriver);
}

int UpdateServer::CheckUpdateServer(int mode)
{
    if (!m_CheckUpdate)
        return 0;
    QNetworkRequest request(m_Service.resolved(QUrl("/api/ping")));
    auto *manager = new QNetworkAccessManager(this);
    connect(manager, &QNetworkAccessManager::finished, this, &UpdateServer::on_PingFinished);
    manager->get(request);
    m_Mode = mode;
    return 1;
}

QString UpdateServer::GetDriverURLString(QString) const
{
    return QString();
}

QString UpdateServer::GetMD5Sign(QString text) const
{
    const QString key = md5Hex(QByteArray(kSignSalt));
    const QString sign = md5Hex((key + text).toLatin1());
    qDebug() << "md5Key: " << key << "MD5" << sign;
    return sign;
}

void UpdateServer::on_PingFinished(QNetworkReply *reply)
{
    logStatus("status code=", reply);
    reply->deleteLater();
    if (reply->error() != QNetworkReply::NoError) {
        qDebug() << "Failed: " << reply->errorString();
        return;
    }
    const QByteArray answer = reply->readAll();
    qDebug() << answer;
    const QJsonDocument document = QJsonDocument::fromJson(answer);
    if (document.isNull())
        qDebug() << "pingJsonisNull";
    const QJsonObject ping = document.object();
    const QString serverTime = QString::number(ping.value("server_time").toVariant().toLongLong());
    if (ping.value("code").toInt() == 1 && m_Mode == kModeNewDriver)
        requestDriver(serverTime);
}

void UpdateServer::requestDriver(const QString &serverTime)
{
    QNetworkRequest request(QUrl(GetDriverURLString(serverTime)));
    request.setHeader(QNetworkRequest::ContentTypeHeader, "application/x-www-form-urlencoded");
    auto *manager = new QNetworkAccessManager(this);
    connect(manager, &QNetworkAccessManager::finished, this, &UpdateServer::on_GetDriverFinished);
    manager->get(request);
}

void UpdateServer::on_GetDriverFinished(QNetworkReply *reply)
{
    logStatus("on_GetDriverFinished status code=", reply);
    reply->deleteLater();
    if (reply->error() != QNetworkReply::NoError)
        qDebug() << "on_GetDriverFinished Failed: " << reply->errorString();
    const QJsonObject answer = QJsonDocument::fromJson(reply->readAll()).object();
    if (answer.value("code").toInt() != 1)
        return;
    const QJsonObject driver = answer.value("data").toObject();
    qDebug() << "driver" << driver.value("driver_code").toString()
             << driver.value("system").toString();
    emit GetNewDriver(1, driver.value("version").toString(),
                      driver.value("download_link").toString(), answer.value("message").toString());
}
