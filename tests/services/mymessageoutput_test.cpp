#include "mymessageoutput.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <thread>

namespace
{

const QString kTimeFormat = QStringLiteral("yyyy-MM-dd hh:mm:ss ddd");

QString homeFile(const char *name)
{
    return QDir::homePath() + QLatin1Char('/') + QLatin1String(name);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

QString now()
{
    return QDateTime::currentDateTime().toString(kTimeFormat);
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
        myMessageOutput(type, QMessageLogContext(), QString::fromLatin1(text));
    }
};

TEST_F(LogFile, LineHoldsTimeLevelWordMessageAndContext)
{
    const QMessageLogContext full("src/pen.cpp", 42, "void Pen::draw()", "default");
    const QMessageLogContext none;
    struct Case {
        QtMsgType type;
        const QMessageLogContext *context;
        const char *rest;
    };
    const Case cases[] = {
        {QtDebugMsg, &full, " Debug:hi File:src/pen.cpp  Line:42  Action:void Pen::draw()\r\n"},
        {QtWarningMsg, &full, " Warning:hi File:src/pen.cpp  Line:42  Action:void Pen::draw()\r\n"},
        {QtCriticalMsg, &full,
         " Critical:hi File:src/pen.cpp  Line:42  Action:void Pen::draw()\r\n"},
        {QtFatalMsg, &full, " Fatal:hi File:src/pen.cpp  Line:42  Action:void Pen::draw()\r\n"},
        {QtInfoMsg, &full, " Info:hi File:src/pen.cpp  Line:42  Action:void Pen::draw()\r\n"},
        {static_cast<QtMsgType>(5), &full,
         " Message:hi File:src/pen.cpp  Line:42  Action:void Pen::draw()\r\n"},
        {QtDebugMsg, &none, " Debug:hi File:  Line:0  Action:\r\n"},
        {QtFatalMsg, &none, " Fatal:hi File:  Line:0  Action:\r\n"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.rest);
        SetUp();
        const QString before = now();
        myMessageOutput(c.type, *c.context, QStringLiteral("hi"));
        const QString after = now();
        const QString line = QString::fromUtf8(readFile(homeFile("log.txt")));
        const QString rest = QString::fromLatin1(c.rest);
        EXPECT_TRUE(line == QStringLiteral("DateTime:") + before + rest ||
                    line == QStringLiteral("DateTime:") + after + rest)
            << line.toStdString();
    }
}

TEST_F(LogFile, RotatesOnlyAboveTheLimit)
{
    const QByteArray kTail = " Info:trigger File:  Line:0  Action:\r\n";
    struct Case {
        int size;
        bool rotated;
    };
    for (const Case c : {Case{1049599, false}, Case{1049600, true}}) {
        SCOPED_TRACE(c.size);
        SetUp();
        const QByteArray old(c.size, 'x');
        writeFile(homeFile("log.txt"), old);
        log(QtInfoMsg, "trigger");
        const QByteArray current = readFile(homeFile("log.txt"));
        const QByteArray added = c.rotated ? current : current.mid(old.size());
        EXPECT_EQ(current.startsWith(old), !c.rotated);
        EXPECT_TRUE(added.startsWith("DateTime:"));
        EXPECT_TRUE(added.endsWith(kTail));
        EXPECT_EQ(added.count("\r\n"), 1);
        EXPECT_EQ(readFile(homeFile("oldlog.txt")), c.rotated ? old : QByteArray());
    }
}

TEST_F(LogFile, FailedCopyKeepsTheLogGrowing)
{
    // A directory can be neither removed as a file nor overwritten, even by root.
    ASSERT_TRUE(QDir().mkpath(homeFile("oldlog.txt") + QStringLiteral("/keep")));
    const QByteArray old(1049600, 'x');
    writeFile(homeFile("log.txt"), old);
    log(QtWarningMsg, "one");
    log(QtWarningMsg, "two");
    const QByteArray current = readFile(homeFile("log.txt"));
    EXPECT_TRUE(current.startsWith(old));
    EXPECT_EQ(current.mid(old.size()).count("\r\n"), 2);
    EXPECT_TRUE(current.endsWith(" Warning:two File:  Line:0  Action:\r\n"));
    EXPECT_TRUE(QFileInfo(homeFile("oldlog.txt")).isDir());
}

TEST_F(LogFile, LaterChangeOfHomeDoesNotMoveTheLog)
{
    log(QtInfoMsg, "first");
    QTemporaryDir other;
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", other.path().toLocal8Bit());
    log(QtInfoMsg, "second");
    qputenv("HOME", home);
    EXPECT_FALSE(QFile::exists(other.filePath(QStringLiteral("log.txt"))));
    EXPECT_EQ(readFile(homeFile("log.txt")).count("\r\n"), 2);
}

TEST_F(LogFile, TwoThreadsWriteWholeLines)
{
    constexpr int kPerThread = 300;
    const auto writer = [](char name) {
        for (int i = 0; i < kPerThread; ++i)
            myMessageOutput(QtDebugMsg, QMessageLogContext(),
                            QStringLiteral("%1%2").arg(QLatin1Char(name)).arg(i));
    };
    std::thread a(writer, 'A');
    std::thread b(writer, 'B');
    a.join();
    b.join();

    const QString text = QString::fromLatin1(readFile(homeFile("log.txt")));
    QStringList lines = text.split(QStringLiteral("\r\n"));
    ASSERT_EQ(lines.takeLast(), QString());
    ASSERT_EQ(lines.size(), 2 * kPerThread);
    const QRegularExpression shape(
        QStringLiteral("^DateTime:\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d \\S+ Debug:([AB]\\d+) "
                       "File:  Line:0  Action:$"));
    QSet<QString> messages;
    for (const QString &line : lines) {
        const QRegularExpressionMatch match = shape.match(line);
        ASSERT_TRUE(match.hasMatch()) << line.toStdString();
        messages.insert(match.captured(1));
    }
    EXPECT_EQ(messages.size(), 2 * kPerThread);
}

} // namespace
