#include "qtsingleapplication.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QThread>
#include <QTimer>
#include <QtEndian>

#include <unistd.h>

#include <limits>
#include <memory>

namespace
{

// Frame: 4-byte big-endian length, then the UTF-8 message. The receiver
// answers with one ack byte once the whole frame arrived.
constexpr int kHeaderBytes = 4;
constexpr quint32 kMaxMessageBytes = 1024 * 1024;
constexpr char kAck = '\x06';
// A client that connects but never completes a frame must not linger forever.
constexpr int kIdleConnectionMs = 10000;
constexpr int kConnectRetryMs = 50;
// How long a start waits for an instance that holds the lock but does not
// listen: one still starting up, or one on its way out.
constexpr int kHandOverMs = 5000;
constexpr int kLockRetryMs = 50;

// XDG_RUNTIME_DIR is private to the user; /tmp is the fallback when there is none.
QString stateDirectory()
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty()) {
        const QFileInfo info(runtime);
        if (info.isDir() && info.isWritable())
            return info.absoluteFilePath();
    }
    return QDir::tempPath();
}

// Readable prefix plus a hash of the whole id: ids that sanitize alike stay
// distinct, and the path stays well under the 108-byte socket path limit.
QString baseName(const QString &id)
{
    QString readable;
    for (const QChar c : id) {
        if (readable.size() >= 24)
            break;
        const bool plain = (c >= QLatin1Char('a') && c <= QLatin1Char('z')) ||
                           (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) ||
                           (c >= QLatin1Char('0') && c <= QLatin1Char('9')) ||
                           c == QLatin1Char('-') || c == QLatin1Char('_');
        readable += plain ? c : QLatin1Char('_');
    }
    const QByteArray hash = QCryptographicHash::hash(id.toUtf8(), QCryptographicHash::Sha1).toHex();
    return QStringLiteral("qtsingleapp-%1-%2-%3")
        .arg(readable, QString::fromLatin1(hash.left(10)), QString::number(::getuid()));
}

bool serverListens(const QString &name)
{
    QLocalSocket probe;
    probe.connectToServer(name);
    const bool listening = probe.waitForConnected(kConnectRetryMs);
    probe.abort();
    return listening;
}

int msecsLeft(const QDeadlineTimer &deadline)
{
    if (deadline.isForever())
        return -1;
    return int(qMin<qint64>(deadline.remainingTime(), std::numeric_limits<int>::max()));
}

} // namespace

QtSingleApplication::QtSingleApplication(const QString &id, int &argc, char **argv)
    : QApplication(argc, argv), m_id(id)
{
    const QString lockPath = lockFilePath(id);
    m_lockFile = std::make_unique<QLockFile>(lockPath);
    // Staleness only by a dead owner process, never by age: a long-running
    // first instance must keep its lock.
    m_lockFile->setStaleLockTime(0);
    if (acquireLock()) {
        startServer();
        return;
    }
    if (m_lockFile->error() == QLockFile::LockFailedError) {
        m_running = true;
        return;
    }
    // Without a usable lock the single-instance guarantee cannot be given; run anyway.
    qWarning() << "QtSingleApplication: cannot create lock file" << lockPath << "error"
               << m_lockFile->error();
    m_lockFile.reset();
}

QtSingleApplication::~QtSingleApplication()
{
    // Close the socket while the lock is still held, so a new instance never
    // removes a socket that is still being served.
    m_server.reset();
    m_lockFile.reset();
}

// tryLock removes the lock file of a dead process (e.g. after a crash) and
// retries. A live holder that does not listen is either coming up or ending:
// wait until it listens (it runs) or lets go (this start takes over), bounded.
bool QtSingleApplication::acquireLock()
{
    const QDeadlineTimer deadline(kHandOverMs);
    for (;;) {
        if (m_lockFile->tryLock(0))
            return true;
        if (m_lockFile->error() != QLockFile::LockFailedError || deadline.hasExpired() ||
            serverListens(serverName(m_id)))
            return false;
        QThread::msleep(kLockRetryMs);
    }
}

bool QtSingleApplication::takeOver()
{
    if (!m_running || !acquireLock())
        return false;
    m_running = false;
    startServer();
    return true;
}

bool QtSingleApplication::isRunning()
{
    return m_running;
}

QString QtSingleApplication::id() const
{
    return m_id;
}

QString QtSingleApplication::lockFilePath(const QString &id)
{
    return stateDirectory() + QLatin1Char('/') + baseName(id) + QStringLiteral(".lock");
}

QString QtSingleApplication::serverName(const QString &id)
{
    return stateDirectory() + QLatin1Char('/') + baseName(id) + QStringLiteral(".sock");
}

void QtSingleApplication::startServer()
{
    const QString name = serverName(m_id);
    // We hold the lock, so a socket file left behind is from a crashed instance.
    QLocalServer::removeServer(name);
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server->listen(name)) {
        qWarning() << "QtSingleApplication: cannot listen on" << name << m_server->errorString();
        m_server.reset();
        return;
    }
    connect(m_server.get(), &QLocalServer::newConnection, this,
            &QtSingleApplication::acceptConnections);
    connect(this, &QCoreApplication::aboutToQuit, this, &QtSingleApplication::stopServing);
}

// Once the event loop has ended nobody would answer: stop listening and drop
// the connections not read yet, so a new start learns at once that this
// instance is going away instead of waiting for an answer.
void QtSingleApplication::stopServing()
{
    m_server->close();
    for (QLocalSocket *socket : m_server->findChildren<QLocalSocket *>())
        socket->abort();
}

void QtSingleApplication::acceptConnections()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection()) {
        auto buffer = std::make_shared<QByteArray>();
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this,
                [this, socket, buffer] { readFrom(socket, *buffer); });
        QTimer::singleShot(kIdleConnectionMs, socket, [socket] { socket->abort(); });
        if (socket->bytesAvailable() > 0)
            readFrom(socket, *buffer);
    }
}

void QtSingleApplication::readFrom(QLocalSocket *socket, QByteArray &buffer)
{
    buffer += socket->readAll();
    if (buffer.size() < kHeaderBytes)
        return;
    const quint32 length = qFromBigEndian<quint32>(buffer.constData());
    if (length > kMaxMessageBytes) {
        socket->abort();
        return;
    }
    if (quint32(buffer.size()) < kHeaderBytes + length)
        return;
    const QString message = QString::fromUtf8(buffer.constData() + kHeaderBytes, int(length));
    buffer.clear();
    // One message per connection; anything after the frame is ignored.
    disconnect(socket, &QLocalSocket::readyRead, this, nullptr);
    socket->write(&kAck, 1);
    // Hand the ack to the kernel now: a slot may quit the application before
    // the event loop would write it.
    socket->flush();
    socket->disconnectFromServer();
    emit messageReceived(message);
}

bool QtSingleApplication::sendMessage(const QString &message, int timeout)
{
    if (!m_running)
        return false;
    const QByteArray payload = message.toUtf8();
    if (quint32(payload.size()) > kMaxMessageBytes)
        return false;

    // A negative timeout makes a deadline that never expires.
    const QDeadlineTimer deadline(timeout < 0 ? -1 : timeout);
    QLocalSocket socket;
    // The first instance may hold the lock but not listen yet; retry until the deadline.
    for (;;) {
        socket.connectToServer(serverName(m_id));
        if (socket.waitForConnected(msecsLeft(deadline)))
            break;
        socket.abort();
        if (deadline.hasExpired())
            return false;
        const int left = msecsLeft(deadline);
        QThread::msleep(left < 0 ? kConnectRetryMs : qMin(left, kConnectRetryMs));
    }

    QByteArray frame(kHeaderBytes, '\0');
    qToBigEndian<quint32>(quint32(payload.size()), frame.data());
    frame += payload;
    if (socket.write(frame) != frame.size())
        return false;
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(msecsLeft(deadline)))
            return false;
    }
    while (socket.bytesAvailable() < 1) {
        if (!socket.waitForReadyRead(msecsLeft(deadline)))
            return false;
    }
    char ack = 0;
    return socket.getChar(&ack) && ack == kAck;
}
