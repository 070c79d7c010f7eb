// Application profiles: the strip of "Other" and up to seven programs, each with a record of
// its own that the pen, key and wheel pages edit. The engine applies the common record.
#include "mainwindow.h"

#include "ctablet.h"
#include "dialogenumprocess.h"
#include "jsonserver.h"
#include "qappitemwidget.h"
#include "textfield.h"
#include "ui_mainwindow.h"

#include <QDebug>
#include <QDialog>
#include <QDir>
#include <QFileInfo>

#include <cstring>

namespace
{
constexpr int kMaxApplications = 8;
// The strip's first button, "Other", edits the common record.
constexpr int kOtherButton = 1;
constexpr char kOtherPath[] = "Other.app";
} // namespace

// A program's record while one is selected on the strip, else the common one. Looked up by
// path each time, so a record that a reload replaced is never used.
_stAppConfigNode *MainWindow::editedRecord() const
{
    stTablet_XMLData *settings = m_CurrentTablet ? m_CurrentTablet->m_TabletXMLData : nullptr;
    if (!settings)
        return nullptr;
    _stAppConfigNode *app =
        m_EditedApp.isEmpty() ? nullptr : m_CurrentTablet->m_AppConfigs.value(m_EditedApp);
    return app ? app : &settings->CommonAPP;
}

// The strip of the device shown, "Other" selected.
void MainWindow::showApplications(const CTablet *tablet)
{
    m_EditedApp.clear();
    ui->widget_app->cleanAppItem();
    for (const QString &path : tablet->m_AppConfigs.keys())
        ui->widget_app->doAddItem(path);
    enableApplicationButtons();
}

void MainWindow::enableApplicationButtons()
{
    const int count = ui->widget_app->getAppCount();
    ui->pushButton_delete->setEnabled(count != 1);
    ui->pushButton_add->setEnabled(count != kMaxApplications);
}

void MainWindow::OnAddApplication()
{
    if (ui->widget_device->count() == 0)
        return;
    DialogEnumProcess dialog(this);
    dialog.move(frameGeometry().topLeft() + QPoint(330, 70));
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QString chosen = dialog.GetProcessPath();
    if (chosen.isEmpty() || ui->widget_device->count() == 0)
        return;
    AddApplication(QDir::toNativeSeparators(QFileInfo(chosen).filePath()));
}

// A new program starts as a copy of the common record as it stands in memory.
bool MainWindow::AddApplication(const QString &path)
{
    // A full strip takes no button and so no record either.
    if (ui->widget_app->getAppCount() >= kMaxApplications || !ui->widget_app->doAddItem(path))
        return false;
    if (m_CurrentTablet) {
        auto *record = new _stAppConfigNode;
        std::memcpy(record, &m_CurrentTablet->m_TabletXMLData->CommonAPP, sizeof *record);
        copyTextField(record->path, path);
        delete m_CurrentTablet->m_AppConfigs.value(path, nullptr);
        m_CurrentTablet->m_AppConfigs.insert(path, record);
    }
    if (ui->widget_app->getAppCount() == kMaxApplications)
        ui->pushButton_add->setEnabled(false);
    sendUsageEvent("OnAddApplication", path);
    return true;
}

void MainWindow::OnDeleteApplication()
{
    QAppItemWidget *strip = ui->widget_app;
    if (strip->getAppCount() >= 2 && strip->getSelectAppPath() != kOtherPath) {
        const QString path = strip->getSelectAppPath();
        qDebug() << "delete path" << path;
        if (m_CurrentTablet) {
            delete m_CurrentTablet->m_AppConfigs.value(path, nullptr);
            m_CurrentTablet->m_AppConfigs.remove(path);
        }
        strip->removeSelectItem();
    }
    if (strip->getAppCount() > kMaxApplications - 2)
        ui->pushButton_add->setEnabled(true);
    if (strip->getAppCount() == 1)
        ui->pushButton_delete->setEnabled(false);
    sendUsageEvent("OnDeleteApplication");
}

void MainWindow::onSelectAppItem(QString path, int index)
{
    qDebug() << "Function  onSelectAppItem:" << path << " ,index" << index;
    if (index == kOtherButton) {
        m_EditedApp.clear();
        UpdateUIByAppChange();
        ui->pushButton_delete->setEnabled(false);
    } else if (m_CurrentTablet && m_CurrentTablet->m_AppConfigs.contains(path)) {
        qDebug() << "path:" << path;
        m_EditedApp = path;
        UpdateUIByAppChange();
        ui->pushButton_delete->setEnabled(true);
    }
    sendUsage([&] {
        return JsonServer::GetJsonDataSon("onSelectAppItem",
                                          JsonServer::GetJsonData("curapp", path));
    });
}

// Every page shows the record now edited.
void MainWindow::UpdateUIByAppChange()
{
    UpdtePenHotkeyWheelUI();
}

// The device went: its programs go with it.
void MainWindow::ClearApplication()
{
    if (m_CurrentTablet)
        m_CurrentTablet->ClearAppConfigs();
    m_EditedApp.clear();
    ui->widget_app->cleanAppItem();
    if (ui->widget_app->getAppCount() == 1)
        ui->pushButton_delete->setEnabled(false);
}
