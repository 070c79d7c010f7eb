#pragma once

#include "scriboradialog.h"

#include <QRect>

class QButtonGroup;
class QLabel;
class QSlider;
struct tagZKDisplayContent;

namespace Ui
{
class DisplaySetting;
}

// The picture of a pen display: colour temperature or colour space, the user's red, green and
// blue gains, brightness and contrast. Every change goes to the device as a command; what the
// device reports comes back through SetColorMode.
class DisplaySetting : public ScriboraDialog
{
    Q_OBJECT
public:
    explicit DisplaySetting(QWidget *parent = nullptr);
    ~DisplaySetting() override;

    // Keeps the record and centres the dialog on the display's screen.
    void SetZKDisplayInfo(tagZKDisplayContent *content, QRect &screen);
    void SupportContrast(bool support);
    // The brightness a reset gives a display that cannot reset itself.
    void SetDefaultBright(int brightness) { m_DefaultBright = brightness; }
    // Only displays with a colour zone take commands and report their settings.
    void SetColorZoneEnable(bool enable) { m_ColorZoneEnable = enable; }
    void SetScreenFacturyValue(bool factory) { m_ScreenFacturyValue = factory; }
    void Change5000KToLowBlueLineMode(bool lowBlueLine);
    // What the display reports; -1 leaves a value as it is, a mode of 0 or less the colour.
    void SetColorMode(int mode, int code, int brightness, int contrast, int red, int green,
                      int blue);
    void UpdateUIForRGBcomboBoxCurrentIndexChanged(int index);

public slots:
    void onColorRadioClicked(int id);
    void on_RGBcomboBox_currentIndexChanged(int index);
    void on_pushButton_factory_clicked();

signals:
    void SendTabletCmd(int command, int p1, int p2);

private slots:
    void on_pushButton_ok_clicked();
    void on_CloseButton_clicked();

private:
    struct SliderRow {
        QSlider *slider;
        QLabel *value;
        int command;
    };

    void InitLanguageUI();
    void connectSlider(const SliderRow &row);
    void sendCommand(int command, int value);
    void sendUserGains();
    void checkAndClick(int id);
    void showColour(int id, int tab);
    void showReported(const SliderRow &row, int value, int maximum);

    Ui::DisplaySetting *ui;
    QButtonGroup *m_ColorGroup;
    tagZKDisplayContent *m_DisplayContent = nullptr;
    QRect m_ScreenRect;
    int m_DefaultBright = 50;
    bool m_ColorZoneEnable = false;
    bool m_ScreenFacturyValue = false;
    SliderRow m_Red, m_Green, m_Blue, m_Brightness, m_Contrast;
};
