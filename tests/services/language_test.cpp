#include "cglobaldata.h"
#include "mylinux.h"

#include <QFile>
#include <QLabel>
#include <QLocale>
#include <QRegularExpression>
#include <QSettings>
#include <gtest/gtest.h>

namespace
{

QStringList g_debugLines;

// Each row changes the default again: the lookup must not keep the first locale it saw.
TEST(UserLanguage, FollowsTheDefaultLocaleAndLogsItsLanguage)
{
    const QLocale saved;
    QFile file(LANGUAGE_LOCALES);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QStringList rows = QString(file.readAll()).split('\n').filter(QRegularExpression("^\\w"));
    ASSERT_GT(rows.size(), 30);
    // Qt has no Latin-script Chinese and falls back to the simplified script.
    rows << "zh_Latn_CN ChineseSimplified";
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &msg) {
            if (type == QtDebugMsg)
                g_debugLines << msg;
        });
    for (const QString &row : rows) {
        QLocale::setDefault(row.startsWith("zh_Latn")
                                ? QLocale(QLocale::Chinese, QLocale::LatinScript, QLocale::China)
                                : QLocale(row.section(' ', 0, 0)));
        EXPECT_EQ(mylinux::get_user_language_setting(), row.section(' ', 1)) << row.toStdString();
    }
    qInstallMessageHandler(previous);
    QLocale::setDefault(saved);
    ASSERT_EQ(g_debugLines.size(), rows.size());
    EXPECT_TRUE(g_debugLines[rows.indexOf("nl_NL English")].contains("Dutch"));
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
        {"texts.ini", "English", "Common.ok", "OK"},
        {"texts.ini", "English", "Common.close", builtIn},
        {"texts.ini", "English", "Common.retry", builtIn},
        {"texts.ini", "ChineseSimplified", "Common.ok", "\u786e\u5b9a"},
        {"texts.ini", "ChineseSimplified", "Common.cancel", builtIn},
        {"texts.ini", "German", "Common.ok", builtIn},
        {"missing.ini", "English", "Common.ok", builtIn},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(std::string(row.language) + " " + row.key);
        QSettings texts(QString(SERVICES_TEST_DATA "/") + row.file, QSettings::IniFormat);
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
