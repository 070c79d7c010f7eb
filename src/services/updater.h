#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

class QNetworkAccessManager;
class QNetworkReply;

// Reads an appcast, a JSON feed of the latest version per platform, and tells whether it
// is newer than the running module; it can ask the user and start the download.
class Updater : public QObject
{
    Q_OBJECT
public:
    explicit Updater(QObject *parent = nullptr);

    QString url() const { return m_Url; }
    QString openUrl() const { return m_OpenUrl; }
    QString changelog() const { return m_Changelog; }
    QString moduleName() const { return m_ModuleName; }
    QString platformKey() const { return m_PlatformKey; }
    QString downloadUrl() const { return m_DownloadUrl; }
    QString latestVersion() const { return m_LatestVersion; }
    QString userAgentString() const { return m_UserAgentString; }
    QString moduleVersion() const { return m_ModuleVersion; }
    bool customAppcast() const { return m_CustomAppcast; }
    bool notifyOnUpdate() const { return m_NotifyOnUpdate; }
    bool notifyOnFinish() const { return m_NotifyOnFinish; }
    bool mandatoryUpdate() const { return m_MandatoryUpdate; }
    bool updateAvailable() const { return m_UpdateAvailable; }
    bool downloaderEnabled() const { return m_DownloaderEnabled; }
    bool useCustomInstallProcedures() const { return m_CustomProcedures; }

    // Whether version `x` is newer than `y`, compared part by part at the dots.
    static bool compare(const QString &x, const QString &y);

signals:
    void checkingFinished(const QString &url);
    void appcastDownloaded(const QString &url, const QByteArray &reply);

public slots:
    void checkForUpdates();
    void setUrl(const QString &url) { m_Url = url; }
    void setOpenUrl(const QString &url) { m_OpenUrl = url; }
    void setChangelog(const QString &changelog) { m_Changelog = changelog; }
    void setModuleName(const QString &name) { m_ModuleName = name; }
    void setPlatformKey(const QString &key) { m_PlatformKey = key; }
    void setDownloadUrl(const QString &url) { m_DownloadUrl = url; }
    void setLatestVersion(const QString &version) { m_LatestVersion = version; }
    void setUserAgentString(const QString &agent) { m_UserAgentString = agent; }
    void setModuleVersion(const QString &version) { m_ModuleVersion = version; }
    void setCustomAppcast(bool custom) { m_CustomAppcast = custom; }
    void setNotifyOnUpdate(bool notify) { m_NotifyOnUpdate = notify; }
    void setNotifyOnFinish(bool notify) { m_NotifyOnFinish = notify; }
    void setMandatoryUpdate(bool mandatory) { m_MandatoryUpdate = mandatory; }
    void setDownloaderEnabled(bool enabled) { m_DownloaderEnabled = enabled; }
    void setUseCustomInstallProcedures(bool custom) { m_CustomProcedures = custom; }

private slots:
    void onReply(QNetworkReply *reply);
    void setUpdateAvailable(bool available);

private:
    void readAppcast(const QByteArray &bytes);
    void finishChecking(bool available);
    void askForUpdate();
    void tellNoUpdate();
    void startUpdate();

    QString m_Url;
    QString m_OpenUrl;
    QString m_PlatformKey;
    QString m_Changelog;
    QString m_ModuleName;
    QString m_DownloadUrl;
    QString m_ModuleVersion;
    QString m_LatestVersion;
    QString m_UserAgentString;
    bool m_CustomAppcast = false;
    bool m_NotifyOnUpdate = true;
    bool m_NotifyOnFinish = false;
    bool m_UpdateAvailable = false;
    bool m_DownloaderEnabled = true;
    bool m_MandatoryUpdate = false;
    bool m_CustomProcedures = false;
    QNetworkAccessManager *m_Manager;
};
