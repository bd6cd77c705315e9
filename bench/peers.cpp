// SPDX-License-Identifier: GPL-2.0-or-later
// Compares the command `tesmor fuse` with the program enfuse on stacks of the virtual microscope: whole processes that
// alternate on the same files, and the likeness of both results to the truth. Arguments: the command tesmor, a folder.
#include "images/frame_image.h"
#include "images/image_quality.h"
#include "microscope/virtual_microscope.h"
#include "ratio.h"
#include "run_process.h"

#include <QDir>
#include <QImage>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace tesmor::bench {

namespace {

constexpr int ROUNDS = 5;
constexpr int JPEG_QUALITY = 95; // of the slices, and of both results
constexpr double FIRST_AIM = 1.0;
constexpr double SECOND_AIM = 1.5; // times as fast as enfuse

struct Stack {
    int width;
    int height;
    int slices;
    const char* format; // suffix of a file
};

// What one of the two does in every round.
struct Runs {
    std::vector<double> seconds, processorSeconds;
    double peakBytes = 0;

    void add(const ProcessCost& cost)
    {
        seconds.push_back(cost.seconds);
        processorSeconds.push_back(cost.processorSeconds);
        peakBytes = std::max(peakBytes, cost.peakBytes);
    }
};

// The specimen's whole relief, evenly spaced, with the camera's noise.
std::vector<std::string> renderSlices(microscope::VirtualMicroscope& microscope, const Stack& stack, const QDir& folder)
{
    const auto [low, high] = std::minmax_element(microscope.heightMap().begin(), microscope.heightMap().end());
    const double spacing = static_cast<double>(*high - *low) / (stack.slices - 1);
    QImage frame;
    microscope.start([&](const microscope::Frame& f) { frame = apps::copyOfFrame(f.pixels, f.width, f.height); });
    std::vector<std::string> files;
    for (int i = 0; i < stack.slices; ++i) {
        microscope.setPosition(std::llround(*low + i * spacing));
        microscope.deliverFrame();
        const QString file = folder.filePath(QString("slice-%1.%2").arg(i + 1, 3, 10, QChar('0')).arg(stack.format));
        if (!frame.save(file, nullptr, file.endsWith("jpg") ? JPEG_QUALITY : -1))
            throw std::runtime_error("cannot write " + file.toStdString());
        files.push_back(file.toStdString());
    }
    microscope.stop();
    return files;
}

double likeness(const std::string& file, const QImage& truth)
{
    return apps::psnr(QImage(QString::fromStdString(file)).convertToFormat(QImage::Format_BGR888), truth);
}

double medianRatio(const std::vector<double>& theirs, const std::vector<double>& ours)
{
    std::vector<double> ratios(ours.size());
    std::ranges::transform(theirs, ours, ratios.begin(), std::divides());
    return median(ratios);
}

void printRow(const char* name, const Runs& runs, double decibels)
{
    std::printf("| %s | %.2f s | %.2f s | %.0f MB | %.2f dB |", name, median(runs.seconds),
                median(runs.processorSeconds), runs.peakBytes / 1e6, decibels);
}

void printOurRow(const char* name, const Runs& ours, const Runs& theirs, double decibels, double theirDecibels,
                 double aim)
{
    printRow(name, ours, decibels);
    const double ratio = medianRatio(theirs.seconds, ours.seconds);
    std::printf(" %.2f, %.2f |", ratio, medianRatio(theirs.processorSeconds, ours.processorSeconds));
    const auto verdict = [](const char* what, bool met) { std::printf(" %s %s", what, met ? "met" : "MISSED"); };
    verdict("time", ratio >= aim);
    verdict("memory", ours.peakBytes <= theirs.peakBytes);
    verdict("PSNR", decibels > theirDecibels);
    std::printf(" |\n");
}

void compareOn(const Stack& stack, const std::string& tesmorCommand, const QDir& parent)
{
    microscope::Settings settings;
    settings.framesPerSecond = 0;
    settings.width = stack.width;
    settings.height = stack.height;
    microscope::VirtualMicroscope microscope(settings);
    const QDir folder(parent.filePath(QString("%1-%2").arg(stack.width).arg(stack.format)));
    parent.mkpath(folder.path());
    const std::vector<std::string> slices = renderSlices(microscope, stack, folder);
    const auto file = [&](const char* name) { return folder.filePath(name).toStdString(); };
    const std::string ourOutput = file("tesmor.") + stack.format;
    const std::string theirOutput = file("enfuse.") + stack.format;
    std::vector<std::string> ourCommand{tesmorCommand, "fuse", "-o", ourOutput};
    std::vector<std::string> theirCommand{
        "enfuse",   "--exposure-weight=0", "--saturation-weight=0", "--contrast-weight=1", "--hard-mask", "-o",
        theirOutput};
    if (stack.format == std::string("jpg"))
        theirCommand.push_back("--compression=" + std::to_string(JPEG_QUALITY));
    ourCommand.insert(ourCommand.end(), slices.begin(), slices.end());
    theirCommand.insert(theirCommand.end(), slices.begin(), slices.end());

    Runs first, second, theirs;
    for (int round = 0; round < ROUNDS; ++round) {
        const std::string cache = "XDG_CACHE_HOME=" + file("cache-") + std::to_string(round); // empty in every round
        first.add(runProcess(ourCommand, cache));
        second.add(runProcess(ourCommand, cache));
        theirs.add(runProcess(theirCommand, cache));
    }
    const auto& sharp = microscope.truth();
    const QImage truth = apps::copyOfFrame(sharp.pixels.data(), sharp.width, sharp.height);
    const double ourLikeness = likeness(ourOutput, truth);
    const double theirLikeness = likeness(theirOutput, truth);
    std::printf("| **%d %s of %d × %d** | | | | | | |\n", stack.slices, stack.format, stack.width, stack.height);
    printOurRow("tesmor fuse, first run", first, theirs, ourLikeness, theirLikeness, FIRST_AIM);
    printOurRow("tesmor fuse, second run", second, theirs, ourLikeness, theirLikeness, SECOND_AIM);
    printRow("enfuse", theirs, theirLikeness);
    std::printf(" | |\n");
    std::fflush(stdout);
}

} // namespace

} // namespace tesmor::bench

int main(int count, char** arguments)
try {
    if (count != 3) {
        std::fprintf(stderr, "usage: %s COMMAND FOLDER\n", arguments[0]);
        return 2;
    }
    std::printf("| | time | processor time | peak memory | PSNR | times as fast: elapsed, processor | aims |\n"
                "| --- | --: | --: | --: | --: | --: | --- |\n");
    for (const tesmor::bench::Stack& stack : {tesmor::bench::Stack{1280, 960, 10, "png"},
                                              {1280, 960, 10, "jpg"},
                                              {2592, 1944, 16, "png"},
                                              {2592, 1944, 16, "jpg"}})
        tesmor::bench::compareOn(stack, arguments[1], QDir(QString::fromLocal8Bit(arguments[2])));
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
