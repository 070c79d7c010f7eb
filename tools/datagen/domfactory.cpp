#include "domfactory.h"

QDomElement DomFactory::element(const QString &tag)
{
    return m_doc.createElement(tag);
}

QDomElement DomFactory::element(const QString &tag, const QString &text)
{
    QDomElement node = m_doc.createElement(tag);
    node.appendChild(m_doc.createTextNode(text));
    return node;
}

QDomElement DomFactory::element(const QString &tag, int value)
{
    return element(tag, QString::number(value));
}

void DomFactory::appendText(QDomElement &parent, const QString &tag, int value)
{
    parent.appendChild(element(tag, value));
}
