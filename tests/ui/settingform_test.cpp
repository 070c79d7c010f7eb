#include "cglobaldata.h"
#include "ctablet.h"
#include "scriboradialog.h"
#include "settingform.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMouseEvent>
#include <QResource>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstring>
#include <ostream>

namespace
{

// Global positions stay those of the first frame: the pointer does not follow the window.
void sendMouse(QWidget *widget, QEvent::Type type, QPointF local)
{
    const QPointF global = QPointF(200, 100) + local;
    QMouseEvent event(type, local, local, global, Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

struct DragCase {
    qreal pressY;
    QPoint expectedPos;
};

void PrintTo(const DragCase &c, std::ostream *out)
{
    *out << "press at y " << c.pressY;
}

class DialogDrag : public ::testing::TestWithParam<DragCase>
{
};

// The head strip ends at a rounded y of 79; the move is 30 right and 20 down.
TEST_P(DialogDrag, OnlyTheHeadStripDrags)
{
    ScriboraDialog dialog;
    dialog.setGeometry(200, 100, 300, 200);
    const QPointF press(50, GetParam().pressY);
    sendMouse(&dialog, QEvent::MouseButtonPress, press);
    sendMouse(&dialog, QEvent::MouseMove, press + QPointF(10, 5));
    sendMouse(&dialog, QEvent::MouseButtonRelease, press + QPointF(30, 20));
    EXPECT_EQ(dialog.geometry().topLeft(), GetParam().expectedPos);
}

INSTANTIATE_TEST_SUITE_P(ScriboraDialog, DialogDrag,
                         ::testing::Values(DragCase{0, {230, 120}}, DragCase{79, {230, 120}},
                                           DragCase{79.4, {230, 120}}, DragCase{79.5, {200, 100}},
                                           DragCase{80, {200, 100}}, DragCase{150, {200, 100}}));

TEST(ScriboraDialogCentre, CentresMeetOverTheOwnersGlobalOrigin)
{
    QWidget window;
    window.setGeometry(100, 50, 600, 500);
    QWidget owner(&window);
    owner.setGeometry(20, 30, 400, 300);
    // Dialog 101 by 61. Window: 100 + 499 / 2, 50 + 439 / 2. Owner at 120,80: 299 / 2, 239 / 2.
    const struct {
        QWidget *parent;
        QPoint expected;
    } cases[] = {{&window, {349, 269}}, {&owner, {269, 199}}};
    for (const auto &c : cases) {
        ScriboraDialog dialog(c.parent);
        EXPECT_EQ(dialog.parentWidget(), nullptr);
        dialog.resize(101, 61);
        dialog.ShowDialogInCenter();
        EXPECT_EQ(dialog.geometry().topLeft(), c.expected);
    }
}

template <typename T> T *child(QWidget &form, const char *name)
{
    T *widget = form.findChild<T *>(name);
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

TEST(SettingFormVersion, KeepsWhatFollowsTheFirstColonBeforeABracket)
{
    const struct {
        const char *label;
        const char *version;
    } cases[] = {{"Ver:3.4.9", "3.4.9"}, {"Ver:3.4.11(7169b73)", "3.4.11"}, {"Ver:1:2", "1:2"}};
    SettingForm form;
    for (const auto &c : cases) {
        form.SetCheckButtonStatus(nullptr, "English", c.label);
        EXPECT_EQ(form.driverVersion(), c.version) << c.label;
    }
}

TEST(SettingFormConsent, SizesFollowTheConsentPart)
{
    SettingForm form;
    QWidget *frame = child<QWidget>(form, "SettingFormWidget");
    QWidget *consent = child<QWidget>(form, "SettingFormWidget2");
    auto *box = child<QAbstractButton>(form, "HotKeyWincheckBox_1");
    QSignalSpy spy(&form, &SettingForm::CollectDataChecked);

    form.SetDataCollectVisable(false, false);
    EXPECT_TRUE(consent->isHidden());
    EXPECT_EQ(frame->size(), QSize(340, 189));
    EXPECT_EQ(form.size(), QSize(360, 209));

    form.SetDataCollectVisable(true, true);
    EXPECT_FALSE(consent->isHidden());
    EXPECT_TRUE(box->isChecked());
    EXPECT_EQ(frame->size(), QSize(340, 212));
    EXPECT_EQ(form.size(), QSize(360, 232));
    EXPECT_EQ(spy.count(), 0);

    QResource::registerResource(RESOURCE_FILE);
    QFile style(":/qss/qss/stylesheet.qss");
    ASSERT_TRUE(style.open(QIODevice::ReadOnly));
    form.setStyleSheet(QString::fromLatin1(style.readAll()));
    const QPixmap shot = form.grab();
    EXPECT_EQ(shot.size(), QSize(360, 232));
    QDir().mkpath(SCREENSHOT_DIR);
    shot.save(SCREENSHOT_DIR "/settingform.png");
}

struct ProfileCase {
    int16_t pressure, info, quickKey, slope, groupKeys;
};

void PrintTo(const ProfileCase &c, std::ostream *out)
{
    *out << "flags " << c.pressure << c.info << c.quickKey << c.slope << " group keys "
         << c.groupKeys;
}

class SettingFormProfile : public ::testing::TestWithParam<ProfileCase>
{
};

TEST_P(SettingFormProfile, BoxesShowTheProfileFlags)
{
    const ProfileCase &c = GetParam();
    CTablet tablet;
    tablet.m_TabletXMLData->DisablePressure = c.pressure;
    tablet.m_TabletXMLData->DisableInfo = c.info;
    tablet.m_TabletXMLData->DisableQuickKey = c.quickKey;
    tablet.m_TabletXMLData->DisableSlope = c.slope;
    tablet.m_TabletXMLData->SupportGroupKeys = c.groupKeys;
    // The form comes from a key remote with every flag set.
    CTablet remote;
    remote.m_TabletXMLData->DisablePressure = remote.m_TabletXMLData->DisableInfo = 1;
    remote.m_TabletXMLData->DisableQuickKey = remote.m_TabletXMLData->DisableSlope = 1;
    remote.m_TabletXMLData->SupportGroupKeys = 1;
    SettingForm form;
    form.SetCheckButtonStatus(&remote, "English", "Ver:3.4.9");
    QSignalSpy press(&form, &SettingForm::DisablePress);
    form.SetCheckButtonStatus(&tablet, "English", "Ver:3.4.9");

    auto *pressure = child<QAbstractButton>(form, "checkBox_pressure");
    auto *slope = child<QAbstractButton>(form, "checkBox_slope");
    EXPECT_EQ(pressure->isChecked(), c.pressure != 0);
    EXPECT_EQ(child<QAbstractButton>(form, "checkBox_tips")->isChecked(), c.info != 0);
    EXPECT_EQ(child<QAbstractButton>(form, "checkBox_shortcuts")->isChecked(), c.quickKey != 0);
    EXPECT_EQ(slope->isChecked(), c.slope != 0);
    EXPECT_EQ(pressure->isHidden(), c.groupKeys != 0);
    EXPECT_EQ(slope->isHidden(), c.groupKeys != 0);
    EXPECT_EQ(press.count(), 0);
    EXPECT_EQ(form.tablet(), &tablet);
}

INSTANTIATE_TEST_SUITE_P(SettingForm, SettingFormProfile,
                         ::testing::Values(ProfileCase{1, 0, 1, 0, 0}, ProfileCase{0, 1, 0, 1, 1},
                                           ProfileCase{2, 3, 0, 0, 1}, ProfileCase{0, 0, 0, 0, 0}));

TEST(SettingFormSignals, SwitchesSendTheirCheckedState)
{
    const struct {
        const char *box;
        void (SettingForm::*signal)(bool);
    } cases[] = {{"checkBox_pressure", &SettingForm::DisablePress},
                 {"checkBox_tips", &SettingForm::DisableTipMsg},
                 {"checkBox_shortcuts", &SettingForm::DisableHotkey},
                 {"checkBox_slope", &SettingForm::DisableSlope},
                 {"HotKeyWincheckBox_1", &SettingForm::CollectDataChecked}};
    SettingForm form;
    for (const auto &c : cases) {
        QSignalSpy spy(&form, c.signal);
        auto *box = child<QAbstractButton>(form, c.box);
        box->click();
        box->click();
        ASSERT_EQ(spy.count(), 2) << c.box;
        EXPECT_TRUE(spy.at(0).at(0).toBool()) << c.box;
        EXPECT_FALSE(spy.at(1).at(0).toBool()) << c.box;
    }
}

TEST(SettingFormSignals, ButtonsSendTheirEntries)
{
    const struct {
        const char *button;
        void (SettingForm::*signal)();
    } cases[] = {{"Setting_inputbtn", &SettingForm::onImportConfiguebtnClicked},
                 {"Setting_outputbtn", &SettingForm::onOutportConfiguebtnClicked},
                 {"Setting_Diagnosisbtn", &SettingForm::onDiagnosisbtnClicked},
                 {"Setting_DriverDown", &SettingForm::onDriverDownbtnClicked}};
    SettingForm form;
    for (const auto &c : cases) {
        QSignalSpy spy(&form, c.signal);
        child<QAbstractButton>(form, c.button)->click();
        EXPECT_EQ(spy.count(), 1) << c.button;
    }
}

// The form is a tool window of the main window, which takes the activation back.
TEST(SettingFormHide, HidesWhenAnotherWindowTurnsActiveOrOnClose)
{
    QWidget other;
    SettingForm form(&other);
    other.show();
    form.show();
    QApplication::setActiveWindow(&form);
    ASSERT_TRUE(form.isActiveWindow());
    QApplication::setActiveWindow(&other);
    EXPECT_TRUE(form.isHidden());

    form.show();
    emit form.CloseSettingForm();
    EXPECT_TRUE(form.isHidden());
}

TEST(SettingFormFeedback, QueryCarriesLanguageDeviceAndVersions)
{
    CTablet tablet;
    std::strcpy(tablet.m_DeviceAttributes.ShowName, "Pad 10");
    std::strcpy(tablet.m_DeviceAttributes.ICVersion, "20240105");
    std::strcpy(tablet.m_DeviceAttributes.SerialNumber, "SN123");
    SettingForm form;
    form.SetCheckButtonStatus(&tablet, "German", "Ver:3.4.9");
    EXPECT_TRUE(form.FeedbackUrl().startsWith(
        "https://www.scribora.com/feedback?drive_lang=German&product_name=Pad 10"
        "&firmware_version=20240105&drive_version=V3.4.9&serial_number=SN123&system_version="));
}

// An empty text leaves the built-in one.
TEST(SettingFormTexts, LanguageTextsReplaceOnlyWhenNotEmpty)
{
    QTemporaryDir folder;
    const QString path = folder.filePath("language.ini");
    {
        QSettings ini(path, QSettings::IniFormat);
        ini.setValue("English/Setting.item1", "No pressure");
        ini.setValue("English/Setting.item2", "");
    }
    QSettings *saved = CGlobalData::Language_Config;
    QSettings language(path, QSettings::IniFormat);
    language.beginGroup("English");
    CGlobalData::Language_Config = &language;
    SettingForm form;
    CGlobalData::Language_Config = saved;
    EXPECT_EQ(child<QAbstractButton>(form, "checkBox_pressure")->text(), "No pressure");
    EXPECT_EQ(child<QAbstractButton>(form, "checkBox_tips")->text(), "Close Tips");
    EXPECT_EQ(child<QAbstractButton>(form, "Setting_Diagnosisbtn")->text(), "Diagnosis");
}

} // namespace
