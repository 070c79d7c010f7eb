#include "displaysetting.h"

#include "devicecommands.h"
#include "languagetexts.h"
#include "ui_displaysetting.h"
#include "zkdisplaycontent.h"

#include <QButtonGroup>
#include <QDebug>
#include <QSignalBlocker>
#include <QStyledItemDelegate>

#include <iterator>

namespace
{

// Ids of the colour buttons, in the order of the form.
constexpr int k5000K = 0;
constexpr int k6500K = 1;
constexpr int k7500K = 2;
constexpr int k9300K = 3;
constexpr int kUser = 4;
constexpr int kAdobeRGB = 5;
constexpr int kSRGB = 6;
constexpr int kDCIP3 = 7;

constexpr int kTemperatureTab = 0;
constexpr int kColourSpaceTab = 1;

// The modes of SetColorMode, as the display reports them.
constexpr int kTemperatureMode = 1;
constexpr int kColourSpaceMode = 2;
// Codes from here on are all DCI-P3, whatever the mode says.
constexpr int kLastCodeBelowDCI = 7;

constexpr int kSliderDefault = 50;
constexpr int kFactoryReset = 0;

// The display's code of each preset: p2 of the command of its mode.
struct Preset {
    int id;
    int command;
    int code;
};
constexpr Preset kPresets[] = {
    {k5000K, kCmdColourTemperature, 1}, {k6500K, kCmdColourTemperature, 3},
    {k7500K, kCmdColourTemperature, 4}, {k9300K, kCmdColourTemperature, 5},
    {kAdobeRGB, kCmdColourSpace, 1},    {kSRGB, kCmdColourSpace, 2},
    {kDCIP3, kCmdColourSpace, 4},
};

// Codes no button sends, 6 and 7, show as the coolest button.
int temperatureButton(int code)
{
    switch (code) {
    case 3:
        return k6500K;
    case 4:
        return k7500K;
    case 5:
    case 6:
    case 7:
        return k9300K;
    default:
        return k5000K;
    }
}

int colourSpaceButton(int code)
{
    if (code == 1)
        return kAdobeRGB;
    if (code == 2)
        return kSRGB;
    if (code >= 3 && code <= 10)
        return kDCIP3;
    return k5000K;
}

} // namespace

DisplaySetting::DisplaySetting(QWidget *parent)
    : ScriboraDialog(parent), ui(new Ui::DisplaySetting), m_ColorGroup(new QButtonGroup(this))
{
    ui->setupUi(this);
    setMaximumSize(size());
    SetQGraphicsDropShadowEffect(ui->main_frame);
    ui->groupBox_RGB->setEnabled(false);
    QAbstractButton *buttons[] = {ui->radioButton_5000K, ui->radioButton_6500K,
                                  ui->radioButton_7500K, ui->radioButton_9300K,
                                  ui->radioButton_USER,  ui->radioButton_adobeRGB,
                                  ui->radioButton_SRGB,  ui->radioButton_DCI};
    for (int id = 0; id < static_cast<int>(std::size(buttons)); ++id)
        m_ColorGroup->addButton(buttons[id], id);
    connect(m_ColorGroup, &QButtonGroup::idClicked, this, &DisplaySetting::onColorRadioClicked);
    m_Red = {ui->horizontalSlider_Red, ui->label_R_value, kCmdRedGain};
    m_Green = {ui->horizontalSlider_Green, ui->label_G_value, kCmdGreenGain};
    m_Blue = {ui->horizontalSlider_Blue, ui->label_B_value, kCmdBlueGain};
    m_Brightness = {ui->horizontalSlider_brightness, ui->label_brightness_value, kCmdBrightness};
    m_Contrast = {ui->horizontalSlider_Contrast, ui->label_Contrast_value, kCmdContrast};
    for (const SliderRow &row : {m_Red, m_Green, m_Blue, m_Brightness, m_Contrast})
        connectSlider(row);
    InitLanguageUI();
    // The style sheet's entry rules reach a popup only through a styled delegate.
    ui->RGBcomboBox->setItemDelegate(new QStyledItemDelegate(ui->RGBcomboBox));
    UpdateUIForRGBcomboBoxCurrentIndexChanged(ui->RGBcomboBox->currentIndex());
}

DisplaySetting::~DisplaySetting()
{
    delete ui;
}

void DisplaySetting::InitLanguageUI()
{
    setLanguageText(ui->label_title, "DisplaySetting.Caption");
    ui->RGBcomboBox->setItemText(kTemperatureTab, languageText("DisplaySetting.ColorTemperature",
                                                               QStringLiteral("色温调节")));
    ui->RGBcomboBox->setItemText(kColourSpaceTab,
                                 languageText("DisplaySetting.ColorZone", "Color space"));
    setLanguageText(ui->label_tips, "DisplaySetting.Tips");
    setLanguageText(ui->label_brightness, "DisplaySetting.Brightness");
    setLanguageText(ui->label_Contrast, "DisplaySetting.Constrast");
    setLanguageText(ui->pushButton_factory, "DisplaySetting.Restore");
    setLanguageText(ui->pushButton_ok, "Common.ok");
}

void DisplaySetting::connectSlider(const SliderRow &row)
{
    connect(row.slider, &QSlider::valueChanged, this, [this, row](int value) {
        row.value->setNum(value);
        sendCommand(row.command, value);
    });
}

void DisplaySetting::sendCommand(int command, int value)
{
    if (m_ColorZoneEnable)
        emit SendTabletCmd(command, 1, value);
}

void DisplaySetting::sendUserGains()
{
    for (const SliderRow &row : {m_Red, m_Green, m_Blue})
        sendCommand(row.command, row.slider->value());
}

void DisplaySetting::SetZKDisplayInfo(tagZKDisplayContent *content, QRect &screen)
{
    m_DisplayContent = content;
    m_ScreenRect = screen;
    move(screen.x() + (screen.width() - width()) / 2,
         screen.y() + (screen.height() - height()) / 2);
}

void DisplaySetting::SupportContrast(bool support)
{
    ui->label_Contrast->setEnabled(support);
    ui->horizontalSlider_Contrast->setEnabled(support);
    ui->label_Contrast_value->setEnabled(support);
}

void DisplaySetting::Change5000KToLowBlueLineMode(bool lowBlueLine)
{
    const QString text = languageText("DisplaySetting.LowBlueLine");
    ui->radioButton_5000K->setText(lowBlueLine && !text.isEmpty() ? text : "5000K");
}

void DisplaySetting::onColorRadioClicked(int id)
{
    qDebug() << "onColorRadioClicked" << id;
    ui->groupBox_RGB->setEnabled(id == kUser);
    if (id == kUser) {
        sendUserGains();
        return;
    }
    for (const Preset &preset : kPresets) {
        if (preset.id == id)
            sendCommand(preset.command, preset.code);
    }
}

// The temperature tab keeps the user's gains beside the presets; the colour space tab
// offers them as its first choice.
void DisplaySetting::UpdateUIForRGBcomboBoxCurrentIndexChanged(int index)
{
    const bool temperature = index == kTemperatureTab;
    for (int id : {k5000K, k6500K, k7500K, k9300K})
        m_ColorGroup->button(id)->setVisible(temperature);
    m_ColorGroup->button(kUser)->setVisible(true);
    for (int id : {kAdobeRGB, kSRGB, kDCIP3})
        m_ColorGroup->button(id)->setVisible(!temperature);
}

void DisplaySetting::on_RGBcomboBox_currentIndexChanged(int index)
{
    UpdateUIForRGBcomboBoxCurrentIndexChanged(index);
    checkAndClick(index == kTemperatureTab ? k6500K : kUser);
}

void DisplaySetting::checkAndClick(int id)
{
    QAbstractButton *button = m_ColorGroup->button(id);
    button->setChecked(true);
    button->click();
}

// A display that can reset itself is told to; it reports its brightness and contrast back.
// Without that, the dialog shows the defaults and the display is left as it is.
void DisplaySetting::on_pushButton_factory_clicked()
{
    if (!m_ColorZoneEnable) {
        checkAndClick(k6500K);
        for (const SliderRow &row : {m_Red, m_Green, m_Blue})
            row.slider->setValue(kSliderDefault);
        m_Brightness.slider->setValue(m_DefaultBright);
        m_Contrast.slider->setValue(kSliderDefault);
        return;
    }
    for (const SliderRow &row : {m_Red, m_Green, m_Blue}) {
        const QSignalBlocker blocker(row.slider);
        row.slider->setValue(kSliderDefault);
        row.value->setNum(kSliderDefault);
    }
    emit SendTabletCmd(kCmdDisplayReset, 1, kFactoryReset);
}

void DisplaySetting::showReported(const SliderRow &row, int value, int maximum)
{
    if (value < 0)
        return;
    const int shown = qMin(value, maximum);
    const QSignalBlocker blocker(row.slider);
    row.slider->setValue(shown);
    row.value->setNum(shown);
}

// Shows what the display uses without sending it back.
void DisplaySetting::showColour(int id, int tab)
{
    QAbstractButton *button = m_ColorGroup->button(id);
    {
        const QSignalBlocker buttonBlocker(button);
        button->setChecked(true);
    }
    const QSignalBlocker comboBlocker(ui->RGBcomboBox);
    ui->RGBcomboBox->setCurrentIndex(tab);
    UpdateUIForRGBcomboBoxCurrentIndexChanged(tab);
    ui->groupBox_RGB->setEnabled(id == kUser);
}

void DisplaySetting::SetColorMode(int mode, int code, int brightness, int contrast, int red,
                                  int green, int blue)
{
    if (!m_ColorZoneEnable)
        return;
    if (mode > 0) {
        // USER shows on both tabs: a gain report leaves the user on the tab they chose.
        int id = kUser;
        int tab = ui->RGBcomboBox->currentIndex();
        if (mode == kTemperatureMode) {
            id = temperatureButton(code);
            tab = kTemperatureTab;
        } else if (mode == kColourSpaceMode) {
            id = colourSpaceButton(code);
            tab = kColourSpaceTab;
        }
        if (code > kLastCodeBelowDCI)
            id = kDCIP3;
        showColour(id, tab);
    }
    // The display's gains share one range, that of red.
    const int gainMaximum = m_Red.slider->maximum();
    showReported(m_Red, red, gainMaximum);
    showReported(m_Green, green, gainMaximum);
    showReported(m_Blue, blue, gainMaximum);
    showReported(m_Brightness, brightness, m_Brightness.slider->maximum());
    showReported(m_Contrast, contrast, m_Contrast.slider->maximum());
}

void DisplaySetting::on_pushButton_ok_clicked()
{
    close();
}

void DisplaySetting::on_CloseButton_clicked()
{
    close();
}
