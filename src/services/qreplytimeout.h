#pragma once

#include <QObject>

class QNetworkReply;

// Ends a reply that takes longer than the given time; it lives and dies with the reply.
class QReplyTimeout : public QObject
{
    Q_OBJECT
public:
    QReplyTimeout(QNetworkReply *reply, int timeoutMs);

signals:
    void timeout();

private:
    void expire();
};
