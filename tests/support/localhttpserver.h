#pragma once

#include <QByteArray>
#include <QList>
#include <QTcpServer>
#include <QUrl>

// An HTTP server on 127.0.0.1 only: every request gets the one scripted reply, and what
// was asked is kept. It runs on the thread's event loop, so a client waiting in a local
// loop on the same thread is served.
class LocalHttpServer : public QObject
{
public:
    struct Request {
        QByteArray method;
        QByteArray path;
        QByteArray body;
    };

    LocalHttpServer();

    QUrl url(const QString &path) const;
    // The body goes out in two halves `pauseMs` apart, so that a client sees progress.
    void answer(int status, const QByteArray &body, int pauseMs = 0);

    const QList<Request> &requests() const { return m_Requests; }

private:
    void serve(QTcpSocket *socket);

    QTcpServer m_Server;
    QList<Request> m_Requests;
    int m_Status = 200;
    QByteArray m_Body;
    int m_PauseMs = 0;
};
