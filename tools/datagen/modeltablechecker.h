#pragma once

#include "modeltable.h"

#include <QSet>

// Limits that the driver's fixed arrays and file formats put on the table.
class ModelTableChecker
{
public:
    bool check(const ModelTable &table);
    QString error() const { return m_error; }

private:
    bool checkModel(const ModelTraits &model);
    bool checkCounts(const ModelTraits &model);
    bool checkKeys(const ModelTraits &model);
    bool checkRings(const ModelTraits &model);
    bool checkProduct(const ProductRow &row);
    bool fail(const QString &why);

    QSet<QString> m_names;
    QSet<quint32> m_pids;
    int m_rows = 0;
    QString m_context;
    QString m_error;
};
