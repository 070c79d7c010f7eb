#include "profiletags.h"

#include "textfield.h"
#include "xmlhelp.h"

namespace
{

bool inRange(int index, int count)
{
    return index >= 0 && index < count;
}

int indexIn(int index, int count)
{
    return inRange(index, count) ? index : -1;
}

// The children of `element` in order, as many as the record holds.
template <typename Function>
void forEachPositioned(const QDomElement &element, int count, Function function)
{
    int index = 0;
    for (QDomElement child = element.firstChildElement(); !child.isNull() && index < count;
         child = child.nextSiblingElement(), ++index)
        function(child, index);
}

} // namespace

// Rather "0.1" than the float widened to a double, "0.10000000149011612".
QString floatText(float value)
{
    for (int precision = 1; precision < 9; ++precision) {
        const QString text = QString::number(value, 'g', precision);
        if (text.toFloat() == value)
            return text;
    }
    return QString::number(value, 'g', 9);
}

void setElementText(QDomElement element, const QString &text)
{
    XMLHelp::SetTextValue(element.ownerDocument(), element, text);
}

void writeFunction(const QDomElement &element, const char (&func)[kFuncSize], bool kept)
{
    setElementText(element, kept ? fieldText(func) : QString());
}

ProfileElement profileElement(const QString &tag)
{
    if (tag == QLatin1String("path"))
        return ProfileElement::Path;
    if (tag.contains(QLatin1String("Pen")))
        return ProfileElement::Pen;
    if (tag == QLatin1String("SelectID"))
        return ProfileElement::SelectID;
    if (tag.contains(QLatin1Char('K')))
        return ProfileElement::Keys;
    return ProfileElement::Ring;
}

int penIndexFromTag(const QString &tag)
{
    return tag.length() <= 3 ? 0 : indexIn(tag.midRef(3).toShort(nullptr, 10) - 1, kPenCount);
}

int penButtonFromTag(const QString &tag)
{
    if (!tag.startsWith(QLatin1String("PenBtn")) || tag.length() != 7)
        return -1;
    return indexIn(tag[6].unicode() - '0', kPenBtnCount);
}

int groupIndexFromTag(const QString &tag)
{
    return tag.length() <= 2 ? 0 : indexIn(tag.midRef(2).toShort(nullptr, 10), kKeyGroupCount);
}

QString groupTag(int group)
{
    return group == 0 ? QString("K") : QString("K_%1").arg(group);
}

int ringFromTag(const QString &tag, int rollerRing)
{
    if (tag == QLatin1String("R"))
        return 0;
    if (tag == QLatin1String("R2") || tag == QLatin1String("TR"))
        return 1;
    if (tag == QLatin1String("PR"))
        return indexIn(rollerRing, kRingCount);
    return -1;
}

QString keyTag(int index)
{
    return QString("K%1").arg(index + 1);
}

QString itemTag(int index)
{
    return QString("W%1").arg(index + 1);
}

void readKeyGroup(const QDomElement &element, stKeyGroup &group, const stKeyGroup *common)
{
    readValues(element, group, kKeyGroupValues);
    readKeys(element, group.Key, common ? common->Key : nullptr);
}

void readKeys(const QDomElement &element, stKeyConfig *keys, const stKeyConfig *common)
{
    forEachPositioned(element, kKeyCount, [&](const QDomElement &child, int index) {
        stKeyConfig &key = keys[index];
        if (common)
            key = common[index];
        readValues(child, key, kKeyValues, common ? Values::Saved : Values::All);
        if (key.id > 0)
            copyTextField(key.func, child.text());
    });
}

void writeKeyGroup(const QDomElement &element, const stKeyGroup &group, Values values)
{
    writeValues(element, group, kKeyGroupValues, values);
    writeKeys(element, group.Key, values);
}

// A key whose id is below 0 has its function written but not read: kept so.
void writeKeys(const QDomElement &element, const stKeyConfig *keys, Values values)
{
    forEachPositioned(element, kKeyCount, [&](const QDomElement &child, int index) {
        writeValues(child, keys[index], kKeyValues, values);
        writeFunction(child, keys[index].func, keys[index].id != 0);
    });
}

void readRingItems(const QDomElement &element, stRingConfig &ring)
{
    forEachPositioned(element, kRingItemCount, [&](const QDomElement &child, int index) {
        stRingItem &item = ring.Item[index];
        readValues(child, item, kRingItemValues);
        if (item.id == 2)
            copyTextField(item.func, child.text());
    });
}

void writeRingItems(const QDomElement &element, const stRingConfig &ring)
{
    forEachPositioned(element, kRingItemCount, [&](const QDomElement &child, int index) {
        writeValues(child, ring.Item[index], kRingItemValues);
        writeFunction(child, ring.Item[index].func, ring.Item[index].id == 2);
    });
}
