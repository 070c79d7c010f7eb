// The usage-data channel, the update client and the downloader stand ready but dormant:
// the real window with a scripted tablet, worked as a user would, must start none of them.
#include "devicefixture.h"
#include "fakeuinput.h"
#include "jsonserver.h"
#include "mainwindow.h"
#include "settingform.h"
#include "threadnames.h"
#include "updateserver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMutex>
#include <QResource>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <atomic>
#include <csignal>
#include <cstddef>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

// Qt's hooks for tools that watch objects come and go.
extern quintptr Q_DECL_IMPORT qtHookData[];

namespace
{
constexpr int kHookAddObject = 3;
constexpr int kHookRemoveObject = 4;

// Every IPv4 or IPv6 socket asked for, by any thread; the call fails with EACCES.
std::atomic<int> networkSockets{0};

void onSocketTrap(int, siginfo_t *, void *context)
{
    ++networkSockets;
    static_cast<ucontext_t *>(context)->uc_mcontext.gregs[REG_RAX] = -EACCES;
}

bool trapNetworkSockets()
{
#if defined(__x86_64__)
    struct sigaction action = {};
    action.sa_sigaction = onSocketTrap;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSYS, &action, nullptr);
    sock_filter filter[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, arch)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, AUDIT_ARCH_X86_64, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, __NR_socket, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[0])),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, AF_INET, 2, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, AF_INET6, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRAP),
    };
    sock_fprog program = {static_cast<unsigned short>(std::size(filter)), filter};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           syscall(__NR_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_TSYNC, &program) == 0;
#else
    return false;
#endif
}

// Every QObject alive, from any thread.
QMutex objectsMutex;
QSet<QObject *> objects;
void onObjectAdded(QObject *object)
{
    QMutexLocker locker(&objectsMutex);
    objects.insert(object);
}
void onObjectRemoved(QObject *object)
{
    QMutexLocker locker(&objectsMutex);
    objects.remove(object);
}

// The services' objects alive now, by class.
QStringList liveServices()
{
    static const QSet<QByteArray> services = {
        "JsonServer",     "JsonServerAction",      "UpdateServer",    "Updater",      "Download",
        "DriverDownLoad", "QNetworkAccessManager", "QAbstractSocket", "QReplyTimeout"};
    QMutexLocker locker(&objectsMutex);
    QStringList found;
    for (QObject *object : qAsConst(objects)) {
        for (const QMetaObject *type = object->metaObject(); type; type = type->superClass()) {
            if (services.contains(type->className()))
                found << object->metaObject()->className();
        }
    }
    return found;
}

// A thread the window may start is one of the device link's.
QStringList foreignThreads(const QStringList &before)
{
    QStringList foreign;
    for (const QString &name : threadNames()) {
        if (!before.contains(name) && name != "DeviceThread" && name != "UsbListenThread")
            foreign << name;
    }
    return foreign;
}

class Dormancy : public DeviceFixture
{
protected:
    void SetUp() override
    {
        DeviceFixture::SetUp();
        ASSERT_TRUE(m_Uinput.isValid());
        fakeuinput::start(m_Uinput.path().toStdString());
        m_ThreadsBefore = threadNames();
    }
    void TearDown() override
    {
        fakeuinput::stop();
        DeviceFixture::TearDown();
    }
    // What the services would leave behind: sockets, objects, threads, files, a timer.
    void expectDormant(const MainWindow *window, const char *after)
    {
        EXPECT_EQ(networkSockets, 0) << after;
        EXPECT_EQ(liveServices().join(' ').toStdString(), "") << after;
        EXPECT_EQ(foreignThreads(m_ThreadsBefore).join(' ').toStdString(), "") << after;
        EXPECT_FALSE(QDir::home().exists("AppData")) << after;
        if (!window)
            return;
        for (QTimer *timer : window->findChildren<QTimer *>())
            EXPECT_FALSE(
                QObject::disconnect(timer, &QTimer::timeout, window, &MainWindow::time_handler));
    }

    QTemporaryDir m_Uinput;
    QStringList m_ThreadsBefore;
};

TEST_F(Dormancy, TheShellStartsNoServiceNoConnectionNoFile)
{
    auto window = std::make_unique<MainWindow>();
    fakeusb::addDevice(tablet("tab", 0x0B40, 1));
    ASSERT_EQ(window->Init(), 1);
    window->show();
    expectDormant(window.get(), "start");

    for (const char *report :
         {"02F0010000000000", "02F0000000000000", "02A174459C3100040000", "02A074459C3100000000"}) {
        const QByteArray raw = QByteArray::fromHex(report);
        fakeusb::queueReport("tab", Bytes(raw.begin(), raw.end()));
    }
    window->ShowSettingForm();
    for (const char *name : {"checkBox_pressure", "checkBox_tips", "checkBox_shortcuts",
                             "checkBox_slope", "checkBox_pressure"})
        window->settingForm()->findChild<QAbstractButton *>(name)->click();
    window->on_pushButton_ok_clicked();
    window->on_pushButton_cancel_clicked();
    window->on_closeBtn_clicked();
    window->OnShowDriver();
    QTest::qWait(500);
    expectDormant(window.get(), "the shell's work");
    EXPECT_TRUE(window->findChild<QWidget *>("LinkArtBtn")->isHidden());
    EXPECT_TRUE(window->settingForm()->findChild<QWidget *>("Setting_DriverDown")->isHidden());
    EXPECT_TRUE(window->settingForm()->findChild<QWidget *>("SettingFormWidget2")->isHidden());

    window->OnQuiqDriver();
    window.reset();
    expectDormant(nullptr, "exit");

    // The watch sees what a service does once one exists.
    UpdateServer client(true, nullptr, QUrl("http://127.0.0.1:9"));
    EXPECT_TRUE(waitFor([] { return networkSockets > 0; }));
    EXPECT_TRUE(liveServices().contains("UpdateServer"));
}

} // namespace

// The home is the test's own, and the watch is set before any thread or object exists.
int main(int argc, char **argv)
{
    QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!trapNetworkSockets()) {
        fprintf(stderr, "seccomp is not available here\n");
        return 77;
    }
    qtHookData[kHookAddObject] = reinterpret_cast<quintptr>(&onObjectAdded);
    qtHookData[kHookRemoveObject] = reinterpret_cast<quintptr>(&onObjectRemoved);
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
