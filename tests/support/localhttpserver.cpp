#include "localhttpserver.h"

#include <QTcpSocket>
#include <QTimer>

LocalHttpServer::LocalHttpServer()
{
    answer(200, QByteArray());
    m_Server.listen(QHostAddress::LocalHost);
    connect(&m_Server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = m_Server.nextPendingConnection())
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { serve(socket); });
    });
}

QUrl LocalHttpServer::url(const QString &path) const
{
    return QUrl(QString("http://127.0.0.1:%1%2").arg(m_Server.serverPort()).arg(path));
}

void LocalHttpServer::answer(int status, const QByteArray &body, int pauseMs)
{
    m_Head = "HTTP/1.1 " + QByteArray::number(status) + " X\r\nConnection: close\r\n" +
             "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n";
    m_Body = body;
    m_PauseMs = pauseMs;
}

// Answers once the whole request is in, then closes.
void LocalHttpServer::serve(QTcpSocket *socket)
{
    const QByteArray seen = socket->peek(socket->bytesAvailable());
    const int bodyStart = seen.indexOf("\r\n\r\n") + 4;
    const QByteArray head = seen.left(bodyStart).toLower();
    const int lengthAt = head.indexOf("content-length:");
    const int length = lengthAt < 0 ? 0 : head.mid(lengthAt + 15).split('\r')[0].trimmed().toInt();
    if (bodyStart < 4 || seen.size() < bodyStart + length)
        return;
    socket->readAll();
    const QList<QByteArray> request = seen.left(seen.indexOf('\r')).split(' ');
    m_Requests.append({request.value(0), request.value(1), seen.mid(bodyStart, length)});
    const int half = m_PauseMs > 0 ? m_Body.size() / 2 : m_Body.size();
    socket->write(m_Head + m_Body.left(half));
    QTimer::singleShot(m_PauseMs, socket, [socket, rest = m_Body.mid(half)] {
        socket->write(rest);
        socket->disconnectFromHost();
    });
}
