#include "qdeviceitemwidget.h"

#include <QButtonGroup>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QToolButton>
#include <QVariant>

namespace
{
const char *const kDefaultPicture = ":/image/Res/device.png";
const char *const kSelectIndex = "select_index";
} // namespace

QDeviceItemWidget::QDeviceItemWidget(QWidget *parent)
    : QWidget(parent), m_Layout(new QHBoxLayout(this)), m_Group(new QButtonGroup(this))
{
    m_Layout->setContentsMargins(0, 0, 0, 0);
    m_Layout->addStretch();
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
    button->setProperty(kSelectIndex, m_Names.size());
    connect(button, &QToolButton::clicked, this, &QDeviceItemWidget::onToolClick);
    m_Layout->insertWidget(m_Names.size(), button);
    m_Group->addButton(button);
    m_Buttons.append(button);
    m_Names.append(name);
    if (m_Current < 0)
        select(0);
    return true;
}

void QDeviceItemWidget::removeItem(int index)
{
    if (index < 0 || index >= m_Names.size())
        return;
    delete m_Buttons.takeAt(index);
    m_Names.removeAt(index);
    for (int i = index; i < m_Buttons.size(); ++i)
        m_Buttons[i]->setProperty(kSelectIndex, i);
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

void QDeviceItemWidget::onToolClick()
{
    if (QObject *button = sender())
        select(button->property(kSelectIndex).toInt());
}

void QDeviceItemWidget::doSetDeviceNameImage(int index)
{
    if (index >= 0 && index < m_Buttons.size())
        m_Buttons[index]->setChecked(true);
}

void QDeviceItemWidget::select(int index)
{
    doSetDeviceNameImage(index);
    if (index == m_Current)
        return;
    m_Current = index;
    emit onSelectAppItem(m_Names.value(index), index);
}
