#pragma once

#include "scriboradialog.h"

#include <QString>

class Download;

namespace Ui
{
class DriverDownLoad;
}

// Asks before fetching the new driver, shows the download and hands the file to the desktop.
class DriverDownLoad : public ScriboraDialog
{
    Q_OBJECT
public:
    explicit DriverDownLoad(QWidget *parent = nullptr);
    ~DriverDownLoad() override;

    void SetDownloadUrl(const QString &url) { m_DownloadUrl = url; }
    // The last "/"-separated piece of the address.
    static QString FileNameOf(const QString &address);

public slots:
    void StartUpdate();
    void ondownloadFinished(const QString &path);
    void onupdateUIProgress(const int &percent, const QString &text);

private slots:
    void on_MiniButton_clicked();
    void on_CloseButton_clicked();
    void on_CancelDLButton_clicked();
    void on_BeginDlButton_clicked();
    void on_DownLoadCloseBtn_clicked();

private:
    void InitLanguageUI();

    Ui::DriverDownLoad *ui;
    Download *m_Download;
    QString m_DownloadUrl;
};
