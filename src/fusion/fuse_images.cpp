#include "fusion/fuse_images.h"

#include "api/library.h"
#include "fusion/focus_weight.h"
#include "fusion/image_layout.h"
#include "fusion/sharpen_engine.h"
#include "fusion/smoothing.h"
#include "fusion/weighted_mean.h"
#include "session/result_codes.h"

#include <algorithm>

namespace tesmor {

namespace {

constexpr double CUTOFF = 0.65;
constexpr double ROLLOFF = 1.0;
constexpr int SMOOTHING_PASSES = 5;
constexpr std::size_t SLACK_ROWS = 2;

bool aborted() noexcept
{
    return library.runFlag.load(std::memory_order_relaxed) == 0;
}

class Progress {
public:
    Progress(std::uint64_t imageCount, FrameCallback callback, void* context) noexcept
        : steps_(3 * imageCount + 4), callback_(callback), context_(context)
    {
    }

    void report(std::uint64_t step) const
    {
        callback_(nullptr, 0, 0, context_, static_cast<std::int32_t>(100 * step / steps_));
    }

    void reportEnd() const
    {
        report(steps_);
    }

private:
    std::uint64_t steps_;
    FrameCallback callback_;
    void* context_;
};

class Fusion {
public:
    explicit Fusion(const ImageLayout& layout) noexcept
        : layout_(layout), smoothing_(layout.width, layout.height),
          measure_(makeZeroedArray<std::int32_t>(layout.pixelCount() + SLACK_ROWS * layout.width)), mean_(layout),
          sharpenedRow_(makeZeroedArray<std::uint8_t>(static_cast<std::size_t>(layout.width)))
    {
    }

    bool hasBuffers() const noexcept
    {
        return smoothing_.ready() && measure_ && mean_.ready() && sharpenedRow_;
    }

    std::int32_t run(const std::uint8_t* const* images, std::uint64_t imageCount, std::uint8_t* output,
                     const Progress& progress)
    {
        engine_.prepare(layout_.width, layout_.height);
        if (aborted())
            return ABORTED;
        if (!engine_.ready())
            return NO_MEMORY;
        progress.report(1);
        engine_.buildGain();
        if (aborted())
            return ABORTED;
        for (std::uint64_t k = 0; k < imageCount; ++k) {
            if (!addImage(images[k], progress, 3 * k))
                return ABORTED;
        }
        compose(output);
        progress.reportEnd();
        return SUCCESS;
    }

private:
    // These return false when the run is aborted.

    bool addImage(const std::uint8_t* image, const Progress& progress, std::uint64_t stepsBefore)
    {
        for (std::size_t colour = 0; colour < COLOURS; ++colour) {
            engine_.load(image + colour, layout_.stride);
            engine_.forward();
            if (aborted())
                return false;
            if (colour == 1)
                progress.report(stepsBefore + 2); // half of the transforms are done
            engine_.applyGain();
            engine_.inverse();
            if (aborted())
                return false;
            if (colour == COLOURS - 1)
                progress.report(stepsBefore + 3);
            if (!measure(image, colour))
                return false;
        }
        if (!smooth() || !accumulate(image))
            return false;
        progress.report(stepsBefore + 4);
        return true;
    }

    bool measure(const std::uint8_t* image, std::size_t colour) noexcept
    {
        for (std::int32_t y = 0; y < layout_.height; ++y) {
            if (aborted())
                return false;
            if (colour == 0)
                std::fill_n(measureOfRow(y), layout_.width, 0);
            engine_.storeRow(static_cast<std::uint32_t>(y), sharpenedRow_.get());
            addFocusTerms(image + layout_.rowOffset(y) + colour, sharpenedRow_.get(), layout_.width, measureOfRow(y));
        }
        return !aborted();
    }

    bool smooth() noexcept
    {
        for (int pass = 0; pass < SMOOTHING_PASSES; ++pass) {
            if (!smoothing_.run(measure_.get(), library.runFlag))
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
            mean_.addRow(y, image + layout_.rowOffset(y), measureOfRow(y));
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

    std::int32_t* measureOfRow(std::int32_t y) noexcept
    {
        return measure_.get() + static_cast<std::ptrdiff_t>(y) * layout_.width;
    }

    ImageLayout layout_;
    Smoothing smoothing_;
    ZeroedArray<std::int32_t> measure_; // of the image in hand; two slack rows after the last one stay 0
    WeightedMean mean_;
    ZeroedArray<std::uint8_t> sharpenedRow_; // one colour of the row in hand
    SharpenEngine engine_{CUTOFF, ROLLOFF};
};

} // namespace

std::int32_t fuseImages(const std::uint8_t* const* images, std::uint64_t imageCount, std::uint32_t width,
                        std::uint32_t height, std::uint8_t* output, FrameCallback frameCallback, void* context)
{
    const auto layout = ImageLayout::of(width, height);
    if (!layout)
        return NO_MEMORY;
    Fusion fusion(*layout);
    if (!fusion.hasBuffers())
        return NO_MEMORY;
    return fusion.run(images, imageCount, output, Progress(imageCount, frameCallback, context));
}

} // namespace tesmor
