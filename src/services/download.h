#pragma once

#include <QDir>
#include <QObject>
#include <QString>
#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;

// Writes one URL's content into the download folder, under a ".part" name until it is
// complete, and reports the progress.
class Download : public QObject
{
    Q_OBJECT
public:
    explicit Download(QObject *parent = nullptr);

    QString downloadDir() const;
    void setDownloadDir(const QString &downloadDir);
    void setFileName(const QString &file);
    // Whether the owner installs the file itself instead of handing it to the desktop.
    bool useCustomInstallProcedures() const { return m_UseCustomInstall; }
    void setUseCustomInstallProcedures(bool custom) { m_UseCustomInstall = custom; }

    // The "Time remaining" line for a download running `elapsedSeconds`; empty while
    // nothing can be said.
    static QString timeRemainingText(qint64 received, qint64 total, qint64 elapsedSeconds);

signals:
    void downloadFinished(QString filePath);
    void updateUIProgress(int percent, QString timeRemaining);

public slots:
    void startDownload(const QUrl &url);
    void cancelDownload();

private slots:
    void saveFile();
    void updateProgress(qint64 received, qint64 total);
    void finished();

private:
    void writeAvailableBytes();
    QString calculateTimeRemaining(qint64 received, qint64 total) const;
    bool followRedirect();
    QString finalPath() const;
    QString partialPath() const;

    qint64 m_StartTime = 0;
    QDir m_DownloadDir;
    QString m_FileName;
    bool m_Cancelled = false;
    QNetworkReply *m_Reply = nullptr;
    bool m_UseCustomInstall = false;
    QNetworkAccessManager *m_Manager;
};
