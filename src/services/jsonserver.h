#pragma once

#include <QObject>
#include <QString>

class JsonServerAction;
class QSettings;
class QThread;

// The front of the usage-data channel. The window holds a null pointer to it and nothing
// makes one, so the channel stays dormant: no thread, no timer, no connection.
class JsonServer : public QObject
{
    Q_OBJECT
public:
    explicit JsonServer(QObject *parent = nullptr);
    ~JsonServer() override;

    void setDriverLanguage(QString language);
    // Left empty: nothing is handed to the worker. Virtual so that a test can watch
    // what the window composes.
    virtual void SendMessageToServer(QString message);

    // JSON is built by concatenation, with no escaping of any kind.
    static QString GetJsonData(QString key, QString value);
    static QString GetJsonDataSon(QString key, QString value);

    bool BCollectDataVersion() const { return m_CollectVersion; }
    bool BCollectDataToServer() const { return m_CollectNow; }
    void setCollectDataToServerOption(bool on);

private:
    void startWorker();
    void stopWorker();

    JsonServerAction *m_Action = nullptr;
    QThread *m_Thread = nullptr;
    QSettings *m_Settings = nullptr;
    bool m_CollectNow = false;
    bool m_CollectVersion = false;
    QString m_Language;
};

// The "System" text of the usage events and of the feedback address.
QString usageSystemText();
