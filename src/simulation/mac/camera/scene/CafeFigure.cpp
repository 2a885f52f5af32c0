#include "simulation/mac/camera/scene/CafeFigure.hpp"

namespace sentrel::simulation {

namespace {

constexpr Rgb skin{0.90F, 0.66F, 0.52F};
constexpr Rgb hoodie{0.24F, 0.28F, 0.36F};
constexpr Rgb knit{0.62F, 0.20F, 0.17F};
constexpr Rgb hair{0.20F, 0.13F, 0.09F};
constexpr Rgb screenlight{0.10F, 0.13F, 0.18F};

/// Shades the figure's surfaces: lit from the left, and from below by the screen.
class FigureLight {
public:
    explicit FigureLight(const SceneLight& light) : light_(light) {}

    /// Paint of a round body with its middle at `centre`: bright towards the window, in shade on the other side.
    [[nodiscard]] auto round(Rgb surface, float centre, float radius) const
    {
        return [light = light_, surface, centre, radius](Point p) {
            const float turn = std::clamp((p.x - centre) / radius, -1.0F, 1.0F);
            const float shade = 0.86F - 0.30F * turn - 0.12F * turn * turn;
            return light.on(surface * shade) + surface * screenlight;
        };
    }
    [[nodiscard]] Rgb flat(Rgb surface) const { return light_.on(surface) + surface * screenlight; }

private:
    SceneLight light_;
};

void drawBody(SceneCanvas& canvas, const FigureLight& light)
{
    canvas.fill(Ellipse{{985, 1010}, 470, 250}, Rgb{}, 0.28F, 120);                          // its shadow on the room
    canvas.fill(Ellipse{{960, 660}, 225, 250}, light.round(hoodie * 0.72F, 960, 260), 1, 2); // the hood
    canvas.fill(Ellipse{{960, 1080}, 480, 290}, light.round(hoodie, 960, 520), 1, 2);
    canvas.fill(Stroke{{720, 1000}, {540, 1130}, 150, 165}, light.round(hoodie, 960, 520), 1, 2);
    canvas.fill(Stroke{{1200, 1000}, {1380, 1130}, 150, 165}, light.round(hoodie, 960, 520), 1, 2);
    canvas.fill(Stroke{{668, 930}, {640, 1100}, 3, 7}, light.flat(hoodie * 0.45F), 0.5F, 14); // folds
    canvas.fill(Stroke{{1252, 930}, {1280, 1100}, 3, 7}, light.flat(hoodie * 0.35F), 0.5F, 14);
    // A strap of the bag over the shoulder.
    canvas.fill(Polygon{{1120, 800}, {1180, 815}, {1120, 1090}, {1050, 1090}}, light.flat({0.30F, 0.22F, 0.14F}), 1, 2);
    // Neck and collar.
    canvas.fill(RoundedBox{{870, 690, 1050, 880}, 60}, light.round(skin * 0.74F, 940, 140), 1, 3);
    canvas.fill(Ellipse{{960, 890}, 150, 66}, light.round(hoodie * 0.80F, 960, 170), 1, 2);
    canvas.fill(Ellipse{{960, 868}, 106, 42}, light.round(skin * 0.68F, 940, 140), 1, 3);
    for (const float x : {905.0F, 1015.0F}) {
        canvas.fill(Stroke{{x, 935}, {x + (x < 960 ? -12.0F : 12.0F), 1060}, 6}, light.flat({0.84F, 0.82F, 0.78F}));
    }
}

void drawHead(SceneCanvas& canvas, const FigureLight& light)
{
    for (const float x : {793.0F, 1127.0F}) {
        canvas.fill(Ellipse{{x, 560}, 30, 50}, light.round(skin * 0.86F, 960, 200), 1, 2);
        canvas.fill(Ellipse{{x, 562}, 15, 30}, light.flat(skin * 0.55F), 0.5F, 8);
    }
    canvas.fill(RoundedBox{{800, 380, 1120, 600}, 110}, light.round(hair, 960, 170), 1, 3);
    canvas.fill(Ellipse{{960, 545}, 160, 205}, light.round(skin, 945, 170), 1, 2);
    canvas.fill(Ellipse{{960, 650}, 118, 108}, light.round(skin, 945, 170), 1, 20); // the jaw
    canvas.fill(Ellipse{{860, 610}, 40, 30}, Rgb{0.85F, 0.35F, 0.28F}, 0.10F, 50);
    canvas.fill(Ellipse{{1060, 610}, 40, 30}, Rgb{0.75F, 0.30F, 0.24F}, 0.10F, 50);
    canvas.fill(Ellipse{{960, 705}, 110, 50}, light.flat(hair), 0.20F, 70); // stubble
}

void drawEye(SceneCanvas& canvas, const FigureLight& light, float x)
{
    canvas.fill(Ellipse{{x, 548}, 46, 26}, light.flat(skin * 0.62F), 0.45F, 26);
    canvas.fill(Ellipse{{x, 552}, 33, 17}, light.flat({0.94F, 0.93F, 0.90F}), 1, 2);
    canvas.fill(Ellipse{{x + 2, 553}, 15, 15}, light.flat({0.24F, 0.38F, 0.34F}));
    canvas.fill(Ellipse{{x + 2, 553}, 7, 7}, Rgb{0.02F, 0.02F, 0.02F});
    canvas.fill(Ellipse{{x - 3, 548}, 3.5F, 3.5F}, light.flat({1.1F, 1.1F, 1.1F}) + Rgb{0.15F, 0.17F, 0.2F});
    canvas.fill(Stroke{{x - 34, 548}, {x, 534}, 4}, light.flat(hair * 0.8F), 0.9F, 3);
    canvas.fill(Stroke{{x, 534}, {x + 34, 547}, 4}, light.flat(hair * 0.8F), 0.9F, 3);
    canvas.fill(Stroke{{x - 28, 572}, {x + 26, 573}, 2}, light.flat(skin * 0.6F), 0.5F, 6);
}

void drawFace(SceneCanvas& canvas, const FigureLight& light)
{
    drawEye(canvas, light, 893);
    drawEye(canvas, light, 1027);
    // Brows, drawn together.
    canvas.fill(Stroke{{852, 503}, {925, 513}, 8, 10}, light.flat(hair), 0.95F, 4);
    canvas.fill(Stroke{{1068, 501}, {995, 513}, 8, 10}, light.flat(hair), 0.95F, 4);
    canvas.fill(Stroke{{974, 545}, {984, 618}, 6, 14}, light.flat(skin * 0.66F), 0.42F, 22);
    canvas.fill(Stroke{{950, 540}, {950, 612}, 4, 9}, light.flat(skin * 1.16F), 0.45F, 20);
    canvas.fill(Ellipse{{960, 628}, 33, 21}, light.round(skin * 1.02F, 950, 50), 0.9F, 10);
    canvas.fill(Ellipse{{943, 638}, 9, 5}, light.flat(skin * 0.36F), 0.8F, 5);
    canvas.fill(Ellipse{{977, 638}, 9, 5}, light.flat(skin * 0.36F), 0.8F, 5);
    canvas.fill(Ellipse{{960, 694}, 50, 15}, light.flat({0.66F, 0.34F, 0.30F}), 0.9F, 5);
    canvas.fill(Stroke{{912, 693}, {960, 690}, 3}, light.flat({0.28F, 0.12F, 0.11F}), 0.9F, 3);
    canvas.fill(Stroke{{960, 690}, {1010, 695}, 3}, light.flat({0.28F, 0.12F, 0.11F}), 0.9F, 3);
    canvas.fill(Ellipse{{960, 722}, 36, 7}, light.flat(skin * 0.6F), 0.35F, 12);
    canvas.glow(Ellipse{{900, 600}, 20, 60}, light.flat({0.10F, 0.09F, 0.08F}), 90);
}

void drawHat(SceneCanvas& canvas, const FigureLight& light)
{
    canvas.fill(Above<Ellipse>{{{960, 430}, 176, 178}, 470}, light.round(knit, 945, 190), 1, 2);
    // Ribs of the knitting, and the turned-up edge.
    for (int rib = -5; rib <= 5; ++rib) {
        const auto x = static_cast<float>(rib);
        canvas.fill(Stroke{{960 + x * 13, 272 + x * x * 1.6F}, {960 + x * 33, 430}, 2, 4}, light.flat(knit * 0.5F),
                    0.4F, 6);
    }
    canvas.fill(RoundedBox{{774, 402, 1146, 482}, 32}, light.round(knit * 1.16F, 945, 200), 1, 2);
    for (int rib = -8; rib <= 8; ++rib) {
        const float x = 960 + static_cast<float>(rib) * 22;
        canvas.fill(Stroke{{x, 412}, {x, 472}, 2.5F}, light.flat(knit * 0.55F), 0.4F, 5);
    }
    canvas.fill(Ellipse{{960, 492}, 150, 14}, light.flat(skin * 0.4F), 0.45F, 22); // its shadow on the brow
}

} // namespace

void drawFigure(SceneCanvas& canvas, const SceneLight& light)
{
    const FigureLight figureLight{light};
    drawBody(canvas, figureLight);
    drawHead(canvas, figureLight);
    drawFace(canvas, figureLight);
    drawHat(canvas, figureLight);
}

} // namespace sentrel::simulation
