// SPDX-License-Identifier: GPL-2.0-or-later
#include "fusion/fuse_images.h"

#include "fusion/image_layout.h"
#include "fusion/plane_rows.h"
#include "fusion/sharpen_engine.h"
#include "fusion/smoothing.h"
#include "fusion/weighted_mean.h"
#include "tesmor.h"

namespace tesmor {

namespace {

constexpr double CUTOFF = 0.65;
constexpr double ROLLOFF = 1.0;
constexpr int SMOOTHING_PASSES = 5;
constexpr std::size_t SLACK_ROWS = 2;

class Fusion {
public:
    Fusion(const ImageLayout& layout, const std::uint8_t* const* images, std::uint64_t imageCount,
           const std::atomic<std::int32_t>& runFlag, const FusionProgress& progress) noexcept
        : layout_(layout), images_(images), imageCount_(imageCount), runFlag_(runFlag), progress_(progress),
          smoothing_(layout.width, layout.height),
          weights_(makePageArray<std::int32_t>(layout.pixelCount() + SLACK_ROWS * layout.width)), mean_(layout)
    {
    }

    std::int32_t run(std::uint8_t* output)
    {
        if (!smoothing_.ready() || !weights_ || !mean_.ready())
            return TESMOR_NO_MEMORY;
        const bool prepared = engine_.prepare(layout_.width, layout_.height);
        if (aborted())
            return TESMOR_ABORTED;
        if (!prepared)
            return TESMOR_NO_MEMORY;
        report(1);
        engine_.buildGain();
        if (aborted())
            return TESMOR_ABORTED;
        for (std::uint64_t k = 0; k < imageCount_; ++k) {
            if (!addImage(k))
                return TESMOR_ABORTED;
        }
        compose(output);
        progress_(100);
        return TESMOR_SUCCESS;
    }

private:
    bool aborted() const noexcept
    {
        return runFlag_.load(std::memory_order_relaxed) == 0;
    }

    void report(std::uint64_t step) const
    {
        progress_(static_cast<std::int32_t>(100 * step / (3 * imageCount_ + 4)));
    }

    // The bytes of one colour; null after the last one of the last image.
    const std::uint8_t* colourOf(std::uint64_t k, std::size_t colour) const noexcept
    {
        if (colour == COLOURS)
            return colourOf(k + 1, 0);
        return k < imageCount_ ? images_[k] + colour : nullptr;
    }

    // These return false when the run is aborted.

    bool addImage(std::uint64_t k)
    {
        if (k == 0 && !load(images_[0]))
            return false;
        for (std::size_t colour = 0; colour < COLOURS; ++colour) {
            if (colour == 1)
                report(3 * k + 2);
            engine_.boost();
            if (aborted())
                return false;
            if (colour == COLOURS - 1)
                report(3 * k + 3);
            if (!weigh(images_[k] + colour, colour == 0, colourOf(k, colour + 1)))
                return false;
        }
        if (!smooth() || !accumulate(images_[k]))
            return false;
        report(3 * k + 4);
        return true;
    }

    bool load(const std::uint8_t* colour) noexcept
    {
        for (std::int32_t y = 0; y < layout_.height; ++y) {
            if (aborted())
                return false;
            loadRow(colour, y);
        }
        return true;
    }

    void loadRow(const std::uint8_t* colour, std::int32_t y) noexcept
    {
        loadBytes(colour + layout_.rowOffset(y), layout_.width, engine_.row());
        engine_.forwardRow(y);
    }

    // Takes the sharpened colour out of the engine, and while a row of it is at hand puts the next colour in.
    bool weigh(const std::uint8_t* original, bool firstColour, const std::uint8_t* next) noexcept
    {
        for (std::int32_t y = 0; y < layout_.height; ++y) {
            if (aborted())
                return false;
            engine_.inverseRow(y);
            addWeights(engine_.row(), engine_.scale(), original + layout_.rowOffset(y), layout_.width, firstColour,
                       weightsOfRow(y));
            if (next)
                loadRow(next, y);
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
        for (std::size_t colour = 0; colour < COLOURS; ++colour) {
            for (std::int32_t y = 0; y < layout_.height; ++y) {
                mean_.loadRow(y, colour, engine_.row());
                engine_.forwardRow(y);
            }
            engine_.boost();
            for (std::int32_t y = 0; y < layout_.height; ++y) {
                engine_.inverseRow(y);
                storeBytes(engine_.row(), engine_.scale(), layout_.width, output + layout_.rowOffset(y) + colour);
            }
        }
    }

    std::int32_t* weightsOfRow(std::int32_t y) noexcept
    {
        return weights_.get() + static_cast<std::ptrdiff_t>(y) * layout_.width;
    }

    ImageLayout layout_;
    const std::uint8_t* const* images_;
    std::uint64_t imageCount_;
    const std::atomic<std::int32_t>& runFlag_;
    const FusionProgress& progress_;
    Smoothing smoothing_;
    PageArray<std::int32_t> weights_; // of the image in hand; two slack rows after the last one stay 0
    WeightedMean mean_;
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
    return Fusion(*layout, images, imageCount, runFlag, progress).run(output);
}

} // namespace tesmor
