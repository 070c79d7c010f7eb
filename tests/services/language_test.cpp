#include "cglobaldata.h"
#include "mylinux.h"

#include <QLabel>
#include <QLocale>
#include <QSettings>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace
{

// Each row changes the default again: the lookup must not keep the first locale it saw.
TEST(UserLanguage, FollowsTheDefaultLocale)
{
    const QLocale saved;
    std::vector<std::pair<QLocale, QString>> rows;
    // The script decides, not the country; other languages read as English.
    for (const QString &row :
         QString("zh_CN:ChineseSimplified zh_SG:ChineseSimplified zh_Hans_HK:ChineseSimplified "
                 "zh_TW:ChineseTraditional zh_HK:ChineseTraditional zh_MO:ChineseTraditional "
                 "en_US:English en_GB:English de_DE:German de_AT:German fr_FR:French fr_CA:French "
                 "ja_JP:Japanese ko_KR:Korean ru_RU:Russian es_ES:Spanish es_MX:Spanish "
                 "it_IT:Italian th_TH:Thai pt_BR:Portuguese pt_PT:Portuguese vi_VN:Vietnamese "
                 "pl_PL:Polish tr_TR:Turkish nl_NL:English sv_SE:English uk_UA:English "
                 "ar_EG:English C:English de_DE:German zh_TW:ChineseTraditional")
             .split(' '))
        rows.emplace_back(QLocale(row.section(':', 0, 0)), row.section(':', 1));
    // Qt has no Latin-script Chinese and falls back to the simplified script.
    rows.emplace_back(QLocale(QLocale::Chinese, QLocale::LatinScript, QLocale::China),
                      "ChineseSimplified");
    for (const auto &[locale, expected] : rows) {
        QLocale::setDefault(locale);
        EXPECT_EQ(mylinux::get_user_language_setting(), expected) << locale.name().toStdString();
    }
    QLocale::setDefault(saved);
}

QStringList g_debugLines;

TEST(UserLanguage, LogsTheLocaleLanguage)
{
    const QLocale saved;
    QLocale::setDefault(QLocale("nl_NL"));
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &msg) {
            if (type == QtDebugMsg)
                g_debugLines << msg;
        });
    mylinux::get_user_language_setting();
    qInstallMessageHandler(previous);
    QLocale::setDefault(saved);
    ASSERT_EQ(g_debugLines.size(), 1);
    EXPECT_TRUE(g_debugLines.first().contains("Dutch")) << g_debugLines.first().toStdString();
}

// An empty or missing text keeps the widget's own; no borrowing from another language.
TEST(TextLookup, EmptyOrMissingTextKeepsTheBuiltInOne)
{
    const QString builtIn = "Built-in";
    const struct {
        const char *file;
        const char *language;
        const char *key;
        QString shown;
    } cases[] = {
        {"language.ini", "English", "Common.ok", "OK"},
        {"language.ini", "English", "Common.close", builtIn},
        {"language.ini", "English", "Common.retry", builtIn},
        {"language.ini", "ChineseSimplified", "Common.ok", "\u786e\u5b9a"},
        {"language.ini", "ChineseSimplified", "Common.cancel", builtIn},
        {"language.ini", "German", "Common.ok", builtIn},
        {"missing.ini", "English", "Common.ok", builtIn},
    };
    QTemporaryDir folder;
    QFile file(folder.filePath("language.ini"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[English]\nCommon.ok=OK\nCommon.cancel=Cancel\nCommon.close=\n"
               "[ChineseSimplified]\nCommon.ok=\xe7\xa1\xae\xe5\xae\x9a\n");
    file.close();
    for (const auto &row : cases) {
        SCOPED_TRACE(std::string(row.language) + " " + row.key);
        QSettings texts(folder.filePath(row.file), QSettings::IniFormat);
        texts.setIniCodec("UTF-8");
        texts.beginGroup(row.language);
        CGlobalData::Language_Config = &texts;
        QLabel label(builtIn);
        setLanguageText(&label, row.key);
        EXPECT_EQ(label.text(), row.shown);
        EXPECT_EQ(languageText(row.key, builtIn), row.shown);
        EXPECT_EQ(languageText(row.key).isEmpty(), row.shown == builtIn);
        CGlobalData::Language_Config = nullptr;
    }
}

} // namespace
