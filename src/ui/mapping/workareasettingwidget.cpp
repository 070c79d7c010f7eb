#include "workareasettingwidget.h"

#include "languagetexts.h"
#include "qrubber.h"

#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QTransform>

namespace
{
const QColor kNoPictureColour(0xe2, 0xe8, 0xf0);
} // namespace

WorkAreaSettingWidget::WorkAreaSettingWidget(QWidget *parent) : AreaSettingWidget('T', parent)
{
    m_Pick->setObjectName(QStringLiteral("SetWorkAreaPushButton"));
    connect(rubber(), &QRubber::RubberRectChange, this,
            &WorkAreaSettingWidget::on_WorkRubberRectChange);
    InitLanguageUI();
}

void WorkAreaSettingWidget::InitLanguageUI()
{
    m_Tips[0]->setText(languageText("WorkareaSetWidget.tips1",
                                    "Drag with the mouse in the picture to select an area."));
    m_Tips[1]->setText(
        languageText("WorkareaSetWidget.tips2",
                     "Or click the button below and tap two corners of the tablet with the pen."));
    m_Tips[2]->setText(
        languageText("WorkareaSetWidget.tips3", "The red frame shows the selected area."));
    m_Pick->setText(languageText("WorkareaSetWidget.click", "Select with Pen"));
}

void WorkAreaSettingWidget::SetTablet(const QRect &full, const QRect &area, const QRect &box,
                                      const QString &picture, short orientation)
{
    m_Picture = QPixmap(picture).transformed(QTransform().rotate(90.0 * orientation),
                                             Qt::SmoothTransformation);
    setFull(full, full.size(), box);
    setArea(area);
    update();
}

void WorkAreaSettingWidget::SetTabletValue(int x, int y, int w, int h)
{
    setArea(QRect(x, y, w, h));
}

void WorkAreaSettingWidget::on_WorkRubberRectChange(QRect rect, QRect widget)
{
    const QRect units = unitsOf(rect, widget);
    SetTabletValue(units.x(), units.y(), units.width(), units.height());
}

void WorkAreaSettingWidget::paintPicture(QPainter &painter, const QRect &target) const
{
    if (m_Picture.isNull()) {
        painter.fillRect(target, kNoPictureColour);
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(target, m_Picture);
}
