#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

class QNetworkReply;

// The client of the driver information service: a ping, then the newest driver's record.
// The window holds a null pointer to it and nothing makes one, so nothing is asked.
class UpdateServer : public QObject
{
    Q_OBJECT
public:
    // With `check`, the ping goes out at once.
    explicit UpdateServer(
        bool check, QObject *parent = nullptr,
        const QUrl &service = QUrl(QStringLiteral("https://driver.scribora.com")));

    int CheckUpdateServer(int mode);
    bool IsCheckUpdate() const { return m_CheckUpdate; }
    // The service's driver request has no address yet.
    QString GetDriverURLString(QString serverTime) const;
    QString GetMD5Sign(QString text) const;

signals:
    void GetNewDriver(int code, QString version, QString downloadUrl, QString message);

private slots:
    void on_PingFinished(QNetworkReply *reply);
    void on_GetDriverFinished(QNetworkReply *reply);

private:
    void requestDriver(const QString &serverTime);

    bool m_CheckUpdate = false;
    int m_Mode = 0;
    QUrl m_Service;
};
