#include "selectpenmenulist.h"

#include "digitalpennames.h"
#include "languagetexts.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QWidgetAction>

namespace
{
constexpr QSize kEntrySize(160, 30);
constexpr int kDeleteButtonSize = 20;

// The index of a pen's name in the table of names, or -1.
int penIndexOf(const QString &name)
{
    for (int i = 0; i < kPenCount; ++i) {
        if (name == QString::fromUtf8(tagDigitalPenName[i]))
            return i;
    }
    return -1;
}
} // namespace

SelectPenMenuWidget::SelectPenMenuWidget(QWidget *parent)
    : QWidget(parent), m_Name(new QLabel(this))
{
    setFixedSize(kEntrySize);
    // The menu's item style does not reach a widget entry; the style sheet marks it on hover.
    setAttribute(Qt::WA_StyledBackground);
    setAttribute(Qt::WA_Hover);
    m_Name->setObjectName("label_penName");
    auto *remove = new QPushButton(QString(QChar(0x00D7)), this);
    remove->setObjectName("pushButton_deletePen");
    remove->setFixedSize(kDeleteButtonSize, kDeleteButtonSize);
    remove->setFocusPolicy(Qt::NoFocus);
    remove->setToolTip(languageText("Common.delete", "Delete"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 0, 4, 0);
    layout->setSpacing(4);
    layout->addWidget(m_Name, 1);
    layout->addWidget(remove);
    connect(remove, &QPushButton::clicked, this, [this] { emit DeletePen(m_PenID); });
}

void SelectPenMenuWidget::SetPenTextName(const QString &name)
{
    m_Name->setText(name);
}

SelectPenMenuList::SelectPenMenuList(QWidget *parent) : QMenu(parent)
{
    connect(this, &QMenu::triggered, this, &SelectPenMenuList::OnActionKeyStoke);
}

void SelectPenMenuList::CreateMenuList()
{
    clear();
    for (int i = 0; i < kPenCount; ++i) {
        const QString name = QString::fromUtf8(tagDigitalPenName[i]);
        auto *entry = new SelectPenMenuWidget;
        entry->SetPenID(i + 1);
        entry->SetPenTextName(name);
        connect(entry, &SelectPenMenuWidget::DeletePen, this, &SelectPenMenuList::OnDeletePen);
        auto *action = new QWidgetAction(this);
        action->setText(name);
        action->setDefaultWidget(entry);
        addAction(action);
    }
}

void SelectPenMenuList::SetPenShowInMenu(short mask)
{
    for (int i = 0; i < kPenCount; ++i) {
        QAction *action = entryOf(i);
        if (action && !(mask & (1 << i))) {
            removeAction(action);
            action->deleteLater();
        }
    }
}

// The entry goes later: its delete button is still sending this.
void SelectPenMenuList::OnDeletePen(int id)
{
    const int index = id - 1;
    QAction *action = entryOf(index);
    if (!action)
        return;
    emit DeletePenSelected(action->text(), index);
    removeAction(action);
    action->deleteLater();
}

void SelectPenMenuList::OnActionKeyStoke(QAction *action)
{
    const int index = penIndexOf(action->text());
    if (index >= 0)
        emit MenuSelected(action->text(), index);
}

QAction *SelectPenMenuList::entryOf(int index) const
{
    if (index < 0)
        return nullptr;
    for (QAction *action : actions()) {
        if (penIndexOf(action->text()) == index)
            return action;
    }
    return nullptr;
}
