#pragma once
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

inline QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline QString testData(const QString &name)
{
    return QStringLiteral(PROFILES_TEST_DATA "/") + name;
}

// SCRIBORA_UPDATE_GOLDEN=1 rewrites the golden file instead; review the diff before committing.
inline void expectGolden(const QByteArray &actual, const QString &golden)
{
    if (qEnvironmentVariableIsSet("SCRIBORA_UPDATE_GOLDEN")) {
        QFile file(golden);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(actual);
    }
    EXPECT_EQ(actual.toStdString(), readAll(golden).toStdString()) << golden.toStdString();
}
