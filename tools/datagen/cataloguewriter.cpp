#include "cataloguewriter.h"

QByteArray CatalogueWriter::rows(const ModelTable &table)
{
    QByteArray out;
    for (const ModelTraits &model : table.models) {
        for (const ProductRow &product : model.products)
            out += row(table.vendor, product, model);
    }
    return out;
}

QByteArray CatalogueWriter::row(quint32 vendor, const ProductRow &product, const ModelTraits &model)
{
    return QStringLiteral("{0x%1, 0x%2, %3, %4, %5, %6, \"%7\"},\n")
        .arg(QString::number(vendor, 16).toUpper().rightJustified(4, QLatin1Char('0')),
             QString::number(product.pid, 16).toUpper().rightJustified(4, QLatin1Char('0')))
        .arg(product.interfaceNumber)
        .arg(product.collection)
        .arg(product.reportMode)
        .arg(model.deviceType)
        .arg(model.name)
        .toLatin1();
}
