// The pen page: the pressure curve and its level, mouse mode, the pen's buttons, which pen of
// the device is edited, and the pictures of the model and its pens.
#include "mainwindow.h"

#include "ctablet.h"
#include "customkeyfunction.h"
#include "digitalpennames.h"
#include "hotkeywin.h"
#include "jsonserver.h"
#include "languagetexts.h"
#include "penbuttonslot.h"
#include "qpressadjustwedget.h"
#include "selectpenmenulist.h"
#include "textfield.h"
#include "ui_mainwindow.h"
#include "wheelslot.h"

#include <QDebug>
#include <QPixmap>

#include <cmath>

namespace
{
// The pen whose barrel carries a roller.
constexpr int kRollerPen = 3;
constexpr int kDefaultSpeed = 5;

const SPresslvPoints kLinearCurve = {0, 0.5f, 0.5f, 1};

QString penButtonEventName(int button)
{
    return QStringLiteral("comboBoxPbtn%1Activated").arg(button);
}
} // namespace

void MainWindow::InitPenUI()
{
    m_PenButtons = {PenButtonSlot(ui->comboBox_pbtn0), PenButtonSlot(ui->comboBox_pbtn1),
                    PenButtonSlot(ui->comboBox_pbtn2)};
    connect(ui->widget_pressAdjust, &QPressAdjustWedget::PressSensitivityChange, this,
            &MainWindow::on_PressSensitivityChange);
    connect(ui->pushButton_pen, &QPushButton::clicked, this, &MainWindow::onResetPenDefaultSetting);
    m_PenMenu = new SelectPenMenuList(this);
    connect(m_PenMenu, &SelectPenMenuList::MenuSelected, this,
            &MainWindow::onPenMenuSelectedAction);
    connect(m_PenMenu, &SelectPenMenuList::DeletePenSelected, this,
            &MainWindow::onPenMenuDeletePenSelectedAction);
    ui->pushButton_TestPressure->hide();
    ui->checkBox_windowsInk->hide();
    ui->groupBox_penRing->hide();
}

// The page is made of plain controls of the form; the curve editor writes its own texts.
void MainWindow::InitPenLanguageUI()
{
    ui->groupBox_pressure->setTitle(languageText("Pen.Sensitivity", "Pressure Sensitivity"));
    setLanguageText(ui->label_pressSoft, "Pen.Sensitivity.Soft");
    setLanguageText(ui->label_pressHard, "Pen.Sensitivity.Hardness");
    ui->label_pressCaption->setText(languageText("Pen.Sensitivity.Press", "Current Pressure") +
                                    ":");
    ui->groupBox_penbtn->setTitle(languageText("Pen.Buttons", "Pen Buttons"));
    setLanguageText(ui->label_pbtn1, "Pen.Button1");
    setLanguageText(ui->label_pbtn2, "Pen.Button2");
    setLanguageText(ui->label_pbtn0, "Pen.LabelErase");
    ui->groupBox_mouseMode->setTitle(languageText("Pen.Mode", "Mode"));
    setLanguageText(ui->checkBox_mouseMode, "Pen.MouseMode");
    setLanguageText(ui->checkBox_windowsInk, "Pen.WindowsInk");
    setLanguageText(ui->label_mspeedSlow, "Pen.MouseMode.Slow");
    setLanguageText(ui->label_mspeedFast, "Pen.MouseMode.Fast");
    setLanguageText(ui->label_mspeedStandard, "Pen.MouseMode.Standard");
    setLanguageText(ui->pushButton_penRing, "Pen.Ring.Title");
    setLanguageText(ui->pushButton_TestPressure, "Pen.TestPressure");
    setLanguageText(ui->pushButton_pen, "Common.item1");
    setLanguageText(ui->pushButton_ring, "Common.item1");
    setLanguageText(ui->radioButton_m_touch, "TR.Touch.Mode.1");
    setLanguageText(ui->radioButton_m_wheel, "TR.Touch.Mode.2");
    setLanguageText(ui->label_ringFunctions, "TR.Functions");
    setLanguageText(ui->BrightnessCheckBox, "TR.Light");
    setLanguageText(ui->LightCheckBox, "TR.Light");
    ui->groupBox_brightness->setTitle(languageText("TR.Light", "Light"));
}

// The pen of the record that the page edits; none while the device has not chosen one.
stPenConfig *MainWindow::editedPen() const
{
    _stAppConfigNode *record = editedRecord();
    const int pen = editedPenIndex();
    if (!record || pen < 0 || pen >= kPenCount)
        return nullptr;
    return &record->Pen[pen];
}

int MainWindow::editedPenIndex() const
{
    return m_CurrentTablet ? m_CurrentTablet->m_TabletXMLData->DeviceCurPenID : -1;
}

void MainWindow::on_PressSensitivityChange(SPresslvPoints points)
{
    stPenConfig *pen = editedPen();
    if (!pen)
        return;
    const QSignalBlocker blocker(ui->horizontalSlider_pressLv);
    ui->horizontalSlider_pressLv->setValue(DidPressurePointsConvertToIntValue(points));
    storeCurve(*pen, points);
    qDebug() << "on_PressSensitivityChange" << points.P0 << points.P1X << points.P1Y << points.P2;
    sendCurveEvent("PressSensitivityChange", points);
}

void MainWindow::on_horizontalSlider_pressLv_valueChanged(int level)
{
    stPenConfig *pen = editedPen();
    if (!pen)
        return;
    qDebug() << "on_horizontalSlider_pressLv_valueChanged" << level;
    ui->widget_pressAdjust->SetPressSensitivityLv(static_cast<short>(level));
    const SPresslvPoints points = ui->widget_pressAdjust->GetPoints();
    storeCurve(*pen, points);
    sendCurveEvent("SliderPressLvValueChanged", points);
}

void MainWindow::storeCurve(stPenConfig &pen, const SPresslvPoints &points)
{
    pen.P0 = points.P0;
    pen.P1X = points.P1X;
    pen.P1Y = points.P1Y;
    pen.P2 = points.P2;
}

void MainWindow::sendCurveEvent(const char *name, const SPresslvPoints &points)
{
    sendUsage([&] {
        const QStringList fields = {
            JsonServer::GetJsonData("P2", QString::number(points.P2)),
            JsonServer::GetJsonData("P1Y", QString::number(points.P1Y)),
            JsonServer::GetJsonData("P1X", QString::number(points.P1X)),
            JsonServer::GetJsonData("P0", QString::number(points.P0)),
            JsonServer::GetJsonData("SPresslvPoints",
                                    QString::number(DidPressurePointsConvertToIntValue(points)))};
        return JsonServer::GetJsonDataSon(name, fields.join(',')) + "," +
               JsonServer::GetJsonData("tablet", currentTabletName());
    });
}

void MainWindow::on_checkBox_mouseMode_clicked()
{
    stPenConfig *pen = editedPen();
    if (!pen)
        return;
    const bool checked = ui->checkBox_mouseMode->isChecked();
    pen->bRelativeCoords = checked;
    enableSpeedSlider(checked);
    if (checked) {
        ui->checkBox_windowsInk->setChecked(false);
        pen->bTablePC = 0;
    }
    sendUsageEvent("checkBoxMousemodeClicked", checked ? "1" : "0", true);
}

void MainWindow::on_checkBox_windowsInk_clicked()
{
    stPenConfig *pen = editedPen();
    if (!pen)
        return;
    const bool checked = ui->checkBox_windowsInk->isChecked();
    pen->bTablePC = checked;
    if (!checked)
        return;
    ui->checkBox_mouseMode->setChecked(false);
    enableSpeedSlider(false);
}

void MainWindow::enableSpeedSlider(bool enabled)
{
    for (QWidget *widget : {static_cast<QWidget *>(ui->horizontalSlider_mspeed),
                            static_cast<QWidget *>(ui->label_mspeedSlow),
                            static_cast<QWidget *>(ui->label_mspeedFast),
                            static_cast<QWidget *>(ui->label_mspeedStandard)})
        widget->setEnabled(enabled);
}

void MainWindow::on_horizontalSlider_mspeed_valueChanged(int value)
{
    stPenConfig *pen = editedPen();
    if (!pen)
        return;
    pen->Speed = static_cast<int16_t>(value);
    sendUsageEvent("SliderMspeedValueChanged", QString::number(value), true);
}

void MainWindow::on_comboBox_pbtn0_activated(int index)
{
    activatePenButton(0, index);
}

void MainWindow::on_comboBox_pbtn1_activated(int index)
{
    activatePenButton(1, index);
}

void MainWindow::on_comboBox_pbtn2_activated(int index)
{
    activatePenButton(2, index);
}

// A custom function is stored only when the editor accepts it; cancel puts the box back.
void MainWindow::activatePenButton(int button, int index)
{
    stPenConfig *pen = editedPen();
    if (!pen || index < 0)
        return;
    stPenBtn &target = pen->PenBtn[button];
    const bool changed = m_PenButtons[button].Activate(
        target, [this, button](QString &func) { return editPenButtonFunction(button == 0, func); });
    if (!changed)
        return;
    qDebug() << "Function  on_comboBox_pbtn1_activated:" << fieldText(target.func);
    sendUsage([&] {
        const QStringList fields = {
            JsonServer::GetJsonData("custom", fieldText(target.func)),
            JsonServer::GetJsonData("id", QString::number(target.id)),
            JsonServer::GetJsonData("curapp", fieldText(editedRecord()->path))};
        return JsonServer::GetJsonDataSon(penButtonEventName(button).toLatin1().constData(),
                                          fields.join(',')) +
               "," + JsonServer::GetJsonData("tablet", currentTabletName());
    });
}

bool MainWindow::editPenButtonFunction(bool eraserEnd, QString &func)
{
    const stTablet_XMLData &settings = *m_CurrentTablet->m_TabletXMLData;
    HotKeyWin editor(this);
    editor.LoadForRingNumber(settings.DeviceRingNum, settings.DeviceTrackPad, editedPenIndex());
    if (!func.isEmpty())
        editor.LoadCustomQString(func);
    if (eraserEnd)
        editor.InitUIForEraser(true);
    if (editor.exec() != QDialog::Accepted)
        return false;
    editor.GetData(func);
    return true;
}

void MainWindow::UpdataPenSelect(int index)
{
    _stAppConfigNode *record = editedRecord();
    if (!record || index < 0 || index >= kPenCount)
        return;
    const stPenConfig &pen = record->Pen[index];
    ui->pushButton_selectPen->setText(QString::fromUtf8(tagDigitalPenName[index]));
    for (int button = 0; button < kPenBtnCount; ++button)
        m_PenButtons[button].Show(pen.PenBtn[button]);
    ui->widget_pressAdjust->SetPoints({pen.P0, pen.P1X, pen.P1Y, pen.P2});
    const QSignalBlocker levelBlocker(ui->horizontalSlider_pressLv);
    ui->horizontalSlider_pressLv->setValue(
        DidPressurePointsConvertToIntValue({pen.P0, pen.P1X, pen.P1Y, pen.P2}));
    ui->checkBox_mouseMode->setChecked(pen.bRelativeCoords);
    ui->checkBox_windowsInk->setChecked(pen.bTablePC);
    enableSpeedSlider(pen.bRelativeCoords);
    const QSignalBlocker speedBlocker(ui->horizontalSlider_mspeed);
    ui->horizontalSlider_mspeed->setValue(pen.Speed);
    ui->groupBox_penRing->setVisible(index == kRollerPen);
    if (index == kRollerPen)
        UpdatePen3RingUIContext();
}

// Every page that shows a part of the edited record, after the record changed under it.
void MainWindow::UpdtePenHotkeyWheelUI()
{
    if (!m_CurrentTablet)
        return;
    UpdataPenSelect(editedPenIndex());
    InitKeyUI(m_CurrentTablet->m_TabletXMLData->DeviceKeyNum);
    showRingFunctions();
}

void MainWindow::onResetPenDefaultSetting()
{
    stPenConfig *pen = editedPen();
    if (!pen)
        return;
    for (stPenBtn &button : pen->PenBtn)
        button.id = PenButtonSlot::kActionEntry;
    storeCurve(*pen, kLinearCurve);
    pen->Speed = kDefaultSpeed;
    pen->bTablePC = 1;
    pen->bRelativeCoords = 0;
    if (editedPenIndex() == kRollerPen)
        resetRing(m_CurrentTablet->m_TabletXMLData->DeviceRingNum);
    UpdataPenSelect(editedPenIndex());
    sendUsageEvent("ResetPenSetting", "1", true);
}

// The menu lists the pens that have been on the tablet.
void MainWindow::on_pushButton_selectPen_clicked()
{
    if (!m_CurrentTablet)
        return;
    m_PenMenu->CreateMenuList();
    m_PenMenu->SetPenShowInMenu(m_CurrentTablet->m_TabletXMLData->PenMoveInTablet);
    m_PenMenu->popup(
        ui->pushButton_selectPen->mapToGlobal(QPoint(0, ui->pushButton_selectPen->height())));
}

void MainWindow::onPenMenuSelectedAction(QString name, int index)
{
    if (!m_CurrentTablet || index < 0 || index >= kPenCount)
        return;
    qDebug() << "onPenMenuSelectedAction" << name << index;
    m_CurrentTablet->m_TabletXMLData->DeviceCurPenID = static_cast<int16_t>(index);
    showPenPicture(index + 1);
    UpdataPenSelect(index);
}

// A pen taken off the list comes back when it is next seen on the tablet.
void MainWindow::onPenMenuDeletePenSelectedAction(QString name, int index)
{
    if (!m_CurrentTablet || index < 0 || index >= kPenCount)
        return;
    qDebug() << "onPenMenuDeletePenSelectedAction" << name << index;
    stTablet_XMLData &settings = *m_CurrentTablet->m_TabletXMLData;
    settings.PenMoveInTablet = static_cast<int16_t>(settings.PenMoveInTablet & ~(1 << index));
    if (settings.DeviceCurPenID != index)
        return;
    for (int pen = 0; pen < kPenCount; ++pen) {
        if (settings.PenMoveInTablet & (1 << pen)) {
            onPenMenuSelectedAction(QString::fromUtf8(tagDigitalPenName[pen]), pen);
            return;
        }
    }
}

// Pen, key strip and wheel as the model looks in its orientation.
void MainWindow::showModelPictures(const CTablet *tablet)
{
    const stTablet_XMLData &settings = *tablet->m_TabletXMLData;
    const QString model = QString::fromUtf8(tablet->m_DeviceAttributes.ModelName);
    if (!settings.SupportGroupKeys && settings.DevicePenNum == 1)
        showPenPicture(settings.DevicePenType);
    else
        UpdatePenPicture();
    showImage(QPixmap(QString(":/image/tablet/%1_K%2.png").arg(model).arg(settings.Orientation)),
              ui->label_keyimage);
    if (settings.DeviceRingNum >= 1)
        showImage(QPixmap(QString(":/image/tablet/%1_R.png").arg(model)), ui->label_ringimage);
}

void MainWindow::showPenPage(const CTablet *tablet)
{
    const stTablet_XMLData &settings = *tablet->m_TabletXMLData;
    ui->pushButton_selectPen->setEnabled(settings.DevicePenNum > 1);
    if (!settings.SupportGroupKeys)
        UpdataPenSelect(settings.DeviceCurPenID);
}

void MainWindow::showPenPicture(int number)
{
    showImage(QPixmap(QString(":/image/Res/pen%1.png").arg(number)), ui->label_penbg);
}

// With several pens the page shows the one last seen on the tablet, by its number.
void MainWindow::UpdatePenPicture()
{
    if (!m_CurrentTablet)
        return;
    const stTablet_XMLData &settings = *m_CurrentTablet->m_TabletXMLData;
    if (settings.SupportGroupKeys || settings.DevicePenNum == 1 || settings.DeviceCurPenID < 0)
        return;
    showPenPicture(settings.DeviceCurPenID + 1);
}

int MainWindow::DidPressurePointsConvertToIntValue(SPresslvPoints points)
{
    struct Threshold {
        double above;
        int level;
    };
    static constexpr Threshold kThresholds[] = {{10.28, -3}, {3.0, -2}, {1.39, -1},
                                                {0.69, 0},   {0.33, 1}, {0.2, 2}};
    const float steepness = (1 - points.P1Y) / std::fabs(points.P1X - points.P0);
    for (const Threshold &threshold : kThresholds) {
        if (steepness > threshold.above)
            return threshold.level;
    }
    return 3;
}
