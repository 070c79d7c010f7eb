#pragma once

#include <QDialog>
#include <QPoint>
#include <QPointer>

// Base of the frameless dialogs: drag by the head strip, centre over the owner.
class ScriboraDialog : public QDialog
{
    Q_OBJECT
public:
    // The dialog stays parentless so that it is its own top-level window; the
    // parent only serves for centring.
    explicit ScriboraDialog(QWidget *parent = nullptr);

    void ShowDialogInCenter();
    static void SetQGraphicsDropShadowEffect(QWidget *widget);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

    QPointer<QWidget> m_Parent;

private:
    void dragTo(const QPoint &globalPos);

    bool m_Dragging = false;
    QPoint m_DragOffset;
};
