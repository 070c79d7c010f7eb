#include "screensettingwidget.h"

#include "languagetexts.h"
#include "mappingmath.h"
#include "qrubber.h"

#include <QLabel>
#include <QPainter>
#include <QPushButton>

namespace
{
const QColor kDesktopColour(0x1e, 0x29, 0x3b);
const QColor kScreenEdgeColour(0xcb, 0xd5, 0xe1);
const QColor kNumberColour(255, 255, 255, 150);
} // namespace

ScreenSettingWidget::ScreenSettingWidget(QWidget *parent) : AreaSettingWidget('S', parent)
{
    m_Pick->setObjectName(QStringLiteral("btn_selectscreenarea"));
    connect(rubber(), &QRubber::RubberRectChange, this,
            &ScreenSettingWidget::on_ScreenRubberRectChange);
    InitLanguageUI();
}

void ScreenSettingWidget::InitLanguageUI()
{
    m_Pick->setText(languageText("ScreenSetWidget.click", "Select by Clicking"));
    m_Tips[0]->setText(languageText("WorkareaSetWidget.tips1",
                                    "Drag with the mouse in the picture to select an area."));
    m_Tips[1]->setText(languageText(
        "ScreenSetWidget.tips2", "Or click the button below and click two corners on the screen."));
    m_Tips[2]->setText(
        languageText("WorkareaSetWidget.tips3", "The red frame shows the selected area."));
}

void ScreenSettingWidget::SetScreens(const QRect *screens, int count, const QRect &entry,
                                     const QPixmap *picture)
{
    m_Screens.clear();
    for (int i = 1; i <= count; ++i)
        m_Screens << screens[i];
    m_Picture = picture ? *picture : QPixmap();
    setFull(entry, entry.size(), pictureBox());
    update();
}

void ScreenSettingWidget::SetScreenValue(int x, int y, int w, int h)
{
    setArea(QRect(x, y, w, h));
}

void ScreenSettingWidget::on_SetScreenRect(QRect rect)
{
    setArea(rect);
}

void ScreenSettingWidget::on_ScreenRubberRectChange(QRect rect, QRect widget)
{
    const QRect units = unitsOf(rect, widget);
    SetScreenValue(units.x(), units.y(), units.width(), units.height());
}

// With no picture of the desktop the screens stand as dark panes with their numbers.
void ScreenSettingWidget::paintPicture(QPainter &painter, const QRect &target) const
{
    if (m_Picture.isNull())
        painter.fillRect(target, kDesktopColour);
    else
        painter.drawPixmap(target, m_Picture);
    QFont numberFont = font();
    numberFont.setPixelSize(qMax(12, target.height() / 4));
    numberFont.setBold(true);
    painter.setFont(numberFont);
    for (int i = 0; i < m_Screens.size(); ++i) {
        if (!m_Screens[i].intersects(full()))
            continue;
        const QRect screen = MappingMath::rescale(m_Screens[i], full(), target) & target;
        painter.setPen(QPen(kScreenEdgeColour, 1.0));
        painter.drawRect(screen.adjusted(0, 0, -1, -1));
        painter.setPen(kNumberColour);
        painter.drawText(screen, Qt::AlignCenter, QString::number(i + 1));
    }
}
