#include "profilesectionwriter.h"

#include "textfield.h"
#include "xmlhelp.h"

#include <QDebug>
#include <QVariant>
#include <QtGlobal>

namespace
{

// A template "app" carries this many keys and wheel items whatever the device has.
constexpr int kTemplateKeys = 8;
constexpr int kTemplateWheelItems = 5;

// The shortest text that reads back as the same float: "0.1" rather than
// the float widened to a double, "0.10000000149011612".
QString floatText(float value)
{
    for (int precision = 1; precision < 9; ++precision) {
        const QString text = QString::number(value, 'g', precision);
        if (text.toFloat() == value)
            return text;
    }
    return QString::number(value, 'g', 9);
}

// The same index rules as the reader's, so both walks meet the same records.
int penIndexFromTag(const QString &tag)
{
    if (tag.length() <= 3)
        return 0;
    return tag.mid(3).toShort(nullptr, 10) - 1;
}

int groupIndexFromTag(const QString &tag)
{
    if (tag.length() <= 2)
        return 0;
    return tag.mid(2).toShort(nullptr, 10);
}

bool inRange(int index, int count)
{
    return index >= 0 && index < count;
}

// The roller ring is whichever ring the reader marked as one.
const stRingConfig *ringForTag(const QString &tag, const _stAppConfigNode &node)
{
    if (tag == "R")
        return &node.Ring[0];
    if (tag == "PR") {
        if (node.Ring[0].type == 3)
            return &node.Ring[0];
        return node.Ring[1].type == 3 ? &node.Ring[1] : nullptr;
    }
    if (tag == "R2" || tag == "TR")
        return &node.Ring[1];
    return nullptr;
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

void ProfileSectionWriter::setText(QDomElement element, const QVariant &value)
{
    XMLHelp::SetTextValue(m_document, element, value);
}

// Only what the device reports about itself at run time; the rest are traits.
void ProfileSectionWriter::writeDeviceInfo(QDomElement deviceInfo)
{
    if (!deviceInfo.hasChildNodes())
        return;
    for (QDomElement child = deviceInfo.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        if (child.tagName() == "PenMoveInTablet")
            setText(child, m_data->PenMoveInTablet);
        else if (child.tagName() == "DeviceCurPenID")
            setText(child, m_data->DeviceCurPenID);
    }
}

// Position 7, the orientation areas, is never written.
void ProfileSectionWriter::writeCommon(QDomElement common)
{
    const int16_t switches[] = {m_data->DisableInfo, m_data->DisableQuickKey,
                                m_data->DisablePressure, m_data->DisableSlope};
    int position = 1;
    for (QDomElement child = common.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement(), ++position) {
        if (position == 1)
            writeScreenMapping(child);
        else if (position == 2)
            writeTabletPannel(child);
        else if (position <= 6)
            setText(child, switches[position - 3]);
        else if (position == 8)
            writeCalibration(child);
    }
}

void ProfileSectionWriter::writeScreenMapping(QDomElement element)
{
    element.setAttribute("id", m_data->ScreenId);
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString tag = child.tagName();
        if (tag == "SX")
            setText(child, m_data->SX);
        else if (tag == "SY")
            setText(child, m_data->SY);
        else if (tag == "SW")
            setText(child, m_data->SW);
        else if (tag == "SH")
            setText(child, m_data->SH);
    }
}

void ProfileSectionWriter::writeTabletPannel(QDomElement element)
{
    element.setAttribute("Orientation", m_data->Orientation);
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString tag = child.tagName();
        if (tag == "TX")
            setText(child, m_data->TX);
        else if (tag == "TY")
            setText(child, m_data->TY);
        else if (tag == "TW")
            setText(child, m_data->TW);
        else if (tag == "TH")
            setText(child, m_data->TH);
    }
}

// An eighth element of another name means "no calibration" to the reader;
// it stays so, and no "SC" is added.
void ProfileSectionWriter::writeCalibration(QDomElement element)
{
    if (element.tagName() != "SC")
        return;
    element.setAttribute("fKX", floatText(m_data->fKX));
    element.setAttribute("fKY", floatText(m_data->fKY));
    element.setAttribute("fXLC", floatText(m_data->fXLC));
    element.setAttribute("fYLC", floatText(m_data->fYLC));
}

void ProfileSectionWriter::writeCommonApp(QDomElement commonApp)
{
    writeProfile(commonApp, m_data->CommonAPP);
}

void ProfileSectionWriter::writeProfile(QDomElement parent, const _stAppConfigNode &node)
{
    for (QDomElement child = parent.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString tag = child.tagName();
        if (tag.contains("Pen")) {
            const int index = penIndexFromTag(tag);
            if (inRange(index, kPenCount))
                writePen(child, node.Pen[index]);
        } else if (tag == "SelectID") {
            // The reader takes an application's value from an attribute, so
            // it comes back as 0 there: intended.
            setText(child, node.SelectID);
        } else if (tag.contains("K")) {
            writeKeys(child, node);
        } else {
            writeRing(child, node);
        }
    }
}

void ProfileSectionWriter::writePen(QDomElement element, const stPenConfig &pen)
{
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString tag = child.tagName();
        const int button =
            tag.startsWith("PenBtn") && tag.length() == 7 ? tag[6].unicode() - '0' : -1;
        if (inRange(button, kPenBtnCount)) {
            child.setAttribute("id", pen.PenBtn[button].id);
            writePenButton(child, pen.PenBtn[button]);
        } else {
            writePenValue(child, pen);
        }
    }
    if (!element.firstChildElement("PenBtn0").isNull())
        return;
    QDomElement eraser = m_document.createElement("PenBtn0");
    eraser.setAttribute("id", pen.PenBtn[0].id);
    eraser.setAttribute("Actid", pen.PenBtn[0].Actid);
    writePenButton(eraser, pen.PenBtn[0]);
    element.appendChild(eraser);
}

void ProfileSectionWriter::writePenButton(QDomElement element, const stPenBtn &button)
{
    setText(element, button.id == 1 ? fieldText(button.func) : QString());
}

void ProfileSectionWriter::writePenValue(QDomElement child, const stPenConfig &pen)
{
    const QString tag = child.tagName();
    if (tag == "P0") {
        setText(child, floatText(pen.P0));
    } else if (tag == "P1X") {
        setText(child, floatText(pen.P1X));
    } else if (tag == "P1Y") {
        setText(child, floatText(pen.P1Y));
    } else if (tag == "P2") {
        setText(child, floatText(pen.P2));
    } else if (tag == "TablePC") {
        setText(child, static_cast<int>(pen.bTablePC));
    } else if (tag == "RelativeCoords") {
        child.setAttribute("Speed", pen.Speed);
        setText(child, static_cast<int>(pen.bRelativeCoords));
    }
}

// "Motid", "Actid" and "Show" are traits of the model and never written.
void ProfileSectionWriter::writeKeys(QDomElement element, const _stAppConfigNode &node)
{
    if (!m_data->SupportGroupKeys) {
        writeKeyList(element, node.Key);
        return;
    }
    const int group = groupIndexFromTag(element.tagName());
    if (!inRange(group, kKeyGroupCount))
        return;
    element.setAttribute("id", static_cast<int>(node.KeyGroup[group].bEnable));
    writeKeyList(element, node.KeyGroup[group].Key);
}

void ProfileSectionWriter::writeKeyList(QDomElement element, const stKeyConfig *keys)
{
    int index = 0;
    for (QDomElement child = element.firstChildElement(); !child.isNull() && index < kKeyCount;
         child = child.nextSiblingElement(), ++index) {
        const stKeyConfig &key = keys[index];
        child.setAttribute("id", key.id);
        setText(child, key.id != 0 ? fieldText(key.func) : QString());
    }
}

void ProfileSectionWriter::writeRing(QDomElement element, const _stAppConfigNode &node)
{
    const QString tag = element.tagName();
    const stRingConfig *ring = ringForTag(tag, node);
    if (!ring)
        return;
    element.setAttribute("id", ring->id);
    if (tag == "TR")
        element.setAttribute("mode", static_cast<int>(ring->mode));
    else if (tag == "PR")
        element.setAttribute("Speed", ring->Speed);
    writeRingItems(element, *ring);
}

void ProfileSectionWriter::writeRingItems(QDomElement element, const stRingConfig &ring)
{
    int index = 0;
    for (QDomElement child = element.firstChildElement(); !child.isNull() && index < kRingItemCount;
         child = child.nextSiblingElement(), ++index) {
        const stRingItem &item = ring.Item[index];
        child.setAttribute("id", item.id);
        setText(child, item.id == 2 ? fieldText(item.func) : QString());
    }
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
        setText(child, path);
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
    app.appendChild(templateElement("K", "K", kTemplateKeys));
    app.appendChild(templateElement("R", "W", kTemplateWheelItems));
    app.appendChild(
        templateElement(m_data->DeviceRingNum == 2 ? "R2" : "TR", "W", kTemplateWheelItems));
    return app;
}

QDomElement ProfileSectionWriter::templateElement(const QString &tag, const QString &childTag,
                                                  int children)
{
    QDomElement element = m_document.createElement(tag);
    element.setAttribute("id", "0");
    for (int i = 1; i <= children; ++i) {
        QDomElement child = m_document.createElement(childTag + QString::number(i));
        child.setAttribute("id", "0");
        element.appendChild(child);
    }
    return element;
}
