#pragma once

#include "ctablet.h"

#include <QPointer>
#include <QString>
#include <QWidget>

namespace Ui
{
class SettingForm;
}

// The pop-up with the global switches and the entries to import, export and diagnosis.
class SettingForm : public QWidget
{
    Q_OBJECT
public:
    explicit SettingForm(QWidget *parent = nullptr);
    ~SettingForm() override;

    void InitLanguageUI();
    void SetCheckButtonStatus(CTablet *tablet, QString language, QString versionText);
    void SetDataCollectVisable(bool visible, bool checked);
    void SetDriverDownBtnVisabel(bool visible);

    QString FeedbackUrl() const;

    CTablet *tablet() const { return m_Tablet; }
    const QString &language() const { return m_Language; }
    const QString &driverVersion() const { return m_DriverVersion; }

signals:
    void CloseSettingForm();
    void onImportConfiguebtnClicked();
    void onOutportConfiguebtnClicked();
    void onDiagnosisbtnClicked();
    void onDriverDownbtnClicked();
    void DisablePress(bool disabled);
    void DisableSlope(bool disabled);
    void DisableHotkey(bool disabled);
    void DisableTipMsg(bool disabled);
    void CollectDataChecked(bool checked);

private slots:
    // Bound by object name; clicked, not toggled, so refreshing the boxes sends nothing.
    void on_checkBox_pressure_clicked(bool checked);
    void on_checkBox_tips_clicked(bool checked);
    void on_checkBox_shortcuts_clicked(bool checked);
    void on_checkBox_slope_clicked(bool checked);
    void on_Setting_inputbtn_clicked();
    void on_Setting_outputbtn_clicked();
    void on_Setting_Diagnosisbtn_clicked();
    void on_Setting_DriverDown_clicked();
    void on_Setting_Feedback_clicked();
    void on_HotKeyWincheckBox_1_stateChanged(int state);

protected:
    bool event(QEvent *event) override;

private:
    Ui::SettingForm *ui;
    // An unplugged tablet may be gone by the time the feedback button is pressed.
    QPointer<CTablet> m_Tablet;
    QString m_Language;
    QString m_DriverVersion;
};
