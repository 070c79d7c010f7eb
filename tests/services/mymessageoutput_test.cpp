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

// Starts from a log of `size` bytes, no old log, or a folder in its place that cannot be
// replaced, even by root.
void startLog(int size, bool oldLogIsFolder = false)
{
    QDir(homeFile("oldlog.txt")).removeRecursively();
    QFile::remove(homeFile("oldlog.txt"));
    if (oldLogIsFolder)
        QDir().mkpath(homeFile("oldlog.txt") + "/keep");
    QFile file(homeFile("log.txt"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(file.write(QByteArray(size, 'x')), size);
}

TEST(LogFile, LineHoldsTimeLevelWordMessageAndContext)
{
    const QMessageLogContext full("src/pen.cpp", 42, "void Pen::draw()", "default");
    const QMessageLogContext none;
    const struct {
        QtMsgType type;
        const QMessageLogContext &context;
        const char *rest;
    } cases[] = {
        {QtDebugMsg, full, " Debug:hi File:src/pen.cpp  Line:42  Action:void Pen::draw()\r\n"},
        {QtWarningMsg, full, " Warning:hi File:src/pen.cpp  Line:42  Action:void Pen::draw()\r\n"},
        {QtCriticalMsg, none, " Critical:hi File:  Line:0  Action:\r\n"},
        {QtFatalMsg, none, " Fatal:hi File:  Line:0  Action:\r\n"},
        {QtInfoMsg, none, " Info:hi File:  Line:0  Action:\r\n"},
        {QtMsgType(5), none, " Message:hi File:  Line:0  Action:\r\n"},
    };
    const auto now = [] {
        return "DateTime:" + QDateTime::currentDateTime().toString("yyyy-MM-dd hh:mm:ss ddd");
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.rest);
        startLog(0);
        const QString before = now();
        myMessageOutput(c.type, c.context, "hi");
        const QString after = now();
        const QString line = readFile(homeFile("log.txt"));
        EXPECT_TRUE(line == before + c.rest || line == after + c.rest) << line.toStdString();
    }
}

// Rotates only above the limit, and a failed copy keeps the log growing.
TEST(LogFile, RotatesOnlyAboveTheLimit)
{
    for (const auto &[size, folder] :
         {std::pair(1049599, false), {1049600, false}, {1049600, true}}) {
        SCOPED_TRACE(size + folder);
        startLog(size, folder);
        myMessageOutput(QtInfoMsg, {}, "trigger");
        const bool rotated = size > 1049599 && !folder;
        const QByteArray current = readFile(homeFile("log.txt"));
        EXPECT_TRUE(current.startsWith(QByteArray(rotated ? 0 : size, 'x') + "DateTime:"));
        EXPECT_TRUE(current.endsWith(" Info:trigger File:  Line:0  Action:\r\n"));
        EXPECT_EQ(current.count("\r\n"), 1);
        EXPECT_EQ(readFile(homeFile("oldlog.txt")), QByteArray(rotated ? size : 0, 'x'));
    }
}

// A later change of HOME does not move the log.
TEST(LogFile, TwoThreadsWriteWholeLines)
{
    startLog(0);
    myMessageOutput(QtDebugMsg, {}, "A300");
    const QByteArray home = qgetenv("HOME");
    QTemporaryDir other;
    qputenv("HOME", other.path().toLocal8Bit());
    const auto writer = [](char name) {
        for (int i = 0; i < 300; ++i)
            myMessageOutput(QtDebugMsg, {}, QString("%1%2").arg(name).arg(i));
    };
    std::thread a(writer, 'A');
    std::thread b(writer, 'B');
    a.join();
    b.join();
    qputenv("HOME", home);
    EXPECT_FALSE(QFile::exists(other.filePath("log.txt")));
    QStringList lines = QString(readFile(homeFile("log.txt"))).split("\r\n");
    ASSERT_EQ(lines.takeLast(), QString());
    const QRegularExpression shape("^DateTime:\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d \\S+ "
                                   "Debug:([AB]\\d+) File:  Line:0  Action:$");
    QSet<QString> messages;
    for (const QString &line : lines)
        messages.insert(shape.match(line).captured(1));
    EXPECT_EQ(messages.size(), 601);
    EXPECT_EQ(lines.size(), 601);
    EXPECT_FALSE(messages.contains(QString()));
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
