#include "ringfunctionswitch.h"

#include "languagetexts.h"
#include "textfield.h"
#include "wheelslot.h"

#include <QVector>

namespace
{

QString slotName(const stRingItem &item, int number)
{
    if (item.id == WheelSlot::kCustomEntry)
        return GetUserFuncShowName(fieldText(item.func));
    const QString key = QStringLiteral("TR.Item.%1").arg(number);
    return languageText(key.toLatin1().constData(), key);
}

} // namespace

std::optional<RingFunctionChoice> NextRingFunction(stRingConfig &ring,
                                                   const std::function<int(int slot)> &itemNumber)
{
    RingFunctionChoice choice;
    QVector<int> usable;
    for (int slot = 0; slot < kRingItemCount; ++slot) {
        if (ring.Item[slot].id == WheelSlot::kNullEntry)
            continue;
        usable << slot;
        choice.names << slotName(ring.Item[slot], itemNumber(slot));
    }
    if (usable.isEmpty())
        return std::nullopt;
    const int from = ring.id + 1 == kRingItemCount ? 0 : ring.id + 1;
    for (int i = 0; i < usable.size(); ++i) {
        if (usable[i] >= from) {
            choice.index = i;
            break;
        }
    }
    ring.id = static_cast<int16_t>(usable[choice.index]);
    return choice;
}
