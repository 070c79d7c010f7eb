#pragma once

#include <QFile>
#include <QRect>
#include <QStringList>
#include <gtest/gtest.h>

#include <vector>

// Tables in cases/: one case per line, fields split by blanks, '#' starts a comment.
inline std::vector<QStringList> caseRows(const char *name)
{
    QFile file(QStringLiteral(UI_CASES_DIR "/") + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    std::vector<QStringList> rows;
    for (const QString &line : QString::fromUtf8(file.readAll()).split('\n')) {
        const QStringList fields = line.section('#', 0, 0).split(' ', Qt::SkipEmptyParts);
        if (!fields.isEmpty())
            rows.push_back(fields);
    }
    EXPECT_FALSE(rows.empty()) << name;
    return rows;
}

// "1,2,3" as numbers; "-" is an empty list.
inline QList<int> ints(const QString &field)
{
    QList<int> numbers;
    for (const QString &number : field.split(',', Qt::SkipEmptyParts))
        numbers << number.toInt();
    return field == "-" ? QList<int>() : numbers;
}

inline QPoint point(const QString &field)
{
    return QPoint(ints(field).value(0), ints(field).value(1));
}
