#pragma once

#include "modeltable.h"

#include <QByteArray>

// name_config.ini: copyright line and the show name of every product id.
class NameConfigWriter
{
public:
    static QByteArray text(const ModelTable &table);

private:
    static QByteArray commonGroup(const ModelTable &table);
    static QByteArray dongleGroup(const ModelTable &table);
    static QByteArray entry(const QString &key, const QString &value);
};
