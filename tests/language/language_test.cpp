#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QSettings>
#include <gtest/gtest.h>

namespace
{

QStringList lines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split('\n');
}

QStringList vocabulary()
{
    return lines(LANGUAGE_VOCABULARY).filter(QRegularExpression("^[^#]"));
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

bool hasCjk(const QString &text)
{
    return text.contains(QRegularExpression("[\\x{3400}-\\x{4DBF}\\x{4E00}-\\x{9FFF}]"));
}

class LanguageFile : public ::testing::Test
{
protected:
    LanguageFile() : file(SCRIBORA_LANGUAGE_INI, QSettings::IniFormat)
    {
        file.setIniCodec("UTF-8");
    }
    QString text(const char *language, const QString &key)
    {
        return file.value(QString(language) + '/' + key).toString();
    }
    QSettings file;
};

TEST_F(LanguageFile, EachSectionHoldsTheVocabularyOnceAsTexts)
{
    ASSERT_EQ(file.status(), QSettings::NoError);
    const QStringList keys = vocabulary();
    ASSERT_GT(keys.size(), 100);
    for (const char *language : {"English", "ChineseSimplified"}) {
        SCOPED_TRACE(language);
        const QStringList raw = rawKeys(language);
        EXPECT_EQ(QSet<QString>(raw.begin(), raw.end()).size(), raw.size()) << "a repeated key";
        file.beginGroup(language);
        const QStringList read = file.allKeys();
        // A stray quote makes QSettings join lines, so that keys go missing.
        EXPECT_EQ(QSet<QString>(read.begin(), read.end()), QSet<QString>(raw.begin(), raw.end()));
        EXPECT_EQ(QSet<QString>(read.begin(), read.end()), QSet<QString>(keys.begin(), keys.end()));
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
}

TEST_F(LanguageFile, ChineseIsTranslatedAndEnglishIsNot)
{
    const QStringList keys = vocabulary();
    int withCjk = 0;
    QStringList copies;
    for (const QString &key : keys) {
        EXPECT_FALSE(hasCjk(text("English", key))) << key.toStdString();
        const QString chinese = text("ChineseSimplified", key);
        withCjk += hasCjk(chinese);
        if (!hasCjk(chinese) && chinese == text("English", key))
            copies << key;
    }
    // Key names such as Shift or Ctrl, and the web address, stay as they are.
    EXPECT_GE(withCjk * 100, keys.size() * 95);
    EXPECT_LE(copies.size(), 5) << copies.join(", ").toStdString();
}

// A misspelt section would never be chosen and its texts never shown.
TEST_F(LanguageFile, SectionsAreLanguageNamesOfTheProgram)
{
    QSet<QString> names;
    for (const QString &line : lines(LANGUAGE_LOCALES).filter(QRegularExpression("^[^#]")))
        names << line.section(' ', 1);
    ASSERT_EQ(names.size(), 15);
    for (const QString &group : file.childGroups())
        EXPECT_TRUE(names.contains(group)) << group.toStdString();
    EXPECT_TRUE(file.childKeys().isEmpty()) << "keys outside any section";
}

} // namespace
