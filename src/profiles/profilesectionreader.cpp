#include "profilesectionreader.h"

#include "textfield.h"

#include <QtGlobal>
#include <cmath>
#include <cstring>
#include <limits>

namespace
{

int16_t toI16(const QString &text)
{
    return text.toShort(nullptr, 10);
}

int16_t textI16(const QDomElement &element)
{
    return toI16(element.text());
}

int16_t attrI16(const QDomElement &element, const char *name)
{
    return toI16(element.attribute(name));
}

float attrFloat(const QDomElement &element, const char *name)
{
    return element.attribute(name).toFloat();
}

// Cut toward zero; values no field can hold are clamped instead of wrapping.
int16_t truncatedI16(float value)
{
    if (std::isnan(value))
        return 0;
    const float low = std::numeric_limits<int16_t>::min();
    const float high = std::numeric_limits<int16_t>::max();
    return static_cast<int16_t>(qBound(low, std::trunc(value), high));
}

void copyText(char *field, size_t size, const QDomElement &element)
{
    copyTextField(field, size, element.text().toUtf8().constData());
}

// "Pen1" is pen 0, "Pen" alone too.
int penIndexFromTag(const QString &tag)
{
    if (tag.length() <= 3)
        return 0;
    return toI16(tag.mid(3)) - 1;
}

// "K_1" is group 1, "K" group 0.
int groupIndexFromTag(const QString &tag)
{
    if (tag.length() <= 2)
        return 0;
    return toI16(tag.mid(2));
}

bool inRange(int index, int count)
{
    return index >= 0 && index < count;
}

} // namespace

ProfileSectionReader::ProfileSectionReader(stTablet_XMLData *data) : m_data(data) {}

void ProfileSectionReader::readDeviceInfo(const QDomElement &deviceInfo)
{
    if (!deviceInfo.hasChildNodes())
        return;
    m_data->DevicePenNum = 1;
    struct Field {
        const char *tag;
        int16_t stTablet_XMLData::*member;
    };
    static const Field fields[] = {
        {"DeviceRingNum", &stTablet_XMLData::DeviceRingNum},
        {"DeviceKeyNum", &stTablet_XMLData::DeviceKeyNum},
        {"DevicePenType", &stTablet_XMLData::DevicePenType},
        {"DeviceControl", &stTablet_XMLData::DeviceControl},
        {"DeviceTrackPad", &stTablet_XMLData::DeviceTrackPad},
        {"SupportGroupKeys", &stTablet_XMLData::SupportGroupKeys},
        {"DeviceKeyDirection", &stTablet_XMLData::DeviceKeyDirection},
        {"DevicePenNum", &stTablet_XMLData::DevicePenNum},
        {"PenMoveInTablet", &stTablet_XMLData::PenMoveInTablet},
        {"DeviceCurPenID", &stTablet_XMLData::DeviceCurPenID},
    };
    for (QDomElement child = deviceInfo.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        for (const Field &field : fields) {
            if (child.tagName() == QLatin1String(field.tag)) {
                m_data->*field.member = textI16(child);
                break;
            }
        }
    }
}

void ProfileSectionReader::readCommon(const QDomElement &common)
{
    int16_t *const switches[] = {&m_data->DisableInfo, &m_data->DisableQuickKey,
                                 &m_data->DisablePressure, &m_data->DisableSlope};
    int position = 1;
    for (QDomElement child = common.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement(), ++position) {
        if (position == 1)
            readScreenMapping(child);
        else if (position == 2)
            readTabletPannel(child);
        else if (position <= 6)
            *switches[position - 3] = textI16(child);
        else if (position == 7)
            readOrientAreas(child);
        else if (position == 8)
            readCalibration(child);
    }
}

void ProfileSectionReader::readScreenMapping(const QDomElement &element)
{
    m_data->ScreenId = attrI16(element, "id");
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString tag = child.tagName();
        if (tag == "SX")
            m_data->SX = textI16(child);
        else if (tag == "SY")
            m_data->SY = textI16(child);
        else if (tag == "SW")
            m_data->SW = textI16(child);
        else if (tag == "SH")
            m_data->SH = textI16(child);
    }
}

void ProfileSectionReader::readTabletPannel(const QDomElement &element)
{
    m_data->Orientation = attrI16(element, "Orientation");
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString tag = child.tagName();
        if (tag == "TX")
            m_data->TX = textI16(child);
        else if (tag == "TY")
            m_data->TY = textI16(child);
        else if (tag == "TW")
            m_data->TW = textI16(child);
        else if (tag == "TH")
            m_data->TH = textI16(child);
    }
}

void ProfileSectionReader::readOrientAreas(const QDomElement &element)
{
    int index = 0;
    for (QDomElement child = element.firstChildElement();
         !child.isNull() && index < kOrientationCount; child = child.nextSiblingElement()) {
        stOrientArea &area = m_data->OrientArea[index++];
        area.X = truncatedI16(attrFloat(child, "X"));
        area.Y = truncatedI16(attrFloat(child, "Y"));
        area.W = truncatedI16(attrFloat(child, "W"));
        area.H = truncatedI16(attrFloat(child, "H"));
    }
}

// Any eighth element that is not the calibration means "no calibration".
void ProfileSectionReader::readCalibration(const QDomElement &element)
{
    if (element.tagName() != "SC") {
        m_data->fKX = m_data->fKY = m_data->fXLC = m_data->fYLC = 1.0f;
        return;
    }
    m_data->fKX = attrFloat(element, "fKX");
    m_data->fKY = attrFloat(element, "fKY");
    m_data->fXLC = attrFloat(element, "fXLC");
    m_data->fYLC = attrFloat(element, "fYLC");
}

void ProfileSectionReader::readCommonApp(const QDomElement &commonApp)
{
    _stAppConfigNode &node = m_data->CommonAPP;
    for (QDomElement child = commonApp.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString tag = child.tagName();
        if (tag.contains("Pen")) {
            const int index = penIndexFromTag(tag);
            if (inRange(index, kPenCount))
                readPen(child, node.Pen[index]);
        } else if (tag == "SelectID") {
            node.SelectID = textI16(child);
        } else if (tag.contains("K")) {
            readKeys(child, node, false);
        } else {
            readRing(child, node, false);
        }
    }
}

void ProfileSectionReader::readPen(const QDomElement &element, stPenConfig &pen)
{
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString tag = child.tagName();
        const int button =
            tag.startsWith("PenBtn") && tag.length() == 7 ? tag[6].unicode() - '0' : -1;
        if (!inRange(button, kPenBtnCount)) {
            readPenValues(child, pen);
            continue;
        }
        stPenBtn &target = pen.PenBtn[button];
        target.id = attrI16(child, "id");
        target.Actid = attrI16(child, "Actid");
        if (target.id == 1)
            copyText(target.func, sizeof target.func, child);
    }
    // An eraser end left at "nothing" means erase.
    if (pen.PenBtn[0].id == 0 && pen.PenBtn[0].Actid == 0)
        pen.PenBtn[0].Actid = 27;
}

void ProfileSectionReader::readPenValues(const QDomElement &child, stPenConfig &pen)
{
    const QString tag = child.tagName();
    if (tag == "P0")
        pen.P0 = child.text().toFloat();
    else if (tag == "P1X")
        pen.P1X = child.text().toFloat();
    else if (tag == "P1Y")
        pen.P1Y = child.text().toFloat();
    else if (tag == "P2")
        pen.P2 = child.text().toFloat();
    else if (tag == "TablePC")
        pen.bTablePC = textI16(child) != 0;
    else if (tag == "RelativeCoords") {
        pen.bRelativeCoords = textI16(child) != 0;
        pen.Speed = attrI16(child, "Speed");
    }
}

void ProfileSectionReader::readKeys(const QDomElement &element, _stAppConfigNode &node, bool inApp)
{
    const _stAppConfigNode &common = m_data->CommonAPP;
    if (!m_data->SupportGroupKeys) {
        readKeyList(element, node.Key, inApp ? common.Key : nullptr);
        return;
    }
    const int group = groupIndexFromTag(element.tagName());
    if (!inRange(group, kKeyGroupCount))
        return;
    node.KeyGroup[group].bEnable = attrI16(element, "id") != 0;
    readKeyList(element, node.KeyGroup[group].Key, inApp ? common.KeyGroup[group].Key : nullptr);
}

// An application's key starts as the common key; only its function is its own.
void ProfileSectionReader::readKeyList(const QDomElement &element, stKeyConfig *keys,
                                       const stKeyConfig *common)
{
    int index = 0;
    for (QDomElement child = element.firstChildElement(); !child.isNull() && index < kKeyCount;
         child = child.nextSiblingElement(), ++index) {
        stKeyConfig &key = keys[index];
        if (common) {
            key = common[index];
        } else {
            key.Motid = attrI16(child, "Motid");
            key.Actid = attrI16(child, "Actid");
            key.Show = attrI16(child, "Show") != 0;
        }
        key.id = attrI16(child, "id");
        if (key.id > 0)
            copyText(key.func, sizeof key.func, child);
    }
}

bool ProfileSectionReader::readRing(const QDomElement &element, _stAppConfigNode &node, bool inApp)
{
    const QString tag = element.tagName();
    stRingConfig *ring = nullptr;
    if (tag == "R" || tag == "R2") {
        ring = &node.Ring[tag == "R" ? 0 : 1];
        ring->id = attrI16(element, "id");
    } else if (tag == "TR") {
        ring = &node.Ring[1];
        ring->id = attrI16(element, "id");
        // An application's touch strip follows the common mode.
        ring->mode = inApp ? m_data->CommonAPP.Ring[1].mode : attrI16(element, "mode");
        ring->type = 1;
    } else if (tag == "PR") {
        if (!inRange(m_data->DeviceRingNum, kRingCount))
            return false;
        ring = &node.Ring[m_data->DeviceRingNum];
        ring->id = attrI16(element, "id");
        ring->type = 3;
        // An application keeps its roller speed in the mode byte.
        if (inApp) {
            ring->mode = static_cast<uint8_t>(attrI16(element, "Speed"));
        } else {
            ring->mode = attrI16(element, "mode");
            ring->Speed = attrI16(element, "Speed");
        }
    }
    if (!ring)
        return false;
    readRingItems(element, *ring);
    return true;
}

void ProfileSectionReader::readRingItems(const QDomElement &element, stRingConfig &ring)
{
    int index = 0;
    for (QDomElement child = element.firstChildElement(); !child.isNull() && index < kRingItemCount;
         child = child.nextSiblingElement(), ++index) {
        stRingItem &item = ring.Item[index];
        item.id = attrI16(child, "id");
        if (item.id == 2)
            copyText(item.func, sizeof item.func, child);
    }
}

void ProfileSectionReader::readApp(const QDomElement &app, _stAppConfigNode *node)
{
    for (QDomElement child = app.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString tag = child.tagName();
        if (tag == "path") {
            copyText(node->path, sizeof node->path, child);
        } else if (tag.contains("Pen")) {
            const int index = penIndexFromTag(tag);
            if (inRange(index, kPenCount))
                readAppPen(child, index, node->Pen[index]);
        } else if (tag == "SelectID") {
            // The writer stores the value as text; only the attribute is read.
            node->SelectID = attrI16(child, "SelectID");
        } else if (tag.contains("K")) {
            readKeys(child, *node, true);
        } else {
            readRing(child, *node, true);
        }
    }
}

// An application's pen buttons keep the common action numbers.
void ProfileSectionReader::readAppPen(const QDomElement &element, int index, stPenConfig &pen)
{
    const stPenConfig &common = m_data->CommonAPP.Pen[index];
    int16_t lastButtonId = 0;
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString tag = child.tagName();
        const int button =
            tag.startsWith("PenBtn") && tag.length() == 7 ? tag[6].unicode() - '0' : -1;
        if (!inRange(button, kPenBtnCount)) {
            readPenValues(child, pen);
            continue;
        }
        stPenBtn &target = pen.PenBtn[button];
        target.id = lastButtonId = attrI16(child, "id");
        target.Actid = common.PenBtn[button].Actid;
        if (target.id == 1)
            copyText(target.func, sizeof target.func, child);
    }
    if (pen.PenBtn[0].id == 0 && pen.PenBtn[0].Actid == 0) {
        pen.PenBtn[0].id = lastButtonId;
        pen.PenBtn[0].Actid = common.PenBtn[0].Actid;
    }
}
