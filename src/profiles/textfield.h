#pragma once

#include <QString>

#include <cstddef>
#include <cstring>

// Text in the records' fixed fields is UTF-8, and is read and written
// without ever crossing the field: a record from a hostile source may lack
// its NUL.

// Up to the first NUL, or the whole field when there is none.
inline QString fieldText(const char *field, size_t fieldSize)
{
    return QString::fromUtf8(field, static_cast<int>(strnlen(field, fieldSize)));
}

template <size_t N> QString fieldText(const char (&field)[N])
{
    return fieldText(field, N);
}

// Always NUL-terminated, and never ending in half a UTF-8 character.
inline void copyTextField(char *field, size_t fieldSize, const char *text)
{
    if (fieldSize == 0)
        return;
    size_t length = text ? strnlen(text, fieldSize - 1) : 0;
    if (text && text[length] != '\0') {
        while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
            --length;
    }
    if (length > 0)
        memcpy(field, text, length);
    field[length] = '\0';
}

template <size_t N> void copyTextField(char (&field)[N], const char *text)
{
    copyTextField(field, N, text);
}

template <size_t N> void copyTextField(char (&field)[N], const QString &text)
{
    copyTextField(field, N, text.toUtf8().constData());
}
