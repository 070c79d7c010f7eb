// One QtSingleApplication instance driven from the command line:
//   singleapp_probe <id> run <hex utf-8 message> <timeout ms>
//     first instance: prints "first", then "message <hex>" when a message arrives (exit 0),
//     or "timeout" (exit 1); later instance: sends the message, prints "sent" or "not-sent".
//   singleapp_probe <id> report <hex utf-8 message> <timeout ms>
//     prints "running=<0|1> sent=<0|1>".
// Messages travel hex-encoded so the result does not depend on the locale's 8-bit codec.
#include "qtsingleapplication.h"

#include <QTimer>

#include <cstdio>

namespace
{

void say(const QByteArray &line)
{
    std::printf("%s\n", line.constData());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (argc != 5)
        return 64;
    QtSingleApplication app(QString::fromLocal8Bit(argv[1]), argc, argv);
    const QByteArray mode = argv[2];
    const QString message = QString::fromUtf8(QByteArray::fromHex(argv[3]));
    const int timeoutMs = atoi(argv[4]);
    if (mode == "report") {
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
