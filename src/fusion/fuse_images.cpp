#include "fusion/fuse_images.h"

#include "fusion/image_layout.h"
#include "fusion/pixel_weight.h"
#include "fusion/sharpen_engine.h"
#include "fusion/smoothing.h"
#include "fusion/weighted_mean.h"
#include "tesmor.h"

#include <algorithm>

namespace tesmor {

namespace {

constexpr double CUTOFF = 0.65;
constexpr double ROLLOFF = 1.0;
constexpr int SMOOTHING_PASSES = 5;
constexpr std::size_t SLACK_ROWS = 2;

class Fusion {
public:
    Fusion(const ImageLayout& layout, std::uint64_t imageCount, const std::atomic<std::int32_t>& runFlag,
           const FusionProgress& progress) noexcept
        : layout_(layout), steps_(3 * imageCount + 4), runFlag_(runFlag), progress_(progress),
          smoothing_(layout.width, layout.height),
          weights_(makeZeroedArray<std::int32_t>(layout.pixelCount() + SLACK_ROWS * layout.width)), mean_(layout),
          sharpenedRow_(makeZeroedArray<std::uint8_t>(static_cast<std::size_t>(layout.width)))
    {
    }

    bool hasBuffers() const noexcept
    {
        return smoothing_.ready() && weights_ && mean_.ready() && sharpenedRow_;
    }

    std::int32_t run(const std::uint8_t* const* images, std::uint64_t imageCount, std::uint8_t* output)
    {
        engine_.prepare(layout_.width, layout_.height);
        if (aborted())
            return TESMOR_ABORTED;
        if (!engine_.ready())
            return TESMOR_NO_MEMORY;
        report(1);
        engine_.buildGain();
        if (aborted())
            return TESMOR_ABORTED;
        for (std::uint64_t k = 0; k < imageCount; ++k) {
            if (!addImage(images[k], 3 * k))
                return TESMOR_ABORTED;
        }
        compose(output);
        report(steps_);
        return TESMOR_SUCCESS;
    }

private:
    bool aborted() const noexcept
    {
        return runFlag_.load(std::memory_order_relaxed) == 0;
    }

    void report(std::uint64_t step) const
    {
        progress_(static_cast<std::int32_t>(100 * step / steps_));
    }

    // These return false when the run is aborted.

    bool addImage(const std::uint8_t* image, std::uint64_t stepsBefore)
    {
        for (std::size_t colour = 0; colour < COLOURS; ++colour) {
            engine_.load(image + colour, layout_.stride);
            engine_.forward();
            if (aborted())
                return false;
            if (colour == 1)
                report(stepsBefore + 2); // half of the transforms are done
            engine_.applyGain();
            engine_.inverse();
            if (aborted())
                return false;
            if (colour == COLOURS - 1)
                report(stepsBefore + 3);
            if (!weigh(image, colour))
                return false;
        }
        if (!smooth() || !accumulate(image))
            return false;
        report(stepsBefore + 4);
        return true;
    }

    bool weigh(const std::uint8_t* image, std::size_t colour) noexcept
    {
        for (std::int32_t y = 0; y < layout_.height; ++y) {
            if (aborted())
                return false;
            if (colour == 0)
                std::fill_n(weightsOfRow(y), layout_.width, 0);
            engine_.storeRow(static_cast<std::uint32_t>(y), sharpenedRow_.get());
            addWeightTerms(image + layout_.rowOffset(y) + colour, sharpenedRow_.get(), layout_.width, weightsOfRow(y));
        }
        return !aborted();
    }

    bool smooth() noexcept
    {
        for (int pass = 0; pass < SMOOTHING_PASSES; ++pass) {
            if (!smoothing_.run(weights_.get(), runFlag_))
                return false;
        }
        return true;
    }

    // From the image itself, not its sharpened copy.
    bool accumulate(const std::uint8_t* image) noexcept
    {
        for (std::int32_t y = 0; y < layout_.height; ++y) {
            if (aborted())
                return false;
            mean_.addRow(y, image + layout_.rowOffset(y), weightsOfRow(y));
        }
        return true;
    }

    void compose(std::uint8_t* output) noexcept
    {
        mean_.normalise();
        for (std::size_t colour = 0; colour < COLOURS; ++colour) {
            engine_.load(mean_.means(colour));
            engine_.forward();
            engine_.applyGain();
            engine_.inverse();
            for (std::int32_t y = 0; y < layout_.height; ++y) {
                engine_.storeRow(static_cast<std::uint32_t>(y), sharpenedRow_.get());
                std::uint8_t* byte = output + layout_.rowOffset(y) + colour;
                for (std::int32_t x = 0; x < layout_.width; ++x, byte += 3)
                    *byte = sharpenedRow_[static_cast<std::size_t>(x)];
            }
        }
    }

    std::int32_t* weightsOfRow(std::int32_t y) noexcept
    {
        return weights_.get() + static_cast<std::ptrdiff_t>(y) * layout_.width;
    }

    ImageLayout layout_;
    std::uint64_t steps_; // of the progress
    const std::atomic<std::int32_t>& runFlag_;
    const FusionProgress& progress_;
    Smoothing smoothing_;
    ZeroedArray<std::int32_t> weights_; // of the image in hand; two slack rows after the last one stay 0
    WeightedMean mean_;
    ZeroedArray<std::uint8_t> sharpenedRow_; // one colour of the row in hand
    SharpenEngine engine_{CUTOFF, ROLLOFF};
};

} // namespace

std::int32_t fuseImages(const std::uint8_t* const* images, std::uint64_t imageCount, std::uint32_t width,
                        std::uint32_t height, std::uint8_t* output, const std::atomic<std::int32_t>& runFlag,
                        const FusionProgress& progress)
{
    const auto layout = ImageLayout::of(width, height);
    if (!layout)
        return TESMOR_NO_MEMORY;
    Fusion fusion(*layout, imageCount, runFlag, progress);
    if (!fusion.hasBuffers())
        return TESMOR_NO_MEMORY;
    return fusion.run(images, imageCount, output);
}

} // namespace tesmor
