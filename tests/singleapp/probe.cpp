// One QtSingleApplication instance: singleapp_probe <id> <hex utf-8 message> <timeout ms>
// The first instance prints "first", then "message <hex>" when a message arrives (exit 0), or
// "timeout" (exit 1); a later one sends the message and prints "sent" or "not-sent".
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
    if (argc != 4)
        return 64;
    QtSingleApplication app(QString::fromLocal8Bit(argv[1]), argc, argv);
    const int timeoutMs = atoi(argv[3]);
    if (app.isRunning()) {
        const bool sent =
            app.sendMessage(QString::fromUtf8(QByteArray::fromHex(argv[2])), timeoutMs);
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
