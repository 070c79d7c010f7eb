#include "checktextbutton.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStyle>
#include <QVariant>

namespace
{
const char *const kCurrent = "current";
}

CheckTextButton::CheckTextButton(QWidget *parent)
    : QWidget(parent), m_Check(new QCheckBox(this)), m_Text(new QPushButton(this))
{
    m_Check->setObjectName(QStringLiteral("GroupCheckBox"));
    m_Text->setObjectName(QStringLiteral("GroupTextButton"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_Check);
    layout->addWidget(m_Text, 1);
    connect(m_Text, &QPushButton::clicked, this, &CheckTextButton::clicked);
    connect(m_Check, &QCheckBox::clicked, this, &CheckTextButton::switched);
}

void CheckTextButton::setText(const QString &text)
{
    m_Text->setText(text);
}

// A property rather than a checked state: a click alone does not move the mark.
void CheckTextButton::setCurrent(bool current)
{
    m_Text->setProperty(kCurrent, current);
    m_Text->style()->unpolish(m_Text);
    m_Text->style()->polish(m_Text);
}

void CheckTextButton::setFunction(bool function)
{
    const QSignalBlocker blocker(m_Check);
    m_Check->setChecked(function);
}

bool CheckTextButton::isCurrent() const
{
    return m_Text->property(kCurrent).toBool();
}

bool CheckTextButton::isFunction() const
{
    return m_Check->isChecked();
}
