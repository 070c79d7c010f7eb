// The usage-data channel, the update client and the downloader stand ready but dormant:
// the real window with a scripted tablet, worked as a user would, starts none of them.
#include "devicefixture.h"
#include "fakeuinput.h"
#include "mainwindow.h"
#include "settingform.h"
#include "updateserver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMutex>
#include <QSet>
#include <QTest>
#include <QThread>
#include <QTimer>

// Qt's hooks for tools that watch objects come and go: 3 is a new object, 4 one gone.
extern quintptr Q_DECL_IMPORT qtHookData[];

namespace
{
QMutex objectsMutex;
QSet<QObject *> objects;

// The services' objects, anything that talks to the network, and the threads that were not
// there before but the device link's, as they are alive now.
std::string liveServices(const QSet<QObject *> &before)
{
    static const QSet<QByteArray> services = {
        "JsonServer",     "JsonServerAction",      "UpdateServer",    "Updater",   "Download",
        "DriverDownLoad", "QNetworkAccessManager", "QAbstractSocket", "QHostInfo", "QReplyTimeout"};
    QMutexLocker locker(&objectsMutex);
    QStringList found;
    for (QObject *object : qAsConst(objects)) {
        const QByteArray name = object->metaObject()->className();
        if (qobject_cast<QThread *>(object) && !before.contains(object) && name != "DeviceThread" &&
            name != "UsbListenThread")
            found << name;
        for (const QMetaObject *type = object->metaObject(); type; type = type->superClass())
            found << (services.contains(type->className()) ? name : QByteArray());
    }
    found.removeAll(QString());
    return found.join(' ').toStdString();
}

class Dormancy : public DeviceFixture
{
protected:
    // Nothing of the services alive, no file under "AppData", no timer counting usage.
    void expectDormant(const MainWindow *window, const char *after)
    {
        EXPECT_EQ(liveServices(m_Before), "") << after;
        EXPECT_FALSE(QDir::home().exists("AppData")) << after;
        for (QTimer *timer : window ? window->findChildren<QTimer *>() : QList<QTimer *>())
            EXPECT_FALSE(
                QObject::disconnect(timer, &QTimer::timeout, window, &MainWindow::time_handler));
    }

    QSet<QObject *> m_Before = objects;
};

TEST_F(Dormancy, TheShellStartsNoServiceNoConnectionNoFile)
{
    QTemporaryDir uinput;
    fakeuinput::start(uinput.path().toStdString());
    auto window = std::make_unique<MainWindow>();
    fakeusb::addDevice(tablet("tab", 0x0B40, 1));
    ASSERT_EQ(window->Init(), 1);
    window->show();
    expectDormant(window.get(), "start");
    // Keys post their usage records to the window; the pen moves.
    for (const char *report : {"02F0010000000000", "02F0000000000000", "02A174459C3100040000"}) {
        const QByteArray raw = QByteArray::fromHex(report);
        fakeusb::queueReport("tab", Bytes(raw.begin(), raw.end()));
    }
    window->ShowSettingForm();
    for (const char *name :
         {"checkBox_pressure", "checkBox_tips", "checkBox_shortcuts", "checkBox_slope"})
        window->settingForm()->findChild<QAbstractButton *>(name)->click();
    window->on_pushButton_ok_clicked();
    window->on_pushButton_cancel_clicked();
    window->on_closeBtn_clicked();
    window->OnShowDriver();
    QTest::qWait(500);
    expectDormant(window.get(), "the shell's work");
    for (const char *entry : {"Setting_DriverDown", "SettingFormWidget2"})
        EXPECT_TRUE(window->settingForm()->findChild<QWidget *>(entry)->isHidden()) << entry;
    window->OnQuiqDriver();
    window.reset();
    fakeuinput::stop();
    expectDormant(nullptr, "exit");

    // The watch sees a service once one exists.
    UpdateServer client(true, nullptr, QUrl("http://127.0.0.1:9"));
    EXPECT_NE(liveServices(m_Before), "");
}

} // namespace

// The home is the test's own, and the watch is set before any object exists.
int main(int argc, char **argv)
{
    QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qtHookData[3] = reinterpret_cast<quintptr>(+[](QObject *object) {
        QMutexLocker locker(&objectsMutex);
        objects.insert(object);
    });
    qtHookData[4] = reinterpret_cast<quintptr>(+[](QObject *object) {
        QMutexLocker locker(&objectsMutex);
        objects.remove(object);
    });
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
