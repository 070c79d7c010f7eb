#include "mymessageoutput.h"

#include <QDateTime>
#include <QFile>
#include <QMutex>
#include <QStandardPaths>
#include <QTextStream>

namespace
{

// More than 1024 whole KiB starts a new generation.
constexpr qint64 kMaxLogSize = 1049599;

QString levelWord(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QStringLiteral(" Debug:");
    case QtWarningMsg:
        return QStringLiteral(" Warning:");
    case QtCriticalMsg:
        return QStringLiteral(" Critical:");
    case QtFatalMsg:
        return QStringLiteral(" Fatal:");
    case QtInfoMsg:
        return QStringLiteral(" Info:");
    }
    return QStringLiteral(" Message:");
}

// The log is only removed once its copy exists, so a failed copy loses nothing.
void rotate(QFile &log, const QString &oldLogPath)
{
    if (QFile::exists(oldLogPath))
        QFile::remove(oldLogPath);
    if (log.copy(oldLogPath))
        log.remove();
}

} // namespace

void myMessageOutput(QtMsgType type, const QMessageLogContext &context, const QString &msg)
{
    static QMutex mutex;
    QMutexLocker locker(&mutex);

    const QByteArray localMsg = msg.toLocal8Bit();
    const QString level = levelWord(type);
    const QString dateTime =
        QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss ddd"));
    const QString datePart = QStringLiteral("DateTime:%1").arg(dateTime);
    const QString message =
        QStringLiteral("%1 File:%2  Line:%3  Action:%4")
            .arg(QString::fromLatin1(localMsg), QString::fromUtf8(context.file),
                 QString::number(context.line), QString::fromUtf8(context.function));

    // Worked out once: a later change of HOME does not move the log.
    static const QString home = QStandardPaths::writableLocation(QStandardPaths::HomeLocation);
    static const QString logPath = home + QStringLiteral("/log.txt");
    static const QString oldLogPath = home + QStringLiteral("/oldlog.txt");

    QFile file(logPath);
    if (file.exists() && file.size() > kMaxLogSize)
        rotate(file, oldLogPath);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Append))
        return;
    QTextStream stream(&file);
    stream << datePart << level << message << "\r\n";
    stream.flush();
    file.close();
}
