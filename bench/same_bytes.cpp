// SPDX-License-Identifier: GPL-2.0-or-later
// Fuses stacks with the library's transforms and with complex ones (complex_fusion.h) in one process, and prints how
// many bytes differ: same_bytes [FOLDER]...
//
// A folder holds the images of one stack. Beside them come synthetic stacks of many sizes. Exit status 1 when a byte
// differs by more than 1, or at all where its value does not lie on a tie: so near to a half that the rounding errors
// of the transforms decide. There the complex transforms differ among themselves, too, when FFTW makes other plans for
// them.

#include "complex_fusion.h"
#include "fusion/fuse_images.h"
#include "fusion/image_layout.h"

#include <QDir>
#include <QImage>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fftw3.h>
#include <functional>
#include <random>
#include <stdexcept>

namespace tesmor::bench {

namespace {

struct Pictures {
    std::string name;
    int width;
    int height;
    std::vector<Bytes> images;
};

Bytes libraryFusion(const Pictures& stack)
{
    std::vector<const std::uint8_t*> pointers;
    for (const Bytes& image : stack.images)
        pointers.push_back(image.data());
    Bytes output(stack.images.front().size());
    const std::atomic<std::int32_t> runFlag{1};
    if (fuseImages(pointers.data(), pointers.size(), static_cast<std::uint32_t>(stack.width),
                   static_cast<std::uint32_t>(stack.height), output.data(), runFlag, [](std::int32_t) {}) != 0)
        throw std::runtime_error(stack.name + ": not fused");
    return output;
}

struct Difference {
    std::size_t bytes = 0;
    std::size_t offTies = 0; // where no plan's rounding errors decide
    int most = 0;
};

Difference difference(const Bytes& bytes, const ComplexResult& complex)
{
    Difference difference;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const int apart = std::abs(bytes[i] - complex.bytes[i]);
        difference.bytes += apart != 0;
        difference.offTies += apart != 0 && !complex.onATie[i];
        difference.most = std::max(difference.most, apart);
    }
    return difference;
}

// Other plans of the complex transforms. The planner takes minutes over the patient one of a large image.
std::vector<unsigned> otherPlans(const Pictures& stack)
{
    std::vector<unsigned> flags{FFTW_ESTIMATE, FFTW_ESTIMATE | FFTW_UNALIGNED, FFTW_MEASURE | FFTW_UNALIGNED};
    if (stack.width * stack.height < 100'000)
        flags.push_back(FFTW_PATIENT);
    return flags;
}

// Whether the library's bytes are those of the complex transforms, but for ties.
bool compareOne(const Pictures& stack)
{
    fftw_forget_wisdom();
    const ComplexResult complex = complexFusion(stack.images, stack.width, stack.height, FFTW_MEASURE);
    const Difference real = difference(libraryFusion(stack), complex);
    const auto ties = static_cast<std::size_t>(std::count(complex.onATie.begin(), complex.onATie.end(), true));
    std::size_t byPlan = 0;
    for (const unsigned flags : otherPlans(stack))
        byPlan = std::max(
            byPlan, difference(complexFusion(stack.images, stack.width, stack.height, flags).bytes, complex).bytes);
    const bool same = real.offTies == 0 && real.most <= 1;
    std::printf("| %s, %d × %d × %zu | %zu | %zu | %zu | %zu | %zu | %s |\n", stack.name.c_str(), stack.width,
                stack.height, stack.images.size(), complex.bytes.size(), ties, real.bytes, real.offTies, byPlan,
                same ? "same" : "NOT THE SAME");
    std::fflush(stdout);
    return same;
}

Pictures pictures(const char* name, int width, int height, int count, const std::function<int(int k, int x)>& byteAt)
{
    Pictures stack{name, width, height, {}};
    const auto layout = ImageLayout::of(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
    for (int k = 0; k < count; ++k) {
        Bytes image(layout->byteCount());
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < 3 * width; ++x)
                image[layout->rowOffset(y) + static_cast<std::size_t>(x)] = static_cast<std::uint8_t>(byteAt(k, x));
        }
        stack.images.push_back(std::move(image));
    }
    return stack;
}

bool compareSynthetic(int width, int height)
{
    std::minstd_rand random(static_cast<unsigned>(width * 1000 + height));
    const auto below = [&](unsigned limit) { return static_cast<int>(random() % limit); };
    constexpr int count = 4;
    const Pictures stacks[] = {
        pictures("focus stack", width, height, count,
                 [&](int k, int x) { return 60 + x % 90 + below(x / 3 * count / width == k ? 100 : 8); }),
        pictures("random bytes", width, height, count, [&](int, int) { return below(256); }),
        pictures("two values", width, height, count, [&](int, int) { return 255 * below(2); }),
        pictures("neighbours", width, height, count, [&](int, int) { return 100 + below(2); }),
        pictures("plain, halves", width, height, 2, [&](int k, int) { return 100 + k; }),
        pictures("stripes, halves", width, height, 2, [&](int k, int x) { return x / 3 % 2 * 2 + 100 + k; }),
    };
    bool same = true;
    for (const Pictures& stack : stacks)
        same = compareOne(stack) && same;
    return same;
}

Pictures photographs(const QString& folder)
{
    Pictures stack{QDir(folder).dirName().toStdString(), 0, 0, {}};
    for (const QFileInfo& file : QDir(folder).entryInfoList({"*.png", "*.jpg"}, QDir::Files, QDir::Name)) {
        const QImage image = QImage(file.filePath()).convertToFormat(QImage::Format_BGR888);
        if (image.isNull() || (stack.width != 0 && image.size() != QSize(stack.width, stack.height)))
            throw std::runtime_error(file.filePath().toStdString() + ": not an image, or of another size");
        stack.width = image.width();
        stack.height = image.height();
        stack.images.emplace_back(image.constBits(), image.constBits() + image.sizeInBytes());
    }
    if (stack.images.empty())
        throw std::runtime_error(folder.toStdString() + ": no images");
    return stack;
}

bool compareAll(int count, char** folders)
{
    std::printf("| stack | bytes | on a tie | differ | not on a tie | differ with other plans | |\n"
                "| --- | --: | --: | --: | --: | --: | --- |\n");
    bool same = true;
    for (int i = 0; i < count; ++i)
        same = compareOne(photographs(QString::fromLocal8Bit(folders[i]))) && same;
    for (const auto& [width, height] : {std::pair{2, 2},
                                        {3, 3},
                                        {3, 7},
                                        {2, 9},
                                        {9, 2},
                                        {2, 1000},
                                        {1000, 2},
                                        {17, 33},
                                        {63, 65},
                                        {131, 5},
                                        {5, 131},
                                        {1001, 37},
                                        {641, 479},
                                        {640, 480},
                                        {1280, 960},
                                        {2592, 1944}})
        same = compareSynthetic(width, height) && same;
    return same;
}

} // namespace

} // namespace tesmor::bench

int main(int count, char** arguments)
{
    try {
        return tesmor::bench::compareAll(count - 1, arguments + 1) ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}
