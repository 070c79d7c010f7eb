#include "jsonserveraction.h"

#include "jsonserver.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QMutexLocker>
#include <QNetworkAccessManager>
#include <QNetworkInterface>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QRandomGenerator>
#include <QSettings>
#include <QTextCodec>

namespace
{
const QString kServerUrl = QStringLiteral("https://data.scribora.com:2005/receive/data");
const QString kBacklogName = QStringLiteral("TabletData.txt");
const QString kIdentityName = QStringLiteral("mymac.ini");
// A backlog above this is dropped whole before the next write.
constexpr qint64 kBacklogLimit = 1049599;

// The backlog is kept in GBK both ways, so what is read back is what was written.
QTextCodec *backlogCodec()
{
    QTextCodec *codec = QTextCodec::codecForName("GBK");
    return codec ? codec : QTextCodec::codecForLocale();
}

QString firstHardwareAddress()
{
    for (const QNetworkInterface &interface : QNetworkInterface::allInterfaces()) {
        const auto flags = interface.flags();
        if (flags.testFlag(QNetworkInterface::IsUp) &&
            flags.testFlag(QNetworkInterface::IsRunning) &&
            !flags.testFlag(QNetworkInterface::IsLoopBack))
            return interface.hardwareAddress();
    }
    return QString();
}
} // namespace

JsonServerAction::JsonServerAction(bool collect) : m_Run(collect)
{
    m_Settings = new QSettings(optionFile(), QSettings::IniFormat, this);
    m_Settings->beginGroup("config");
    const QString url = m_Settings->value("URL").toString();
    m_Url = QUrl(url.isEmpty() ? kServerUrl : url);
    m_BacklogPath = dataFolder() + kBacklogName;
}

QString JsonServerAction::optionFile()
{
    return QCoreApplication::applicationDirPath() + "/dataconfig.ini";
}

QString JsonServerAction::dataFolder()
{
    return QDir::homePath() + "/AppData/Roaming/Scribora V3/data/";
}

// An empty queue does not block: the loop goes round again at once.
void JsonServerAction::run()
{
    QEventLoop loop;
    manager();
    while (m_Run) {
        const QString message = takeMessage();
        if (!message.isEmpty())
            SendMessageToServerAction(message, loop);
    }
}

QString JsonServerAction::takeMessage()
{
    QMutexLocker locker(&m_MessagesMutex);
    return m_Messages.isEmpty() ? QString() : m_Messages.takeFirst();
}

void JsonServerAction::Exit()
{
    m_Run = false;
    if (m_Manager)
        m_Manager->deleteLater();
}

void JsonServerAction::SetCollectOption(bool on)
{
    m_Run = on;
}

// Made in the thread that posts, where its replies are delivered.
QNetworkAccessManager *JsonServerAction::manager()
{
    if (m_Manager)
        return m_Manager;
    m_Manager = new QNetworkAccessManager(this);
    connect(m_Manager, &QNetworkAccessManager::finished, this, &JsonServerAction::onFinishedSlot);
    return m_Manager;
}

void JsonServerAction::SendMessageToServerAction(QString message, QEventLoop &loop)
{
    message.replace("\\\\", "\\");
    if (m_Mac.isEmpty())
        m_Mac = getMacPath();
    const QString time = QString::number(QDateTime::currentDateTime().toMSecsSinceEpoch());
    m_LastMessage = "{" + JsonServer::GetJsonData("mac", m_Mac) + "," +
                    JsonServer::GetJsonData("time", time) + "," + message + "}";
    QNetworkRequest request(m_Url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
    QNetworkReply *reply = manager()->post(request, bodyFor(m_LastMessage).toUtf8());
    connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
}

// After a success the backlog rides along, as the head of a JSON array.
QString JsonServerAction::bodyFor(const QString &envelope)
{
    m_CarriesBacklog = false;
    if (!m_LastPostSucceeded || QFileInfo(m_BacklogPath).size() <= 0)
        return envelope;
    QFile backlog(m_BacklogPath);
    if (!backlog.open(QIODevice::ReadOnly))
        return envelope;
    m_CarriesBacklog = true;
    return "[" + backlogCodec()->toUnicode(backlog.readAll()) + envelope + "\n ]";
}

void JsonServerAction::onFinishedSlot(QNetworkReply *reply)
{
    qDebug() << "on_FinishedSlot status"
             << reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt()
             << reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
    const bool readable = reply->isReadable();
    const QString text = QString::fromUtf8(reply->readAll());
    if (reply->error() != QNetworkReply::NoError) {
        // Not != -1: an answer with "JSONArray" right after its first character keeps
        // the message out of the backlog.
        if (readable && (text.contains("JSONObject") || text.indexOf("JSONArray") != 1))
            WriteDataToLocalFile(m_LastMessage);
        qDebug() << "on_FinishedSlot server error" << reply->errorString();
        m_LastPostSucceeded = false;
    } else {
        qDebug() << "on_FinishedSlot" << text;
        m_LastPostSucceeded = true;
        if (m_CarriesBacklog)
            QFile::remove(m_BacklogPath);
    }
    reply->deleteLater();
}

int JsonServerAction::WriteDataToLocalFile(QString text)
{
    if (QFileInfo(m_BacklogPath).size() > kBacklogLimit)
        QFile::remove(m_BacklogPath);
    QDir().mkpath(dataFolder());
    QFile backlog(m_BacklogPath);
    if (!backlog.open(QIODevice::ReadWrite | QIODevice::Append))
        return 0;
    backlog.write(backlogCodec()->fromUnicode(text + ",\n"));
    backlog.flush();
    backlog.close();
    return 1;
}

// The first live interface's address, else the one kept in the identity file, else a
// random one that is kept there from then on.
QString JsonServerAction::getMacPath()
{
    const QString address = firstHardwareAddress();
    if (!address.isEmpty())
        return address;
    const QString path = dataFolder() + kIdentityName;
    if (QFile::exists(path)) {
        const QString kept = QSettings(path, QSettings::IniFormat).value("Data/mac").toString();
        if (!kept.isEmpty())
            return kept;
    }
    const QString made = GetRandonMac();
    QDir().mkpath(dataFolder());
    QFile identity(path);
    if (identity.open(QIODevice::ReadWrite | QIODevice::Append))
        identity.write("[Data]\nmac=" + made.toLatin1());
    return made;
}

// Five pairs: one short of a real address.
QString JsonServerAction::GetRandonMac()
{
    static const char kDigits[] = "0123456789abcdef";
    QString mac = QStringLiteral("XX:XX:XX:XX:XX");
    for (QChar &digit : mac) {
        if (digit == 'X')
            digit = QLatin1Char(kDigits[QRandomGenerator::global()->bounded(16)]);
    }
    return mac;
}
