#pragma once

#include "scriboradialog.h"

#include <QString>

namespace Ui
{
class DiagnosisFunction;
}

// The support view: what the driver knows of the device, the live pen and the versions.
// Read-only; the window fills it and closes it on CloseDiagnosisFunction().
class DiagnosisFunction : public ScriboraDialog
{
    Q_OBJECT
public:
    explicit DiagnosisFunction(QWidget *parent = nullptr);
    ~DiagnosisFunction() override;

    void SetLabelVisable();
    void UpdataXYZ(QString x, QString y, QString z);
    void UpdateDeviceInfo(QString name, QString pid, QString icVersion, QString serialNum,
                          bool showSerialNum);
    void UpdateWintableTest(QString text);
    void UpdateDriverinstallTest(bool found);
    void UpSystemVersion(QString text);
    void UpDriverVersion(QString driverVersion, QString xmlVersion);

    // The running system: product, processor architecture and kernel.
    static QString SystemVersionText();

signals:
    void CloseDiagnosisFunction();

private slots:
    void on_pushButton_clicked();

private:
    void InitLanguageUI();
    void showSerialLine(bool visible);

    Ui::DiagnosisFunction *ui;
    QString m_PassText;
    QString m_FailText;
};
