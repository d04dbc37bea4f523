#pragma once

#include <QRectF>

#include <algorithm>
#include <limits>

namespace Corvane::Map {

/// A rectangle of the world by its least and greatest coordinates; empty until something is added.
struct WorldBox
{
    double left = std::numeric_limits<double>::infinity();
    double bottom = std::numeric_limits<double>::infinity();
    double right = -std::numeric_limits<double>::infinity();
    double top = -std::numeric_limits<double>::infinity();

    bool isEmpty() const { return !(left <= right && bottom <= top); }
    void add(double x, double y)
    {
        left = std::min(left, x);
        bottom = std::min(bottom, y);
        right = std::max(right, x);
        top = std::max(top, y);
    }
    void add(const WorldBox& other)
    {
        left = std::min(left, other.left);
        bottom = std::min(bottom, other.bottom);
        right = std::max(right, other.right);
        top = std::max(top, other.top);
    }
    bool meets(const WorldBox& other) const
    {
        return left <= other.right && other.left <= right && bottom <= other.top &&
               other.bottom <= top;
    }
    bool holds(const WorldBox& other) const
    {
        return left <= other.left && other.right <= right && bottom <= other.bottom &&
               other.top <= top;
    }
    /// What both have in common; this one where the other is empty or lies elsewhere.
    WorldBox within(const WorldBox& other) const
    {
        if (other.isEmpty() || !meets(other)) {
            return *this;
        }
        WorldBox common;
        common.left = std::max(left, other.left);
        common.bottom = std::max(bottom, other.bottom);
        common.right = std::min(right, other.right);
        common.top = std::min(top, other.top);
        return common;
    }
    /// North-up, with a negative height.
    QRectF toBounds() const
    {
        return isEmpty() ? QRectF() : QRectF(left, top, right - left, bottom - top);
    }
};

} // namespace Corvane::Map
