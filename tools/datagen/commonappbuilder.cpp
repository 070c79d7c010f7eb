#include "commonappbuilder.h"

namespace
{

constexpr int kKeyGroups = 4;
constexpr int kRingItems = 4;
constexpr int kPenButtonCount = 3;
constexpr int kMouseSpeed = 5;

} // namespace

CommonAppBuilder::CommonAppBuilder(DomFactory &dom, const QVector<int> &penButtons)
    : m_dom(dom), m_penButtons(penButtons)
{
}

QDomElement CommonAppBuilder::build(const ModelTraits &model)
{
    QDomElement app = m_dom.element(QStringLiteral("CommonAPP"));
    for (int i = 0; i < model.penNum; ++i)
        app.appendChild(pen(i));
    m_dom.appendText(app, QStringLiteral("SelectID"), 0);
    appendKeys(app, model);
    appendRings(app, model);
    return app;
}

// Pen tags count from 1: the reader takes "Pen1" as the first pen.
QDomElement CommonAppBuilder::pen(int index)
{
    QDomElement node = m_dom.element(QStringLiteral("Pen%1").arg(index + 1));
    for (int button = 0; button < kPenButtonCount; ++button)
        node.appendChild(penButton(button));
    node.appendChild(m_dom.element(QStringLiteral("P0"), QStringLiteral("0")));
    node.appendChild(m_dom.element(QStringLiteral("P1X"), QStringLiteral("0.5")));
    node.appendChild(m_dom.element(QStringLiteral("P1Y"), QStringLiteral("0.5")));
    node.appendChild(m_dom.element(QStringLiteral("P2"), QStringLiteral("1")));
    m_dom.appendText(node, QStringLiteral("TablePC"), 1);
    QDomElement relative = m_dom.element(QStringLiteral("RelativeCoords"), 0);
    relative.setAttribute(QStringLiteral("Speed"), kMouseSpeed);
    node.appendChild(relative);
    return node;
}

QDomElement CommonAppBuilder::penButton(int button)
{
    QDomElement node = m_dom.element(QStringLiteral("PenBtn%1").arg(button));
    node.setAttribute(QStringLiteral("id"), 0);
    node.setAttribute(QStringLiteral("Actid"), m_penButtons.at(button));
    return node;
}

// Grouped devices start with only the first group in use, as the remote's own reset does.
void CommonAppBuilder::appendKeys(QDomElement &app, const ModelTraits &model)
{
    if (model.groupKeys == 0) {
        app.appendChild(keyList(QStringLiteral("K"), model));
        return;
    }
    for (int group = 0; group < kKeyGroups; ++group) {
        const QString tag = group == 0 ? QStringLiteral("K") : QStringLiteral("K_%1").arg(group);
        QDomElement node = keyList(tag, model);
        node.setAttribute(QStringLiteral("id"), group == 0 ? 1 : 0);
        app.appendChild(node);
    }
}

QDomElement CommonAppBuilder::keyList(const QString &tag, const ModelTraits &model)
{
    QDomElement node = m_dom.element(tag);
    for (int i = 0; i < model.keyNum; ++i)
        node.appendChild(key(model, i));
    return node;
}

QDomElement CommonAppBuilder::key(const ModelTraits &model, int index)
{
    QDomElement node = m_dom.element(QStringLiteral("K%1").arg(index + 1));
    node.setAttribute(QStringLiteral("id"), 0);
    node.setAttribute(QStringLiteral("Motid"), model.keyMotids.at(index));
    node.setAttribute(QStringLiteral("Actid"), model.keyActions.at(index));
    node.setAttribute(QStringLiteral("Show"), 1);
    return node;
}

// "R" is the first wheel; the second ring slot holds a second wheel or the touch pad,
// and a pen roller takes the slot after the last wheel.
void CommonAppBuilder::appendRings(QDomElement &app, const ModelTraits &model)
{
    if (model.ringNum >= 1)
        app.appendChild(ring(QStringLiteral("R")));
    if (model.ringNum == 2)
        app.appendChild(ring(QStringLiteral("R2")));
    if (model.trackPad != 0) {
        QDomElement touch = ring(QStringLiteral("TR"));
        touch.setAttribute(QStringLiteral("mode"), 0);
        app.appendChild(touch);
    }
    if (model.penRoller) {
        QDomElement roller = ring(QStringLiteral("PR"));
        roller.setAttribute(QStringLiteral("mode"), 0);
        roller.setAttribute(QStringLiteral("Speed"), 0);
        app.appendChild(roller);
    }
}

QDomElement CommonAppBuilder::ring(const QString &tag)
{
    QDomElement node = m_dom.element(tag);
    node.setAttribute(QStringLiteral("id"), 0);
    for (int i = 0; i < kRingItems; ++i) {
        QDomElement item = m_dom.element(QStringLiteral("W%1").arg(i + 1));
        item.setAttribute(QStringLiteral("id"), 0);
        node.appendChild(item);
    }
    return node;
}
