#include "cglobaldata.h"
#include "mylinux.h"

#include <QFile>
#include <QLabel>
#include <QLocale>
#include <QSettings>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace
{

QStringList g_debugLines;

void collectDebug(QtMsgType type, const QMessageLogContext &, const QString &msg)
{
    if (type == QtDebugMsg)
        g_debugLines << msg;
}

TEST(UserLanguageLog, NamesTheLocaleLanguage)
{
    const QLocale saved;
    QLocale::setDefault(QLocale(QStringLiteral("nl_NL")));
    g_debugLines.clear();
    const QtMessageHandler previous = qInstallMessageHandler(collectDebug);
    mylinux::get_user_language_setting();
    qInstallMessageHandler(previous);
    QLocale::setDefault(saved);
    ASSERT_EQ(g_debugLines.size(), 1);
    EXPECT_TRUE(g_debugLines.first().contains(QLatin1String("Dutch")))
        << g_debugLines.first().toStdString();
}

const char kDesigner[] = "Built-in";

struct LookupCase {
    bool fileExists;
    const char *language;
    const char *key;
    // kDesigner when the widget keeps its own text.
    const char *shown;
};

class TextLookup : public ::testing::TestWithParam<LookupCase>
{
protected:
    void SetUp() override
    {
        const QString path = m_folder.filePath(QStringLiteral("language.ini"));
        if (GetParam().fileExists) {
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write("[English]\nCommon.ok=OK\nCommon.cancel=Cancel\nCommon.close=\n"
                       "[ChineseSimplified]\nCommon.ok=\xe7\xa1\xae\xe5\xae\x9a\n");
        }
        CGlobalData::Language_Config = new QSettings(path, QSettings::IniFormat);
        CGlobalData::Language_Config->setIniCodec("UTF-8");
        CGlobalData::Language_Config->beginGroup(QLatin1String(GetParam().language));
    }

    void TearDown() override
    {
        delete CGlobalData::Language_Config;
        CGlobalData::Language_Config = nullptr;
    }

private:
    QTemporaryDir m_folder;
};

TEST_P(TextLookup, EmptyOrMissingTextKeepsTheBuiltInOne)
{
    const QString shown = QString::fromUtf8(GetParam().shown);
    QLabel label{QString::fromLatin1(kDesigner)};
    setLanguageText(&label, GetParam().key);
    EXPECT_EQ(label.text(), shown);
    EXPECT_EQ(languageText(GetParam().key, QLatin1String(kDesigner)), shown);
    EXPECT_EQ(languageText(GetParam().key).isEmpty(), shown == QLatin1String(kDesigner));
}

INSTANTIATE_TEST_SUITE_P(Texts, TextLookup,
                         ::testing::Values(LookupCase{true, "English", "Common.ok", "OK"},
                                           LookupCase{true, "English", "Common.close", kDesigner},
                                           LookupCase{true, "English", "Common.retry", kDesigner},
                                           LookupCase{true, "ChineseSimplified", "Common.ok",
                                                      "\xe7\xa1\xae\xe5\xae\x9a"},
                                           // No borrowing from another language.
                                           LookupCase{true, "ChineseSimplified", "Common.cancel",
                                                      kDesigner},
                                           LookupCase{true, "German", "Common.ok", kDesigner},
                                           LookupCase{false, "English", "Common.ok", kDesigner}));

} // namespace
