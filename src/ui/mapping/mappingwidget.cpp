#include "mappingwidget.h"

#include "cglobaldata.h"
#include "ctablet.h"
#include "mappingmath.h"
#include "qrubber.h"

#include <QGuiApplication>
#include <QMutexLocker>
#include <QPainter>
#include <QScreen>
#include <QTransform>

namespace
{
constexpr int kMargin = 12;
const QColor kAreaColour(255, 0, 0, 255);
const QColor kLinkColour(255, 0, 0, 110);
const QColor kOutlineColour(0x94, 0xa3, 0xb8);
const QColor kNoPictureColour(0x1e, 0x29, 0x3b);

// A frame drawn inside its pixels, so that a pen of any width stays within them.
QRectF inner(const QRect &rect)
{
    return QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5);
}
} // namespace

mappingwidget::mappingwidget(QWidget *parent) : QWidget(parent), m_Rubber(new QRubber(this))
{
    connect(m_Rubber, &QRubber::RubberRectChange, this, &mappingwidget::on_ScreenRubberRectChange);
}

void mappingwidget::SetCTablet(CTablet *tablet)
{
    m_Settings = tablet ? tablet->m_TabletXMLData : nullptr;
    m_Attributes = tablet ? tablet->m_DeviceAttributes : _DEVICE_ATTRIBUTES{};
    m_TabletPicture =
        tablet
            ? QPixmap(
                  QString(":/image/tablet/%1.png").arg(QString::fromUtf8(m_Attributes.ModelName)))
            : QPixmap();
    SetTabletOrientation(m_Settings ? m_Settings->Orientation : 0);
}

void mappingwidget::UpdateUI()
{
    if (!m_Settings) {
        update();
        return;
    }
    const stTablet_XMLData &settings = *m_Settings;
    const int stored = settings.ScreenId;
    const int index = stored >= 0 && stored <= CGlobalData::ScreenNum ? stored : 0;
    const bool newEntry = index != m_ScreenIndex || m_ScreenPicture.isNull();
    m_ScreenIndex = index;
    m_ScreenFull = CGlobalData::ScreenArray[index];
    m_ScreenArea = QRect(settings.SX, settings.SY, settings.SW, settings.SH);
    if (newEntry)
        grabScreen();
    SetTabletOrientation(settings.Orientation);
}

void mappingwidget::updataScreen(bool grab)
{
    if (grab)
        grabScreen();
    update();
}

void mappingwidget::SetScreenArea(int index, QRect rect)
{
    m_ScreenIndex = index;
    m_ScreenFull = rect;
    m_ScreenArea = rect;
    grabScreen();
    update();
}

void mappingwidget::SetScreenArea2(QRect rect)
{
    m_ScreenFull = rect;
    if (!rect.contains(m_ScreenArea))
        m_ScreenArea = rect;
    grabScreen();
    update();
}

void mappingwidget::Screen_valueChanged(QRect rect)
{
    m_ScreenArea = rect;
    update();
}

void mappingwidget::Tablet_valueChanged(QRect rect)
{
    m_TabletArea = rect;
    if (m_Settings && rect.left() <= rect.right() && rect.top() <= rect.bottom()) {
        QMutexLocker lock(&CGlobalData::XMLMutex);
        m_Settings->TX = static_cast<int16_t>(rect.x());
        m_Settings->TY = static_cast<int16_t>(rect.y());
        m_Settings->TW = static_cast<int16_t>(rect.width());
        m_Settings->TH = static_cast<int16_t>(rect.height());
    }
    update();
}

void mappingwidget::SetTabletAreaValue(int x, int y, int w, int h)
{
    m_TabletArea = QRect(x, y, w, h);
    update();
}

// The profile's area follows the orientation already when the page turns the tablet.
void mappingwidget::SetTabletOrientation(short orientation)
{
    m_Orientation = orientation;
    m_TurnedPicture = m_TabletPicture.transformed(QTransform().rotate(90.0 * orientation),
                                                  Qt::SmoothTransformation);
    m_TabletFull =
        QRect(QPoint(0, 0),
              MappingMath::turned(QSize(m_Attributes.Width, m_Attributes.Height), orientation));
    m_TabletArea = m_Settings
                       ? QRect(m_Settings->TX, m_Settings->TY, m_Settings->TW, m_Settings->TH)
                       : m_TabletFull;
    update();
}

// The band's middle tells which half it was meant for; what spills over is cut off.
void mappingwidget::on_ScreenRubberRectChange(QRect rect, QRect widget)
{
    const QRect band = rect.translated(widget.topLeft());
    const QRect screen = screenFrame();
    const QRect tablet = tabletFrame();
    if (screen.contains(band.center())) {
        const QRect value = MappingMath::rescale(band & screen, screen, m_ScreenFull);
        emit SetScreenValue(value.x(), value.y(), value.width(), value.height());
    } else if (tablet.contains(band.center())) {
        const QRect value = MappingMath::rescale(band & tablet, tablet, m_TabletFull);
        emit SetTabletValue(value.x(), value.y(), value.width(), value.height());
    }
}

QRect mappingwidget::half(bool right) const
{
    const int split = width() / 2;
    const QRect side =
        right ? QRect(split, 0, width() - split, height()) : QRect(0, 0, split, height());
    return side.adjusted(kMargin, kMargin, -kMargin, -kMargin);
}

// The orientation's own saved rectangle gives the shape; the default profile leaves it empty.
QSize mappingwidget::tabletShape() const
{
    if (m_Settings && m_Orientation >= 0 && m_Orientation < kOrientationCount) {
        const stOrientArea &saved = m_Settings->OrientArea[m_Orientation];
        if (saved.W / 2 > 0 && saved.H / 2 > 0)
            return QSize(saved.W / 2, saved.H / 2);
    }
    return m_TabletFull.size();
}

QRect mappingwidget::screenFrame() const
{
    return MappingMath::fitInto(m_ScreenFull.size(), half(false));
}

QRect mappingwidget::tabletFrame() const
{
    return MappingMath::fitInto(tabletShape(), half(true));
}

QRect mappingwidget::screenAreaFrame() const
{
    return MappingMath::rescale(m_ScreenArea, m_ScreenFull, screenFrame());
}

QRect mappingwidget::tabletAreaFrame() const
{
    return MappingMath::rescale(m_TabletArea, m_TabletFull, tabletFrame());
}

// A failed grab keeps the last picture. Window 0 is the root window, in desktop pixels.
void mappingwidget::grabScreen()
{
    QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen || m_ScreenFull.isEmpty())
        return;
    const QPixmap picture = screen->grabWindow(0, m_ScreenFull.x(), m_ScreenFull.y(),
                                               m_ScreenFull.width(), m_ScreenFull.height());
    if (!picture.isNull())
        m_ScreenPicture = picture;
}

void mappingwidget::resizeEvent(QResizeEvent *event)
{
    m_Rubber->setGeometry(rect());
    QWidget::resizeEvent(event);
}

void mappingwidget::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (!m_ScreenFull.isEmpty())
        paintPicture(painter, screenFrame(), m_ScreenPicture);
    if (!m_TabletFull.isEmpty())
        paintPicture(painter, tabletFrame(), m_TurnedPicture);
    painter.setRenderHint(QPainter::Antialiasing);
    paintLinks(painter);
    paintArea(painter, screenAreaFrame());
    paintArea(painter, tabletAreaFrame());
}

void mappingwidget::paintPicture(QPainter &painter, const QRect &frame,
                                 const QPixmap &picture) const
{
    if (picture.isNull())
        painter.fillRect(frame, kNoPictureColour);
    else
        painter.drawPixmap(frame, picture);
    painter.setPen(QPen(kOutlineColour, 1.0, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(frame.adjusted(-1, -1, 0, 0));
}

void mappingwidget::paintArea(QPainter &painter, const QRect &area) const
{
    if (area.isEmpty())
        return;
    painter.setPen(QPen(kAreaColour, 1.2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(inner(area));
}

// Each corner of the tablet's area to the same corner of the screen's.
void mappingwidget::paintLinks(QPainter &painter) const
{
    const QRectF tablet = inner(tabletAreaFrame());
    const QRectF screen = inner(screenAreaFrame());
    if (tablet.isEmpty() || screen.isEmpty())
        return;
    painter.setPen(QPen(kLinkColour, 1.0));
    painter.drawLine(tablet.topLeft(), screen.topLeft());
    painter.drawLine(tablet.topRight(), screen.topRight());
    painter.drawLine(tablet.bottomLeft(), screen.bottomLeft());
    painter.drawLine(tablet.bottomRight(), screen.bottomRight());
}
