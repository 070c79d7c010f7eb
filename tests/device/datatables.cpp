#include "devicefixture.h"

#include <QFile>

Bytes bytes(const QString &text)
{
    Bytes result;
    for (const QString &token : text.split(' ', Qt::SkipEmptyParts)) {
        const QStringList run = token.mid(1).split('@');
        if (token.startsWith(".."))
            result.resize(token.mid(2).toUInt(), 0);
        else if (token.startsWith('*'))
            for (int i = 0; i < run[0].toInt(); ++i)
                result.push_back(uint8_t(run[1].toInt(nullptr, 16) + i));
        else
            result.push_back(uint8_t(token.toInt(nullptr, 16)));
    }
    return result;
}

std::vector<QStringList> table(const QString &name)
{
    QFile file(DATA_DIR "/" + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    std::vector<QStringList> rows;
    for (const QString &line : QString::fromUtf8(file.readAll()).split('\n')) {
        if (!line.trimmed().isEmpty() && !line.startsWith('#'))
            rows.push_back(line.split('|'));
    }
    return rows;
}
