#include "qdeviceitemwidget.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QToolButton>

namespace
{
const char *const kDefaultPicture = ":/image/Res/device.png";
}

QDeviceItemWidget::QDeviceItemWidget(QWidget *parent)
    : QWidget(parent), m_Layout(new QHBoxLayout(this)), m_Buttons(new QButtonGroup(this))
{
    m_Layout->setContentsMargins(0, 0, 0, 0);
    m_Layout->addStretch();
    connect(m_Buttons, &QButtonGroup::idClicked, this, &QDeviceItemWidget::select);
}

bool QDeviceItemWidget::addItem(const QString &name, const QString &picture)
{
    if (m_Names.size() >= kMaxItems)
        return false;
    auto *button = new QToolButton(this);
    button->setObjectName("DeviceNameGroup");
    button->setCheckable(true);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setText(name);
    button->setIcon(QIcon(QFileInfo::exists(picture) ? picture : kDefaultPicture));
    button->setIconSize(QSize(40, 28));
    m_Layout->insertWidget(m_Names.size(), button);
    m_Buttons->addButton(button, m_Names.size());
    m_Names.append(name);
    if (m_Current < 0)
        select(0);
    return true;
}

void QDeviceItemWidget::removeItem(int index)
{
    if (index < 0 || index >= m_Names.size())
        return;
    QAbstractButton *button = m_Buttons->button(index);
    m_Buttons->removeButton(button);
    delete button;
    m_Names.removeAt(index);
    const QList<QAbstractButton *> buttons = m_Buttons->buttons();
    for (QAbstractButton *remaining : buttons) {
        const int id = m_Buttons->id(remaining);
        if (id > index)
            m_Buttons->setId(remaining, id - 1);
    }
    // Another device's entry going leaves the selection where it is.
    if (index < m_Current) {
        --m_Current;
        return;
    }
    if (index > m_Current)
        return;
    m_Current = -1;
    if (!m_Names.isEmpty())
        select(qMin(index, m_Names.size() - 1));
}

void QDeviceItemWidget::removeChildDevice(const QString &name)
{
    removeItem(m_Names.indexOf(name));
}

QString QDeviceItemWidget::currentText() const
{
    return m_Current >= 0 ? m_Names.value(m_Current) : QString();
}

void QDeviceItemWidget::select(int index)
{
    if (QAbstractButton *button = m_Buttons->button(index))
        button->setChecked(true);
    if (index == m_Current)
        return;
    m_Current = index;
    emit onSelectAppItem(m_Names.value(index), index);
}
