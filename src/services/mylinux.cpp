#include "mylinux.h"

#include <QDebug>
#include <QLocale>

namespace mylinux
{

namespace
{

struct LanguageRow {
    QLocale::Language language;
    // AnyScript matches every script of the language.
    QLocale::Script script;
    const char *name;
};

constexpr LanguageRow kLanguages[] = {
    {QLocale::Chinese, QLocale::SimplifiedHanScript, "ChineseSimplified"},
    {QLocale::Chinese, QLocale::TraditionalHanScript, "ChineseTraditional"},
    {QLocale::English, QLocale::AnyScript, "English"},
    {QLocale::German, QLocale::AnyScript, "German"},
    {QLocale::French, QLocale::AnyScript, "French"},
    {QLocale::Japanese, QLocale::AnyScript, "Japanese"},
    {QLocale::Korean, QLocale::AnyScript, "Korean"},
    {QLocale::Russian, QLocale::AnyScript, "Russian"},
    {QLocale::Spanish, QLocale::AnyScript, "Spanish"},
    {QLocale::Italian, QLocale::AnyScript, "Italian"},
    {QLocale::Thai, QLocale::AnyScript, "Thai"},
    {QLocale::Portuguese, QLocale::AnyScript, "Portuguese"},
    {QLocale::Vietnamese, QLocale::AnyScript, "Vietnamese"},
    {QLocale::Polish, QLocale::AnyScript, "Polish"},
    {QLocale::Turkish, QLocale::AnyScript, "Turkish"},
};

} // namespace

QString get_user_language_setting()
{
    const QLocale locale;
    qDebug() << "user language:" << QLocale::languageToString(locale.language());
    for (const LanguageRow &row : kLanguages) {
        if (row.language == locale.language() &&
            (row.script == QLocale::AnyScript || row.script == locale.script()))
            return QString::fromLatin1(row.name);
    }
    return QStringLiteral("English");
}

} // namespace mylinux
