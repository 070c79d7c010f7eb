#pragma once

#include "modeltable.h"

#include <QByteArray>

// The catalogue rows as C++ initialisers, one line per product, in table order.
class CatalogueWriter
{
public:
    static QByteArray rows(const ModelTable &table);

private:
    static QByteArray row(quint32 vendor, const ProductRow &product, const ModelTraits &model);
};
