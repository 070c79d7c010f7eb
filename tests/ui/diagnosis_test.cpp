#include "diagnosisfunction.h"

#include <QLabel>
#include <gtest/gtest.h>

namespace
{

QString text(const DiagnosisFunction &dialog, const char *name)
{
    return dialog.findChild<QLabel *>(name)->text();
}

bool serialLineShown(const DiagnosisFunction &dialog)
{
    const bool caption =
        dialog.findChild<QLabel *>("labeldiagnosis_SerialNum")->isVisibleTo(&dialog);
    EXPECT_EQ(caption, dialog.findChild<QLabel *>("diagnosis_SerialNum")->isVisibleTo(&dialog));
    return caption;
}

TEST(DiagnosisFunction, ValuesReachTheirOwnLinesAndTheSerialLineShowsOnlyWhenTold)
{
    DiagnosisFunction dialog;
    EXPECT_FALSE(serialLineShown(dialog));
    dialog.UpdateDeviceInfo("Pro 16", "PID_0A21", "V1.02", "SN77", true);
    dialog.UpdataXYZ("12.50", "7.25", "4095");
    dialog.UpDriverVersion("3.4.9", "2.1");
    EXPECT_TRUE(serialLineShown(dialog));
    const char *expected[][2] = {
        {"diagnosis_DeviceName", "Pro 16"}, {"diagnosis_Pid", "PID_0A21"},
        {"diagnosis_ICVersion", "V1.02"},   {"diagnosis_SerialNum", "SN77"},
        {"diagnosis_currentX", "12.50"},    {"diagnosis_currentY", "7.25"},
        {"diagnosis_currentZ", "4095"},     {"diagnosis_DriverVerion", "3.4.9"},
        {"diagnosis_XmlVerion", "2.1"}};
    for (const auto &line : expected)
        EXPECT_EQ(text(dialog, line[0]), line[1]) << line[0];
    dialog.UpdateDeviceInfo("Pro 16", "PID_0A21", "V1.02", "", false);
    EXPECT_FALSE(serialLineShown(dialog));
}

} // namespace
