#include "fusion/fuse_images.h"

#include "fusion/plain_fusion.h"
#include "session/result_codes.h"
#include "support/call_recorder.h"
#include "support/library_test.h"

#include <cstring>
#include <random>

namespace tesmor::test {

namespace {

constexpr std::uint8_t UNTOUCHED = 0xA5;

class Fusion : public LibraryTest {
protected:
    Fusion()
    {
        library.runFlag = 1;
    }

    std::int32_t fuse(const std::vector<PlainImage>& images, int width, int height)
    {
        std::vector<const std::uint8_t*> pointers;
        for (const PlainImage& image : images)
            pointers.push_back(image.bytes.data());
        output.assign(PlainImage(width, height).bytes.size(), UNTOUCHED);
        return fuseImages(pointers.data(), pointers.size(), static_cast<std::uint32_t>(width),
                          static_cast<std::uint32_t>(height), output.data(), CallRecorder::onFrame, &recorder);
    }

    // The output as an image, after a look at its padding.
    PlainImage fused(const std::vector<PlainImage>& images)
    {
        PlainImage image(images.front().width, images.front().height);
        EXPECT_EQ(fuse(images, image.width, image.height), SUCCESS);
        for (int y = 0; y < image.height; ++y) {
            const auto* row = &output[static_cast<std::size_t>(y * image.stride)];
            std::memcpy(&image.bytes[static_cast<std::size_t>(y * image.stride)], row,
                        static_cast<std::size_t>(image.width * 3));
            for (int i = image.width * 3; i < image.stride; ++i)
                EXPECT_EQ(row[i], UNTOUCHED) << "padding of row " << y;
        }
        return image;
    }

    CallRecorder recorder;
    std::vector<std::uint8_t> output;
};

// Smooth shades with noise in one part, another part in each image: weights differ, and highlights are there.
std::vector<PlainImage> seededStack(int width, int height, int count)
{
    std::mt19937 random(static_cast<unsigned>(width * 100 + height));
    std::vector<PlainImage> images;
    for (int k = 0; k < count; ++k) {
        PlainImage image(width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width * 3; ++x) {
                const int detail = (x / 3 * count / width) == k ? static_cast<int>(random() % 120) : 0;
                image.bytes[static_cast<std::size_t>(y * image.stride + x)] =
                    static_cast<std::uint8_t>(std::min(255, 90 + 2 * y + x / 3 + detail));
            }
        }
        images.push_back(image);
    }
    return images;
}

TEST_F(Fusion, EqualsThePlainOneAtAnySize)
{
    for (const auto& [width, height, count] :
         {std::tuple{2, 2, 1}, {2, 9, 2}, {11, 2, 3}, {3, 3, 2}, {13, 7, 2}, {16, 12, 3}, {25, 31, 4}}) {
        const auto stack = seededStack(width, height, count);
        EXPECT_EQ(fused(stack).bytes, plainFusion(stack).bytes) << width << " x " << height << " x " << count;
    }
}

TEST_F(Fusion, ReportsItsProgress)
{
    fused(seededStack(8, 8, 1));
    EXPECT_EQ(recorder.calls(), (std::vector{report(14), report(28), report(42), report(57), report(100)}));
    CallRecorder second;
    const PlainImage image(8, 8);
    const std::uint8_t* const images[] = {image.bytes.data(), image.bytes.data()};
    fuseImages(images, 2, 8, 8, output.data(), CallRecorder::onFrame, &second);
    EXPECT_EQ(second.calls(), (std::vector{report(10), report(20), report(30), report(40), report(50), report(60),
                                           report(70), report(100)}));
}

TEST_F(Fusion, OfNoImagesIsBlack)
{
    EXPECT_EQ(fuse({}, 3, 4), SUCCESS);
    EXPECT_EQ(recorder.calls(), (std::vector{report(25), report(100)}));
    for (int y = 0; y < 4; ++y) {
        const std::vector<std::uint8_t> row(output.begin() + y * 12, output.begin() + (y + 1) * 12);
        EXPECT_EQ(row, (std::vector<std::uint8_t>{0, 0, 0, 0, 0, 0, 0, 0, 0, UNTOUCHED, UNTOUCHED, UNTOUCHED}));
    }
}

TEST_F(Fusion, OfOneImageTwiceIsThatOfOne)
{
    const PlainImage image = seededStack(20, 15, 1).front();
    EXPECT_EQ(fused({image, image}).bytes, fused({image}).bytes);
}

TEST_F(Fusion, LeavesTheOutputAloneWhenItIsAborted)
{
    recorder.then = [this](const Call&) { library.runFlag = recorder.calls().size() < 6; };
    EXPECT_EQ(fuse(seededStack(16, 16, 2), 16, 16), ABORTED);
    EXPECT_EQ(recorder.calls().size(), 6u);
    EXPECT_EQ(output, std::vector<std::uint8_t>(output.size(), UNTOUCHED));
}

TEST_F(Fusion, TakesAsManyImagesAsTheBlockHolds)
{
    std::vector<PlainImage> images;
    for (int k = 0; k < 128; ++k)
        images.push_back(seededStack(6, 5, 128)[static_cast<std::size_t>(k)]);
    EXPECT_EQ(fused(images).bytes, plainFusion(images).bytes);
}

TEST_F(Fusion, RefusesSizesThatItCannotIndex)
{
    const std::pair<std::uint32_t, std::uint32_t> sizes[] = {
        {1, 5}, {5, 1}, {0, 0}, {100'000, 100'000}, {0x80000000, 2}, {2, 0xFFFFFFFF}};
    for (const auto& [width, height] : sizes)
        EXPECT_EQ(fuseImages(nullptr, 0, width, height, nullptr, CallRecorder::onFrame, &recorder), NO_MEMORY);
    EXPECT_TRUE(recorder.calls().empty());
}

} // namespace

} // namespace tesmor::test
