#include "qreplytimeout.h"

#include <QNetworkReply>
#include <QTimer>

QReplyTimeout::QReplyTimeout(QNetworkReply *reply, int timeoutMs) : QObject(reply)
{
    if (!reply || !reply->isRunning())
        return;
    QTimer::singleShot(timeoutMs, this, &QReplyTimeout::expire);
}

void QReplyTimeout::expire()
{
    auto *reply = static_cast<QNetworkReply *>(parent());
    if (!reply->isRunning())
        return;
    emit timeout();
    reply->abort();
}
