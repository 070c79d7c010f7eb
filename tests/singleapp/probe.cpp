// One QtSingleApplication instance driven from the command line:
//   singleapp_probe <id> run <hex utf-8 message> <timeout ms>
//     first instance: prints "first", then "message <hex>" and exits 0 when a
//     message arrives, or "timeout" and exits 1;
//     later instance: sends the message, prints "sent" (exit 0) or "not-sent" (exit 2).
//   singleapp_probe <id> report <hex utf-8 message> <timeout ms>
//     prints "running=<0|1> sent=<0|1>" and exits 0.
// Messages travel hex-encoded on the command line so the result does not depend
// on the locale's 8-bit codec.
#include "qtsingleapplication.h"

#include <QByteArray>
#include <QStringList>
#include <QTimer>

#include <cstdio>

namespace
{

void say(const QByteArray &line)
{
    std::fputs(line.constData(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (argc != 5) {
        std::fprintf(stderr, "usage: %s <id> run|report <hex message> <timeout ms>\n", argv[0]);
        return 64;
    }
    const QString id = QString::fromLocal8Bit(argv[1]);
    QtSingleApplication app(id, argc, argv);
    const QStringList args = app.arguments();
    const QString mode = args.at(2);
    const QString message = QString::fromUtf8(QByteArray::fromHex(args.at(3).toLatin1()));
    bool timeoutOk = false;
    const int timeoutMs = args.at(4).toInt(&timeoutOk);
    if (!timeoutOk || (mode != QLatin1String("run") && mode != QLatin1String("report"))) {
        std::fprintf(stderr, "bad arguments\n");
        return 64;
    }

    if (mode == QLatin1String("report")) {
        const bool running = app.isRunning();
        const bool sent = app.sendMessage(message, timeoutMs);
        say(QByteArray("running=") + (running ? "1" : "0") + " sent=" + (sent ? "1" : "0"));
        return 0;
    }

    if (app.isRunning()) {
        const bool sent = app.sendMessage(message, timeoutMs);
        say(sent ? "sent" : "not-sent");
        return sent ? 0 : 2;
    }

    QObject::connect(&app, &QtSingleApplication::messageReceived, &app,
                     [&app](const QString &received) {
                         say("message " + received.toUtf8().toHex());
                         app.exit(0);
                     });
    QTimer::singleShot(timeoutMs, &app, [&app] {
        say("timeout");
        app.exit(1);
    });
    say("first");
    return app.exec();
}
