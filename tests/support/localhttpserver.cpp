#include "localhttpserver.h"

#include <QTcpSocket>
#include <QTimer>

namespace
{
constexpr char kHeadEnd[] = "\r\n\r\n";

int contentLength(const QByteArray &head)
{
    for (const QByteArray &line : head.split('\n')) {
        if (line.toLower().startsWith("content-length:"))
            return line.mid(15).trimmed().toInt();
    }
    return 0;
}
} // namespace

LocalHttpServer::LocalHttpServer()
{
    m_Server.listen(QHostAddress::LocalHost);
    connect(&m_Server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = m_Server.nextPendingConnection())
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { serve(socket); });
    });
}

QUrl LocalHttpServer::url(const QString &path) const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(m_Server.serverPort()).arg(path));
}

void LocalHttpServer::answer(int status, const QByteArray &body, int pauseMs)
{
    m_Status = status;
    m_Body = body;
    m_PauseMs = pauseMs;
}

// Waits for the whole request, then answers and closes.
void LocalHttpServer::serve(QTcpSocket *socket)
{
    const QByteArray seen = socket->peek(socket->bytesAvailable());
    const int headEnd = seen.indexOf(kHeadEnd);
    if (headEnd < 0)
        return;
    const QByteArray head = seen.left(headEnd);
    const int bodyStart = headEnd + int(sizeof(kHeadEnd)) - 1;
    if (seen.size() < bodyStart + contentLength(head))
        return;
    socket->readAll();
    const QList<QByteArray> requestLine = head.left(head.indexOf('\r')).split(' ');
    m_Requests.append(
        {requestLine.value(0), requestLine.value(1), seen.mid(bodyStart, contentLength(head))});
    socket->write("HTTP/1.1 " + QByteArray::number(m_Status) +
                  " X\r\nContent-Type: application/json\r\nConnection: close\r\n"
                  "Content-Length: " +
                  QByteArray::number(m_Body.size()) + kHeadEnd);
    const int half = m_PauseMs > 0 ? m_Body.size() / 2 : m_Body.size();
    socket->write(m_Body.left(half));
    const QByteArray rest = m_Body.mid(half);
    QTimer::singleShot(m_PauseMs, socket, [socket, rest] {
        socket->write(rest);
        socket->disconnectFromHost();
    });
}
