#pragma once

#include <QList>
#include <QTcpServer>
#include <QUrl>

// An HTTP server on 127.0.0.1 only, on the thread's event loop: every request gets the one
// scripted answer, and what was asked is kept.
class LocalHttpServer : public QObject
{
public:
    struct Request {
        QByteArray method, path, body;
    };

    LocalHttpServer();
    QUrl url(const QString &path) const;
    // With a pause, the body goes out in two halves that far apart, so a client sees progress.
    void answer(int status, const QByteArray &body, int pauseMs = 0);
    const QList<Request> &requests() const { return m_Requests; }

private:
    void serve(QTcpSocket *socket);

    QTcpServer m_Server;
    QList<Request> m_Requests;
    QByteArray m_Head;
    QByteArray m_Body;
    int m_PauseMs = 0;
};
