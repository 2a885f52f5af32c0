#pragma once

#include "simulation/mac/camera/RgbxImage.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <vector>

namespace sentrel::simulation {

/// A colour as light, 0 to 1 each; values above 1 are brighter than the picture can show.
struct Rgb {
    float red = 0;
    float green = 0;
    float blue = 0;
};

constexpr Rgb operator+(Rgb a, Rgb b)
{
    return {a.red + b.red, a.green + b.green, a.blue + b.blue};
}
constexpr Rgb operator*(Rgb a, Rgb b)
{
    return {a.red * b.red, a.green * b.green, a.blue * b.blue};
}
constexpr Rgb operator*(Rgb a, float factor)
{
    return {a.red * factor, a.green * factor, a.blue * factor};
}
constexpr Rgb mix(Rgb a, Rgb b, float share)
{
    return a * (1 - share) + b * share;
}

struct Point {
    float x = 0;
    float y = 0;
};

constexpr Point operator-(Point a, Point b)
{
    return {a.x - b.x, a.y - b.y};
}

/// Shapes are distances in pixels to their edge, negative inside. `reach` is a box around the shape.
struct Box {
    float left = 0;
    float top = 0;
    float right = 0;
    float bottom = 0;
};

struct Ellipse {
    Point centre;
    float radiusX = 0;
    float radiusY = 0;

    [[nodiscard]] Box reach() const
    {
        return {centre.x - radiusX, centre.y - radiusY, centre.x + radiusX, centre.y + radiusY};
    }
    [[nodiscard]] float distance(Point p) const
    {
        // Exact for circles, close enough near the edge of others.
        const float x = (p.x - centre.x) / radiusX;
        const float y = (p.y - centre.y) / radiusY;
        const float length = std::sqrt(x * x + y * y);
        const float gradient = std::sqrt(x * x / (radiusX * radiusX) + y * y / (radiusY * radiusY));
        return length == 0 ? -std::min(radiusX, radiusY) : length * (length - 1) / gradient;
    }
};

/// The part of a shape above a horizontal line.
template <class Shape> struct Above {
    Shape shape;
    float line = 0;

    [[nodiscard]] Box reach() const { return shape.reach(); }
    [[nodiscard]] float distance(Point p) const { return std::max(shape.distance(p), p.y - line); }
};

struct RoundedBox {
    Box box;
    float radius = 0;

    [[nodiscard]] Box reach() const { return box; }
    [[nodiscard]] float distance(Point p) const
    {
        const float x = std::abs(p.x - (box.left + box.right) / 2) - (box.right - box.left) / 2 + radius;
        const float y = std::abs(p.y - (box.top + box.bottom) / 2) - (box.bottom - box.top) / 2 + radius;
        const float outsideX = std::max(x, 0.0F);
        const float outsideY = std::max(y, 0.0F);
        return std::sqrt(outsideX * outsideX + outsideY * outsideY) + std::min(std::max(x, y), 0.0F) - radius;
    }
};

/// A line with round ends, perhaps tapered.
struct Stroke {
    Point from;
    Point to;
    float radius = 1;
    float endRadius = radius;

    [[nodiscard]] Box reach() const
    {
        const float r = std::max(radius, endRadius);
        return {std::min(from.x, to.x) - r, std::min(from.y, to.y) - r, std::max(from.x, to.x) + r,
                std::max(from.y, to.y) + r};
    }
    [[nodiscard]] float distance(Point p) const
    {
        const Point line = to - from;
        const Point offset = p - from;
        const float length = line.x * line.x + line.y * line.y;
        const float along = std::clamp((offset.x * line.x + offset.y * line.y) / length, 0.0F, 1.0F);
        const float x = offset.x - line.x * along;
        const float y = offset.y - line.y * along;
        return std::sqrt(x * x + y * y) - (radius + (endRadius - radius) * along);
    }
};

/// A convex shape with corners given clockwise.
class Polygon {
public:
    Polygon(std::initializer_list<Point> corners) : corners_(corners) {}

    [[nodiscard]] Box reach() const
    {
        Box box{corners_[0].x, corners_[0].y, corners_[0].x, corners_[0].y};
        for (const Point corner : corners_) {
            box = {std::min(box.left, corner.x), std::min(box.top, corner.y), std::max(box.right, corner.x),
                   std::max(box.bottom, corner.y)};
        }
        return box;
    }
    [[nodiscard]] float distance(Point p) const
    {
        float farthest = -1e9F;
        for (std::size_t i = 0; i < corners_.size(); ++i) {
            const Point corner = corners_[i];
            const Point edge = corners_[(i + 1) % corners_.size()] - corner;
            const float outward = (p.x - corner.x) * edge.y - (p.y - corner.y) * edge.x;
            farthest = std::max(farthest, outward / std::sqrt(edge.x * edge.x + edge.y * edge.y));
        }
        return farthest;
    }

private:
    std::vector<Point> corners_;
};

/// A horizontal strip of a picture of smooth shapes, with unlimited brightness until it is finished. A whole picture of
/// such pixels would be large: each strip draws its part of every shape.
class SceneCanvas {
public:
    /// The strip for some rows of a picture of `width` x `height` scene units, whose pixels are squares of
    /// `unitsPerPixel`.
    struct Strip {
        int width = 0;
        int height = 0;
        int unitsPerPixel = 1;
        int firstRow = 0;
        int rows = 0;
    };

    explicit SceneCanvas(const Strip& strip)
        : columns_(strip.width / strip.unitsPerPixel),
          firstRow_(strip.firstRow),
          rows_(strip.rows),
          strip_(strip),
          scale_(static_cast<float>(strip.unitsPerPixel)),
          pixels_(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_))
    {
    }

    /// Paints the shape; `paint` gives the colour at a point. `softness` is the width of its edge in scene units.
    template <class Shape, class Paint>
        requires requires(Paint paint) { Rgb{paint(Point{})}; }
    void fill(const Shape& shape, Paint paint, float opacity = 1, float softness = 1)
    {
        visit(shape, softness,
              [&](Rgb& pixel, Point p, float cover) { pixel = mix(pixel, paint(p), cover * opacity); });
    }
    template <class Shape> void fill(const Shape& shape, Rgb colour, float opacity = 1, float softness = 1)
    {
        fill(shape, [colour](Point) { return colour; }, opacity, softness);
    }

    /// Adds light, brightest in the shape and gone at `softness` / 2 outside of it.
    template <class Shape> void glow(const Shape& shape, Rgb light, float softness)
    {
        visit(shape, softness, [&](Rgb& pixel, Point, float cover) { pixel = pixel + light * (cover * cover); });
    }

    /// Writes the finished strip into its rows of the picture, darker towards the corners, with a little grain.
    void finish(RgbxImage& picture) const;

    [[nodiscard]] RoundedBox whole() const
    {
        return {{-9, -9, static_cast<float>(strip_.width) + 9, static_cast<float>(strip_.height) + 9}, 0};
    }

private:
    [[nodiscard]] int pixelAt(float units, float margin) const { return static_cast<int>((units + margin) / scale_); }

    template <class Shape, class Blend> void visit(const Shape& shape, float softness, Blend blend)
    {
        const Box reach = shape.reach();
        const float edge = std::max(softness, scale_); // an edge is never sharper than a pixel
        const float margin = edge / 2 + scale_;
        const int left = std::max(pixelAt(reach.left, -margin), 0);
        const int top = std::max(pixelAt(reach.top, -margin), firstRow_);
        const int right = std::min(pixelAt(reach.right, margin) + 1, columns_);
        const int bottom = std::min(pixelAt(reach.bottom, margin) + 1, firstRow_ + rows_);
        for (int y = top; y < bottom; ++y) {
            for (int x = left; x < right; ++x) {
                const Point p{(static_cast<float>(x) + 0.5F) * scale_, (static_cast<float>(y) + 0.5F) * scale_};
                const float cover = 0.5F - shape.distance(p) / edge;
                if (cover > 0) {
                    blend(pixels_[static_cast<std::size_t>(y - firstRow_) * static_cast<std::size_t>(columns_) +
                                  static_cast<std::size_t>(x)],
                          p, std::min(cover, 1.0F));
                }
            }
        }
    }

    int columns_;
    int firstRow_;
    int rows_;
    Strip strip_;
    float scale_; // scene units in a pixel's side
    std::vector<Rgb> pixels_;
};

} // namespace sentrel::simulation
