#pragma once

#include <QApplication>
#include <QString>

#include <memory>

class QLocalServer;
class QLocalSocket;
class QLockFile;

// QApplication that lets only one instance per user and id run: the first
// instance holds a lock file and listens on a local socket, later instances
// detect it with isRunning() and hand it a message with sendMessage(). A start
// while the first instance is still ending waits for it and becomes the first.
class QtSingleApplication : public QApplication
{
    Q_OBJECT
public:
    QtSingleApplication(const QString &id, int &argc, char **argv);
    ~QtSingleApplication() override;

    // True when another live process of this user holds the instance for id().
    bool isRunning();
    // Delivers message to the running instance; true once it acknowledged
    // receipt within timeout milliseconds (-1 waits forever).
    bool sendMessage(const QString &message, int timeout = 5000);
    // After a message that found the running instance on its way out: waits,
    // bounded, until it has ended, and makes this process the first instance.
    bool takeOver();
    QString id() const;

    // Where the lock file and the socket for an id live.
    static QString lockFilePath(const QString &id);
    static QString serverName(const QString &id);

signals:
    void messageReceived(const QString &message);

private:
    bool acquireLock();
    void startServer();
    void stopServing();
    void acceptConnections();
    void readFrom(QLocalSocket *socket, QByteArray &buffer);

    QString m_id;
    bool m_running = false;
    // Declared before the server so the socket closes before the lock is released.
    std::unique_ptr<QLockFile> m_lockFile;
    std::unique_ptr<QLocalServer> m_server;
};
