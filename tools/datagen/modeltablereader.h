#pragma once

#include "modeltable.h"

#include <QJsonObject>

// Turns models.json into a ModelTable; the first problem found ends the read.
class ModelTableReader
{
public:
    bool read(const QString &path, ModelTable &table);
    QString error() const { return m_error; }

private:
    bool parseRoot(const QJsonObject &root, ModelTable &table);
    bool parseModel(const QJsonObject &obj, const QVector<int> &defaultKeys, ModelTraits &model);
    bool parseTraits(const QJsonObject &obj, ModelTraits &model);
    bool parseKeyLists(const QJsonObject &obj, const QVector<int> &defaultKeys, ModelTraits &model);
    bool parseProduct(const QJsonObject &obj, ProductRow &row);
    bool intField(const QJsonObject &obj, const QString &key, int &out);
    bool intList(const QJsonValue &value, const QString &what, QVector<int> &out);
    bool hexField(const QJsonObject &obj, const QString &key, quint32 &out);
    bool textField(const QJsonObject &obj, const QString &key, QString &out);
    bool fail(const QString &why);

    QString m_error;
    QString m_context;
};
