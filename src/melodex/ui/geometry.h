#pragma once

// Points, extents and rectangles for laying out and drawing.
//
// The integer forms (Point, Size, Rect) are what laid-out objects keep, as a
// window system's device context measures them; the floating forms (PointF,
// SizeF, RectF) are what a DrawContext measures and draws with. Both are in
// points (1/72 inch), with y growing downwards. A rectangle holds its left
// and top edges and excludes its right and bottom ones.
//
//     Rect cell{10, 20, 110, 32};
//     cell.contains({10, 20});   // true
//     cell.contains({110, 25});  // false: the right edge is outside
//     RectF(cell).width();       // 100.0

#include <cstdint>

namespace melodex {

struct Point {
    std::int32_t x = 0;
    std::int32_t y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool operator==(const Size&) const = default;
};

struct Rect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;

    std::int32_t width() const { return right - left; }
    std::int32_t height() const { return bottom - top; }
    bool contains(Point point) const {
        return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
    }
    bool operator==(const Rect&) const = default;
};

struct PointF {
    double x = 0;
    double y = 0;
    bool operator==(const PointF&) const = default;
};

struct SizeF {
    double width = 0;
    double height = 0;
    bool operator==(const SizeF&) const = default;
};

struct RectF {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    RectF() = default;
    RectF(double l, double t, double r, double b) : left(l), top(t), right(r), bottom(b) {}
    // NOLINTNEXTLINE(google-explicit-constructor): every Rect is exactly a RectF
    RectF(const Rect& rect)
        : left(rect.left), top(rect.top), right(rect.right), bottom(rect.bottom) {}

    double width() const { return right - left; }
    double height() const { return bottom - top; }
    bool isEmpty() const { return right <= left || bottom <= top; }
    bool operator==(const RectF&) const = default;
};

// The part the two rectangles share; empty (right <= left or bottom <= top)
// when they do not overlap.
inline RectF intersected(const RectF& a, const RectF& b) {
    return {a.left > b.left ? a.left : b.left, a.top > b.top ? a.top : b.top,
            a.right < b.right ? a.right : b.right, a.bottom < b.bottom ? a.bottom : b.bottom};
}

}  // namespace melodex
