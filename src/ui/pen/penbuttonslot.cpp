#include "penbuttonslot.h"

#include "keyslot.h"
#include "languagetexts.h"
#include "textfield.h"
#include "wheelslot.h"

#include <QComboBox>

void PenButtonSlot::fill(const stPenBtn &button) const
{
    while (m_Box->count() <= kNoneEntry)
        m_Box->addItem(QString());
    m_Box->setItemText(kActionEntry, KeySlot::ActionText(button.Actid));
    m_Box->setItemText(kCustomEntry, button.id == kCustomEntry
                                         ? GetUserFuncShowName(fieldText(button.func))
                                         : KeySlot::CustomText());
    m_Box->setItemText(kNoneEntry, languageText("TR.Item.Null", "No Action"));
}

void PenButtonSlot::Show(const stPenBtn &button) const
{
    fill(button);
    const bool known = button.id >= kActionEntry && button.id <= kNoneEntry;
    m_Box->setCurrentIndex(known ? button.id : kActionEntry);
}

bool PenButtonSlot::Activate(stPenBtn &button, const CustomEditor &edit) const
{
    const int chosen = m_Box->currentIndex();
    if (chosen == kCustomEntry) {
        QString func = button.id == kCustomEntry ? fieldText(button.func) : QString();
        if (!edit(func)) {
            Show(button);
            return false;
        }
        copyTextField(button.func, func);
    } else {
        button.func[0] = '\0';
    }
    button.id = static_cast<int16_t>(chosen);
    fill(button);
    return true;
}
