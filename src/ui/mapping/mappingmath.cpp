#include "mappingmath.h"

namespace MappingMath
{
namespace
{
// 64 bits: a desktop of several screens times a picture width passes 2^31 quickly enough.
int scaled(int value, int numerator, int denominator)
{
    return static_cast<int>(qint64(value) * numerator / denominator);
}
} // namespace

QRect rescale(const QRect &value, const QRect &from, const QRect &to)
{
    if (from.width() <= 0 || from.height() <= 0)
        return QRect();
    const int left = to.left() + scaled(value.left() - from.left(), to.width(), from.width());
    const int top = to.top() + scaled(value.top() - from.top(), to.height(), from.height());
    return QRect(left, top, scaled(value.width(), to.width(), from.width()),
                 scaled(value.height(), to.height(), from.height()));
}

QRect fitInto(const QSize &shape, const QRect &box)
{
    if (shape.isEmpty())
        return box;
    const QSize size = shape.scaled(box.size(), Qt::KeepAspectRatio);
    return QRect(box.left() + (box.width() - size.width()) / 2,
                 box.top() + (box.height() - size.height()) / 2, size.width(), size.height());
}

QSize turned(const QSize &size, int orientation)
{
    return orientation % 2 == 0 ? size : size.transposed();
}

int shortenedSize(int start, int size, int base, int full)
{
    return (start - base) + size > full ? full - (start - base) : size;
}

int pulledBackStart(int start, int size, int base, int full)
{
    return (start - base) + size > full ? full - size + base : start;
}
} // namespace MappingMath
