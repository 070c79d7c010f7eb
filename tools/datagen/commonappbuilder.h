#pragma once

#include "domfactory.h"
#include "modeltable.h"

// The CommonAPP block of a model: pens, selected key group, keys and rings.
class CommonAppBuilder
{
public:
    CommonAppBuilder(DomFactory &dom, const QVector<int> &penButtons);
    QDomElement build(const ModelTraits &model);

private:
    QDomElement pen(int index);
    QDomElement penButton(int button);
    QDomElement keyList(const QString &tag, const ModelTraits &model);
    QDomElement key(const ModelTraits &model, int index);
    void appendKeys(QDomElement &app, const ModelTraits &model);
    void appendRings(QDomElement &app, const ModelTraits &model);
    QDomElement ring(const QString &tag);

    DomFactory &m_dom;
    QVector<int> m_penButtons;
};
