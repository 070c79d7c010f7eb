#include "displaysetting.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QSignalSpy>
#include <QSlider>
#include <gtest/gtest.h>

namespace
{

// The commands sent, as "command,p1,p2" joined by blanks.
QString sent(QSignalSpy &spy)
{
    QStringList commands;
    for (const QList<QVariant> &args : spy)
        commands
            << QString("%1,%2,%3").arg(args[0].toInt()).arg(args[1].toInt()).arg(args[2].toInt());
    spy.clear();
    return commands.join(' ');
}

template <typename T> T *child(const DisplaySetting &dialog, const char *name)
{
    return dialog.findChild<T *>(name);
}

const char *const kSliders[][2] = {{"horizontalSlider_Red", "label_R_value"},
                                   {"horizontalSlider_Green", "label_G_value"},
                                   {"horizontalSlider_Blue", "label_B_value"},
                                   {"horizontalSlider_brightness", "label_brightness_value"},
                                   {"horizontalSlider_Contrast", "label_Contrast_value"}};

void expectSliders(const DisplaySetting &dialog, const int (&values)[5])
{
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(child<QSlider>(dialog, kSliders[i][0])->value(), values[i]) << kSliders[i][0];
        EXPECT_EQ(child<QLabel>(dialog, kSliders[i][1])->text().toInt(), values[i]);
    }
}

TEST(DisplaySettingDialog, EachControlSendsItsCommandsOnlyWithTheColourZone)
{
    const struct {
        const char *object;
        int value; // a slider's or the tab's; -1 clicks
        const char *commands;
    } steps[] = {{"horizontalSlider_Red", 11, "113,1,11"},
                 {"horizontalSlider_Green", 22, "114,1,22"},
                 {"horizontalSlider_Blue", 33, "115,1,33"},
                 {"horizontalSlider_brightness", 44, "117,1,44"},
                 {"horizontalSlider_Contrast", 55, "118,1,55"},
                 {"radioButton_5000K", -1, "112,1,1"},
                 {"radioButton_6500K", -1, "112,1,3"},
                 {"radioButton_7500K", -1, "112,1,4"},
                 {"radioButton_9300K", -1, "112,1,5"},
                 {"radioButton_USER", -1, "113,1,11 114,1,22 115,1,33"},
                 {"radioButton_adobeRGB", -1, "111,1,1"},
                 {"radioButton_SRGB", -1, "111,1,2"},
                 {"radioButton_DCI", -1, "111,1,4"},
                 {"RGBcomboBox", 1, "113,1,11 114,1,22 115,1,33"},
                 {"RGBcomboBox", 0, "112,1,3"}};
    for (bool zone : {false, true}) {
        DisplaySetting dialog;
        dialog.SetColorZoneEnable(zone);
        dialog.show();
        QSignalSpy spy(&dialog, &DisplaySetting::SendTabletCmd);
        for (const auto &step : steps) {
            SCOPED_TRACE(std::string(step.object) + (zone ? " zone" : " no zone"));
            if (auto *slider = child<QSlider>(dialog, step.object))
                slider->setValue(step.value);
            else if (auto *combo = child<QComboBox>(dialog, step.object))
                combo->setCurrentIndex(step.value);
            else
                child<QAbstractButton>(dialog, step.object)->click();
            EXPECT_EQ(sent(spy), zone ? step.commands : "");
        }
        expectSliders(dialog, {11, 22, 33, 44, 55});
        EXPECT_TRUE(child<QAbstractButton>(dialog, "radioButton_6500K")->isChecked());
        EXPECT_FALSE(child<QGroupBox>(dialog, "groupBox_RGB")->isEnabled());
    }
}

// A gain report checks USER on the tab the user is on, which shows it too.
TEST(DisplaySettingDialog, ReportsShowTheDisplaysSettingsWithoutSendingThem)
{
    const struct {
        int mode, code;
        const char *button;
        int tab;
        bool gains;
    } reports[] = {{1, 0, "radioButton_5000K", 0, false}, {1, 3, "radioButton_6500K", 0, false},
                   {1, 7, "radioButton_9300K", 0, false}, {1, 8, "radioButton_DCI", 0, false},
                   {2, 2, "radioButton_SRGB", 1, false},  {3, -1, "radioButton_USER", 1, true},
                   {2, 10, "radioButton_DCI", 1, false},  {2, 1, "radioButton_adobeRGB", 1, false},
                   {2, 11, "radioButton_DCI", 1, false},  {2, 0, "radioButton_5000K", 1, false}};
    DisplaySetting dialog;
    dialog.SetColorMode(3, -1, 1, 2, 3, 4, 5);
    expectSliders(dialog, {50, 50, 50, 50, 50});
    dialog.SetColorZoneEnable(true);
    QSignalSpy spy(&dialog, &DisplaySetting::SendTabletCmd);
    for (const auto &report : reports) {
        SCOPED_TRACE(QString("%1 %2").arg(report.mode).arg(report.code).toStdString());
        dialog.SetColorMode(report.mode, report.code, -1, -1, -1, -1, -1);
        EXPECT_TRUE(child<QAbstractButton>(dialog, report.button)->isChecked());
        EXPECT_EQ(child<QComboBox>(dialog, "RGBcomboBox")->currentIndex(), report.tab);
        EXPECT_EQ(child<QAbstractButton>(dialog, "radioButton_SRGB")->isHidden(), report.tab == 0);
        EXPECT_EQ(child<QGroupBox>(dialog, "groupBox_RGB")->isEnabled(), report.gains);
    }
    dialog.SetColorMode(-1, -1, 120, 30, 70, -1, 0);
    expectSliders(dialog, {70, 50, 0, 100, 30});
    EXPECT_EQ(sent(spy), "");
}

} // namespace
