// Draws a neon street at night, for looking at halos, stars and the lights of a display picture: 8-bit sRGB
// that ends at 1.0, as a phone writes it. A dark ground of 0.01 to 0.05, neon tubes of 12 to 40 pixels in
// four colours, lamps of 16 pixels, wet ground that mirrors them, a clipped white sky in a gap between the
// houses, and a white wall that does not clip.
//   draw_night_street OUT.png [WIDTH]
// Pixels are those of a width of 3,000; another WIDTH draws the same street smaller or larger. Nothing is
// random: the same bytes come out each time. Status: 0, 1 when the file can't be written, 2 for a wrong line.
#include "core/image/each_pixel.h"
#include "core/io/image_writer.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <vector>

namespace {

using namespace tamlo;

constexpr double kWidth = 3000, kHeight = 2000;
constexpr double kStreet = 1250; // the wet ground begins here
constexpr Vec3d kWhite{1.0, 1.0, 1.0}, kPaint{0.72, 0.72, 0.72};
constexpr Vec3d kRed{1.0, 0.15, 0.06}, kPink{1.0, 0.20, 0.55}, kBlue{0.05, 0.75, 1.0}, kGreen{0.1, 1.0, 0.25};
constexpr double kLampPx = 16;

struct Point {
    double x, y;
};

struct Tube {
    Vec3d colour;
    double widthPx;
    std::vector<Point> points;
};

struct Box {
    double left, top, right, bottom;
};

constexpr Box kSky{2330, 0, 2560, 700}, kWall{2600, 700, 2960, 1240};
constexpr Point kLamps[] = {{150, 1080},  {620, 1110}, {1120, 1130}, {1560, 1140},
                            {1980, 1120}, {2240, 980}, {2240, 620}};

const std::vector<Tube>& tubes()
{
    static const std::vector<Tube> all{
        {kRed, 40, {{300, 480}, {300, 820}, {480, 820}}},
        {kPink, 24, {{760, 480}, {900, 760}, {1040, 480}}},
        {kBlue, 18, {{1250, 520}, {1250, 820}, {1450, 820}, {1450, 520}, {1250, 520}}},
        {kGreen, 12, {{1640, 470}, {1900, 470}}},
        {kGreen, 12, {{1640, 540}, {1900, 540}}},
        {kRed, 12, {{1640, 640}, {1770, 860}, {1900, 640}}}};
    return all;
}

double distanceTo(const Point& p, const std::vector<Point>& line)
{
    double best = kWidth;
    for (std::size_t i = 1; i < line.size(); ++i) {
        const Point& a = line[i - 1];
        const double dx = line[i].x - a.x, dy = line[i].y - a.y;
        const double t = std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
        best = std::min(best, std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy));
    }
    return best;
}

/// Lays a colour over what is there; an edge `depth` pixels inside is covered, one outside is not.
void lay(Vec3d& picture, const Vec3d& colour, double depth, double step)
{
    const double cover = std::clamp(depth / step + 0.5, 0.0, 1.0);
    for (std::size_t c = 0; c < 3; ++c) picture[c] += cover * (colour[c] - picture[c]);
}

void glow(Vec3d& picture, const Vec3d& colour, double light)
{
    for (std::size_t c = 0; c < 3; ++c) picture[c] += light * colour[c];
}

double inside(const Box& box, const Point& p)
{
    return std::min({p.x - box.left, box.right - p.x, p.y - box.top, box.bottom - p.y});
}

/// The houses and their lights at a point, for pixels `step` apart.
Vec3d houses(const Point& p, double step)
{
    const double shade = 0.6 + 0.4 * std::cos(p.x / 170) * std::cos(p.y / 230);
    const double ground = 0.01 + 0.04 * std::clamp(p.y / kHeight, 0.0, 1.0) * shade;
    Vec3d picture{ground, ground * 0.85, ground * 0.75};
    lay(picture, kWhite, inside(kSky, p), step);
    lay(picture, kPaint, inside(kWall, p), step);
    for (const Tube& tube : tubes()) {
        const double distance = distanceTo(p, tube.points);
        lay(picture, tube.colour, tube.widthPx / 2 - distance, step);
        glow(picture, tube.colour, 0.05 * std::exp(-distance / 60));
    }
    for (const Point& lamp : kLamps) {
        const double distance = std::hypot(p.x - lamp.x, p.y - lamp.y);
        lay(picture, kWhite, kLampPx / 2 - distance, step);
        glow(picture, {1.0, 0.9, 0.7}, 0.08 * std::exp(-distance / 30));
    }
    return picture;
}

/// Wet ground mirrors what stands above it, dimmer and broken by ripples.
Vec3d street(const Point& p, double step)
{
    Vec3d picture = houses(p, step);
    if (p.y < kStreet) return picture;
    const double away = p.y - kStreet;
    const Point mirrored{p.x + 9 * std::sin(away / 13), std::max(kStreet - 1.5 * away, 0.0)};
    glow(picture, houses(mirrored, step), 0.22);
    return picture;
}

RGBImage draw(std::int64_t width)
{
    const double step = kWidth / static_cast<double>(width);
    RGBImage picture(width, std::max<std::int64_t>(std::llround(kHeight / step), 1));
    eachBand(picture, [&](float* p, std::int64_t first, std::size_t pixels) {
        for (std::size_t i = 0; i < pixels; ++i, p += 3) {
            const auto at = first + static_cast<std::int64_t>(i);
            const Vec3d light = street({(static_cast<double>(at % width) + 0.5) * step,
                                        (static_cast<double>(at / width) + 0.5) * step},
                                       step);
            for (std::size_t c = 0; c < 3; ++c) p[c] = static_cast<float>(std::min(light[c], 1.0));
        }
    });
    return picture;
}

} // namespace

int main(int argc, char** argv)
{
    const std::int64_t width = argc == 3 ? std::atoll(argv[2]) : static_cast<std::int64_t>(kWidth);
    if (argc < 2 || argc > 3 || width < 1 || width > 20'000) {
        std::cerr << "usage: draw_night_street OUT.png [WIDTH, 1 to 20000]\n";
        return 2;
    }
    try {
        ImageWriter::save(draw(width), argv[1], 95, std::nullopt);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "draw_night_street: " << error.what() << '\n';
        return 1;
    }
}
