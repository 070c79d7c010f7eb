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

// One singleapp_probe process; killed on destruction so a failing test leaves nothing behind.
class Probe
{
public:
    Probe(const QString &id, const QString &message, int timeoutMs)
    {
        process.start(SINGLEAPP_PROBE_PATH,
                      {id, message.toUtf8().toHex(), QString::number(timeoutMs)});
        m_started.start();
    }
    ~Probe()
    {
        process.kill();
        process.waitForFinished(20000);
    }
    // Waits until the probe printed "first", or gives up when it exits.
    bool isFirst()
    {
        const QDeadlineTimer deadline(20000);
        while (!m_out.contains("first\n") && process.state() != QProcess::NotRunning &&
               !deadline.hasExpired()) {
            process.waitForReadyRead(int(deadline.remainingTime()));
            m_out += process.readAllStandardOutput();
        }
        return m_out.contains("first\n");
    }
    // Its whole output once it ended normally.
    QByteArray finish()
    {
        const bool finished = process.waitForFinished(20000);
        m_out += process.readAllStandardOutput();
        return finished && process.exitStatus() == QProcess::NormalExit ? m_out : "<crashed>";
    }
    qint64 elapsed() const { return m_started.elapsed(); }
    QProcess process;

private:
    QByteArray m_out;
    QElapsedTimer m_started;
};

// The id is unique per test and test process, so parallel runs never share an instance; the
// fixture outlives the test's probes and removes what a SIGKILLed one leaves behind.
class SingleApp : public ::testing::Test
{
protected:
    ~SingleApp() override
    {
        QFile::remove(lockFile());
        QFile::remove(socket());
    }
    QString lockFile() const { return QtSingleApplication::lockFilePath(id); }
    QString socket() const { return QtSingleApplication::serverName(id); }
    // The second instance's message reaches the first, which then ends cleanly.
    void expectDelivered(Probe &first, const QString &message)
    {
        EXPECT_EQ(Probe(id, message, 10000).finish(), "sent\n");
        EXPECT_EQ(first.finish(), "first\nmessage " + message.toUtf8().toHex() + "\n");
    }
    const QString id = QString("test-id-%1-%2")
                           .arg(QCoreApplication::applicationPid())
                           .arg(::testing::UnitTest::GetInstance()->current_test_info()->name());
};

// A clean exit releases the instance; a SIGKILLed one leaves lock and socket behind, which
// do not block a new first.
TEST_F(SingleApp, SecondInstanceDeliversMessageToFirstAlsoAfterAKilledOne)
{
    Probe first(id, {}, 30000);
    ASSERT_TRUE(first.isFirst());
    EXPECT_TRUE(QFileInfo::exists(lockFile()) && QFileInfo::exists(socket()));
    expectDelivered(first, "open --profile \"b\u00fcro\" \u4f60\u597d");
    EXPECT_FALSE(QFileInfo::exists(lockFile()));
    EXPECT_FALSE(QFileInfo::exists(socket()));
    Probe crashed(id, {}, 30000);
    ASSERT_TRUE(crashed.isFirst());
    crashed.process.kill();
    ASSERT_EQ(crashed.finish(), "<crashed>");
    ASSERT_TRUE(QFileInfo::exists(lockFile()) && QFileInfo::exists(socket()));
    Probe next(id, {}, 30000);
    ASSERT_TRUE(next.isFirst());
    expectDelivered(next, "after crash");
}

// A live holder without a server is what an instance on its way out looks like: a later
// start retries the connection until its time-out, not forever, or becomes first once freed.
TEST_F(SingleApp, LockOfLiveProcessWithoutServer)
{
    QLockFile lock(lockFile());
    ASSERT_TRUE(lock.tryLock(0));
    Probe later(id, "hello", 500);
    EXPECT_EQ(later.finish(), "not-sent\n");
    EXPECT_GE(later.elapsed(), 400);
    EXPECT_LT(later.elapsed(), 15000);
    Probe ending(id, "hello", 500);
    QThread::msleep(2000);
    lock.unlock();
    EXPECT_EQ(ending.finish(), "first\ntimeout\n");
}

TEST_F(SingleApp, UnresponsiveFirstInstanceMakesSendFailAfterTimeout)
{
    Probe first(id, {}, 30000);
    ASSERT_TRUE(first.isFirst());
    // A stopped process accepts connections in the kernel but never acknowledges.
    ASSERT_EQ(::kill(pid_t(first.process.processId()), SIGSTOP), 0);
    Probe second(id, "hello", 500);
    EXPECT_EQ(second.finish(), "not-sent\n");
    EXPECT_GE(second.elapsed(), 400);
    EXPECT_LT(second.elapsed(), 15000);
}

} // namespace
