#include "zelkdevice.h"

#include <QFile>
#include <QSet>
#include <QSettings>
#include <gtest/gtest.h>

namespace
{

QString pidKey(uint32_t pid)
{
    return QStringLiteral("PID_") +
           QStringLiteral("%1").arg(pid, 4, 16, QLatin1Char('0')).toUpper();
}

QSet<QString> cataloguePidKeys()
{
    QSet<QString> keys;
    for (const ZelkDevice &row : zelkDevList)
        keys.insert(pidKey(row.pid));
    return keys;
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class NameConfig : public ::testing::Test
{
protected:
    NameConfig() : m_names(QStringLiteral(DATA_TEST_NAME_CONFIG_INI), QSettings::IniFormat) {}

    void SetUp() override { ASSERT_EQ(m_names.status(), QSettings::NoError); }

    QStringList keysOf(const QString &group)
    {
        m_names.beginGroup(group);
        const QStringList keys = m_names.childKeys();
        m_names.endGroup();
        return keys;
    }

    QSettings m_names;
};

} // namespace

TEST_F(NameConfig, EveryCatalogueProductHasAShowName)
{
    for (const ZelkDevice &row : zelkDevList) {
        const QVariant name = m_names.value(QStringLiteral("Common/") + pidKey(row.pid));
        EXPECT_EQ(name.type(), QVariant::String) << qPrintable(pidKey(row.pid));
        EXPECT_FALSE(name.toString().isEmpty()) << qPrintable(pidKey(row.pid));
    }
}

TEST_F(NameConfig, NamesOnlyCatalogueProducts)
{
    const QSet<QString> catalogue = cataloguePidKeys();
    const QStringList common = keysOf(QStringLiteral("Common"));
    EXPECT_EQ(QSet<QString>(common.begin(), common.end()), catalogue);
    const QStringList dongles = keysOf(QStringLiteral("Dongle"));
    EXPECT_FALSE(dongles.isEmpty());
    for (const QString &key : dongles) {
        EXPECT_TRUE(catalogue.contains(key)) << qPrintable(key);
        EXPECT_FALSE(m_names.value(QStringLiteral("Dongle/") + key).toString().isEmpty());
    }
}

// An unquoted comma would turn the line into a list and the window would show nothing.
TEST_F(NameConfig, CopyrightReadsAsOneText)
{
    const QVariant text = m_names.value(QStringLiteral("CopyRight/CopyRightText"));
    EXPECT_EQ(text.type(), QVariant::String);
    EXPECT_FALSE(text.toString().isEmpty());
}

TEST(LanguageFile, IsInstalledBesideTheNames)
{
    const QByteArray source = readAll(QStringLiteral(DATA_TEST_LANGUAGE_SOURCE));
    ASSERT_FALSE(source.isEmpty());
    EXPECT_EQ(readAll(QStringLiteral(DATA_TEST_LANGUAGE_INI)), source);
}
