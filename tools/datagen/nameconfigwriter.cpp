#include "nameconfigwriter.h"

#include <QRegularExpression>

namespace
{

QString pidKey(quint32 pid)
{
    return QStringLiteral("PID_") +
           QString::number(pid, 16).toUpper().rightJustified(4, QLatin1Char('0'));
}

// QSettings splits an unquoted value at commas into a list, and ';' starts a comment.
QString iniValue(const QString &value)
{
    static const QRegularExpression special(QStringLiteral("[,;=#]"));
    if (!value.contains(special))
        return value;
    return QLatin1Char('"') + value + QLatin1Char('"');
}

} // namespace

QByteArray NameConfigWriter::text(const ModelTable &table)
{
    QByteArray out = "[CopyRight]\n";
    out += entry(QStringLiteral("CopyRightText"), table.copyright);
    out += "\n[Common]\n" + commonGroup(table);
    out += "\n[Dongle]\n" + dongleGroup(table);
    return out;
}

QByteArray NameConfigWriter::commonGroup(const ModelTable &table)
{
    QByteArray out;
    for (const ModelTraits &model : table.models) {
        for (const ProductRow &product : model.products)
            out += entry(pidKey(product.pid), model.showName);
    }
    return out;
}

QByteArray NameConfigWriter::dongleGroup(const ModelTable &table)
{
    QByteArray out;
    for (const ModelTraits &model : table.models) {
        for (const ProductRow &product : model.products) {
            if (!product.dongleName.isEmpty())
                out += entry(pidKey(product.pid), product.dongleName);
        }
    }
    return out;
}

QByteArray NameConfigWriter::entry(const QString &key, const QString &value)
{
    return (key + QLatin1Char('=') + iniValue(value) + QLatin1Char('\n')).toLatin1();
}
