#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QSettings>
#include <gtest/gtest.h>

namespace
{

QStringList lines(const char *path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly)
               ? QString::fromUtf8(file.readAll()).split('\n').filter(QRegularExpression("^[^#]"))
               : QStringList();
}

QSet<QString> asSet(const QStringList &list)
{
    return QSet<QString>(list.begin(), list.end());
}

// Keys in file order, read without QSettings, so lines it would swallow or merge show up.
QStringList rawKeys(const QString &section)
{
    QStringList keys;
    QString current;
    for (const QString &raw : lines(SCRIBORA_LANGUAGE_INI)) {
        const QString line = raw.trimmed();
        if (line.startsWith('[') && line.endsWith(']'))
            current = line.mid(1, line.size() - 2);
        else if (line.indexOf('=') > 0 && !line.startsWith(';') && current == section)
            keys << line.left(line.indexOf('=')).trimmed();
    }
    return keys;
}

// What a translation carries over unchanged: key names in brackets, such as "(Ctrl+S)" or
// "[B]", and arguments.
std::string placeholders(const QString &text)
{
    static const QRegularExpression token("%\\d+|\\([^()\\s]+\\)|\\[[^\\]\\s]+\\]");
    QStringList found;
    for (auto it = token.globalMatch(text); it.hasNext();)
        found << it.next().captured();
    return found.join(' ').toStdString();
}

int cjkCount(const QString &text)
{
    return text.count(QRegularExpression("[\\x{3400}-\\x{4DBF}\\x{4E00}-\\x{9FFF}]"));
}

TEST(LanguageFile, EachSectionHoldsTheVocabularyOnceAsTexts)
{
    QSettings file(SCRIBORA_LANGUAGE_INI, QSettings::IniFormat);
    file.setIniCodec("UTF-8");
    ASSERT_EQ(file.status(), QSettings::NoError);
    const QStringList keys = lines(LANGUAGE_VOCABULARY);
    ASSERT_GT(keys.size(), 100);
    // A misspelt or missing section would never be chosen and its texts never shown.
    QSet<QString> names;
    for (const QString &line : lines(LANGUAGE_LOCALES))
        names << line.section(' ', 1);
    ASSERT_EQ(names.size(), 15);
    EXPECT_EQ(asSet(file.childGroups()), names);
    EXPECT_TRUE(file.childKeys().isEmpty()) << "keys outside any section";
    QHash<QString, QString> english;
    for (const QString &key : keys)
        english[key] = file.value("English/" + key).toString();
    for (const QString &language : names) {
        SCOPED_TRACE(language.toStdString());
        const QStringList raw = rawKeys(language);
        EXPECT_EQ(asSet(raw).size(), raw.size()) << "a repeated key";
        file.beginGroup(language);
        // A stray quote makes QSettings join lines, so that keys go missing.
        EXPECT_EQ(asSet(file.allKeys()), asSet(raw));
        EXPECT_EQ(asSet(file.allKeys()), asSet(keys));
        QStringList copies;
        for (const QString &key : keys) {
            // An unquoted comma makes a list.
            EXPECT_EQ(file.value(key).userType(), QMetaType::QString) << key.toStdString();
            const QString text = file.value(key).toString();
            EXPECT_FALSE(text.isEmpty()) << key.toStdString();
            EXPECT_EQ(placeholders(text), placeholders(english[key])) << key.toStdString();
            if (text == english[key])
                copies << key;
        }
        // Key names such as Shift or Ctrl, and the web address, stay as they are; a section
        // left in English does not.
        if (language != "English") {
            EXPECT_LE(copies.size() * 10, keys.size()) << copies.join(", ").toStdString();
        }
        // The mapping page picks one of the two words by device type.
        const QStringList words = file.value("Device.TabletArea").toString().split('/');
        EXPECT_EQ(words.size(), 2);
        EXPECT_FALSE(words.contains(QString()));
        file.endGroup();
    }
    // Chinese is written in Chinese and English is not.
    int translated = 0;
    for (const QString &key : keys) {
        EXPECT_EQ(cjkCount(english[key]), 0) << key.toStdString();
        translated += cjkCount(file.value("ChineseSimplified/" + key).toString()) > 0;
    }
    EXPECT_GE(translated * 100, keys.size() * 95);
}

} // namespace
