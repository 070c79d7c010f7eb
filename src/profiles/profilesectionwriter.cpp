#include "profilesectionwriter.h"

#include "profiletags.h"

#include <QDebug>
#include <QtGlobal>

namespace
{

// A template "app" carries this many keys and wheel items whatever the device has.
constexpr int kTemplateKeys = 8;
constexpr int kTemplateWheelItems = 5;

// The roller ring is whichever ring the reader marked as one.
int rollerRing(const _stAppConfigNode &node)
{
    if (node.Ring[0].type == 3)
        return 0;
    return node.Ring[1].type == 3 ? 1 : -1;
}

int countApps(const QDomElement &appList)
{
    int count = 0;
    for (QDomElement app = appList.firstChildElement("app"); !app.isNull();
         app = app.nextSiblingElement("app"))
        ++count;
    return count;
}

} // namespace

ProfileSectionWriter::ProfileSectionWriter(QDomDocument document, const stTablet_XMLData *data)
    : m_document(document), m_data(data)
{
}

void ProfileSectionWriter::writeDeviceInfo(QDomElement deviceInfo)
{
    if (deviceInfo.hasChildNodes())
        writeValues(deviceInfo, *m_data, kDeviceInfoValues);
}

// The orientation areas are never written. An eighth element of another
// name than "SC" means "no calibration" to the reader; it stays so.
void ProfileSectionWriter::writeCommon(QDomElement common)
{
    int position = 1;
    for (QDomElement child = common.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement(), ++position) {
        if (position == kCalibrationPosition && !isCalibration(child))
            continue;
        for (const CommonValue &entry : kCommonValues) {
            if (entry.position == position)
                entry.value.write(child, *m_data);
        }
    }
}

void ProfileSectionWriter::writeCommonApp(QDomElement commonApp)
{
    writeProfile(commonApp, m_data->CommonAPP);
}

// "path" is written by writeApp.
void ProfileSectionWriter::writeProfile(QDomElement parent, const _stAppConfigNode &node)
{
    for (QDomElement child = parent.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        switch (profileElement(child.tagName())) {
        case ProfileElement::Path:
            break;
        case ProfileElement::Pen: {
            const int index = penIndexFromTag(child.tagName());
            if (index >= 0)
                writePen(child, node.Pen[index]);
            break;
        }
        case ProfileElement::SelectID:
            // The reader takes an application's value from an attribute, so
            // it comes back as 0 there: intended.
            setElementText(child, QString::number(node.SelectID));
            break;
        case ProfileElement::Keys:
            writeKeyElement(child, node);
            break;
        case ProfileElement::Ring:
            writeRing(child, node);
            break;
        }
    }
}

void ProfileSectionWriter::writePen(QDomElement element, const stPenConfig &pen)
{
    writeValues(element, pen, kPenValues);
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const int button = penButtonFromTag(child.tagName());
        if (button < 0)
            continue;
        writeValues(child, pen.PenBtn[button], kPenButtonValues);
        writeFunction(child, pen.PenBtn[button].func, pen.PenBtn[button].id == 1);
    }
    if (!element.firstChildElement("PenBtn0").isNull())
        return;
    QDomElement eraser = m_document.createElement("PenBtn0");
    writeValues(eraser, pen.PenBtn[0], kPenButtonValues, Values::All);
    writeFunction(eraser, pen.PenBtn[0].func, pen.PenBtn[0].id == 1);
    element.appendChild(eraser);
}

// "Motid", "Actid" and "Show" are traits of the model and never written.
void ProfileSectionWriter::writeKeyElement(QDomElement element, const _stAppConfigNode &node)
{
    if (!m_data->SupportGroupKeys) {
        writeKeys(element, node.Key, Values::Saved);
        return;
    }
    const int group = groupIndexFromTag(element.tagName());
    if (group >= 0)
        writeKeyGroup(element, node.KeyGroup[group], Values::Saved);
}

void ProfileSectionWriter::writeRing(QDomElement element, const _stAppConfigNode &node)
{
    const QString tag = element.tagName();
    const int index = ringFromTag(tag, rollerRing(node));
    if (index < 0)
        return;
    const stRingConfig &ring = node.Ring[index];
    element.setAttribute("id", ring.id);
    if (tag == QLatin1String("TR"))
        element.setAttribute("mode", static_cast<int>(ring.mode));
    else if (tag == QLatin1String("PR"))
        element.setAttribute("Speed", ring.Speed);
    writeRingItems(element, ring);
}

// The file keeps as many "app" elements as the map has records, in the map's
// order; new ones are clones of the first, so they share its shape.
void ProfileSectionWriter::writeApps(QDomElement appList,
                                     const QMap<QString, _stAppConfigNode *> &apps)
{
    int count = countApps(appList);
    qDebug() << "APPS Num:" << count << apps.size();
    if (count == 0) {
        appList.appendChild(appTemplate());
        count = 1;
    }
    for (; count > apps.size(); --count)
        appList.removeChild(appList.lastChildElement("app"));
    const QDomElement first = appList.firstChildElement("app");
    for (; count < apps.size(); ++count)
        appList.appendChild(first.cloneNode(true));
    int index = 0;
    QDomElement app = appList.firstChildElement("app");
    for (auto it = apps.cbegin(); it != apps.cend() && !app.isNull();
         ++it, ++index, app = app.nextSiblingElement("app")) {
        app.setAttribute("id", index);
        if (it.value())
            writeApp(app, it.key(), *it.value());
    }
}

void ProfileSectionWriter::writeApp(QDomElement app, const QString &path,
                                    const _stAppConfigNode &node)
{
    for (QDomElement child = app.firstChildElement("path"); !child.isNull();
         child = child.nextSiblingElement("path"))
        setElementText(child, path);
    writeProfile(app, node);
}

// The second pen of a template is "Pen1", which both walks take for pen 0:
// intended.
QDomElement ProfileSectionWriter::appTemplate()
{
    QDomElement app = m_document.createElement("app");
    app.setAttribute("name", "0");
    app.setAttribute("id", "0");
    app.appendChild(m_document.createElement("path"));
    const int pens = qMin(m_data->DevicePenNum == 0 ? 1 : int(m_data->DevicePenNum), kPenCount);
    for (int i = 0; i < pens; ++i) {
        QDomElement pen =
            m_document.createElement(i == 0 ? QString("Pen") : QString("Pen%1").arg(i));
        for (const char *tag : {"PenBtn0", "PenBtn1", "PenBtn2"}) {
            QDomElement button = m_document.createElement(tag);
            button.setAttribute("id", "0");
            pen.appendChild(button);
        }
        for (const char *tag : {"P0", "P1X", "P1Y", "P2", "TablePC"})
            pen.appendChild(m_document.createElement(tag));
        QDomElement relative = m_document.createElement("RelativeCoords");
        relative.setAttribute("Speed", "0");
        pen.appendChild(relative);
        app.appendChild(pen);
    }
    app.appendChild(templateElement("K", keyTag, kTemplateKeys));
    app.appendChild(templateElement("R", itemTag, kTemplateWheelItems));
    app.appendChild(
        templateElement(m_data->DeviceRingNum == 2 ? "R2" : "TR", itemTag, kTemplateWheelItems));
    return app;
}

QDomElement ProfileSectionWriter::templateElement(const QString &tag, QString (*childTag)(int),
                                                  int children)
{
    QDomElement element = m_document.createElement(tag);
    element.setAttribute("id", "0");
    for (int i = 0; i < children; ++i) {
        QDomElement child = m_document.createElement(childTag(i));
        child.setAttribute("id", "0");
        element.appendChild(child);
    }
    return element;
}
