#include "qtsingleapplication.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLockFile>
#include <QProcess>
#include <QThread>
#include <gtest/gtest.h>

#include <signal.h>

namespace
{

QByteArray hex(const QString &text)
{
    return text.toUtf8().toHex();
}

// Unique per test and per test process, so parallel ctest runs never share an instance.
// Removes what a SIGKILLed probe leaves behind; declare before the probes so it runs after them.
class Instance
{
public:
    Instance()
        : id(QString("test-id-%1-%2")
                 .arg(QCoreApplication::applicationPid())
                 .arg(::testing::UnitTest::GetInstance()->current_test_info()->name()))
    {
    }
    ~Instance()
    {
        QFile::remove(lockFile());
        QFile::remove(socket());
    }
    QString lockFile() const { return QtSingleApplication::lockFilePath(id); }
    QString socket() const { return QtSingleApplication::serverName(id); }
    bool stateExists() const
    {
        return QFileInfo::exists(lockFile()) && QFileInfo::exists(socket());
    }
    const QString id;
};

// One singleapp_probe process; killed on destruction so a failing test leaves nothing behind.
class Probe
{
public:
    Probe(const Instance &instance, const char *mode, const QString &message, int timeoutMs)
    {
        m_process.start(SINGLEAPP_PROBE_PATH,
                        {instance.id, mode, hex(message), QString::number(timeoutMs)});
        m_started.start();
    }
    ~Probe()
    {
        m_process.kill();
        m_process.waitForFinished(20000);
    }
    // Waits until the probe printed "first", or gives up when it exits.
    bool isFirst()
    {
        const QDeadlineTimer deadline(20000);
        while (!m_out.contains("first\n") && m_process.state() != QProcess::NotRunning &&
               !deadline.hasExpired()) {
            m_process.waitForReadyRead(int(deadline.remainingTime()));
            m_out += m_process.readAllStandardOutput();
        }
        return m_out.contains("first\n");
    }
    // Its whole output once it ended normally.
    QByteArray finish()
    {
        const bool finished = m_process.waitForFinished(20000);
        m_out += m_process.readAllStandardOutput();
        return finished && m_process.exitStatus() == QProcess::NormalExit ? m_out : "<crashed>";
    }
    qint64 elapsed() const { return m_started.elapsed(); }
    QProcess m_process;

private:
    QByteArray m_out;
    QElapsedTimer m_started;
};

TEST(SingleApp, SecondInstanceDeliversMessageToFirst)
{
    const Instance instance;
    const QString message = "open --profile \"b\u00fcro\" \u4f60\u597d";
    Probe first(instance, "run", {}, 30000);
    ASSERT_TRUE(first.isFirst());
    EXPECT_TRUE(instance.stateExists());
    EXPECT_EQ(Probe(instance, "run", message, 10000).finish(), "sent\n");
    EXPECT_EQ(first.finish(), "first\nmessage " + hex(message) + "\n");
    // A clean exit releases the instance for the next start.
    EXPECT_FALSE(QFileInfo::exists(instance.lockFile()));
    EXPECT_FALSE(QFileInfo::exists(instance.socket()));
}

TEST(SingleApp, KilledFirstInstanceDoesNotBlockNewFirst)
{
    const Instance instance;
    Probe crashed(instance, "run", {}, 30000);
    ASSERT_TRUE(crashed.isFirst());
    crashed.m_process.kill(); // SIGKILL: lock and socket files stay behind
    ASSERT_EQ(crashed.finish(), "<crashed>");
    ASSERT_TRUE(instance.stateExists());
    Probe first(instance, "run", {}, 30000);
    ASSERT_TRUE(first.isFirst());
    EXPECT_EQ(Probe(instance, "run", "after crash", 10000).finish(), "sent\n");
    EXPECT_EQ(first.finish(), "first\nmessage " + hex("after crash") + "\n");
}

TEST(SingleApp, WithoutFirstInstanceNotRunningAndNothingSent)
{
    const Instance instance;
    EXPECT_EQ(Probe(instance, "report", "nobody listens", 2000).finish(), "running=0 sent=0\n");
}

// A live holder without a server is what an instance on its way out looks like: a later
// start retries the connection until its time-out, not forever, or becomes first once freed.
TEST(SingleApp, LockOfLiveProcessWithoutServer)
{
    const Instance instance;
    QLockFile lock(instance.lockFile());
    ASSERT_TRUE(lock.tryLock(0));
    Probe later(instance, "report", "hello", 500);
    EXPECT_EQ(later.finish(), "running=1 sent=0\n");
    EXPECT_GE(later.elapsed(), 400);
    EXPECT_LT(later.elapsed(), 15000);

    Probe ending(instance, "report", "hello", 500);
    QThread::msleep(2000);
    lock.unlock();
    EXPECT_EQ(ending.finish(), "running=0 sent=0\n");
}

TEST(SingleApp, UnresponsiveFirstInstanceMakesSendFailAfterTimeout)
{
    const Instance instance;
    Probe first(instance, "run", {}, 30000);
    ASSERT_TRUE(first.isFirst());
    // A stopped process accepts connections in the kernel but never acknowledges.
    ASSERT_EQ(::kill(pid_t(first.m_process.processId()), SIGSTOP), 0);
    Probe second(instance, "run", "hello", 500);
    EXPECT_EQ(second.finish(), "not-sent\n");
    EXPECT_GE(second.elapsed(), 400);
    EXPECT_LT(second.elapsed(), 15000);
}

} // namespace
