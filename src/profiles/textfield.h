#pragma once

#include <cstddef>
#include <cstring>

// Copies text into a fixed field: always NUL-terminated, never past the
// field, and never ending in half a UTF-8 character.
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
