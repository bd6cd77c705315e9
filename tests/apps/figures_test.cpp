// The figures that the demo shows: image quality, and the phases of a search made out from its moves.
#include "apps/focus_trace.h"
#include "apps/image_quality.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tesmor::test {

namespace {

using namespace std::chrono_literals;
using apps::SearchPhase;

QImage checks(int low, int high)
{
    QImage image(32, 24, QImage::Format_BGR888);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const int grey = (x / 4 + y / 4) % 2 ? high : low;
            image.setPixel(x, y, qRgb(grey, grey, grey));
        }
    }
    return image;
}

TEST(ImageQualityTest, ComparesWithAReference)
{
    const QImage image = checks(60, 180);
    EXPECT_TRUE(std::isinf(apps::psnr(image, image)));
    EXPECT_NEAR(apps::ssim(image, image), 1, 1e-9);
    // All off by 5: 20 log10(255 / 5).
    EXPECT_NEAR(apps::psnr(checks(65, 185), image), 34.1514, 1e-3);
    // A window of half 60 and half 180 beside a flat one of their mean: only the constants keep it from 0.
    const double c2 = 0.03 * 255 * 0.03 * 255;
    EXPECT_NEAR(apps::ssim(checks(120, 120), image), c2 / (60 * 60 + c2), 1e-4);
}

TEST(ImageQualityTest, MeasuresTheGradientOfEdges)
{
    QImage ramp(16, 16, QImage::Format_BGR888);
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x)
            ramp.setPixel(x, y, qRgb(3 * x + 4 * y, 3 * x + 4 * y, 3 * x + 4 * y));
    }
    EXPECT_NEAR(apps::edgeSharpness(ramp), 5, 1e-4);
    EXPECT_EQ(apps::edgeSharpness(checks(90, 90)), 0);
}

TEST(FocusTraceTest, TellsThePhasesApartAndFindsTheSamples)
{
    const std::vector<std::pair<int, SearchPhase>> moves = {
        {100, SearchPhase::PROBE},   {100, SearchPhase::PROBE},   {100, SearchPhase::PROBE},
        {-100, SearchPhase::PROBE},  {-100, SearchPhase::PROBE},  {-100, SearchPhase::PROBE},
        {-100, SearchPhase::PROBE},  {-100, SearchPhase::PROBE},  {-100, SearchPhase::PROBE},
        {300, SearchPhase::COARSE},  {100, SearchPhase::COARSE},  {100, SearchPhase::COARSE},
        {100, SearchPhase::COARSE},  {100, SearchPhase::COARSE},  {-200, SearchPhase::COARSE}, // the wrong way
        {-100, SearchPhase::COARSE}, {-100, SearchPhase::COARSE}, {-100, SearchPhase::COARSE},
        {-100, SearchPhase::COARSE}, {200, SearchPhase::FINE},    {20, SearchPhase::FINE},
        {20, SearchPhase::FINE},     {20, SearchPhase::FINE},     {20, SearchPhase::FINE},
        {-40, SearchPhase::RETURN},  {100, SearchPhase::RETURN},
    };
    const apps::Clock::time_point start{};
    std::vector<microscope::LoggedRequest> requests;
    std::vector<apps::SeenFrame> frames;
    const auto add = [&](std::uint8_t code, int steps, microscope::Answer answer) {
        const auto size = static_cast<unsigned>(std::abs(steps));
        requests.push_back({start + 10ms * static_cast<int>(requests.size()),
                            0x222059,
                            {0, 2, 0, 0, code, 0, 0x60, static_cast<std::uint8_t>(steps > 0 ? 0 : 0x80),
                             static_cast<std::uint8_t>(size % 256), static_cast<std::uint8_t>(size / 256)},
                            answer});
        frames.push_back({requests.back().time + 3ms, 0, -1.0});
        frames.push_back({requests.back().time + 6ms, 0, static_cast<double>(requests.size())});
    };
    add(210, 0, microscope::Answer::accepted);
    add(209, 5000, microscope::Answer::refused);
    for (const auto& [steps, phase] : moves)
        add(209, steps, microscope::Answer::accepted);
    add(211, 0, microscope::Answer::accepted);

    const apps::FocusTrace trace = apps::traceSearch(requests, frames, 1000, true);
    ASSERT_EQ(trace.size(), moves.size());
    std::int64_t position = 1000;
    for (std::size_t i = 0; i < moves.size(); ++i) {
        EXPECT_EQ(trace[i].phase, moves[i].second) << i;
        EXPECT_EQ(trace[i].position, position += moves[i].first) << i;
        const bool sampled = i >= 2 && moves[i].second != SearchPhase::RETURN;
        ASSERT_EQ(trace[i].sample.has_value(), sampled) << i;
        if (sampled) {
            EXPECT_EQ(trace[i].sample->sharpness, static_cast<double>(i + 3))
                << "the last frame before the next request";
        }
    }
}

} // namespace

} // namespace tesmor::test
