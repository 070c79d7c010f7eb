#include "profilesectionreader.h"

#include "profiletags.h"
#include "textfield.h"

#include <QtGlobal>
#include <cmath>
#include <limits>

namespace
{

int16_t attrI16(const QDomElement &element, const char *name)
{
    return element.attribute(name).toShort(nullptr, 10);
}

// Cut toward zero; values no field can hold are clamped instead of wrapping.
int16_t attrTruncated(const QDomElement &element, const char *name)
{
    const float value = element.attribute(name).toFloat();
    if (std::isnan(value))
        return 0;
    const float low = std::numeric_limits<int16_t>::min();
    const float high = std::numeric_limits<int16_t>::max();
    return static_cast<int16_t>(qBound(low, std::trunc(value), high));
}

} // namespace

ProfileSectionReader::ProfileSectionReader(stTablet_XMLData *data) : m_data(data) {}

void ProfileSectionReader::readDeviceInfo(const QDomElement &deviceInfo)
{
    if (!deviceInfo.hasChildNodes())
        return;
    m_data->DevicePenNum = 1;
    readValues(deviceInfo, *m_data, kDeviceInfoValues);
}

// Any eighth element that is not the calibration means "no calibration".
void ProfileSectionReader::readCommon(const QDomElement &common)
{
    int position = 1;
    for (QDomElement child = common.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement(), ++position) {
        if (position == kOrientAreasPosition) {
            readOrientAreas(child);
            continue;
        }
        if (position == kCalibrationPosition && !isCalibration(child)) {
            m_data->fKX = m_data->fKY = m_data->fXLC = m_data->fYLC = 1.0f;
            continue;
        }
        for (const CommonValue &entry : kCommonValues) {
            if (entry.position == position)
                entry.value.read(child, *m_data);
        }
    }
}

void ProfileSectionReader::readOrientAreas(const QDomElement &element)
{
    int index = 0;
    for (QDomElement child = element.firstChildElement();
         !child.isNull() && index < kOrientationCount; child = child.nextSiblingElement()) {
        stOrientArea &area = m_data->OrientArea[index++];
        area.X = attrTruncated(child, "X");
        area.Y = attrTruncated(child, "Y");
        area.W = attrTruncated(child, "W");
        area.H = attrTruncated(child, "H");
    }
}

void ProfileSectionReader::readCommonApp(const QDomElement &commonApp)
{
    readProfile(commonApp, m_data->CommonAPP, false);
}

void ProfileSectionReader::readApp(const QDomElement &app, _stAppConfigNode *node)
{
    readProfile(app, *node, true);
}

void ProfileSectionReader::readProfile(const QDomElement &parent, _stAppConfigNode &node,
                                       bool inApp)
{
    for (QDomElement child = parent.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        switch (profileElement(child.tagName())) {
        case ProfileElement::Path:
            if (inApp)
                copyTextField(node.path, child.text());
            break;
        case ProfileElement::Pen: {
            const int index = penIndexFromTag(child.tagName());
            if (index >= 0)
                readPen(child, node.Pen[index], inApp ? &m_data->CommonAPP.Pen[index] : nullptr);
            break;
        }
        case ProfileElement::SelectID:
            // The writer stores the value as text; an application's is read
            // from the attribute only.
            node.SelectID = inApp ? attrI16(child, "SelectID") : child.text().toShort(nullptr, 10);
            break;
        case ProfileElement::Keys:
            readKeyElement(child, node, inApp);
            break;
        case ProfileElement::Ring:
            readRing(child, node, inApp);
            break;
        }
    }
}

// An application's pen buttons keep the common action numbers.
void ProfileSectionReader::readPen(const QDomElement &element, stPenConfig &pen,
                                   const stPenConfig *common)
{
    readValues(element, pen, kPenValues);
    int16_t lastButtonId = 0;
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const int button = penButtonFromTag(child.tagName());
        if (button < 0)
            continue;
        stPenBtn &target = pen.PenBtn[button];
        readValues(child, target, kPenButtonValues, common ? Values::Saved : Values::All);
        if (common)
            target.Actid = common->PenBtn[button].Actid;
        lastButtonId = target.id;
        if (target.id == 1)
            copyTextField(target.func, child.text());
    }
    stPenBtn &eraser = pen.PenBtn[0];
    if (eraser.id != 0 || eraser.Actid != 0)
        return;
    // An eraser end left at "nothing" means erase.
    if (!common) {
        eraser.Actid = 27;
        return;
    }
    eraser.id = lastButtonId;
    eraser.Actid = common->PenBtn[0].Actid;
}

void ProfileSectionReader::readKeyElement(const QDomElement &element, _stAppConfigNode &node,
                                          bool inApp)
{
    const _stAppConfigNode &common = m_data->CommonAPP;
    if (!m_data->SupportGroupKeys) {
        readKeys(element, node.Key, inApp ? common.Key : nullptr);
        return;
    }
    const int group = groupIndexFromTag(element.tagName());
    if (group >= 0)
        readKeyGroup(element, node.KeyGroup[group], inApp ? &common.KeyGroup[group] : nullptr);
}

void ProfileSectionReader::readRing(const QDomElement &element, _stAppConfigNode &node, bool inApp)
{
    const QString tag = element.tagName();
    const int index = ringFromTag(tag, m_data->DeviceRingNum);
    if (index < 0)
        return;
    stRingConfig &ring = node.Ring[index];
    ring.id = attrI16(element, "id");
    if (tag == QLatin1String("TR")) {
        // An application's touch strip follows the common mode.
        ring.mode = inApp ? m_data->CommonAPP.Ring[1].mode : attrI16(element, "mode");
        ring.type = 1;
    } else if (tag == QLatin1String("PR")) {
        ring.type = 3;
        // An application keeps its roller speed in the mode byte.
        ring.mode = static_cast<uint8_t>(attrI16(element, inApp ? "Speed" : "mode"));
        if (!inApp)
            ring.Speed = attrI16(element, "Speed");
    }
    readRingItems(element, ring);
}
