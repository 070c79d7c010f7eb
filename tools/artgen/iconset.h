#pragma once

#include <QColor>
#include <QImage>
#include <QPainterPath>

class QPainter;

// The window's own pictures: logo, window and tray icons, title buttons, dialog results,
// cursors and the small marks of the style sheet.
class IconSet
{
public:
    enum class ButtonState { Normal, Hover, Pressed };
    enum class TrayGlyph { Show, Setting, Update, Exit };
    enum class TitleGlyph { Setting, Minimise, Close };

    static QImage logo();
    static QImage appIcon(int size);
    static QImage trayIcon(TrayGlyph glyph);
    static QImage titleButton(TitleGlyph glyph);
    static QImage settingWithRedPoint(ButtonState state);
    static QImage otherApp();
    static QImage importResult(bool success);
    static QImage cornerCursor(bool topLeft);
    static QImage screenArea();
    static QImage disconnected();
    static QImage checkBox(bool checked);
    static QImage radioButton(bool checked);
    static QImage arrowDown();

private:
    static QImage canvas(int width, int height);
    static QPainterPath gear(const QPointF &centre, double radius);
    static QPainterPath nib(const QPointF &centre, double height);
    static void paintGlyph(QPainter &p, TrayGlyph glyph, const QRectF &box);
    static void paintTitleGlyph(QPainter &p, TitleGlyph glyph, const QRectF &box);
};
