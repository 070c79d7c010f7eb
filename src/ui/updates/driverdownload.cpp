#include "driverdownload.h"

#include "download.h"
#include "languagetexts.h"
#include "ui_driverdownload.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDesktopServices>
#include <QUrl>

namespace
{
constexpr int kAskPage = 0;
constexpr int kProgressPage = 1;
} // namespace

DriverDownLoad::DriverDownLoad(QWidget *parent)
    : ScriboraDialog(parent), ui(new Ui::DriverDownLoad), m_Download(new Download(this))
{
    ui->setupUi(this);
    SetQGraphicsDropShadowEffect(ui->main_frame);
    ui->tabWidget->setCurrentIndex(kAskPage);
    connect(m_Download, &Download::downloadFinished, this, &DriverDownLoad::ondownloadFinished);
    connect(m_Download, &Download::updateUIProgress, this, &DriverDownLoad::onupdateUIProgress);
    InitLanguageUI();
    ui->DriverDownPrograss->setValue(0);
}

DriverDownLoad::~DriverDownLoad()
{
    delete ui;
}

QString DriverDownLoad::FileNameOf(const QString &address)
{
    return address.section('/', -1);
}

void DriverDownLoad::InitLanguageUI()
{
    setLanguageText(ui->DriverDownLTip1, "DriverDownLoad.Tips1");
    setLanguageText(ui->CancelDLButton, "DriverDownLoad.CancelDLButton");
    setLanguageText(ui->BeginDlButton, "DriverDownLoad.BeginDlButton");
    setLanguageText(ui->DownLoadCloseBtn, "Common.close");
    setLanguageText(ui->DownLoadLabel, "DriverDownLoad.Tips2");
}

void DriverDownLoad::StartUpdate()
{
    m_Download->setFileName(FileNameOf(m_DownloadUrl));
    m_Download->startDownload(QUrl(m_DownloadUrl));
}

// The installer takes over from here, so the driver makes way for it.
void DriverDownLoad::ondownloadFinished(const QString &path)
{
    const bool opened = !path.isEmpty() && QDesktopServices::openUrl(QUrl::fromLocalFile(path));
    close();
    if (opened)
        QCoreApplication::exit(0);
}

void DriverDownLoad::onupdateUIProgress(const int &percent, const QString &text)
{
    qDebug() << "onupdateUIProgress" << text;
    ui->DriverDownPrograss->setValue(percent);
}

void DriverDownLoad::on_MiniButton_clicked()
{
    showMinimized();
}

void DriverDownLoad::on_CloseButton_clicked()
{
    close();
}

void DriverDownLoad::on_CancelDLButton_clicked()
{
    on_CloseButton_clicked();
}

void DriverDownLoad::on_BeginDlButton_clicked()
{
    ui->tabWidget->setCurrentIndex(kProgressPage);
    StartUpdate();
}

void DriverDownLoad::on_DownLoadCloseBtn_clicked()
{
    close();
}
