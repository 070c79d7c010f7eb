#include "dialogenumprocess.h"

#include "languagetexts.h"
#include "ui_dialogenumprocess.h"

#include <QDebug>
#include <QFileDialog>
#include <QScrollBar>
#include <QStandardItemModel>

DialogEnumProcess::DialogEnumProcess(QWidget *parent)
    : ScriboraDialog(parent), ui(new Ui::DialogEnumProcess)
{
    ui->setupUi(this);
    SetQGraphicsDropShadowEffect(ui->main_frame);
    ui->listView->verticalScrollBar()->setStyleSheet("QScrollBar{width:10px;}");
    InitLanguageUI();
    GetRunningProcess();
}

DialogEnumProcess::~DialogEnumProcess()
{
    delete ui;
}

void DialogEnumProcess::InitLanguageUI()
{
    ui->label_title->setText(languageText("SelectAppSetting", "Select app"));
    setLanguageText(ui->pushButton_scan, "Common.scan");
    setLanguageText(ui->label_path, "SelectAppSetting.item2");
    setLanguageText(ui->pushButton_ok, "Common.ok");
}

QString DialogEnumProcess::GetProcessPath() const
{
    return ui->lineEdit_path->text();
}

void DialogEnumProcess::GetRunningProcess()
{
    // Without a model of its own the view shows Qt's shared empty model, which is not ours.
    QAbstractItemModel *old = ui->listView->model();
    ui->listView->setModel(new QStandardItemModel(ui->listView));
    if (old && old->parent() == ui->listView)
        delete old;
}

void DialogEnumProcess::on_listView_clicked(const QModelIndex &index)
{
    const QString path = index.data().toString();
    qDebug() << "DialogEnumProcess select" << path;
    ui->lineEdit_path->setText(path);
}

void DialogEnumProcess::on_pushButton_scan_clicked()
{
    const QString path =
        QFileDialog::getOpenFileName(this, ui->label_path->text(), "/Applications",
                                     tr("apps(*.app)"), nullptr, QFileDialog::ReadOnly);
    if (!path.isEmpty())
        ui->lineEdit_path->setText(path);
}

void DialogEnumProcess::on_pushButton_ok_clicked()
{
    accept();
}

void DialogEnumProcess::on_CloseButton_clicked()
{
    reject();
}
