#pragma once

#include <QObject>

#include <signal.h>

class QSocketNotifier;

// Turns SIGTERM, SIGINT and SIGHUP (logout, systemctl stop, Ctrl+C) into a Qt
// signal on the thread that made the watcher, so the program can end through
// its own quit path instead of dying on the spot. One watcher per process.
class QuitSignalWatcher : public QObject
{
    Q_OBJECT
public:
    explicit QuitSignalWatcher(QObject *parent = nullptr);
    ~QuitSignalWatcher() override;

signals:
    void quitRequested();

private:
    void drain();

    static constexpr int kSignalCount = 3;
    static const int kSignals[kSignalCount];

    int m_readFd = -1;
    QSocketNotifier *m_notifier = nullptr;
    struct sigaction m_previous[kSignalCount] = {};
};
