#pragma once

#include "scriboradialog.h"

#include <QString>

class QModelIndex;

namespace Ui
{
class DialogEnumProcess;
}

// Asks for the program of a new application profile, typed or browsed to. The list of running
// programs stays empty: they are not enumerated on this system.
class DialogEnumProcess : public ScriboraDialog
{
    Q_OBJECT
public:
    explicit DialogEnumProcess(QWidget *parent = nullptr);
    ~DialogEnumProcess() override;

    QString GetProcessPath() const;
    void GetRunningProcess();

private slots:
    void on_listView_clicked(const QModelIndex &index);
    void on_pushButton_scan_clicked();
    void on_pushButton_ok_clicked();
    void on_CloseButton_clicked();

private:
    void InitLanguageUI();

    Ui::DialogEnumProcess *ui;
};
