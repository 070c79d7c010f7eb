#include "profilebuilder.h"

#include "commonappbuilder.h"

#include <QTextStream>

namespace
{

constexpr int kIndent = 2;
constexpr int kOrientations = 4;

} // namespace

QByteArray ProfileBuilder::text(const ModelTable &table)
{
    ProfileBuilder builder(table);
    return builder.serialise();
}

ProfileBuilder::ProfileBuilder(const ModelTable &table) : m_table(table) {}

QByteArray ProfileBuilder::serialise()
{
    QDomDocument &doc = m_dom.document();
    doc.appendChild(doc.createProcessingInstruction(
        QStringLiteral("xml"), QStringLiteral("version=\"1.0\" encoding=\"UTF-8\"")));
    QDomElement root = m_dom.element(QStringLiteral("Config"));
    root.setAttribute(QStringLiteral("version"), m_table.configVersion);
    doc.appendChild(root);
    for (const ModelTraits &model : m_table.models)
        root.appendChild(section(model));
    QByteArray out;
    QTextStream stream(&out, QIODevice::WriteOnly);
    stream.setCodec("UTF-8");
    doc.save(stream, kIndent);
    stream.flush();
    return out;
}

QDomElement ProfileBuilder::section(const ModelTraits &model)
{
    QDomElement node = m_dom.element(model.name);
    node.appendChild(deviceInfo(model));
    node.appendChild(common());
    node.appendChild(CommonAppBuilder(m_dom, m_table.penButtons).build(model));
    node.appendChild(m_dom.element(QStringLiteral("Apps")));
    return node;
}

QDomElement ProfileBuilder::deviceInfo(const ModelTraits &model)
{
    QDomElement node = m_dom.element(QStringLiteral("DeviceInfo"));
    m_dom.appendText(node, QStringLiteral("DeviceRingNum"), model.ringNum);
    m_dom.appendText(node, QStringLiteral("DeviceKeyNum"), model.keyNum);
    m_dom.appendText(node, QStringLiteral("DevicePenType"), model.penType);
    m_dom.appendText(node, QStringLiteral("DeviceControl"), model.control);
    m_dom.appendText(node, QStringLiteral("DeviceTrackPad"), model.trackPad);
    m_dom.appendText(node, QStringLiteral("SupportGroupKeys"), model.groupKeys);
    m_dom.appendText(node, QStringLiteral("DeviceKeyDirection"), model.keyDirection);
    m_dom.appendText(node, QStringLiteral("DevicePenNum"), model.penNum);
    m_dom.appendText(node, QStringLiteral("PenMoveInTablet"), 0);
    m_dom.appendText(node, QStringLiteral("DeviceCurPenID"), 0);
    return node;
}

// Zero sizes stand for "all of it": the whole desktop and the whole tablet, filled in at load.
QDomElement ProfileBuilder::common()
{
    QDomElement node = m_dom.element(QStringLiteral("Common"));
    node.appendChild(
        rectangle(QStringLiteral("ScreenMapping"), QStringLiteral("id"), QStringLiteral("S")));
    node.appendChild(rectangle(QStringLiteral("TabletPannel"), QStringLiteral("Orientation"),
                               QStringLiteral("T")));
    m_dom.appendText(node, QStringLiteral("DisableInfo"), 0);
    m_dom.appendText(node, QStringLiteral("DisableQuickKey"), 0);
    m_dom.appendText(node, QStringLiteral("DisablePressure"), 0);
    m_dom.appendText(node, QStringLiteral("DisableSlope"), 0);
    node.appendChild(orientAreas());
    node.appendChild(calibration());
    return node;
}

QDomElement ProfileBuilder::rectangle(const QString &tag, const QString &attribute,
                                      const QString &prefix)
{
    QDomElement node = m_dom.element(tag);
    node.setAttribute(attribute, 0);
    for (const char *field : {"X", "Y", "W", "H"})
        m_dom.appendText(node, prefix + QLatin1String(field), 0);
    return node;
}

QDomElement ProfileBuilder::orientAreas()
{
    QDomElement node = m_dom.element(QStringLiteral("OrientAreas"));
    for (int i = 0; i < kOrientations; ++i) {
        QDomElement area = m_dom.element(QStringLiteral("OrientArea"));
        for (const char *field : {"X", "Y", "W", "H"})
            area.setAttribute(QLatin1String(field), 0);
        node.appendChild(area);
    }
    return node;
}

// Scale 1 and centre offset 1 leave pen positions as mapped: an uncalibrated screen.
QDomElement ProfileBuilder::calibration()
{
    QDomElement node = m_dom.element(QStringLiteral("SC"));
    for (const char *term : {"fKX", "fKY", "fXLC", "fYLC"})
        node.setAttribute(QLatin1String(term), 1);
    return node;
}
