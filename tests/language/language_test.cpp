#include <QFile>
#include <QHash>
#include <QSet>
#include <QSettings>
#include <QStringList>
#include <QVariant>
#include <gtest/gtest.h>

#include <memory>

namespace
{

const QString kIniPath = QStringLiteral(SCRIBORA_LANGUAGE_INI);

const char *const kLanguages[] = {"English", "ChineseSimplified"};

void addNumbered(QStringList &keys, const char *prefix, int first, int last)
{
    for (int n = first; n <= last; ++n)
        keys << QLatin1String(prefix) + QString::number(n);
}

// Every key the program looks up in the language file, and no other.
QStringList vocabulary()
{
    QStringList keys = {
        // Page list and window titles.
        "Device", "WorkArea", "Application", "Pen", "Eraser", "ShortcutKey", "TR", "Setting",
        "SelectAppSetting",
        // Common words and message boxes.
        "Common.battery", "Common.cancel", "Common.clear", "Common.close", "Common.delete",
        "Common.error", "Common.information", "Common.item1", "Common.ok", "Common.retry",
        "Common.save", "Common.scan", "Common.tips1", "Common.warning", "Common.winTips",
        "Information.101", "Information.801", "Error.201",
        // Mapping page.
        "Device.AllScreen", "Device.Calibrate", "Device.FullWorkArea", "Device.LightLed",
        "Device.RotationSetting", "Device.Screen", "Device.ScreenArea", "Device.ScreenHelpInfo1",
        "Device.ScreenHelpInfo2", "Device.ScreenID", "Device.ScreenScale", "Device.SetFullScreen",
        "Device.TabeltHelpInfo1", "Device.TabeltHelpInfo2", "Device.TabeltHelpInfo3",
        "Device.TabletArea", "Device.url", "Area.ScreenTitle", "Area.TabletTitle",
        "ScreenSetWidget.click", "ScreenSetWidget.tips2", "WorkareaSetWidget.click",
        "WorkareaSetWidget.tips1", "WorkareaSetWidget.tips2", "WorkareaSetWidget.tips3",
        // Pen page.
        "Pen.ConnectTips", "Pen.CurrentPreesure", "Pen.DisableTilt", "Pen.LabelErase",
        "Pen.LabelPen", "Pen.MouseMode", "Pen.MouseMode.Fast", "Pen.MouseMode.Slow",
        "Pen.MouseMode.Standard", "Pen.Ring.Speed", "Pen.Ring.SwitchFunction", "Pen.Ring.Title",
        "Pen.Sensitivity", "Pen.Sensitivity.Hard", "Pen.Sensitivity.Hardness",
        "Pen.Sensitivity.Out", "Pen.Sensitivity.Press", "Pen.Sensitivity.Soft", "Pen.WindowsInk",
        // Keys and wheels.
        "ShortcutKey.AllKey", "ShortcutKey.Item.custom", "HotKey.group.name",
        "HotKeySetting.Group1.Mousecheckbox", "HotKeySetting.Group1.checkbox",
        "HotKeySetting.Group1.tips", "HotKeySetting.Group2.checkbox",
        "HotKeySetting.Group3.checkbox", "HotKeySetting.Group4.checkbox", "HotKeySetting.Title",
        "HotKeySetting.selectexe", "RollSetting.Group2.CheckName", "RollSetting.Title",
        "SelectAppSetting.item2", "Other.app", "TR.Functions", "TR.Item.Null", "TR.Item.custom",
        "TR.Light", "TR.Ring", "TR.Touch", "TR.Touch.Mode.1", "TR.Touch.Mode.2",
        // Settings form, import and tray.
        "Setting.DisconnectTips", "Setting.Tips1", "Setting.feedback", "Import.NotDevice",
        "Import.importBtn", "Import.importTips", "Import.plaf", "Import.saveBtn", "Import.saveTips",
        "Import.success", "Import.tip", "Tray.exit", "Tray.show",
        // Display settings, diagnosis and download.
        "DisplaySetting.Brightness", "DisplaySetting.Caption", "DisplaySetting.ColorTemperature",
        "DisplaySetting.ColorZone", "DisplaySetting.Constrast", "DisplaySetting.LowBlueLine",
        "DisplaySetting.Restore", "DisplaySetting.Tips", "DiagnosisFunction.Group1.Name",
        "DiagnosisFunction.Group2.Name", "DiagnosisFunction.Title", "DiagnosisFunction.currentx",
        "DiagnosisFunction.currenty", "DiagnosisFunction.currentz", "DiagnosisFunction.device",
        "DiagnosisFunction.deviceversion", "DiagnosisFunction.driverinstalltest",
        "DiagnosisFunction.fail", "DiagnosisFunction.icversion", "DiagnosisFunction.pass",
        "DiagnosisFunction.product", "DiagnosisFunction.serialnum",
        "DiagnosisFunction.systemversion", "DiagnosisFunction.wintabletest",
        "DiagnosisFunction.xmlversion", "DriverDownLoad.BeginDlButton",
        "DriverDownLoad.CancelDLButton", "DriverDownLoad.Tips1", "DriverDownLoad.Tips2"};
    addNumbered(keys, "Setting.item", 1, 9);
    // Action ids: 0 is the tip of an unset key, 1-26 shortcut keys, 27 erase,
    // 101-112 system functions and the group-off tip, 201-211 modifiers and mouse.
    addNumbered(keys, "Actions.", 0, 27);
    addNumbered(keys, "Actions.", 101, 107);
    addNumbered(keys, "Actions.", 109, 112);
    addNumbered(keys, "Actions.", 201, 211);
    // Wheel functions: zoom, scroll, brush size, canvas rotation.
    addNumbered(keys, "TR.Item.", 1, 4);
    // Result codes of the version check on import.
    addNumbered(keys, "Error.", 101, 105);
    return keys;
}

bool hasCjk(const QString &text)
{
    for (const QChar c : text) {
        const ushort u = c.unicode();
        if ((u >= 0x4E00 && u <= 0x9FFF) || (u >= 0x3400 && u <= 0x4DBF))
            return true;
    }
    return false;
}

std::unique_ptr<QSettings> openSection(const char *language)
{
    auto settings = std::make_unique<QSettings>(kIniPath, QSettings::IniFormat);
    settings->setIniCodec("UTF-8");
    settings->beginGroup(QLatin1String(language));
    return settings;
}

// Section name -> keys in file order, read without QSettings, so that lines
// QSettings would swallow or merge still show up.
QHash<QString, QStringList> rawKeysBySection()
{
    QHash<QString, QStringList> result;
    QFile file(kIniPath);
    if (!file.open(QIODevice::ReadOnly))
        return result;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    QString section;
    for (const QString &raw : lines) {
        const QString line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char(';')))
            continue;
        if (line.startsWith(QLatin1Char('[')) && line.endsWith(QLatin1Char(']'))) {
            section = line.mid(1, line.size() - 2);
            result[section];
            continue;
        }
        const int equals = line.indexOf(QLatin1Char('='));
        if (equals > 0)
            result[section] << line.left(equals).trimmed();
    }
    return result;
}

TEST(LanguageFile, ExistsAndParses)
{
    ASSERT_TRUE(QFile::exists(kIniPath)) << kIniPath.toStdString();
    QSettings settings(kIniPath, QSettings::IniFormat);
    settings.setIniCodec("UTF-8");
    EXPECT_EQ(settings.status(), QSettings::NoError);
}

class LanguageSection : public ::testing::TestWithParam<const char *>
{
};

TEST_P(LanguageSection, EveryKeyOfTheProgramHasOneText)
{
    const auto settings = openSection(GetParam());
    QStringList missing;
    QStringList notAString;
    for (const QString &key : vocabulary()) {
        const QVariant value = settings->value(key);
        if (value.toString().isEmpty())
            missing << key;
        // An unquoted comma makes a list, which a later edit might keep non-empty.
        else if (value.userType() != QMetaType::QString)
            notAString << key;
    }
    EXPECT_TRUE(missing.isEmpty()) << "no text: " << missing.join(", ").toStdString();
    EXPECT_TRUE(notAString.isEmpty()) << "not a string: " << notAString.join(", ").toStdString();
}

TEST_P(LanguageSection, HoldsNoKeyOutsideTheVocabulary)
{
    const auto settings = openSection(GetParam());
    const QStringList known = vocabulary();
    const QSet<QString> vocab(known.begin(), known.end());
    QStringList unknown;
    for (const QString &key : settings->allKeys()) {
        if (!vocab.contains(key))
            unknown << key;
    }
    EXPECT_TRUE(unknown.isEmpty()) << "unknown keys: " << unknown.join(", ").toStdString();
}

TEST_P(LanguageSection, EveryLineIsReadOnceAsItsOwnKey)
{
    const QStringList raw = rawKeysBySection().value(QLatin1String(GetParam()));
    ASSERT_FALSE(raw.isEmpty()) << "no section " << GetParam();
    QSet<QString> seen;
    QStringList repeated;
    for (const QString &key : raw) {
        if (seen.contains(key))
            repeated << key;
        seen.insert(key);
    }
    EXPECT_TRUE(repeated.isEmpty()) << "repeated: " << repeated.join(", ").toStdString();

    // A stray quote makes QSettings join lines, so that keys go missing.
    const auto settings = openSection(GetParam());
    const QStringList read = settings->allKeys();
    const QSet<QString> readSet(read.begin(), read.end());
    EXPECT_EQ(readSet, seen);
}

TEST_P(LanguageSection, TabletAreaHasTabletAndDisplayWords)
{
    // The mapping page picks one of the two words by device type.
    const auto settings = openSection(GetParam());
    const QStringList words =
        settings->value(QStringLiteral("Device.TabletArea")).toString().split(QLatin1Char('/'));
    ASSERT_EQ(words.size(), 2);
    EXPECT_FALSE(words.at(0).trimmed().isEmpty());
    EXPECT_FALSE(words.at(1).trimmed().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Languages, LanguageSection, ::testing::ValuesIn(kLanguages),
                         [](const ::testing::TestParamInfo<const char *> &info) {
                             return std::string(info.param);
                         });

TEST(LanguageFile, ChineseSectionIsTranslated)
{
    const auto english = openSection("English");
    const auto chinese = openSection("ChineseSimplified");
    const QStringList keys = vocabulary();
    int withCjk = 0;
    QStringList copies;
    for (const QString &key : keys) {
        const QString text = chinese->value(key).toString();
        if (hasCjk(text))
            ++withCjk;
        else if (text == english->value(key).toString())
            copies << key;
    }
    // Key names such as Shift or Ctrl, and the web address, stay as they are.
    EXPECT_GE(withCjk * 100, keys.size() * 95) << withCjk << " of " << keys.size();
    EXPECT_LE(copies.size(), 5) << "same as English: " << copies.join(", ").toStdString();
}

TEST(LanguageFile, EnglishSectionHasNoChinese)
{
    const auto english = openSection("English");
    QStringList chinese;
    for (const QString &key : english->allKeys()) {
        if (hasCjk(english->value(key).toString()))
            chinese << key;
    }
    EXPECT_TRUE(chinese.isEmpty()) << chinese.join(", ").toStdString();
}

TEST(LanguageFile, SectionsAreLanguageNamesOfTheProgram)
{
    // A misspelt section would never be chosen and its texts never shown.
    const QSet<QString> names = {"ChineseSimplified",
                                 "ChineseTraditional",
                                 "English",
                                 "German",
                                 "French",
                                 "Japanese",
                                 "Korean",
                                 "Russian",
                                 "Spanish",
                                 "Italian",
                                 "Thai",
                                 "Portuguese",
                                 "Vietnamese",
                                 "Polish",
                                 "Turkish"};
    QSettings settings(kIniPath, QSettings::IniFormat);
    settings.setIniCodec("UTF-8");
    QStringList odd;
    for (const QString &group : settings.childGroups()) {
        if (!names.contains(group))
            odd << group;
    }
    EXPECT_TRUE(odd.isEmpty()) << odd.join(", ").toStdString();
    EXPECT_TRUE(settings.childKeys().isEmpty()) << "keys outside any section";
}

} // namespace
