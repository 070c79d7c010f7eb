#include "jsonserver.h"

#include "jsonserveraction.h"

#include <QDebug>
#include <QFile>
#include <QSettings>
#include <QSysInfo>
#include <QThread>

namespace
{
// The first build number of Windows 11, which still calls itself Windows 10.
constexpr int kWindows11Build = 22000;
} // namespace

JsonServer::JsonServer(QObject *parent) : QObject(parent)
{
    const QString options = JsonServerAction::optionFile();
    m_CollectVersion = QFile::exists(options);
    m_Settings = new QSettings(options, QSettings::IniFormat, this);
    m_Settings->beginGroup("config");
    m_CollectNow = m_Settings->value("Data", false).toBool();
    if (!m_CollectVersion)
        return;
    m_Action = new JsonServerAction(m_CollectNow);
    if (m_CollectNow)
        startWorker();
}

JsonServer::~JsonServer()
{
    if (!m_Action)
        return;
    m_Action->Exit();
    stopWorker();
    delete m_Thread;
    delete m_Action;
}

void JsonServer::setDriverLanguage(QString language)
{
    m_Language = language;
}

void JsonServer::SendMessageToServer(QString) {}

QString JsonServer::GetJsonData(QString key, QString value)
{
    return "\"" + key + "\":\"" + value + "\"";
}

QString JsonServer::GetJsonDataSon(QString key, QString value)
{
    return "\"" + key + "\":{" + value + "}";
}

void JsonServer::setCollectDataToServerOption(bool on)
{
    m_CollectNow = on;
    // Without the option file this installation does not collect, and must not start to.
    if (!m_Action)
        return;
    m_Action->SetCollectOption(on);
    if (on)
        startWorker();
    else
        stopWorker();
    m_Settings->setValue("Data", on);
}

// A second consent while the worker runs starts nothing new.
void JsonServer::startWorker()
{
    if (!m_Thread) {
        m_Thread = new QThread(this);
        m_Thread->setObjectName("JsonServer");
        m_Action->moveToThread(m_Thread);
        connect(m_Thread, &QThread::started, m_Action, &JsonServerAction::run);
    }
    if (m_Thread->isRunning())
        return;
    qDebug() << "JsonServer thread" << m_Thread;
    m_Thread->start(QThread::InheritPriority);
}

// The worker's loop has ended with its run flag; this ends the thread's own loop after it.
void JsonServer::stopWorker()
{
    if (!m_Thread)
        return;
    m_Thread->quit();
    m_Thread->wait();
}

QString usageSystemText()
{
    QString text = QSysInfo::prettyProductName() + " " + QSysInfo::currentCpuArchitecture() + " " +
                   QSysInfo::kernelVersion();
    const bool windows11 = QSysInfo::productType() == "windows" &&
                           QSysInfo::kernelVersion().section('.', 2, 2).toInt() >= kWindows11Build;
    return windows11 ? "Windows 11 " + text : text;
}
