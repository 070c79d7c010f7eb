#include "keyslot.h"

#include "jsonserver.h"
#include "languagetexts.h"
#include "textfield.h"

#include <QComboBox>
#include <QLabel>

namespace
{
// "0|name|ids", "1|name|keys|tokens", "2|name|command" and "3|name|n" name the function in
// field 1.
constexpr int kLabelField = 1;
constexpr int kNamedFieldsMin = 3;
constexpr int kNamedFieldsMax = 4;
} // namespace

QString KeySlot::ActionText(int actid)
{
    const QString key = QStringLiteral("Actions.%1").arg(actid);
    return languageText(key.toLatin1().constData(), key);
}

QString KeySlot::CustomText()
{
    return languageText("ShortcutKey.Item.custom", "Custom");
}

QString KeySlot::LabelOf(const QString &func)
{
    const QStringList fields = func.split('|', Qt::SkipEmptyParts);
    if (fields.size() < kNamedFieldsMin || fields.size() > kNamedFieldsMax)
        return QString();
    return fields.at(kLabelField);
}

// Entry 0 follows the key shown: a grouped device's boxes serve four groups in turn.
void KeySlot::fill(const stKeyConfig &key) const
{
    while (m_Box->count() < 2)
        m_Box->addItem(QString());
    m_Box->setItemText(kActionEntry, ActionText(key.Actid));
    m_Box->setItemText(kCustomEntry, CustomText());
}

void KeySlot::showAction(stKeyConfig &key) const
{
    m_Label->clear();
    copyTextField(key.func, m_Box->currentText());
}

void KeySlot::Show(stKeyConfig &key) const
{
    fill(key);
    m_Box->setCurrentIndex(key.id == kCustomEntry ? kCustomEntry : kActionEntry);
    if (key.id == kCustomEntry) {
        m_Label->setText(LabelOf(fieldText(key.func)));
        return;
    }
    showAction(key);
}

void KeySlot::Reset(stKeyConfig &key) const
{
    key.id = kActionEntry;
    fill(key);
    m_Box->setCurrentIndex(kActionEntry);
    showAction(key);
}

void KeySlot::Activate(stKeyConfig &key, const CustomEditor &edit) const
{
    if (m_Box->currentIndex() != kCustomEntry) {
        key.id = kActionEntry;
        showAction(key);
        return;
    }
    QString func = key.id == kCustomEntry ? fieldText(key.func) : QString();
    if (!edit(func)) {
        m_Box->setCurrentIndex(key.id == kCustomEntry ? kCustomEntry : kActionEntry);
        return;
    }
    copyTextField(key.func, func);
    key.id = kCustomEntry;
    m_Label->setText(LabelOf(func));
}

QString keyActivatedEvent(const stKeyConfig &key, const QString &app, const QString &tablet)
{
    QStringList items{JsonServer::GetJsonData("id", QString::number(key.id))};
    if (key.id == KeySlot::kCustomEntry)
        items << JsonServer::GetJsonData("custom", fieldText(key.func));
    items << JsonServer::GetJsonData("curapp", app);
    return JsonServer::GetJsonDataSon("ComboBoxKeyActivated", items.join(',')) + "," +
           JsonServer::GetJsonData("tablet", tablet);
}
