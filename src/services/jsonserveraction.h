#pragma once

#include <QMutex>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <atomic>

class QEventLoop;
class QNetworkAccessManager;
class QNetworkReply;
class QSettings;

// The worker of the usage-data channel: posts one message at a time and keeps what could
// not be sent in a backlog file under the home folder, carried along with the next post.
class JsonServerAction : public QObject
{
    Q_OBJECT
public:
    explicit JsonServerAction(bool collect);

    // The option file beside the program: its presence makes an installation collect.
    static QString optionFile();
    // Under the home folder: the backlog and the identity.
    static QString dataFolder();

    void run();
    void Exit();
    void SetCollectOption(bool on);
    void SendMessageToServerAction(QString message, QEventLoop &loop);
    int WriteDataToLocalFile(QString text);
    QString getMacPath();
    static QString GetRandonMac();

public slots:
    void onFinishedSlot(QNetworkReply *reply);

private:
    QNetworkAccessManager *manager();
    QString takeMessage();
    QString bodyFor(const QString &envelope);

    QStringList m_Messages;
    QMutex m_MessagesMutex;
    QPointer<QNetworkAccessManager> m_Manager;
    QSettings *m_Settings = nullptr;
    QString m_Mac;
    QString m_BacklogPath;
    QString m_LastMessage;
    QUrl m_Url;
    bool m_CarriesBacklog = false;
    bool m_LastPostSucceeded = true;
    std::atomic<bool> m_Run;
};
