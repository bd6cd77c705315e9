// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/specimen/specimen.h"

#include "microscope/specimen/random.h"
#include "microscope/specimen/specimen_canvas.h"
#include "microscope/specimen/specimen_things.h"
#include "microscope/specimen/value_noise.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tesmor::microscope {

namespace {

constexpr Dye JELLY{0.75f, 0.85f, 0.55f};
constexpr double LAMP[3] = {222, 236, 241};

// How large things look: more than the field shrinks, the things that one would look at get smaller too.
double sizeAt(std::uint16_t magnification)
{
    return std::sqrt(magnification / 20.0);
}

class Maker {
public:
    explicit Maker(const SpecimenSettings& settings)
        : random_(settings.seed), size_(sizeAt(settings.magnification)),
          canvas_(settings.width, settings.height, settings.margin), fieldHeight_(settings.height / canvas_.scale)
    {
    }

    Canvas make()
    {
        layGround();
        const double crowd = std::clamp(1 / (size_ * size_), 0.3, 3.0);
        scatter(2.2, 0.6, [this](const Place& at) { layFibre(canvas_, random_, at, random_.between(5, 10) * size_); });
        scatter(26 * crowd, 1,
                [this](const Place& at) { layCell(canvas_, random_, at, random_.between(45, 75) * size_); });
        scatter(9 * crowd, 1,
                [this](const Place& at) { layWheel(canvas_, random_, at, random_.between(25, 50) * size_); });
        scatter(12 * crowd, 1,
                [this](const Place& at) { laySpindle(canvas_, random_, at, random_.between(50, 95) * size_); });
        scatter(900, 0.3, [this](const Place& at) { laySpeck(canvas_, random_, at, random_.between(1.2, 2.6)); });
        return std::move(canvas_);
    }

private:
    // Relief and colour of the jelly that holds the things: denser towards one place of the field.
    void layGround()
    {
        const ValueNoise waves(random_.bits());
        const ValueNoise texture(random_.bits());
        const double denseX = FIELD_WIDTH * random_.between(0.4, 0.6);
        const double denseY = fieldHeight_ * random_.between(0.4, 0.6);
        waves_ = random_.bits();
        canvas_.lay(0, 0, 1e9, JELLY, [&](double x, double y) {
            const double away = std::hypot(x - denseX, y - denseY) / 300;
            const double clump = 0.16 * std::exp(-away * away / 2);
            const double jelly = 0.10 + 0.13 * texture.octaves(x, y, 512, 1 / canvas_.scale, 0.9);
            return Touch{1, std::max(0.0, clump + jelly), groundAt(x, y)};
        });
    }

    // Depths of field: pressed flat in the middle, bent up towards the edges.
    double groundAt(double x, double y) const
    {
        const double right = 2 * x / FIELD_WIDTH - 1;
        const double down = 2 * y / fieldHeight_ - 1;
        const double awaySquared = (right * right + down * down) / 2; // 1 in the corners
        return 3.0 * awaySquared + 0.35 * ValueNoise(waves_).octaves(x, y, 300, 75, 0.4);
    }

    // `count` things over the field; the further from its middle, the further they may lie from the ground: `spread`
    // depths of field for each of the field's half diagonals, and a tenth of it in the middle.
    template <class LayAt>
    void scatter(double count, double spread, LayAt layAt)
    {
        const auto whole = static_cast<int>(count + random_.uniform());
        for (int i = 0; i < whole; ++i) {
            const double x = FIELD_WIDTH * random_.between(-0.03, 1.03);
            const double y = fieldHeight_ * random_.between(-0.03, 1.03);
            const double away = std::hypot(2 * x / FIELD_WIDTH - 1, 2 * y / fieldHeight_ - 1) / std::numbers::sqrt2;
            const double height = groundAt(x, y) + 2.5 * spread * (away * away + 0.1) * random_.between(-1, 1);
            layAt({x, y, height});
        }
    }

    Random random_;
    const double size_;
    Canvas canvas_;
    const double fieldHeight_;
    std::uint64_t waves_ = 0;
};

// The corners get less light than the middle, and one side less than the other.
std::vector<float> unevenLight(std::int32_t width, std::int32_t height, std::int32_t margin)
{
    std::vector<float> light;
    for (std::int32_t row = -margin; row < height + margin; ++row) {
        for (std::int32_t column = -margin; column < width + margin; ++column) {
            const double right = (2 * column + 1.0) / width - 1;
            const double down = (2 * row + 1.0) / height - 1;
            const double awaySquared = (right * right + down * down) / 2;
            light.push_back(static_cast<float>(1 - 0.22 * awaySquared * awaySquared - 0.015 * right));
        }
    }
    return light;
}

} // namespace

Specimen makeSpecimen(const SpecimenSettings& settings)
{
    const Canvas canvas = Maker(settings).make();
    Specimen specimen{settings.margin,
                      {canvas.width, canvas.height, {}},
                      {},
                      unevenLight(settings.width, settings.height, settings.margin)};
    specimen.colour.values.reserve(3 * canvas.density.size());
    for (const auto& density : canvas.density) {
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const double brightness = LAMP[channel] * std::pow(10, -density[channel]);
            specimen.colour.values.push_back(static_cast<float>(brightness));
        }
    }
    for (const float relief : canvas.relief)
        specimen.heightMap.push_back(static_cast<float>(relief * settings.depthOfField));
    return specimen;
}

} // namespace tesmor::microscope
