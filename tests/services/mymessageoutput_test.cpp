#include "mymessageoutput.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <thread>

namespace
{

QString homeFile(const char *name)
{
    return QDir::homePath() + '/' + name;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class LogFile : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QFile::remove(homeFile("log.txt"));
        QDir(homeFile("oldlog.txt")).removeRecursively();
        QFile::remove(homeFile("oldlog.txt"));
    }
    static void log(QtMsgType type, const char *text)
    {
        myMessageOutput(type, QMessageLogContext(), text);
    }
    static void writeLog(const QByteArray &bytes)
    {
        QFile file(homeFile("log.txt"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }
};

TEST_F(LogFile, LineHoldsTimeLevelWordMessageAndContext)
{
    const QMessageLogContext full("src/pen.cpp", 42, "void Pen::draw()", "default");
    const QMessageLogContext none;
    const QString fullTail = "hi File:src/pen.cpp  Line:42  Action:void Pen::draw()\r\n";
    const QString noneTail = "hi File:  Line:0  Action:\r\n";
    const struct {
        QtMsgType type;
        bool withContext;
        const char *word;
    } cases[] = {{QtDebugMsg, true, "Debug"},       {QtWarningMsg, true, "Warning"},
                 {QtCriticalMsg, true, "Critical"}, {QtFatalMsg, true, "Fatal"},
                 {QtInfoMsg, true, "Info"},         {QtMsgType(5), true, "Message"},
                 {QtDebugMsg, false, "Debug"},      {QtFatalMsg, false, "Fatal"}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.word);
        SetUp();
        const auto now = [] {
            return QDateTime::currentDateTime().toString("yyyy-MM-dd hh:mm:ss ddd");
        };
        const QString before = now();
        myMessageOutput(c.type, c.withContext ? full : none, "hi");
        const QString after = now();
        const QString rest = QString(" %1:").arg(c.word) + (c.withContext ? fullTail : noneTail);
        const QString line = readFile(homeFile("log.txt"));
        EXPECT_TRUE(line == "DateTime:" + before + rest || line == "DateTime:" + after + rest)
            << line.toStdString();
    }
}

TEST_F(LogFile, RotatesOnlyAboveTheLimit)
{
    for (const int size : {1049599, 1049600}) {
        SCOPED_TRACE(size);
        SetUp();
        const bool rotated = size > 1049599;
        const QByteArray old(size, 'x');
        writeLog(old);
        log(QtInfoMsg, "trigger");
        const QByteArray current = readFile(homeFile("log.txt"));
        const QByteArray added = rotated ? current : current.mid(old.size());
        EXPECT_EQ(current.startsWith(old), !rotated);
        EXPECT_TRUE(added.startsWith("DateTime:"));
        EXPECT_TRUE(added.endsWith(" Info:trigger File:  Line:0  Action:\r\n"));
        EXPECT_EQ(added.count("\r\n"), 1);
        EXPECT_EQ(readFile(homeFile("oldlog.txt")), rotated ? old : QByteArray());
    }
}

TEST_F(LogFile, FailedCopyKeepsTheLogGrowing)
{
    // A directory can be neither removed as a file nor overwritten, even by root.
    ASSERT_TRUE(QDir().mkpath(homeFile("oldlog.txt") + "/keep"));
    const QByteArray old(1049600, 'x');
    writeLog(old);
    log(QtWarningMsg, "one");
    log(QtWarningMsg, "two");
    const QByteArray current = readFile(homeFile("log.txt"));
    EXPECT_TRUE(current.startsWith(old));
    EXPECT_EQ(current.mid(old.size()).count("\r\n"), 2);
    EXPECT_TRUE(current.endsWith(" Warning:two File:  Line:0  Action:\r\n"));
}

TEST_F(LogFile, LaterChangeOfHomeDoesNotMoveTheLog)
{
    log(QtInfoMsg, "first");
    QTemporaryDir other;
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", other.path().toLocal8Bit());
    log(QtInfoMsg, "second");
    qputenv("HOME", home);
    EXPECT_FALSE(QFile::exists(other.filePath("log.txt")));
    EXPECT_EQ(readFile(homeFile("log.txt")).count("\r\n"), 2);
}

TEST_F(LogFile, TwoThreadsWriteWholeLines)
{
    constexpr int kPerThread = 300;
    const auto writer = [](char name) {
        for (int i = 0; i < kPerThread; ++i)
            myMessageOutput(QtDebugMsg, QMessageLogContext(), QString("%1%2").arg(name).arg(i));
    };
    std::thread a(writer, 'A');
    std::thread b(writer, 'B');
    a.join();
    b.join();
    QStringList lines = QString(readFile(homeFile("log.txt"))).split("\r\n");
    ASSERT_EQ(lines.takeLast(), QString());
    ASSERT_EQ(lines.size(), 2 * kPerThread);
    const QRegularExpression shape("^DateTime:\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d \\S+ "
                                   "Debug:([AB]\\d+) File:  Line:0  Action:$");
    QSet<QString> messages;
    for (const QString &line : lines) {
        const QRegularExpressionMatch match = shape.match(line);
        ASSERT_TRUE(match.hasMatch()) << line.toStdString();
        messages.insert(match.captured(1));
    }
    EXPECT_EQ(messages.size(), 2 * kPerThread);
}

} // namespace

// The log handler fixes its paths at its first message, so HOME has to point at a
// folder of the test run before any test logs.
int main(int argc, char **argv)
{
    QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
