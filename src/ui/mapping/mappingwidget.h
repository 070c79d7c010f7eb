#pragma once

#include "deviceattributes.h"

#include <QPixmap>
#include <QRect>
#include <QWidget>

class CTablet;
class QPainter;
class QRubber;
struct stTablet_XMLData;

// The mapping page's preview: the chosen part of the desktop on the left, the tablet on the
// right, each area framed in red and joined to the other corner to corner. A band dragged
// over either half is offered back as a new area through the two signals.
class mappingwidget : public QWidget
{
    Q_OBJECT
public:
    explicit mappingwidget(QWidget *parent = nullptr);

    void SetCTablet(CTablet *tablet);

    // Where the two pictures and the two areas lie in the widget.
    QRect screenFrame() const;
    QRect tabletFrame() const;
    QRect screenAreaFrame() const;
    QRect tabletAreaFrame() const;

public slots:
    // Screen, areas and orientation anew from the tablet's profile.
    void UpdateUI();
    // Repaints; with `grab` the desktop picture is taken again.
    void updataScreen(bool grab);
    // A new screen entry; all of it is the area.
    void SetScreenArea(int index, QRect rect);
    // The current entry's rectangle changed; the area stays where it still fits.
    void SetScreenArea2(QRect rect);
    void Screen_valueChanged(QRect rect);
    // Also stores a proper rectangle in the profile.
    void Tablet_valueChanged(QRect rect);
    void SetTabletAreaValue(int x, int y, int w, int h);
    void SetTabletOrientation(short orientation);
    void on_ScreenRubberRectChange(QRect rect, QRect widget);

signals:
    void SetScreenValue(int x, int y, int w, int h);
    void SetTabletValue(int x, int y, int w, int h);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QRect half(bool right) const;
    QSize tabletShape() const;
    void grabScreen();
    void paintPicture(QPainter &painter, const QRect &frame, const QPixmap &picture) const;
    void paintArea(QPainter &painter, const QRect &area) const;
    void paintLinks(QPainter &painter) const;

    stTablet_XMLData *m_Settings = nullptr;
    _DEVICE_ATTRIBUTES m_Attributes{};
    QPixmap m_TabletPicture;
    QPixmap m_TurnedPicture;
    short m_Orientation = 0;
    QRect m_TabletFull;
    QRect m_TabletArea;
    int m_ScreenIndex = 0;
    QRect m_ScreenFull;
    QRect m_ScreenArea;
    QPixmap m_ScreenPicture;
    QRubber *m_Rubber;
};
