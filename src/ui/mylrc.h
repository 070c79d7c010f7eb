#pragma once

#include "ctipsink.h"

#include <QColor>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QWidget>

// The transient tip window. Reader threads reach it only through EmitInfo and
// EmitRingLrcInfo, whose signals the window receives on the GUI thread.
class MyLrc : public QWidget, public CTipSink
{
    Q_OBJECT
public:
    explicit MyLrc(QWidget *parent = nullptr);

    // Thread-safe entries.
    void EmitInfo(QString text) override;
    void EmitRingLrcInfo(QStringList names, int selected) override;

    void ShowInfoText(QString text, bool timed);
    void SetInfoText(QString text);
    // The list stays with the caller.
    void DrawTips(QStringList *names, int selected);
    void ShowLrcOnScreenBottom();
    void SetLrcShowTime(qint64 ms);
    void SetBackColor(QColor color);
    void SetTextColor(QColor color);
    void SetRecRange(QPoint position);
    void CloseInfoText();

    const QStringList &lines() const { return m_Lines; }
    bool listMode() const { return m_ListMode; }
    const QTimer &timer() const { return m_Timer; }

public slots:
    void handleTimeout();

signals:
    void EmitAction(QString text);
    // The receiver owns the list.
    void EmitRingLrc(QStringList *names, int selected);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void paintList(QPainter &painter);

    QStringList m_Lines;
    bool m_ListMode = false;
    int m_Selected = 0;
    QColor m_BackColor = QColor(255, 255, 255, 125);
    QColor m_TextColor = Qt::black;
    QColor m_HighlightColor = QColor(255, 127, 39);
    QTimer m_Timer;
    QPoint m_DragOffset;
};
