#pragma once

#include <QColor>
#include <QFont>

// One palette for every picture: slate neutrals and a single teal accent, the same values the
// style sheet uses.
namespace ArtPalette
{
inline QColor slate(int shade)
{
    switch (shade) {
    case 50:
        return QColor(0xf8, 0xfa, 0xfc);
    case 100:
        return QColor(0xf1, 0xf5, 0xf9);
    case 200:
        return QColor(0xe2, 0xe8, 0xf0);
    case 300:
        return QColor(0xcb, 0xd5, 0xe1);
    case 400:
        return QColor(0x94, 0xa3, 0xb8);
    case 500:
        return QColor(0x64, 0x74, 0x8b);
    case 600:
        return QColor(0x47, 0x55, 0x69);
    case 700:
        return QColor(0x33, 0x41, 0x55);
    case 800:
        return QColor(0x1e, 0x29, 0x3b);
    default:
        return QColor(0x0f, 0x17, 0x2a);
    }
}

inline QColor accent()
{
    return QColor(0x0d, 0x94, 0x88);
}

inline QColor accentLight()
{
    return QColor(0x5e, 0xea, 0xd4);
}

inline QColor accentDark()
{
    return QColor(0x0f, 0x76, 0x6e);
}

inline QColor danger()
{
    return QColor(0xdc, 0x26, 0x26);
}

inline QColor warning()
{
    return QColor(0xf5, 0x9e, 0x0b);
}

inline QFont font(int pixelSize, bool bold)
{
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPixelSize(pixelSize);
    f.setBold(bold);
    f.setHintingPreference(QFont::PreferNoHinting);
    return f;
}
} // namespace ArtPalette
