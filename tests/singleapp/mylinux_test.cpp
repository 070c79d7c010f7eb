#include "mylinux.h"

#include <QLocale>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace
{

struct LocaleRow {
    std::string label;
    QLocale locale;
    // What Qt makes of the locale; checked first so a surprise in Qt's data shows up as such.
    QLocale::Language language;
    QLocale::Script script;
    QString expected;
};

// Keeps gtest from dumping the row's bytes into test names and messages.
void PrintTo(const LocaleRow &row, std::ostream *out)
{
    *out << row.label;
}

std::vector<LocaleRow> rows()
{
    const auto row = [](const char *name, QLocale::Language language, QLocale::Script script,
                        const char *expected) {
        return LocaleRow{name, QLocale(QString::fromLatin1(name)), language, script,
                         QString::fromLatin1(expected)};
    };
    return {
        row("zh_CN", QLocale::Chinese, QLocale::SimplifiedHanScript, "ChineseSimplified"),
        row("zh_SG", QLocale::Chinese, QLocale::SimplifiedHanScript, "ChineseSimplified"),
        // The script decides, not the country.
        row("zh_Hans_HK", QLocale::Chinese, QLocale::SimplifiedHanScript, "ChineseSimplified"),
        row("zh_TW", QLocale::Chinese, QLocale::TraditionalHanScript, "ChineseTraditional"),
        row("zh_HK", QLocale::Chinese, QLocale::TraditionalHanScript, "ChineseTraditional"),
        row("zh_MO", QLocale::Chinese, QLocale::TraditionalHanScript, "ChineseTraditional"),
        // Qt has no Latin-script Chinese and falls back to the simplified script.
        LocaleRow{"zh_Latn_CN", QLocale(QLocale::Chinese, QLocale::LatinScript, QLocale::China),
                  QLocale::Chinese, QLocale::SimplifiedHanScript,
                  QStringLiteral("ChineseSimplified")},
        row("en_US", QLocale::English, QLocale::LatinScript, "English"),
        row("en_GB", QLocale::English, QLocale::LatinScript, "English"),
        row("de_DE", QLocale::German, QLocale::LatinScript, "German"),
        row("de_AT", QLocale::German, QLocale::LatinScript, "German"),
        row("fr_FR", QLocale::French, QLocale::LatinScript, "French"),
        row("fr_CA", QLocale::French, QLocale::LatinScript, "French"),
        row("ja_JP", QLocale::Japanese, QLocale::JapaneseScript, "Japanese"),
        row("ko_KR", QLocale::Korean, QLocale::KoreanScript, "Korean"),
        row("ru_RU", QLocale::Russian, QLocale::CyrillicScript, "Russian"),
        row("es_ES", QLocale::Spanish, QLocale::LatinScript, "Spanish"),
        row("es_MX", QLocale::Spanish, QLocale::LatinScript, "Spanish"),
        row("it_IT", QLocale::Italian, QLocale::LatinScript, "Italian"),
        row("th_TH", QLocale::Thai, QLocale::ThaiScript, "Thai"),
        row("pt_BR", QLocale::Portuguese, QLocale::LatinScript, "Portuguese"),
        row("pt_PT", QLocale::Portuguese, QLocale::LatinScript, "Portuguese"),
        row("vi_VN", QLocale::Vietnamese, QLocale::LatinScript, "Vietnamese"),
        row("pl_PL", QLocale::Polish, QLocale::LatinScript, "Polish"),
        row("tr_TR", QLocale::Turkish, QLocale::LatinScript, "Turkish"),
        row("nl_NL", QLocale::Dutch, QLocale::LatinScript, "English"),
        row("sv_SE", QLocale::Swedish, QLocale::LatinScript, "English"),
        row("uk_UA", QLocale::Ukrainian, QLocale::CyrillicScript, "English"),
        row("ar_EG", QLocale::Arabic, QLocale::ArabicScript, "English"),
        row("C", QLocale::C, QLocale::AnyScript, "English"),
    };
}

class UserLanguage : public ::testing::TestWithParam<LocaleRow>
{
protected:
    void SetUp() override { m_saved = QLocale(); }
    void TearDown() override { QLocale::setDefault(m_saved); }

private:
    QLocale m_saved;
};

} // namespace

TEST_P(UserLanguage, FollowsDefaultLocale)
{
    const LocaleRow &row = GetParam();
    QLocale::setDefault(row.locale);
    const QLocale current;
    ASSERT_EQ(current.language(), row.language) << current.name().toStdString();
    ASSERT_EQ(current.script(), row.script) << current.name().toStdString();
    EXPECT_EQ(mylinux::get_user_language_setting(), row.expected);
}

INSTANTIATE_TEST_SUITE_P(Locales, UserLanguage, ::testing::ValuesIn(rows()),
                         [](const ::testing::TestParamInfo<LocaleRow> &info) {
                             return info.param.label;
                         });

// The lookup must not be stuck on the first locale it saw.
TEST(UserLanguageSwitch, FollowsLaterChangesOfTheDefault)
{
    const QLocale saved;
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    const QString german = mylinux::get_user_language_setting();
    QLocale::setDefault(QLocale(QStringLiteral("zh_TW")));
    const QString traditional = mylinux::get_user_language_setting();
    QLocale::setDefault(saved);
    EXPECT_EQ(german, QStringLiteral("German"));
    EXPECT_EQ(traditional, QStringLiteral("ChineseTraditional"));
}
