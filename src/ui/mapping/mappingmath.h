#pragma once

#include <QRect>
#include <QSize>

// Integer proportions between mapping values (desktop pixels, hundredths of an inch) and the
// pixels of a picture that shows them. Every result truncates, as the stored values do.
namespace MappingMath
{
// `value`, a rectangle measured in `from`, carried over to `to`: the position is
// to.left + (value.left - from.left) * to.width / from.width, the size scales alone, and the
// far edge is position + size - 1. An empty `from` gives a null rectangle.
QRect rescale(const QRect &value, const QRect &from, const QRect &to);

// The largest rectangle of `shape`'s proportions centred in `box`.
QRect fitInto(const QSize &shape, const QRect &box);

// The tablet as the orientation turns it: width and height swap at 90 and 270 degrees.
QSize turned(const QSize &size, int orientation);

// A span of `size` from `start` must end inside `full` units from `base`. When the start
// moved, the span is shortened; when the size changed, the start is pulled back.
int shortenedSize(int start, int size, int base, int full);
int pulledBackStart(int start, int size, int base, int full);
} // namespace MappingMath
