#include "wheelslot.h"

#include "jsonserver.h"
#include "languagetexts.h"
#include "rollerkey.h"
#include "textfield.h"

#include <QComboBox>
#include <QDebug>
#include <QStringList>

namespace
{

constexpr int kEntryCount = 3;
constexpr int kNameField = 1;
constexpr int kWheelFields = 6;
const QString kWheelForm = QStringLiteral("4");

// The engine acts on ids 0 and 2 only; any other id does nothing, as no action does.
int entryOf(int id)
{
    return id >= WheelSlot::kDefaultEntry && id <= WheelSlot::kCustomEntry ? id
                                                                           : WheelSlot::kNullEntry;
}

bool isWheelFunction(const QString &func)
{
    const QStringList fields = func.split(QLatin1Char('|'));
    return fields.size() == kWheelFields && fields.first() == kWheelForm;
}

} // namespace

QString GetUserFuncShowName(const QString &func)
{
    return func.section(QLatin1Char('|'), kNameField, kNameField);
}

void WheelSlot::Show(const stRingItem &item, int number) const
{
    while (m_Box->count() < kEntryCount)
        m_Box->addItem(QString());
    const QString own = QStringLiteral("TR.Item.%1").arg(number);
    m_Box->setItemText(kDefaultEntry, languageText(own.toLatin1().constData(), own));
    m_Box->setItemText(kNullEntry, languageText("TR.Item.Null", QStringLiteral("No Action")));
    showCustomName(item);
    m_Box->setCurrentIndex(entryOf(item.id));
}

// The custom entry carries the custom function's name while the slot holds one.
void WheelSlot::showCustomName(const stRingItem &item) const
{
    const QString name =
        item.id == kCustomEntry ? GetUserFuncShowName(fieldText(item.func)) : QString();
    m_Box->setItemText(kCustomEntry, name.isEmpty()
                                         ? languageText("TR.Item.custom", QStringLiteral("Custom"))
                                         : name);
}

void WheelSlot::Activate(stRingItem &item, const CustomEditor &edit) const
{
    qDebug() << "wheel";
    const int entry = m_Box->currentIndex();
    if (entry < 0)
        return;
    if (entry != kCustomEntry) {
        item.id = static_cast<int16_t>(entry);
        copyTextField(item.func, m_Box->currentText());
        showCustomName(item);
        return;
    }
    QString func = fieldText(item.func);
    if (!edit(func)) {
        m_Box->setCurrentIndex(entryOf(item.id));
        return;
    }
    // Anything but a wheel function leaves the stored one; the engine ignores a wrong form.
    if (isWheelFunction(func))
        copyTextField(item.func, func);
    item.id = kCustomEntry;
    qDebug() << "strRoller:" << func;
    showCustomName(item);
}

bool WheelSlot::EditWheelFunction(QWidget *parent, QString &func)
{
    RollerKey editor(parent);
    editor.LoadDataForDialog(func);
    if (editor.exec() != QDialog::Accepted)
        return false;
    editor.GetData(func);
    return true;
}

QString wheelActivatedEvent(int ringMode, int slot, const stRingItem &item, const QString &app,
                            const QString &tablet)
{
    const QStringList items{JsonServer::GetJsonData("ringMode", QString::number(ringMode)),
                            JsonServer::GetJsonData("nCurRingIndex", QString::number(slot)),
                            JsonServer::GetJsonData("custom", fieldText(item.func)),
                            JsonServer::GetJsonData("id", QString::number(item.id)),
                            JsonServer::GetJsonData("curapp", app)};
    return JsonServer::GetJsonDataSon("WheelComboBoxActivated", items.join(',')) + "," +
           JsonServer::GetJsonData("tablet", tablet);
}
