#pragma once

#include <QDomDocument>

// Creates the nodes of one document; elements come back detached.
class DomFactory
{
public:
    QDomDocument &document() { return m_doc; }
    QDomElement element(const QString &tag);
    QDomElement element(const QString &tag, const QString &text);
    QDomElement element(const QString &tag, int value);
    void appendText(QDomElement &parent, const QString &tag, int value);

private:
    QDomDocument m_doc;
};
