#pragma once

#include <QRect>
#include <QWidget>

#include <array>

class QLabel;
class QPainter;
class QPushButton;
class QRubber;
class QSpinBox;

// What the screen and the tablet side of the area dialog share: a picture with a rubber band
// over it, four spin boxes x, y, width, height that are the chosen area, three tips and the
// button that starts picking by clicks or by pen. Band and spin boxes follow each other by the
// integer proportion between the picture and the full rectangle.
class AreaSettingWidget : public QWidget
{
    Q_OBJECT
public:
    QRect area() const;
    QRubber *rubber() const { return m_Rubber; }
    QPushButton *pickButton() const { return m_Pick; }

public slots:
    void spinBox_valueChanged(int value);

protected:
    // `letter` names the spin boxes: spinBox_SX or spinBox_TX and so on.
    AreaSettingWidget(char letter, QWidget *parent);

    // The whole that the picture shows, in units; the picture keeps `shape`'s proportions
    // inside `box`.
    void setFull(const QRect &full, const QSize &shape, const QRect &box);
    QRect full() const { return m_Full; }
    static QRect pictureBox();
    // Puts an area in the spin boxes, fitted into the whole, and moves the band to it.
    void setArea(const QRect &area);
    // A band over a picture of `widget`'s size, in units of the whole.
    QRect unitsOf(const QRect &band, const QRect &widget) const;

    virtual void paintPicture(QPainter &painter, const QRect &target) const = 0;
    void paintEvent(QPaintEvent *event) override;

    std::array<QLabel *, 3> m_Tips;
    QPushButton *m_Pick;

private:
    void buildControls(char letter);
    void placeBand();

    std::array<QSpinBox *, 4> m_Boxes;
    QRubber *m_Rubber;
    QRect m_Full;
};
