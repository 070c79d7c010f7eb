#include "quitsignalwatcher.h"

#include <QDebug>
#include <QSocketNotifier>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace
{

// The handler may only touch this and write(2): anything else is not
// async-signal-safe.
volatile sig_atomic_t g_writeFd = -1;

extern "C" void notifyQuitSignal(int signalNumber)
{
    const int savedErrno = errno;
    const char byte = static_cast<char>(signalNumber);
    const ssize_t written = ::write(g_writeFd, &byte, 1);
    static_cast<void>(written); // a full pipe already holds a pending request
    errno = savedErrno;
}

} // namespace

const int QuitSignalWatcher::kSignals[kSignalCount] = {SIGTERM, SIGINT, SIGHUP};

QuitSignalWatcher::QuitSignalWatcher(QObject *parent) : QObject(parent)
{
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC | O_NONBLOCK) != 0) {
        qWarning() << "QuitSignalWatcher: no pipe, signals keep their default action";
        return;
    }
    m_readFd = fds[0];
    g_writeFd = fds[1];
    m_notifier = new QSocketNotifier(m_readFd, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &QuitSignalWatcher::drain);

    struct sigaction action = {};
    action.sa_handler = notifyQuitSignal;
    sigemptyset(&action.sa_mask);
    // Restart interrupted calls of the other threads rather than fail them.
    action.sa_flags = SA_RESTART;
    for (int i = 0; i < kSignalCount; ++i)
        ::sigaction(kSignals[i], &action, &m_previous[i]);
}

QuitSignalWatcher::~QuitSignalWatcher()
{
    if (m_readFd < 0)
        return;
    for (int i = 0; i < kSignalCount; ++i)
        ::sigaction(kSignals[i], &m_previous[i], nullptr);
    ::close(g_writeFd);
    g_writeFd = -1;
    ::close(m_readFd);
}

// Several signals before the event loop came round are one request.
void QuitSignalWatcher::drain()
{
    char bytes[16];
    while (::read(m_readFd, bytes, sizeof bytes) > 0) {
    }
    emit quitRequested();
}
