#include "simulation/mac/camera/scene/CafeRoom.hpp"

#include <array>
#include <cmath>
#include <numbers>

namespace sentrel::simulation {

namespace {

constexpr Rgb plaster{0.86F, 0.76F, 0.62F};
constexpr Rgb panelling{0.40F, 0.27F, 0.18F};
constexpr Rgb darkWood{0.26F, 0.16F, 0.10F};
constexpr Rgb tableWood{0.58F, 0.38F, 0.22F};
constexpr Rgb warmGlow{1.0F, 0.74F, 0.40F};
constexpr Rgb china{0.94F, 0.92F, 0.88F};
constexpr Box windowBox{90, 90, 760, 610};

float along(float value, float from, float to)
{
    return std::clamp((value - from) / (to - from), 0.0F, 1.0F);
}

/// The share of daylight at a point of the room; falls with the distance from the window.
float daylightAt(Point p)
{
    return 1.0F - 0.45F * along(p.x, 500, 1920);
}

/// A surface that dims with the distance from the window.
auto litSurface(const SceneLight& light, Rgb surface, float factor = 1)
{
    return [light, surface, factor](Point p) { return light.on(surface * factor, daylightAt(p)); };
}

void drawWalls(SceneCanvas& canvas, const SceneLight& light)
{
    canvas.fill(canvas.whole(),
                [&](Point p) { return light.on(plaster * (1.02F - 0.28F * along(p.y, 0, 760)), daylightAt(p)); });
    canvas.fill(RoundedBox{{-20, 690, 1940, 1100}, 0}, [&](Point p) {
        const float groove = std::fmod(p.x, 120.0F) < 5 ? 0.62F : 1.0F;
        return light.on(panelling * groove * (1 - 0.35F * along(p.y, 690, 1080)), daylightAt(p));
    });
    canvas.fill(RoundedBox{{-20, 676, 1940, 704}, 4}, litSurface(light, darkWood, 1.25F));
}

void drawSkyline(SceneCanvas& canvas, const SceneLight& light)
{
    struct House {
        float left, top, width;
    };
    constexpr std::array<House, 7> houses{{{90, 410, 95},
                                           {185, 350, 80},
                                           {265, 440, 110},
                                           {375, 300, 90},
                                           {465, 390, 120},
                                           {585, 340, 75},
                                           {660, 420, 100}}};
    const Rgb facade = mix(light.skyBottom * 0.55F, Rgb{0.05F, 0.05F, 0.09F}, light.night);
    int count = 0;
    for (const House& house : houses) {
        canvas.fill(RoundedBox{{house.left, house.top, house.left + house.width, windowBox.bottom}, 0},
                    facade * (0.82F + 0.06F * static_cast<float>(count % 4)));
        for (float y = house.top + 18; y < windowBox.bottom - 26; y += 34) {
            for (float x = house.left + 12; x < house.left + house.width - 18; x += 24) {
                const bool isLit = ++count * 7 % 5 < 2;
                const Rgb pane = mix(facade * 1.25F, isLit ? warmGlow : facade * 0.9F, light.night);
                canvas.fill(RoundedBox{{x, y, x + 11, y + 16}, 1}, pane);
            }
        }
    }
}

void drawWindow(SceneCanvas& canvas, const SceneLight& light)
{
    const auto& [left, top, right, bottom] = windowBox;
    canvas.fill(RoundedBox{{left - 26, top - 26, right + 26, bottom + 26}, 6}, litSurface(light, darkWood, 1.4F));
    canvas.fill(RoundedBox{windowBox, 2},
                [&](Point p) { return mix(light.skyTop, light.skyBottom, along(p.y, windowBox.top, 480)); });
    if (light.night > 0.6F) {
        canvas.glow(Ellipse{{610, 190}, 34, 34}, Rgb{0.25F, 0.26F, 0.30F}, 110);
        canvas.fill(Ellipse{{610, 190}, 33, 33}, Rgb{0.90F, 0.89F, 0.82F});
        canvas.fill(Ellipse{{596, 182}, 29, 30}, Rgb{0.05F, 0.06F, 0.12F}, 0.92F, 3);
    } else {
        const Rgb sunlight = mix(Rgb{1.0F, 0.62F, 0.34F}, Rgb{0.9F, 0.86F, 0.7F}, light.sun);
        canvas.glow(Ellipse{{250, 240}, 30, 30}, sunlight * 0.8F, 260);
        canvas.fill(Ellipse{{480, 200}, 92, 20}, Rgb{1, 1, 1}, 0.34F, 34);
        canvas.fill(Ellipse{{540, 178}, 62, 24}, Rgb{1, 1, 1}, 0.34F, 34);
        canvas.fill(Ellipse{{300, 150}, 84, 16}, Rgb{1, 1, 1}, 0.24F, 30);
    }
    drawSkyline(canvas, light);
    for (const float x : {313.0F, 536.0F}) {
        canvas.fill(RoundedBox{{x - 8, top, x + 8, bottom}, 0}, litSurface(light, darkWood, 1.5F));
    }
    canvas.fill(RoundedBox{{left, 282, right, 296}, 0}, litSurface(light, darkWood, 1.5F));
    canvas.fill(RoundedBox{{left - 50, bottom + 20, right + 50, bottom + 52}, 6}, litSurface(light, darkWood, 2.0F));
    // A plant on the sill.
    canvas.fill(Polygon{{150, 560}, {236, 560}, {224, 632}, {162, 632}}, light.on({0.70F, 0.36F, 0.24F}));
    for (int leaf = -4; leaf <= 4; ++leaf) {
        const auto lean = static_cast<float>(leaf);
        const Stroke blade{{193, 566}, {193 + lean * 21, 452 + lean * lean * 5}, 11, 3};
        canvas.fill(blade, light.on(Rgb{0.22F, 0.46F, 0.22F} * (1.0F - 0.05F * lean)));
    }
}

/// Draws the sunlight that falls through the window onto the wall.
void drawSunbeams(SceneCanvas& canvas, const SceneLight& light)
{
    const Rgb beam = Rgb{0.30F, 0.24F, 0.14F} * light.sun;
    canvas.glow(Polygon{{860, 250}, {1010, 300}, {1130, 690}, {960, 690}}, beam, 40);
    canvas.glow(Polygon{{1050, 315}, {1190, 360}, {1330, 690}, {1170, 690}}, beam * 0.9F, 40);
}

void drawClock(SceneCanvas& canvas, const SceneLight& light, int minuteOfDay)
{
    constexpr Point centre{1390, 235};
    constexpr float pi = std::numbers::pi_v<float>;
    const auto onDial = [&](float turn, float radius) {
        return Point{centre.x + std::sin(turn * 2 * pi) * radius, centre.y - std::cos(turn * 2 * pi) * radius};
    };
    canvas.fill(Ellipse{{centre.x + 9, centre.y + 14}, 120, 120}, Rgb{}, 0.30F, 30);
    canvas.fill(Ellipse{centre, 118, 118}, light.on(darkWood, 0.8F));
    canvas.fill(Ellipse{centre, 104, 104}, light.on(china * 1.04F, 0.85F));
    const Rgb ink = light.on({0.12F, 0.10F, 0.10F});
    for (int hour = 0; hour < 12; ++hour) {
        const float turn = static_cast<float>(hour) / 12;
        const bool isQuarter = hour % 3 == 0;
        canvas.fill(Stroke{onDial(turn, isQuarter ? 78.0F : 85.0F), onDial(turn, 94), isQuarter ? 4.5F : 2.5F}, ink);
    }
    const float hourTurn = static_cast<float>(minuteOfDay % 720) / 720;
    const float minuteTurn = static_cast<float>(minuteOfDay % 60) / 60;
    canvas.fill(Stroke{onDial(hourTurn + 0.5F, 12), onDial(hourTurn, 54), 6, 4}, ink);
    canvas.fill(Stroke{onDial(minuteTurn + 0.5F, 16), onDial(minuteTurn, 82), 4, 2.5F}, ink);
    canvas.fill(Ellipse{centre, 8, 8}, light.on({0.72F, 0.22F, 0.16F}));
}

void drawShelf(SceneCanvas& canvas, const SceneLight& light)
{
    constexpr std::array<Rgb, 5> glazes{{{0.78F, 0.36F, 0.24F},
                                         {0.28F, 0.46F, 0.52F},
                                         {0.90F, 0.84F, 0.70F},
                                         {0.40F, 0.50F, 0.30F},
                                         {0.62F, 0.30F, 0.40F}}};
    for (const float y : {430.0F, 610.0F}) {
        canvas.fill(RoundedBox{{1230, y + 8, 1880, y + 40}, 2}, Rgb{}, 0.22F, 26);
        canvas.fill(RoundedBox{{1230, y, 1880, y + 18}, 3}, litSurface(light, darkWood, 1.6F));
    }
    for (int i = 0; i < 9; ++i) {
        const float x = 1262 + static_cast<float>(i) * 68;
        const Rgb glaze = glazes[static_cast<std::size_t>(i * 3 % 5)];
        // Above, mugs hanging close together; below, bottles and jars.
        canvas.fill(Ellipse{{x + 40, 590}, 13, 15}, light.on(glaze * 0.7F, 0.6F));
        canvas.fill(Ellipse{{x + 40, 590}, 7, 9}, light.on(plaster * 0.7F, 0.6F));
        canvas.fill(RoundedBox{{x, 564, x + 42, 610}, 8},
                    [&](Point p) { return light.on(glaze * (1.12F - 0.5F * along(p.x, x, x + 42)), 0.6F); });
        const float tall = 52 + static_cast<float>(i * 37 % 4) * 12;
        const Rgb glass = glazes[static_cast<std::size_t>((i * 2 + 1) % 5)] * 0.62F;
        if (i == 1 || i == 2) {
            continue; // the clock hangs here
        }
        canvas.fill(RoundedBox{{x + 12, 430 - tall - 26, x + 24, 430 - tall + 14}, 4}, light.on(glass, 0.6F));
        canvas.fill(RoundedBox{{x, 430 - tall, x + 36, 430}, 9},
                    [&](Point p) { return light.on(glass * (1.25F - 0.7F * along(p.x, x, x + 36)), 0.6F); });
        canvas.fill(RoundedBox{{x + 3, 402, x + 33, 420}, 2}, light.on(china * 0.9F, 0.6F));
    }
}

void drawLamp(SceneCanvas& canvas, const SceneLight& light, float x, float y)
{
    canvas.fill(Stroke{{x, -10}, {x, y - 60}, 2.5F}, light.on({0.10F, 0.09F, 0.08F}));
    canvas.glow(Ellipse{{x, y + 50}, 60, 50}, warmGlow * (0.20F * light.lamps), 620);
    canvas.glow(Ellipse{{x, y + 8}, 40, 20}, warmGlow * (0.55F * light.lamps), 170);
    canvas.fill(Polygon{{x - 26, y - 62}, {x + 26, y - 62}, {x + 88, y}, {x - 88, y}}, [&](Point p) {
        return light.on(Rgb{0.16F, 0.30F, 0.28F} * (1.3F - 0.6F * along(p.x, x - 80, x + 80)));
    });
    canvas.fill(Ellipse{{x, y}, 84, 9}, mix(light.on(china), warmGlow * 1.25F, 0.35F + light.lamps));
    canvas.fill(Ellipse{{x, y + 8}, 22, 17}, mix(light.on(china), Rgb{1.2F, 1.1F, 0.9F}, 0.4F + light.lamps));
}

void drawChair(SceneCanvas& canvas, const SceneLight& light, float x, float y)
{
    const auto wood = litSurface(light, darkWood, 1.35F);
    canvas.fill(Stroke{{x - 54, y}, {x - 62, y + 320}, 8}, wood);
    canvas.fill(Stroke{{x + 54, y}, {x + 62, y + 320}, 8}, wood);
    for (const float rung : {10.0F, 54.0F, 98.0F}) {
        canvas.fill(Stroke{{x - 54, y + rung}, {x + 54, y + rung}, 11}, wood);
    }
}

void drawTable(SceneCanvas& canvas, const SceneLight& light, float x, float y)
{
    canvas.fill(RoundedBox{{x - 16, y, x + 16, y + 340}, 8}, litSurface(light, darkWood));
    canvas.fill(Ellipse{{x, y + 16}, 238, 46}, litSurface(light, darkWood, 1.2F));
    canvas.fill(Ellipse{{x, y}, 240, 46}, [&](Point p) {
        return light.on(tableWood * (1.25F - 0.35F * along(p.x, x - 240, x + 240)), daylightAt(p));
    });
    canvas.glow(Ellipse{{x - 60, y - 8}, 90, 10}, light.on({0.16F, 0.15F, 0.13F}), 60);
}

void drawCup(SceneCanvas& canvas, const SceneLight& light, float x, float y)
{
    canvas.fill(Ellipse{{x, y + 4}, 66, 15}, light.on(china * 0.86F));
    canvas.fill(Ellipse{{x + 42, y - 34}, 17, 17}, light.on(china * 0.8F));
    canvas.fill(Ellipse{{x + 42, y - 34}, 9, 9}, light.on(tableWood * 0.7F));
    canvas.fill(
        Polygon{{x - 42, y - 62}, {x + 42, y - 62}, {x + 26, y}, {x - 26, y}},
        [&](Point p) { return light.on(china * (1.05F - 0.4F * along(p.x, x - 42, x + 42))); }, 1, 2);
    canvas.fill(Ellipse{{x, y - 62}, 42, 11}, light.on(china));
    canvas.fill(Ellipse{{x, y - 60}, 35, 8}, light.on({0.24F, 0.13F, 0.07F}));
    // Steam.
    canvas.glow(Stroke{{x - 8, y - 90}, {x + 6, y - 190}, 5, 12}, light.on({0.10F, 0.10F, 0.10F}), 36);
}

} // namespace

void drawRoom(SceneCanvas& canvas, const SceneLight& light, int minuteOfDay)
{
    drawWalls(canvas, light);
    drawWindow(canvas, light);
    drawSunbeams(canvas, light);
    drawShelf(canvas, light);
    drawClock(canvas, light, minuteOfDay);
    drawChair(canvas, light, 150, 640);
    drawTable(canvas, light, 330, 800);
    drawCup(canvas, light, 300, 790);
    drawChair(canvas, light, 1780, 640);
    drawTable(canvas, light, 1600, 815);
    drawCup(canvas, light, 1665, 806);
    drawLamp(canvas, light, 420, 70);
    drawLamp(canvas, light, 1010, 110);
    drawLamp(canvas, light, 1690, 80);
}

} // namespace sentrel::simulation
