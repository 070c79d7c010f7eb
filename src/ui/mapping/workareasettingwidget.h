#pragma once

#include "areasettingwidget.h"

#include <QPixmap>

// The tablet side of the area dialog: the tablet's picture as the orientation turns it, in
// hundredths of an inch.
class WorkAreaSettingWidget : public AreaSettingWidget
{
    Q_OBJECT
public:
    explicit WorkAreaSettingWidget(QWidget *parent = nullptr);

    // `full` is the whole tablet in its orientation, `area` the first choice, `box` where the
    // picture may lie.
    void SetTablet(const QRect &full, const QRect &area, const QRect &box, const QString &picture,
                   short orientation);
    void SetTabletValue(int x, int y, int w, int h);
    QRect GetWorkRect() const { return area(); }
    void InitLanguageUI();

public slots:
    void on_WorkRubberRectChange(QRect rect, QRect widget);

protected:
    void paintPicture(QPainter &painter, const QRect &target) const override;

private:
    QPixmap m_Picture;
};
