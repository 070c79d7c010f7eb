#include "languagetexts.h"

#include <QSettings>

QSettings *LanguageTexts::Language_Config = nullptr;

QString languageText(const char *key)
{
    if (!LanguageTexts::Language_Config)
        return {};
    return LanguageTexts::Language_Config->value(QLatin1String(key)).toString();
}

QString languageText(const char *key, const QString &fallback)
{
    const QString text = languageText(key);
    return text.isEmpty() ? fallback : text;
}
