#pragma once

#include "domfactory.h"
#include "modeltable.h"

#include <QByteArray>

// The installed config.xml: one section per model with its default settings.
class ProfileBuilder
{
public:
    static QByteArray text(const ModelTable &table);

private:
    explicit ProfileBuilder(const ModelTable &table);
    QByteArray serialise();
    QDomElement section(const ModelTraits &model);
    QDomElement deviceInfo(const ModelTraits &model);
    QDomElement common();
    QDomElement rectangle(const QString &tag, const QString &attribute, const QString &prefix);
    QDomElement orientAreas();
    QDomElement calibration();

    const ModelTable &m_table;
    DomFactory m_dom;
};
