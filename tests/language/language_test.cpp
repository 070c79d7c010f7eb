#include <QFile>
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
    for (const char *language : {"English", "ChineseSimplified"}) {
        SCOPED_TRACE(language);
        const QStringList raw = rawKeys(language);
        EXPECT_EQ(asSet(raw).size(), raw.size()) << "a repeated key";
        file.beginGroup(language);
        // A stray quote makes QSettings join lines, so that keys go missing.
        EXPECT_EQ(asSet(file.allKeys()), asSet(raw));
        EXPECT_EQ(asSet(file.allKeys()), asSet(keys));
        for (const QString &key : keys) {
            // An unquoted comma makes a list.
            EXPECT_EQ(file.value(key).userType(), QMetaType::QString) << key.toStdString();
            EXPECT_FALSE(file.value(key).toString().isEmpty()) << key.toStdString();
        }
        // The mapping page picks one of the two words by device type.
        const QStringList words = file.value("Device.TabletArea").toString().split('/');
        EXPECT_EQ(words.size(), 2);
        EXPECT_FALSE(words.contains(QString()));
        file.endGroup();
    }
    // Chinese is translated and English is not; key names such as Shift or Ctrl, and the web
    // address, stay as they are.
    int translated = 0;
    QStringList copies;
    for (const QString &key : keys) {
        const QString english = file.value("English/" + key).toString();
        const QString chinese = file.value("ChineseSimplified/" + key).toString();
        EXPECT_EQ(cjkCount(english), 0) << key.toStdString();
        translated += cjkCount(chinese) > 0;
        if (chinese == english)
            copies << key;
    }
    EXPECT_GE(translated * 100, keys.size() * 95);
    EXPECT_LE(copies.size(), 5) << copies.join(", ").toStdString();
    // A misspelt section would never be chosen and its texts never shown.
    QSet<QString> names;
    for (const QString &line : lines(LANGUAGE_LOCALES))
        names << line.section(' ', 1);
    ASSERT_EQ(names.size(), 15);
    EXPECT_TRUE(names.contains(asSet(file.childGroups())));
    EXPECT_TRUE(file.childKeys().isEmpty()) << "keys outside any section";
}

} // namespace
