#pragma once

#include <QString>

class QSettings;

// The texts of the current language, read from language.ini.
class LanguageTexts
{
public:
    LanguageTexts() = delete;

    static QSettings *Language_Config;
};

// Looks a text up in the current language; empty when there is none.
QString languageText(const char *key);
// The same, with the built-in text for an empty result.
QString languageText(const char *key, const QString &fallback);

// Sets a widget's text in the current language; with no text the designer's text stands.
template <typename Widget> void setLanguageText(Widget *widget, const char *key)
{
    const QString text = languageText(key);
    if (!text.isEmpty())
        widget->setText(text);
}
