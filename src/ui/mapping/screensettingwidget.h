#pragma once

#include "areasettingwidget.h"

#include <QPixmap>
#include <QVector>

// The screen side of the area dialog: the chosen screen entry with its screens outlined and
// numbered, in desktop pixels.
class ScreenSettingWidget : public AreaSettingWidget
{
    Q_OBJECT
public:
    explicit ScreenSettingWidget(QWidget *parent = nullptr);

    // `screens` holds `count` screens from index 1 on, numbered as the page numbers them;
    // `entry` is the rectangle to choose in; `picture` may be null.
    void SetScreens(const QRect *screens, int count, const QRect &entry, const QPixmap *picture);
    void SetScreenValue(int x, int y, int w, int h);
    QRect GetScreenRect() const { return area(); }
    void InitLanguageUI();

public slots:
    void on_SetScreenRect(QRect rect);
    void on_ScreenRubberRectChange(QRect rect, QRect widget);

protected:
    void paintPicture(QPainter &painter, const QRect &target) const override;

private:
    QVector<QRect> m_Screens;
    QPixmap m_Picture;
};
