#include "updater.h"

#include "download.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDesktopServices>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMessageBox>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

Updater::Updater(QObject *parent)
    : QObject(parent), m_PlatformKey("linux"), m_ModuleName(QCoreApplication::applicationName()),
      m_ModuleVersion(QCoreApplication::applicationVersion()),
      m_UserAgentString(
          QStringLiteral("%1/%2 (Qt; QSimpleUpdater)").arg(m_ModuleName, m_ModuleVersion)),
      m_Manager(new QNetworkAccessManager(this))
{
    connect(m_Manager, &QNetworkAccessManager::finished, this, &Updater::onReply);
}

void Updater::checkForUpdates()
{
    QNetworkRequest request{QUrl(m_Url)};
    if (!m_UserAgentString.isEmpty())
        request.setRawHeader("User-Agent", m_UserAgentString.toUtf8());
    qDebug() << "Updater: supported schemes" << m_Manager->supportedSchemes();
    m_Manager->get(request);
}

bool Updater::compare(const QString &x, const QString &y)
{
    const QStringList newer = x.split('.', Qt::SkipEmptyParts);
    const QStringList older = y.split('.', Qt::SkipEmptyParts);
    if (newer.isEmpty() || older.isEmpty())
        return newer.size() < older.size();
    for (int i = 0; i < qMin(newer.size(), older.size()); ++i) {
        const int partX = newer[i].toInt(nullptr, 10);
        const int partY = older[i].toInt(nullptr, 10);
        if (partX != partY)
            return partX > partY;
    }
    return older.size() < newer.size();
}

void Updater::onReply(QNetworkReply *reply)
{
    reply->deleteLater();
    const QUrl redirect = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (!redirect.isEmpty()) {
        m_Url = reply->url().resolved(redirect).toString();
        checkForUpdates();
        return;
    }
    if (reply->error() != QNetworkReply::NoError) {
        finishChecking(false);
        return;
    }
    const QByteArray bytes = reply->readAll();
    if (m_CustomAppcast) {
        emit appcastDownloaded(m_Url, bytes);
        emit checkingFinished(m_Url);
        return;
    }
    readAppcast(bytes);
}

void Updater::readAppcast(const QByteArray &bytes)
{
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (document.isNull()) {
        finishChecking(false);
        return;
    }
    const QJsonObject platform =
        document.object().value("updates").toObject().value(m_PlatformKey).toObject();
    m_OpenUrl = platform.value("open-url").toString();
    m_Changelog = platform.value("changelog").toString();
    m_DownloadUrl = platform.value("download-url").toString();
    m_LatestVersion = platform.value("latest-version").toString();
    if (platform.contains("mandatory-update"))
        m_MandatoryUpdate = platform.value("mandatory-update").toBool();
    finishChecking(compare(m_LatestVersion, m_ModuleVersion));
}

void Updater::finishChecking(bool available)
{
    setUpdateAvailable(available);
    emit checkingFinished(m_Url);
}

void Updater::setUpdateAvailable(bool available)
{
    m_UpdateAvailable = available;
    if (available && m_NotifyOnUpdate)
        askForUpdate();
    else if (!available && m_NotifyOnFinish)
        tellNoUpdate();
}

void Updater::askForUpdate()
{
    QMessageBox box;
    box.setTextFormat(Qt::RichText);
    box.setIcon(QMessageBox::Information);
    box.setText("<h3>" +
                tr("Version %1 of %2 has been released!").arg(m_LatestVersion, m_ModuleName) +
                "</h3>");
    box.setInformativeText(m_MandatoryUpdate
                               ? tr("Would you like to download the update now? This is a "
                                    "mandatory update, exiting now will close the application")
                               : tr("Would you like to download the update now?"));
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::Yes);
    if (box.exec() == QMessageBox::Yes) {
        startUpdate();
        return;
    }
    if (m_MandatoryUpdate)
        QCoreApplication::quit();
}

void Updater::tellNoUpdate()
{
    QMessageBox box;
    box.setTextFormat(Qt::RichText);
    box.setIcon(QMessageBox::Information);
    box.setText("<h3>" + tr("No updates are available for the moment") + "</h3>");
    box.setInformativeText(
        tr("Congratulations! You are running the latest version of %1").arg(m_ModuleName));
    box.exec();
}

void Updater::startUpdate()
{
    if (!m_OpenUrl.isEmpty()) {
        QDesktopServices::openUrl(QUrl(m_OpenUrl));
        return;
    }
    const QUrl address(m_DownloadUrl);
    auto *download = new Download(this);
    download->setUseCustomInstallProcedures(m_CustomProcedures);
    download->setFileName(address.fileName());
    download->startDownload(address);
}
