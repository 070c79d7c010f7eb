#pragma once

#include <QPoint>
#include <QRect>
#include <QWidget>

#include <array>

class QPainter;

// Five-point calibration of a pen display, shown over the whole screen; its
// result is the four calibration terms of the tablet's settings.
class ScreenCalibrate : public QWidget
{
    Q_OBJECT
public:
    static constexpr int kPointCount = 5;
    using Points = std::array<QPoint, kPointCount>;

    struct Terms {
        float fkx;
        float fky;
        float fxlc;
        float fylc;
    };

    explicit ScreenCalibrate(QWidget *parent = nullptr);

    void SetScreenArea(const QRect &rect);
    void CalculationFun();
    static Terms calculateTerms(const Points &measured, const Points &targets);

    int pointCounter() const { return m_Counter; }
    QPoint targetPoint(int index) const { return m_Targets[index]; }
    QRect hitRect(int index) const { return m_HitRects[index]; }

signals:
    void sign_ScreenCalibrate(float fkx, float fky, float fxlc, float fylc);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void drawCross(QPainter &painter, const QPoint &centre) const;
    void drawInstructions(QPainter &painter) const;
    void drawProgress(QPainter &painter) const;

    Points m_Measured{};
    Points m_Targets{};
    std::array<QRect, kPointCount> m_HitRects{};
    int m_Counter = 0;
};
