#include "pictureset.h"

#include "batterysprite.h"
#include "devicedrawing.h"
#include "iconset.h"
#include "pendrawing.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QPainter>
#include <QSaveFile>
#include <QSet>
#include <QXmlStreamWriter>

#include <algorithm>

namespace
{
constexpr int kOrientations = 4;
constexpr int kMenuPens = 8;
const QSize kTabletPicture(320, 200);
const QSize kKeyPicture(400, 280);
const QSize kKeyDialogPicture(780, 260);
const QSize kKeypadPreview(900, 520);

// The grouped keypad is the one the preview overlay shows; without one, a remote of 11 keys.
ModelTraits keypadModel(const ModelTable &table)
{
    for (const ModelTraits &model : table.models) {
        if (model.groupKeys != 0)
            return model;
    }
    ModelTraits fallback;
    fallback.deviceType = 4;
    fallback.keyNum = 11;
    fallback.ringNum = 1;
    fallback.groupKeys = 1;
    return fallback;
}

QImage keypadPreview(const DeviceDrawing &drawing, int orientation)
{
    QImage image(kKeypadPreview, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(0x33, 0x41, 0x55), 1.5));
    p.setBrush(QColor(0x0f, 0x17, 0x2a, 235));
    p.drawRoundedRect(QRectF(image.rect()).adjusted(1, 1, -1, -1), 18, 18);
    const QSizeF frame = orientation % 2 == 0 ? QSizeF(400, 250) : QSizeF(250, 340);
    const QPointF centre = QRectF(image.rect()).center();
    DeviceView view;
    view.orientation = orientation;
    view.numbered = true;
    drawing.paint(p, QRectF(centre - QPointF(frame.width() / 2, frame.height() / 2), frame), view);
    return image;
}
} // namespace

PictureSet::PictureSet(const ModelTable &table) : m_table(table)
{
    addWindowPictures();
    addPens();
    for (const ModelTraits &model : table.models)
        addModel(model);
    addKeypadPreview();
}

void PictureSet::add(const QString &path, const QImage &image)
{
    m_pictures.append(qMakePair(path, image));
}

void PictureSet::addWindowPictures()
{
    add("Res/logo.png", IconSet::logo());
    add("Res/scribora.png", IconSet::appIcon(128));
    add("Res/show.png", IconSet::trayIcon(IconSet::TrayGlyph::Show));
    add("Res/setting.png", IconSet::trayIcon(IconSet::TrayGlyph::Setting));
    add("Res/update.png", IconSet::trayIcon(IconSet::TrayGlyph::Update));
    add("Res/close.png", IconSet::trayIcon(IconSet::TrayGlyph::Exit));
    add("Res/title_setting.png", IconSet::titleButton(IconSet::TitleGlyph::Setting));
    add("Res/title_min.png", IconSet::titleButton(IconSet::TitleGlyph::Minimise));
    add("Res/title_close.png", IconSet::titleButton(IconSet::TitleGlyph::Close));
    add("Res/btn_setting_r.png", IconSet::settingWithRedPoint(IconSet::ButtonState::Normal));
    add("Res/btn_setting_r_hover.png", IconSet::settingWithRedPoint(IconSet::ButtonState::Hover));
    add("Res/btn_setting_r_press.png", IconSet::settingWithRedPoint(IconSet::ButtonState::Pressed));
    add("Res/other_icon.png", IconSet::otherApp());
    add("Res/ImportSuccess.png", IconSet::importResult(true));
    add("Res/ImportFail.png", IconSet::importResult(false));
    add("Res/leftTop.png", IconSet::cornerCursor(true));
    add("Res/rightbottom.png", IconSet::cornerCursor(false));
    add("Res/screenArea.png", IconSet::screenArea());
    add("Res/disconnect.png", IconSet::disconnected());
    add("Res/check_on.png", IconSet::checkBox(true));
    add("Res/check_off.png", IconSet::checkBox(false));
    add("Res/radio_on.png", IconSet::radioButton(true));
    add("Res/radio_off.png", IconSet::radioButton(false));
    add("Res/arrow_down.png", IconSet::arrowDown());
    add("Res/battery_charging.png", BatterySprite::render(true));
    add("Res/battery_uncharing.png", BatterySprite::render(false));
    ModelTraits plain;
    plain.deviceType = 1;
    plain.keyNum = 4;
    add("Res/device.png", DeviceDrawing(plain).render(QSize(80, 56), DeviceView()));
}

// The pen menu numbers pens 1 to 8; a model's own pen type may lie beyond.
void PictureSet::addPens()
{
    QSet<int> numbers;
    for (int number = 1; number <= kMenuPens; ++number)
        numbers.insert(number);
    for (const ModelTraits &model : m_table.models) {
        if (model.penType > 0)
            numbers.insert(model.penType);
    }
    QList<int> sorted = numbers.values();
    std::sort(sorted.begin(), sorted.end());
    for (int number : sorted)
        add(QStringLiteral("Res/pen%1.png").arg(number), PenDrawing::render(number));
}

void PictureSet::addModel(const ModelTraits &model)
{
    const DeviceDrawing drawing(model);
    const QString base = QStringLiteral("tablet/");
    add(base + model.name + ".png", drawing.render(kTabletPicture, DeviceView()));
    for (int orientation = 0; orientation < kOrientations; ++orientation) {
        DeviceView view;
        view.orientation = orientation;
        view.numbered = true;
        const QString suffix = QStringLiteral("_K%1.png").arg(orientation);
        add(base + model.name + suffix, drawing.render(kKeyPicture, view));
        add(base + "HY_" + model.name + suffix, drawing.render(kKeyDialogPicture, view));
    }
    if (model.ringNum < 1)
        return;
    DeviceView wheel;
    wheel.ringFocus = true;
    add(base + model.name + "_R.png", drawing.render(kKeyPicture, wheel));
}

void PictureSet::addKeypadPreview()
{
    const DeviceDrawing drawing(keypadModel(m_table));
    for (int orientation = 0; orientation < kOrientations; ++orientation)
        add(QStringLiteral("tablet/Pre_Keypad_H_%1.png").arg(orientation),
            keypadPreview(drawing, orientation));
}

bool PictureSet::write(const QString &folder, const QString &styleSheet) const
{
    QDir dir(folder);
    for (const auto &picture : m_pictures) {
        const QString path = dir.filePath(picture.first);
        if (!dir.mkpath(QFileInfo(path).path()) || !picture.second.save(path, "PNG")) {
            qCritical().noquote() << "scribora-artgen: cannot write" << path;
            return false;
        }
    }
    return writeList(dir.filePath("resource.qrc"), styleSheet);
}

bool PictureSet::writeList(const QString &file, const QString &styleSheet) const
{
    QByteArray text;
    QXmlStreamWriter xml(&text);
    xml.setAutoFormatting(true);
    xml.writeDTD("<!DOCTYPE RCC>");
    xml.writeStartElement("RCC");
    xml.writeAttribute("version", "1.0");
    xml.writeStartElement("qresource");
    xml.writeAttribute("prefix", "/image");
    for (const auto &picture : m_pictures)
        xml.writeTextElement("file", picture.first);
    xml.writeEndElement();
    xml.writeStartElement("qresource");
    xml.writeAttribute("prefix", "/qss");
    xml.writeStartElement("file");
    xml.writeAttribute("alias", "qss/stylesheet.qss");
    xml.writeCharacters(QFileInfo(styleSheet).absoluteFilePath());
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndElement();
    QSaveFile out(file);
    if (out.open(QIODevice::WriteOnly) && out.write(text) == text.size() && out.commit())
        return true;
    qCritical().noquote() << "scribora-artgen: cannot write" << file << out.errorString();
    return false;
}
