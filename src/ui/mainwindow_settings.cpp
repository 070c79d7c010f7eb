// The settings pop-up and the switches it stores in the current profile.
#include "mainwindow.h"

#include "ctablet.h"
#include "jsonserver.h"
#include "settingform.h"
#include "ui_mainwindow.h"

#include <QDebug>

void MainWindow::ShowSettingForm()
{
    const QPoint at = frameGeometry().topLeft() + QPoint(590, 70);
    if (!m_SettingForm)
        createSettingForm();
    m_SettingForm->move(at);
    m_SettingForm->SetCheckButtonStatus(m_CurrentTablet, m_Language, ui->version->text());
    m_SettingForm->show();
    m_SettingForm->activateWindow();
}

// The consent box needs a collecting installation and the Chinese texts; the download
// entry, a red point. While telemetry and updates are dormant, neither shows.
void MainWindow::createSettingForm()
{
    qDebug() << "ShowSettingForm";
    m_SettingForm = new SettingForm(this);
    const bool collects = m_JsonServer && m_JsonServer->BCollectDataVersion();
    m_SettingForm->SetDataCollectVisable(collects && m_Language == "ChineseSimplified",
                                         collects && m_JsonServer->BCollectDataToServer());
    const QVariant redPoint = ui->settingBtn->property("redPoint");
    m_SettingForm->SetDriverDownBtnVisabel(redPoint.toString() == "1" ||
                                           redPoint.toString() == "true");
    connect(m_SettingForm, &SettingForm::DisablePress, this, &MainWindow::onCheckBoxDisablePress);
    connect(m_SettingForm, &SettingForm::DisableSlope, this, &MainWindow::onCheckBoxDisableSlope);
    connect(m_SettingForm, &SettingForm::DisableHotkey, this, &MainWindow::onCheckBoxDisableHotkey);
    connect(m_SettingForm, &SettingForm::DisableTipMsg, this, &MainWindow::onCheckBoxDisableTipMsg);
    connect(m_SettingForm, &SettingForm::CollectDataChecked, this,
            &MainWindow::onChangeCollectDataOption);
    connect(m_SettingForm, &SettingForm::onDriverDownbtnClicked, this,
            &MainWindow::onDriverDownLoadFun);
    connect(m_SettingForm, &SettingForm::onImportConfiguebtnClicked, this,
            &MainWindow::onImportConfigueFile);
    connect(m_SettingForm, &SettingForm::onOutportConfiguebtnClicked, this,
            &MainWindow::onExportConfigueFile);
    connect(m_SettingForm, &SettingForm::onDiagnosisbtnClicked, this, &MainWindow::onDiagnosisFun);
}

void MainWindow::CloseSettingFormDevices()
{
    if (m_SettingForm)
        emit m_SettingForm->CloseSettingForm();
}

void MainWindow::onCheckBoxDisablePress(bool disabled)
{
    storeFlag("CheckBoxDisablePress", &stTablet_XMLData::DisablePressure, disabled);
}

void MainWindow::onCheckBoxDisableSlope(bool disabled)
{
    storeFlag("CheckBoxDisableSlope", &stTablet_XMLData::DisableSlope, disabled);
}

void MainWindow::onCheckBoxDisableHotkey(bool disabled)
{
    storeFlag("CheckBoxDisableHotkey", &stTablet_XMLData::DisableQuickKey, disabled);
}

void MainWindow::onCheckBoxDisableTipMsg(bool disabled)
{
    storeFlag("CheckBoxDisableTipMsg", &stTablet_XMLData::DisableInfo, disabled);
}

void MainWindow::storeFlag(const char *name, int16_t stTablet_XMLData::*flag, bool value)
{
    qDebug() << name << value;
    sendUsageEvent(name, value ? "1" : "0", true);
    if (!m_CurrentTablet || !m_CurrentTablet->m_TabletXMLData)
        return;
    m_CurrentTablet->m_TabletXMLData->*flag = value ? 1 : 0;
}
