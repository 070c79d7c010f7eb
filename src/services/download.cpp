#include "download.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDebug>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

namespace
{
const QString kPartialSuffix = QStringLiteral(".part");
const QString kDefaultFileName = QStringLiteral("Driver_Update.exe");
constexpr qreal kSecondsPerHour = 3600;
constexpr qreal kSecondsPerMinute = 60;

int rounded(qreal value)
{
    return int(value + 0.5);
}

// Above two hours the rounded count is at least 2, so hours never read in the singular.
QString durationText(qreal seconds)
{
    if (seconds > 2 * kSecondsPerHour)
        return Download::tr("about %1 hours").arg(rounded(seconds / kSecondsPerHour));
    if (seconds > kSecondsPerMinute) {
        const int minutes = rounded(seconds / kSecondsPerMinute);
        return minutes < 2 ? Download::tr("1 minute") : Download::tr("%1 minutes").arg(minutes);
    }
    const int wholeSeconds = rounded(seconds);
    return wholeSeconds < 2 ? Download::tr("1 second")
                            : Download::tr("%1 seconds").arg(wholeSeconds);
}
} // namespace

Download::Download(QObject *parent)
    : QObject(parent), m_DownloadDir(QDir::homePath() + "/Downloads/"),
      m_FileName(kDefaultFileName), m_Manager(new QNetworkAccessManager(this))
{
}

QString Download::downloadDir() const
{
    return m_DownloadDir.absolutePath();
}

void Download::setDownloadDir(const QString &downloadDir)
{
    m_DownloadDir.setPath(downloadDir);
}

void Download::setFileName(const QString &file)
{
    m_FileName = file.isEmpty() ? kDefaultFileName : file;
}

void Download::startDownload(const QUrl &url)
{
    // A redirect replaces the reply: the old one must not finish this download.
    if (m_Reply) {
        m_Reply->disconnect(this);
        m_Reply->abort();
        m_Reply->deleteLater();
    }
    m_Cancelled = false;
    m_Reply = m_Manager->get(QNetworkRequest(url));
    m_StartTime = QDateTime::currentDateTime().toSecsSinceEpoch();
    m_DownloadDir.mkpath(".");
    QFile::remove(finalPath());
    QFile::remove(partialPath());
    connect(m_Reply, &QNetworkReply::readyRead, this, &Download::saveFile);
    connect(m_Reply, &QNetworkReply::downloadProgress, this, &Download::updateProgress);
    connect(m_Reply, &QNetworkReply::finished, this, &Download::finished);
    connect(m_Reply, &QNetworkReply::redirected, this, &Download::startDownload);
}

void Download::cancelDownload()
{
    if (!m_Reply)
        return;
    if (m_Reply->isFinished()) {
        QCoreApplication::quit();
        return;
    }
    m_Cancelled = true;
    m_Reply->abort();
}

// Qt reports progress at most every 100 ms, so the bytes are written as they arrive.
void Download::saveFile()
{
    if (followRedirect())
        return;
    writeAvailableBytes();
}

void Download::updateProgress(qint64 received, qint64 total)
{
    const int percent = total > 0 ? int(received * 100 / total) : 0;
    emit updateUIProgress(percent, calculateTimeRemaining(received, total));
}

void Download::finished()
{
    if (followRedirect())
        return;
    if (m_Cancelled) {
        m_Reply->close();
        return;
    }
    writeAvailableBytes();
    m_Reply->close();
    QFile::remove(finalPath());
    if (!QFile::rename(partialPath(), finalPath()))
        qDebug() << "Download: cannot rename" << partialPath();
    emit downloadFinished(finalPath());
}

// The file is opened anew for each chunk, so that what has arrived is always on disk.
void Download::writeAvailableBytes()
{
    const QByteArray bytes = m_Reply->readAll();
    if (bytes.isEmpty())
        return;
    QFile file(partialPath());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) {
        qDebug() << "Download: cannot write" << file.fileName();
        return;
    }
    file.write(bytes);
}

bool Download::followRedirect()
{
    const QUrl target = m_Reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (target.isEmpty())
        return false;
    startDownload(m_Reply->url().resolved(target));
    return true;
}

QString Download::calculateTimeRemaining(qint64 received, qint64 total) const
{
    const qint64 elapsed = QDateTime::currentDateTime().toSecsSinceEpoch() - m_StartTime;
    return timeRemainingText(received, total, elapsed);
}

QString Download::timeRemainingText(qint64 received, qint64 total, qint64 elapsedSeconds)
{
    if (elapsedSeconds <= 0)
        return {};
    const qint64 speed = received / elapsedSeconds;
    if (speed <= 0)
        return {};
    return tr("Time remaining") + ": " + durationText(qreal(total - received) / speed);
}

QString Download::finalPath() const
{
    return m_DownloadDir.filePath(m_FileName);
}

QString Download::partialPath() const
{
    return finalPath() + kPartialSuffix;
}
