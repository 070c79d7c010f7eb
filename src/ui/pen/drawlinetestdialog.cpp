#include "drawlinetestdialog.h"

#include "languagetexts.h"
#include "ui_drawlinetestdialog.h"

DrawLineTestDialog::DrawLineTestDialog(QWidget *parent)
    : ScriboraDialog(parent), ui(new Ui::DrawLineTestDialog)
{
    ui->setupUi(this);
    SetQGraphicsDropShadowEffect(ui->main_frame);
    InitLanguageUI();
}

DrawLineTestDialog::~DrawLineTestDialog()
{
    delete ui;
}

void DrawLineTestDialog::InitLanguageUI()
{
    setLanguageText(ui->label_title, "Pen.TestPressure");
    setLanguageText(ui->label_tips, "Pen.TestPressure.Tips");
    setLanguageText(ui->pushButton_clear, "Common.clear");
}

void DrawLineTestDialog::PenEvent(int status, double x, double y, int pressure)
{
    ui->widget_draw->PenEvent(status, x, y, pressure);
}

void DrawLineTestDialog::on_CloseButton_clicked()
{
    reject();
}

void DrawLineTestDialog::on_pushButton_clear_clicked()
{
    ui->widget_draw->clear();
}
