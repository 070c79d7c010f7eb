#pragma once

#include "settingsrecords.h"

#include <QDomElement>
#include <QString>

#include <type_traits>

// Where the profile file and the device file keep each value of the
// records. Reading and writing walk the same tables, so a value listed here
// is read and saved alike.

// Saved values are the user's settings; traits belong to the model and
// come only from the file.
enum class Kind { Saved, Trait };
enum class Values { Saved, All };

// The shortest text that reads back as the same float.
QString floatText(float value);
// Sets the element's text; an empty text removes it.
void setElementText(QDomElement element, const QString &text);
// A function string is the element's text, kept only for the ids that ask
// for one.
void writeFunction(const QDomElement &element, const char (&func)[kFuncSize], bool kept);

// One value of a record: in an attribute, or the text, of the element
// itself or of each of its children called `child`. Numbers are decimal,
// flags a number that is 0 or not, and what does not convert reads as 0.
template <typename Record> class ProfileValue
{
public:
    template <typename Member>
    constexpr ProfileValue(const char *child, const char *attribute, Member Record::*member,
                           Kind kind = Kind::Saved)
        : m_child(child), m_attribute(attribute), m_kind(kind)
    {
        if constexpr (std::is_same_v<Member, float>)
            m_real = member;
        else if constexpr (std::is_same_v<Member, uint8_t>)
            m_flag = member;
        else
            m_number = member;
    }

    bool isIn(Values values) const { return values == Values::All || m_kind == Kind::Saved; }

    void read(const QDomElement &element, Record &record) const
    {
        forEachHolder(element, [&](const QDomElement &holder) {
            const QString text = m_attribute ? holder.attribute(m_attribute) : holder.text();
            if (m_number)
                record.*m_number = text.toShort(nullptr, 10);
            else if (m_flag)
                record.*m_flag = text.toShort(nullptr, 10) != 0;
            else
                record.*m_real = text.toFloat();
        });
    }

    void write(const QDomElement &element, const Record &record) const
    {
        const QString text = m_real ? floatText(record.*m_real)
                                    : QString::number(m_number ? record.*m_number : record.*m_flag);
        forEachHolder(element, [&](QDomElement holder) {
            if (m_attribute)
                holder.setAttribute(m_attribute, text);
            else
                setElementText(holder, text);
        });
    }

private:
    template <typename Function>
    void forEachHolder(const QDomElement &element, Function function) const
    {
        if (!m_child) {
            function(element);
            return;
        }
        for (QDomElement child = element.firstChildElement(m_child); !child.isNull();
             child = child.nextSiblingElement(m_child))
            function(child);
    }

    const char *m_child;
    const char *m_attribute;
    Kind m_kind;
    int16_t Record::*m_number = nullptr;
    uint8_t Record::*m_flag = nullptr;
    float Record::*m_real = nullptr;
};

template <typename Record, size_t N>
void readValues(const QDomElement &element, Record &record, const ProfileValue<Record> (&table)[N],
                Values values = Values::All)
{
    for (const ProfileValue<Record> &value : table) {
        if (value.isIn(values))
            value.read(element, record);
    }
}

template <typename Record, size_t N>
void writeValues(const QDomElement &element, const Record &record,
                 const ProfileValue<Record> (&table)[N], Values values = Values::Saved)
{
    for (const ProfileValue<Record> &value : table) {
        if (value.isIn(values))
            value.write(element, record);
    }
}

using TabletValue = ProfileValue<stTablet_XMLData>;

// Children of "DeviceInfo", by tag. Only what the device reports about
// itself at run time is saved.
inline constexpr TabletValue kDeviceInfoValues[] = {
    {"DeviceRingNum", nullptr, &stTablet_XMLData::DeviceRingNum, Kind::Trait},
    {"DeviceKeyNum", nullptr, &stTablet_XMLData::DeviceKeyNum, Kind::Trait},
    {"DevicePenType", nullptr, &stTablet_XMLData::DevicePenType, Kind::Trait},
    {"DeviceControl", nullptr, &stTablet_XMLData::DeviceControl, Kind::Trait},
    {"DeviceTrackPad", nullptr, &stTablet_XMLData::DeviceTrackPad, Kind::Trait},
    {"SupportGroupKeys", nullptr, &stTablet_XMLData::SupportGroupKeys, Kind::Trait},
    {"DeviceKeyDirection", nullptr, &stTablet_XMLData::DeviceKeyDirection, Kind::Trait},
    {"DevicePenNum", nullptr, &stTablet_XMLData::DevicePenNum, Kind::Trait},
    {"PenMoveInTablet", nullptr, &stTablet_XMLData::PenMoveInTablet},
    {"DeviceCurPenID", nullptr, &stTablet_XMLData::DeviceCurPenID},
};

// The children of "Common" are known by position; their tags are not
// compared, except that the calibration counts only when called "SC".
constexpr int kOrientAreasPosition = 7;
constexpr int kCalibrationPosition = 8;

struct CommonValue {
    int position;
    TabletValue value;
};

inline constexpr CommonValue kCommonValues[] = {
    {1, {nullptr, "id", &stTablet_XMLData::ScreenId}},
    {1, {"SX", nullptr, &stTablet_XMLData::SX}},
    {1, {"SY", nullptr, &stTablet_XMLData::SY}},
    {1, {"SW", nullptr, &stTablet_XMLData::SW}},
    {1, {"SH", nullptr, &stTablet_XMLData::SH}},
    {2, {nullptr, "Orientation", &stTablet_XMLData::Orientation}},
    {2, {"TX", nullptr, &stTablet_XMLData::TX}},
    {2, {"TY", nullptr, &stTablet_XMLData::TY}},
    {2, {"TW", nullptr, &stTablet_XMLData::TW}},
    {2, {"TH", nullptr, &stTablet_XMLData::TH}},
    {3, {nullptr, nullptr, &stTablet_XMLData::DisableInfo}},
    {4, {nullptr, nullptr, &stTablet_XMLData::DisableQuickKey}},
    {5, {nullptr, nullptr, &stTablet_XMLData::DisablePressure}},
    {6, {nullptr, nullptr, &stTablet_XMLData::DisableSlope}},
    {kCalibrationPosition, {nullptr, "fKX", &stTablet_XMLData::fKX}},
    {kCalibrationPosition, {nullptr, "fKY", &stTablet_XMLData::fKY}},
    {kCalibrationPosition, {nullptr, "fXLC", &stTablet_XMLData::fXLC}},
    {kCalibrationPosition, {nullptr, "fYLC", &stTablet_XMLData::fYLC}},
};

inline bool isCalibration(const QDomElement &element)
{
    return element.tagName() == QLatin1String("SC");
}

// Below a pen element; its buttons are "PenBtn0" to "PenBtn2".
inline constexpr ProfileValue<stPenConfig> kPenValues[] = {
    {"P0", nullptr, &stPenConfig::P0},
    {"P1X", nullptr, &stPenConfig::P1X},
    {"P1Y", nullptr, &stPenConfig::P1Y},
    {"P2", nullptr, &stPenConfig::P2},
    {"TablePC", nullptr, &stPenConfig::bTablePC},
    {"RelativeCoords", nullptr, &stPenConfig::bRelativeCoords},
    {"RelativeCoords", "Speed", &stPenConfig::Speed},
};

inline constexpr ProfileValue<stPenBtn> kPenButtonValues[] = {
    {nullptr, "id", &stPenBtn::id},
    {nullptr, "Actid", &stPenBtn::Actid, Kind::Trait},
};

inline constexpr ProfileValue<stKeyGroup> kKeyGroupValues[] = {
    {nullptr, "id", &stKeyGroup::bEnable},
};

inline constexpr ProfileValue<stKeyConfig> kKeyValues[] = {
    {nullptr, "id", &stKeyConfig::id},
    {nullptr, "Show", &stKeyConfig::Show, Kind::Trait},
    {nullptr, "Actid", &stKeyConfig::Actid, Kind::Trait},
    {nullptr, "Motid", &stKeyConfig::Motid, Kind::Trait},
};

inline constexpr ProfileValue<stRingItem> kRingItemValues[] = {
    {nullptr, "id", &stRingItem::id},
};

// What a child of a profile ("CommonAPP" or an "app") is, in the order
// the tests are made.
enum class ProfileElement { Path, Pen, SelectID, Keys, Ring };
ProfileElement profileElement(const QString &tag);

// Indexes from tags are -1 when the records have no such entry.
// "Pen1" is pen 0, "Pen" alone too.
int penIndexFromTag(const QString &tag);
// "PenBtn0" to "PenBtn2".
int penButtonFromTag(const QString &tag);
// "K_1" is group 1, "K" group 0.
int groupIndexFromTag(const QString &tag);
QString groupTag(int group);
// "R" is ring 0, "R2" and "TR" ring 1, and the roller "PR" the ring given.
int ringFromTag(const QString &tag, int rollerRing);

// Keys and wheel items are known by position below their element, up to
// what the record holds; these are the tags they are given.
QString keyTag(int index);
QString itemTag(int index);

// An application's keys start as the common keys; only what the user sets
// is its own.
void readKeyGroup(const QDomElement &element, stKeyGroup &group, const stKeyGroup *common);
void readKeys(const QDomElement &element, stKeyConfig *keys, const stKeyConfig *common);
void writeKeyGroup(const QDomElement &element, const stKeyGroup &group, Values values);
void writeKeys(const QDomElement &element, const stKeyConfig *keys, Values values);
void readRingItems(const QDomElement &element, stRingConfig &ring);
void writeRingItems(const QDomElement &element, const stRingConfig &ring);
