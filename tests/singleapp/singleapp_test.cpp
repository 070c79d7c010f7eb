#include "qtsingleapplication.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QProcess>
#include <QThread>
#include <gtest/gtest.h>

#include <signal.h>

namespace
{

constexpr int kStartMs = 20000;
constexpr int kFinishMs = 20000;

// Unique per test and per test process, so parallel ctest runs never share an instance.
QString uniqueId()
{
    const auto *info = ::testing::UnitTest::GetInstance()->current_test_info();
    return QStringLiteral("test-id-%1-%2")
        .arg(QCoreApplication::applicationPid())
        .arg(QString::fromLatin1(info->name()));
}

QByteArray hex(const QString &text)
{
    return text.toUtf8().toHex();
}

// Removes what a SIGKILLed probe leaves behind; declare before the probes so it runs after them.
class StateFileCleanup
{
public:
    explicit StateFileCleanup(const QString &id) : m_id(id) {}
    ~StateFileCleanup()
    {
        QFile::remove(QtSingleApplication::lockFilePath(m_id));
        QFile::remove(QtSingleApplication::serverName(m_id));
    }
    StateFileCleanup(const StateFileCleanup &) = delete;
    StateFileCleanup &operator=(const StateFileCleanup &) = delete;

private:
    QString m_id;
};

// One singleapp_probe process; killed on destruction so a failing test leaves nothing behind.
class Probe
{
public:
    Probe() { m_process.setProgram(QStringLiteral(SINGLEAPP_PROBE_PATH)); }
    ~Probe()
    {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished(kFinishMs);
        }
    }
    Probe(const Probe &) = delete;
    Probe &operator=(const Probe &) = delete;

    bool start(const QString &id, const char *mode, const QString &message, int timeoutMs)
    {
        m_process.setArguments({id, QString::fromLatin1(mode), QString::fromLatin1(hex(message)),
                                QString::number(timeoutMs)});
        m_process.start();
        return m_process.waitForStarted(kStartMs);
    }

    // Waits until the probe printed exactly this line, or gives up when it exits.
    bool waitForLine(const QByteArray &line, int timeoutMs = kStartMs)
    {
        const QDeadlineTimer deadline(timeoutMs);
        for (;;) {
            collect();
            if (lines().contains(line))
                return true;
            if (m_process.state() == QProcess::NotRunning || deadline.hasExpired())
                return false;
            m_process.waitForReadyRead(int(deadline.remainingTime()));
        }
    }

    bool finish(int timeoutMs = kFinishMs)
    {
        const bool finished = m_process.waitForFinished(timeoutMs);
        collect();
        return finished;
    }

    QByteArrayList lines() const
    {
        QByteArrayList complete = m_stdout.split('\n');
        complete.removeLast(); // text after the last newline is not a full line yet
        return complete;
    }

    qint64 pid() const { return m_process.processId(); }
    int exitCode() const { return m_process.exitCode(); }
    QProcess::ExitStatus exitStatus() const { return m_process.exitStatus(); }
    void killHard()
    {
        m_process.kill(); // SIGKILL: no destructor runs, lock and socket files stay behind
        m_process.waitForFinished(kFinishMs);
    }

    std::string describe()
    {
        collect();
        return ("stdout: " + m_stdout + " stderr: " + m_stderr).toStdString();
    }

private:
    void collect()
    {
        m_stdout += m_process.readAllStandardOutput();
        m_stderr += m_process.readAllStandardError();
    }

    QProcess m_process;
    QByteArray m_stdout;
    QByteArray m_stderr;
};

} // namespace

TEST(SingleAppProcesses, SecondInstanceDeliversMessageToFirst)
{
    const QString id = uniqueId();
    const StateFileCleanup cleanup(id);
    const QString message = QStringLiteral("open --profile \"b\u00fcro\" \u4f60\u597d");

    Probe first;
    ASSERT_TRUE(first.start(id, "run", QString(), 30000));
    ASSERT_TRUE(first.waitForLine("first")) << first.describe();
    EXPECT_TRUE(QFileInfo::exists(QtSingleApplication::lockFilePath(id)));
    EXPECT_TRUE(QFileInfo::exists(QtSingleApplication::serverName(id)));

    Probe second;
    ASSERT_TRUE(second.start(id, "run", message, 10000));
    ASSERT_TRUE(second.finish()) << second.describe();
    EXPECT_EQ(second.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(second.exitCode(), 0) << second.describe();
    EXPECT_EQ(second.lines(), QByteArrayList{"sent"}) << second.describe();

    ASSERT_TRUE(first.finish()) << first.describe();
    EXPECT_EQ(first.exitCode(), 0) << first.describe();
    EXPECT_EQ(first.lines(), (QByteArrayList{"first", "message " + hex(message)}))
        << first.describe();

    // A clean exit releases the instance for the next start.
    EXPECT_FALSE(QFileInfo::exists(QtSingleApplication::lockFilePath(id)));
    EXPECT_FALSE(QFileInfo::exists(QtSingleApplication::serverName(id)));
}

TEST(SingleAppProcesses, KilledFirstInstanceDoesNotBlockNewFirst)
{
    const QString id = uniqueId();
    const StateFileCleanup cleanup(id);

    Probe crashed;
    ASSERT_TRUE(crashed.start(id, "run", QString(), 30000));
    ASSERT_TRUE(crashed.waitForLine("first")) << crashed.describe();
    crashed.killHard();
    ASSERT_EQ(crashed.exitStatus(), QProcess::CrashExit);
    // The stale state this test is about must really be there.
    ASSERT_TRUE(QFileInfo::exists(QtSingleApplication::lockFilePath(id)));
    ASSERT_TRUE(QFileInfo::exists(QtSingleApplication::serverName(id)));

    Probe first;
    ASSERT_TRUE(first.start(id, "run", QString(), 30000));
    ASSERT_TRUE(first.waitForLine("first")) << first.describe();

    Probe second;
    ASSERT_TRUE(second.start(id, "run", QStringLiteral("after crash"), 10000));
    ASSERT_TRUE(second.finish()) << second.describe();
    EXPECT_EQ(second.exitCode(), 0) << second.describe();

    ASSERT_TRUE(first.finish()) << first.describe();
    EXPECT_EQ(first.exitCode(), 0) << first.describe();
    EXPECT_EQ(first.lines(), (QByteArrayList{"first", "message " + hex("after crash")}))
        << first.describe();
}

TEST(SingleAppProcesses, WithoutFirstInstanceNotRunningAndNothingSent)
{
    const QString id = uniqueId();
    const StateFileCleanup cleanup(id);

    Probe alone;
    ASSERT_TRUE(alone.start(id, "report", QStringLiteral("nobody listens"), 2000));
    ASSERT_TRUE(alone.finish()) << alone.describe();
    EXPECT_EQ(alone.exitCode(), 0) << alone.describe();
    EXPECT_EQ(alone.lines(), QByteArrayList{"running=0 sent=0"}) << alone.describe();
}

TEST(SingleAppProcesses, LockOfLiveProcessWithoutServerIsRunningButUndelivered)
{
    const QString id = uniqueId();
    const StateFileCleanup cleanup(id);
    // This test process is alive, so its lock is not stale.
    QLockFile lock(QtSingleApplication::lockFilePath(id));
    ASSERT_TRUE(lock.tryLock(0));

    Probe later;
    QElapsedTimer elapsed;
    elapsed.start();
    ASSERT_TRUE(later.start(id, "report", QStringLiteral("hello"), 500));
    ASSERT_TRUE(later.finish()) << later.describe();
    EXPECT_EQ(later.lines(), QByteArrayList{"running=1 sent=0"}) << later.describe();
    // It keeps retrying the connection until its time-out, not forever.
    EXPECT_GE(elapsed.elapsed(), 400);
    EXPECT_LT(elapsed.elapsed(), 15000);
}

TEST(SingleAppProcesses, StartWhileHolderEndsWaitsAndBecomesFirst)
{
    const QString id = uniqueId();
    const StateFileCleanup cleanup(id);
    // A live holder with no server is what an instance on its way out looks like.
    QLockFile lock(QtSingleApplication::lockFilePath(id));
    ASSERT_TRUE(lock.tryLock(0));

    Probe later;
    ASSERT_TRUE(later.start(id, "report", QStringLiteral("hello"), 500));
    QThread::msleep(2000);
    lock.unlock();
    ASSERT_TRUE(later.finish()) << later.describe();
    EXPECT_EQ(later.lines(), QByteArrayList{"running=0 sent=0"}) << later.describe();
}

TEST(SingleAppProcesses, UnresponsiveFirstInstanceMakesSendFailAfterTimeout)
{
    const QString id = uniqueId();
    const StateFileCleanup cleanup(id);

    Probe first;
    ASSERT_TRUE(first.start(id, "run", QString(), 30000));
    ASSERT_TRUE(first.waitForLine("first")) << first.describe();
    // A stopped process accepts connections in the kernel but never acknowledges.
    ASSERT_EQ(::kill(pid_t(first.pid()), SIGSTOP), 0);

    Probe second;
    QElapsedTimer elapsed;
    elapsed.start();
    ASSERT_TRUE(second.start(id, "run", QStringLiteral("hello"), 500));
    ASSERT_TRUE(second.finish()) << second.describe();
    EXPECT_EQ(second.exitCode(), 2) << second.describe();
    EXPECT_EQ(second.lines(), QByteArrayList{"not-sent"}) << second.describe();
    EXPECT_GE(elapsed.elapsed(), 400);
    EXPECT_LT(elapsed.elapsed(), 15000);
    // The Probe destructor SIGKILLs the stopped first instance.
}
