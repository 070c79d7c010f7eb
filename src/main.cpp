#include "mainwindow.h"
#include "qtsingleapplication.h"
#include "quitsignalwatcher.h"

#include <QFile>
#include <QFont>
#include <QResource>
#include <cstring>

namespace
{

void applyStyleSheet(QApplication &app)
{
    QFile file(":/qss/qss/stylesheet.qss");
    if (!file.open(QFile::ReadOnly))
        return;
    const QByteArray content = file.readAll();
    app.setStyleSheet(
        QString::fromLatin1(content.constData(), qstrnlen(content.constData(), content.size())));
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QtSingleApplication app("ScriboraV3", argc, argv);
    if (app.isRunning()) {
        // An instance already on its way out cannot show itself: this start
        // then waits for it to end and carries on as the first instance.
        if (app.sendMessage("Please show ScriboraV3", 5000) || !app.takeOver())
            return 0;
    }
    QResource::registerResource(QCoreApplication::applicationDirPath() + "/resource.rcc");
    applyStyleSheet(app);
    QFont font;
    font.setFamily("Arial");
    QApplication::setFont(font);

    // Made before the window, so a signal during start-up waits for the event loop.
    QuitSignalWatcher quitSignals;
    MainWindow window;
    QObject::connect(&app, &QtSingleApplication::messageReceived, &window,
                     &MainWindow::OnShowDriver);
    // Logout and service stops end the driver as the tray's Exit does.
    QObject::connect(&quitSignals, &QuitSignalWatcher::quitRequested, &window,
                     &MainWindow::OnQuiqDriver);
    if (argc > 1 && strcmp(argv[1], "/mini") == 0) {
        window.InitSystemTray();
        window.hide();
        window.setStartedMinimised(true);
    } else {
        window.show();
    }
    window.Init();
    return app.exec();
}
