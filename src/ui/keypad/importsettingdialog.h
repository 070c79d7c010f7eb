#pragma once

#include "scriboradialog.h"

#include <QPointer>

class CTablet;
struct _stAppConfigNode;

namespace Ui
{
class ImportSettingDialog;
}

// One transfer of the remote's stored profile, to the device or from it: its progress, and
// the result with a retry.
class ImportSettingDialog : public ScriboraDialog
{
    Q_OBJECT
public:
    explicit ImportSettingDialog(QWidget *parent = nullptr);
    ~ImportSettingDialog() override;

    // Starts the transfer: a read asks the device for its file, a write offers it `node`.
    void setCurrentTablet(CTablet *tablet, _stAppConfigNode *node, bool read);
    // 0 progress at `processBar` percent, 1 success, 2 failure with the reason's number.
    void ImportResult(int flaged, int processBar);
    void ShowImageLabel(QString picture);

public slots:
    void ImportSaveProcessBar(int op, int value);
    void SendWriteConfigToDevice();
    void OnValueChanged(int value);
    void on_ImportRetryButton_clicked();
    void on_ImportCloseButton_clicked();

private slots:
    void on_CloseButton_clicked();

private:
    void InitLanguageUI();
    void showButtons(bool retry);
    static QString failureText(int reason);

    Ui::ImportSettingDialog *ui;
    QPointer<CTablet> m_Tablet;
    bool m_GoOn = true;
    bool m_Succeeded = false;
};
