#include "qappitemwidget.h"

#include "qtexticonbutton.h"

#include <QFileIconProvider>
#include <QFileInfo>
#include <QIcon>

namespace
{
const QString kOtherPath = QStringLiteral("Other.app");
const QString kOtherTitle = QStringLiteral("Other");
const QString kOtherIcon = QStringLiteral(":/image/Res/other_icon.png");
const QString kButtonPrefix = QStringLiteral("toolButton_");
const QString kBackgroundStyle =
    QStringLiteral("background:#ffffff;border:1px solid  #cccccc;border-radius: 4px;");
const QString kNormalStyle =
    QStringLiteral("QToolButton{background:transparent;border:1px solid transparent;"
                   "border-radius:4px;padding:0px;}"
                   "QToolButton:hover{background:#f1f5f9;}");
const QString kSelectStyle = QStringLiteral("QToolButton{background:#e6f4f2;border:1px solid "
                                            "#0d9488;border-radius:4px;padding:0px;}");

constexpr int kButtonX[QAppItemWidget::kButtonCount] = {8, 46, 81, 122, 157, 195, 236, 271};
constexpr int kButtonY = 4;
constexpr int kButtonSide = 30;
constexpr int kIconSide = 26;
const QSize kStripSize(310, 38);

// A program that is not on this machine, or whose type has no icon, still shows with the plain
// file icon: its settings are in the profile all the same.
QIcon fileIcon(const QString &path)
{
    const QFileIconProvider icons;
    const QIcon icon = icons.icon(QFileInfo(path));
    return icon.isNull() ? icons.icon(QFileIconProvider::File) : icon;
}
} // namespace

QAppItemWidget::QAppItemWidget(QWidget *parent)
    : QWidget(parent), m_NormalStyle(kNormalStyle), m_SelectStyle(kSelectStyle)
{
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet(kBackgroundStyle);
    setMinimumSize(kStripSize);
    createButtons();
    cleanAppItem();
}

void QAppItemWidget::createButtons()
{
    for (int i = 0; i < kButtonCount; ++i) {
        auto *button = new QTextIconButton(this);
        button->setObjectName(kButtonPrefix + QString::number(i + 1));
        button->setId(i + 1);
        button->setIconSize(QSize(kIconSide, kIconSide));
        button->setGeometry(kButtonX[i], kButtonY, kButtonSide, kButtonSide);
        button->setStyleSheet(m_NormalStyle);
        connect(button, &QToolButton::clicked, this, &QAppItemWidget::onToolClick);
        m_Buttons.append(button);
    }
    QTextIconButton *other = m_Buttons.first();
    other->setIcon(QIcon(kOtherIcon));
    other->setButtonTitle(kOtherTitle);
}

bool QAppItemWidget::doAddItem(QString path)
{
    if (m_Paths.size() > kButtonCount || path.isEmpty() || m_Paths.contains(path))
        return false;
    QTextIconButton *button = m_Buttons.value(m_Paths.size());
    if (!button)
        return true;
    const QIcon icon = fileIcon(path);
    if (icon.isNull())
        return true;
    showItem(button, path, icon);
    m_Paths.append(path);
    return true;
}

void QAppItemWidget::removeSelectItem()
{
    if (m_SelectIndex == 1) {
        setSelectAppItem(0);
        return;
    }
    m_Paths.removeAt(m_SelectIndex - 1);
    for (int i = 1; i < kButtonCount; ++i) {
        if (i < m_Paths.size())
            showItem(m_Buttons[i], m_Paths[i], fileIcon(m_Paths[i]));
        else
            m_Buttons[i]->hide();
    }
    select(qMin(m_SelectIndex, m_Paths.size()));
    emit onSelectAppItem(m_CurrentPath, m_SelectIndex);
}

void QAppItemWidget::cleanAppItem()
{
    m_Paths = QStringList{kOtherPath};
    select(1);
    m_Buttons.first()->show();
    for (int i = 1; i < kButtonCount; ++i)
        m_Buttons[i]->hide();
}

void QAppItemWidget::setSelectAppItem(int index)
{
    for (int i = 0; i < m_Buttons.size(); ++i) {
        m_Buttons[i]->setSelected(i == index);
        m_Buttons[i]->setStyleSheet(i == index ? m_SelectStyle : m_NormalStyle);
    }
}

void QAppItemWidget::onToolClick(bool)
{
    auto *button = qobject_cast<QTextIconButton *>(sender());
    if (!button || button->getId() == m_SelectIndex)
        return;
    select(button->getId());
    emit onSelectAppItem(m_CurrentPath, m_SelectIndex);
}

void QAppItemWidget::showItem(QTextIconButton *button, const QString &path, const QIcon &icon)
{
    button->setIcon(icon);
    button->setButtonTitle(QFileInfo(path).fileName());
    button->setStyleSheet(m_NormalStyle);
    button->show();
}

void QAppItemWidget::select(int number)
{
    m_SelectIndex = number;
    m_CurrentPath = m_Paths.value(number - 1);
    setSelectAppItem(number - 1);
}
