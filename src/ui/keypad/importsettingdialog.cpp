#include "importsettingdialog.h"

#include "ctablet.h"
#include "devicecommands.h"
#include "languagetexts.h"
#include "ui_importsettingdialog.h"

#include <QCoreApplication>
#include <QPixmap>

#include <algorithm>
#include <cstring>

namespace
{
// The device takes a file in blocks of this size, the last one padded with zeros.
constexpr int kBlockSize = 29;
constexpr int kBlockBuffer = 32;
constexpr int kEndLength = 4;
constexpr int kProgress = 0;
constexpr int kSuccess = 1;
constexpr int kFailure = 2;
constexpr int kOtherMark = 9;
constexpr int kNoFile = 10;
} // namespace

ImportSettingDialog::ImportSettingDialog(QWidget *parent)
    : ScriboraDialog(parent), ui(new Ui::ImportSettingDialog)
{
    ui->setupUi(this);
    SetQGraphicsDropShadowEffect(ui->main_frame);
    connect(ui->ImportProgressBar, &QProgressBar::valueChanged, this,
            &ImportSettingDialog::OnValueChanged);
    InitLanguageUI();
    ImportResult(kProgress, 0);
}

ImportSettingDialog::~ImportSettingDialog()
{
    delete ui;
}

void ImportSettingDialog::InitLanguageUI()
{
    setLanguageText(ui->TipLabel, "Import.tip");
    ui->ImportRetryButton->setText(languageText("Common.retry", "Retry"));
    ui->ImportCloseButton->setText(languageText("Common.close", "Close"));
}

void ImportSettingDialog::setCurrentTablet(CTablet *tablet, _stAppConfigNode *node, bool read)
{
    m_Tablet = tablet;
    m_GoOn = true;
    connect(tablet, &CTablet::PostDeviceOperatorMsg, this,
            &ImportSettingDialog::ImportSaveProcessBar, Qt::UniqueConnection);
    ui->label_title->setText(languageText(read ? "Import.importBtn" : "Import.saveBtn",
                                          read ? "Read from Device" : "Save to Device"));
    if (read)
        tablet->SentReadFileCmd(kReadFileHeader, 0);
    else
        tablet->SaveConfigToDevice(QString(), node);
}

void ImportSettingDialog::ImportSaveProcessBar(int op, int value)
{
    switch (op) {
    case kOpWriteAccepted:
        if (value == 0) {
            ImportResult(kProgress, 0);
            SendWriteConfigToDevice();
        }
        break;
    case kOpWriteConfirmed:
    case kOpReadDone:
        ImportResult(kSuccess, 0);
        break;
    case kOpWriteRefused:
    case kOpReadFailed:
        ImportResult(kFailure, 0);
        break;
    case kOpReadHeader:
        if (value != 0 && m_Tablet)
            m_Tablet->SentReadFileCmd(kReadFileData, 0);
        break;
    case kOpReadProgress:
        ImportResult(kProgress, value);
        break;
    case kOpReadOtherMark:
        ImportResult(kFailure, kOtherMark);
        break;
    case kOpReadNoFile:
        ImportResult(kFailure, kNoFile);
        break;
    default:
        break;
    }
}

// The blocks go out on this thread; between them the event loop runs, so that the device's
// answer can end the loop.
void ImportSettingDialog::SendWriteConfigToDevice()
{
    if (!m_Tablet)
        return;
    const QByteArray file = m_Tablet->m_OutgoingFile;
    const int blocks = file.size() / kBlockSize;
    for (int n = 0; n <= blocks && m_GoOn && m_Tablet; ++n) {
        unsigned char buffer[kBlockBuffer] = {};
        const int offset = n * kBlockSize;
        const int length = std::min(kBlockSize, static_cast<int>(file.size()) - offset);
        if (length > 0)
            std::memcpy(buffer, file.constData() + offset, static_cast<size_t>(length));
        m_Tablet->SentSaveFileCmd(kSaveFileChunk, buffer, kBlockSize);
        // A file of less than one block is all sent at once.
        ImportResult(kProgress, blocks > 0 ? n * 100 / blocks : 100);
        QCoreApplication::processEvents();
    }
    if (m_Tablet)
        m_Tablet->SentSaveFileCmd(kSaveFileEnd, nullptr, kEndLength);
}

void ImportSettingDialog::ImportResult(int flaged, int processBar)
{
    ui->ImportRetryButton->hide();
    ui->ImportCloseButton->hide();
    ui->PercentLabel->hide();
    ui->ResultLabel->hide();
    ui->ImageLabel->show();
    m_Succeeded = flaged == kSuccess;
    const bool progress = flaged == kProgress;
    ui->ImportProgressBar->setVisible(progress);
    ui->TipLabel->setVisible(progress);
    ui->ImageLabel->setVisible(!progress);
    if (progress) {
        ui->PercentLabel->show();
        ui->ImportProgressBar->setValue(processBar);
        return;
    }
    m_GoOn = false;
    ui->ResultLabel->show();
    if (flaged == kSuccess) {
        ShowImageLabel(":/image/Res/ImportSuccess.png");
        ui->ResultLabel->setText(languageText("Import.success", "Success"));
        showButtons(false);
        return;
    }
    ShowImageLabel(":/image/Res/ImportFail.png");
    ui->ResultLabel->setText(failureText(processBar));
    showButtons(true);
}

QString ImportSettingDialog::failureText(int reason)
{
    if (reason == kOtherMark)
        return languageText(
            "Import.plaf",
            "The file format in the device is incompatible with the current system.");
    if (reason == kNoFile)
        return languageText("Import.NotDevice", "There is no profile in the current device.");
    return languageText("DiagnosisFunction.fail", "Fail");
}

// Success leaves the close button alone in the middle; a failure offers a retry beside it.
void ImportSettingDialog::showButtons(bool retry)
{
    const int width = ui->ImportCloseButton->width();
    const int centre = (ui->main_frame->width() - width) / 2;
    ui->ImportRetryButton->setVisible(retry);
    ui->ImportCloseButton->show();
    ui->ImportCloseButton->move(retry ? centre + width / 2 + 8 : centre,
                                ui->ImportCloseButton->y());
    ui->ImportRetryButton->move(centre - width / 2 - 8, ui->ImportRetryButton->y());
}

void ImportSettingDialog::ShowImageLabel(QString picture)
{
    const QPixmap pixmap(picture);
    if (!pixmap.isNull())
        ui->ImageLabel->setPixmap(
            pixmap.scaled(ui->ImageLabel->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

void ImportSettingDialog::OnValueChanged(int value)
{
    ui->PercentLabel->setText(QString::number(value) + "%");
}

// A retry reads, whichever way the failed transfer went.
void ImportSettingDialog::on_ImportRetryButton_clicked()
{
    if (!m_Tablet)
        return;
    m_GoOn = true;
    ImportResult(kProgress, 0);
    m_Tablet->SentReadFileCmd(kReadFileHeader, 0);
}

void ImportSettingDialog::on_ImportCloseButton_clicked()
{
    m_GoOn = false;
    if (m_Succeeded)
        accept();
    else
        reject();
}

void ImportSettingDialog::on_CloseButton_clicked()
{
    on_ImportCloseButton_clicked();
}
