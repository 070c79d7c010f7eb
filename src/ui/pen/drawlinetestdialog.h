#pragma once

#include "scriboradialog.h"

namespace Ui
{
class DrawLineTestDialog;
}

// The pressure test: the pen's strokes in a field, wider as it presses harder.
class DrawLineTestDialog : public ScriboraDialog
{
    Q_OBJECT
public:
    explicit DrawLineTestDialog(QWidget *parent = nullptr);
    ~DrawLineTestDialog() override;

    // Passed on to the field; see CPenDrawWidget::PenEvent.
    void PenEvent(int status, double x, double y, int pressure);

private slots:
    void on_CloseButton_clicked();
    void on_pushButton_clear_clicked();

private:
    void InitLanguageUI();

    Ui::DrawLineTestDialog *ui;
};
