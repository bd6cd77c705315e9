// SPDX-License-Identifier: GPL-2.0-or-later
// Compares `tesmor fuse --align` with the programs align_image_stack and enfuse: on a drifting stack of the virtual
// microscope, with the likeness of each result to the truth, and on the series of photographs given. Prints a table and
// leaves the results. Arguments: the command tesmor, a folder for the results, folders of photographs.
#include "images/frame_image.h"
#include "images/image_quality.h"
#include "microscope/virtual_microscope.h"
#include "run_process.h"
#include "tesmor/demo/comparison_picture.h"

#include <QDir>
#include <QGuiApplication>
#include <QImage>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#include <stdexcept>

namespace tesmor::bench {

namespace {

constexpr int SLICES = 12;
constexpr int BORDER = 80; // pixels at each side, more than the drift moves out of sight

struct Tools {
    std::string tesmor;
    std::string cache; // of the environment
};

struct Stack {
    std::vector<std::string> files;
    std::vector<microscope::Warp> warps;
};

std::string nameIn(const QDir& folder, const QString& name)
{
    return folder.filePath(name).toStdString();
}

// The specimen from end to end.
Stack render(microscope::VirtualMicroscope& microscope, const QDir& folder, const QString& prefix)
{
    const auto [low, high] = std::ranges::minmax(microscope.heightMap());
    Stack stack;
    QImage image;
    microscope.start([&](const microscope::Frame& frame) {
        image = apps::copyOfFrame(frame.pixels, frame.width, frame.height);
        stack.warps.push_back(frame.warp);
    });
    for (int i = 0; i < SLICES; ++i) {
        microscope.setPosition(std::llround(low + i * static_cast<double>(high - low) / (SLICES - 1)));
        microscope.deliverFrame();
        stack.files.push_back(nameIn(folder, QString("%1-%2.png").arg(prefix).arg(i + 1, 2, 10, QChar('0'))));
        if (!image.save(QString::fromStdString(stack.files.back())))
            throw std::runtime_error("cannot write " + stack.files.back());
    }
    microscope.stop();
    return stack;
}

microscope::Settings settingsOf(const microscope::MotionSettings& motion)
{
    microscope::Settings settings;
    settings.framesPerSecond = 0;
    settings.timeScale = 0;
    settings.motion = motion;
    return settings;
}

QImage readImage(const std::string& file)
{
    return QImage(QString::fromStdString(file)).convertToFormat(QImage::Format_BGR888);
}

QImage toImage(const microscope::Image& image)
{
    return apps::copyOfFrame(image.pixels.data(), image.width, image.height);
}

QImage middleOf(const QImage& image)
{
    return image.copy(image.rect().adjusted(BORDER, BORDER, -BORDER, -BORDER));
}

double likeness(const QImage& image, const QImage& truth)
{
    return apps::psnr(middleOf(image), middleOf(truth));
}

ProcessCost fuse(const Tools& tools, std::vector<std::string> options, const std::vector<std::string>& files,
                 const std::string& output)
{
    std::vector<std::string> command{tools.tesmor, "fuse", "-o", output};
    command.insert(command.end(), options.begin(), options.end());
    command.insert(command.end(), files.begin(), files.end());
    return runProcess(command, tools.cache);
}

// Both programs after each other, with the options that their manuals give for focus stacks. Nothing if they fail.
std::optional<ProcessCost> alignAndEnfuse(const Tools& tools, const std::vector<std::string>& files, const QDir& folder,
                                          const std::string& output)
{
    const QString prefix = folder.filePath("peer-");
    std::vector<std::string> command{"align_image_stack", "-m", "-a", prefix.toStdString()};
    command.insert(command.end(), files.begin(), files.end());
    try {
        ProcessCost cost = runProcess(command, tools.cache);
        std::vector<std::string> second{
            "enfuse", "--exposure-weight=0", "--saturation-weight=0", "--contrast-weight=1", "--hard-mask", "-o",
            output};
        const QStringList aligned = folder.entryList({"peer-*.tif"}, QDir::Files, QDir::Name);
        for (const QString& name : aligned)
            second.push_back(nameIn(folder, name));
        const ProcessCost merging = runProcess(second, tools.cache);
        for (const QString& name : aligned)
            QFile::remove(folder.filePath(name));
        return ProcessCost{cost.seconds + merging.seconds, cost.processorSeconds + merging.processorSeconds, 0};
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return std::nullopt;
    }
}

void printRow(const char* name, const std::optional<ProcessCost>& cost, const QString& decibels)
{
    if (cost)
        std::printf("| %s | %.1f s | %.1f s | %s |\n", name, cost->seconds, cost->processorSeconds,
                    qPrintable(decibels));
    else
        std::printf("| %s | fails | | |\n", name);
    std::fflush(stdout);
}

QString decibels(double value)
{
    return QString("%1 dB").arg(value, 0, 'f', 2);
}

// What each makes of the drifting stack, seen against the truth of the frame that it lays the others over.
void compareOnDriftingStack(const Tools& tools, const QDir& folder)
{
    microscope::VirtualMicroscope still(settingsOf({}));
    microscope::VirtualMicroscope moving(settingsOf({.breathing = 0.002, .drift = 12, .turn = 0.5}));
    const Stack stillStack = render(still, folder, "still");
    const Stack stack = render(moving, folder, "drifting");
    const auto file = [&](const char* name) { return nameIn(folder, name); };

    const ProcessCost ofStill = fuse(tools, {}, stillStack.files, file("still.png"));
    const ProcessCost plain = fuse(tools, {}, stack.files, file("plain.png"));
    const ProcessCost aligned = fuse(tools, {"--align", "--no-crop"}, stack.files, file("aligned.png"));
    const auto theirs = alignAndEnfuse(tools, stack.files, folder, file("peers.tif"));

    const QImage truth = toImage(still.truth());
    // The frame that ours were laid over is the one whose truth ours resembles most.
    const auto best = [&](const QImage& image) {
        double most = 0;
        for (const auto& warp : stack.warps)
            most = std::max(most, likeness(image, toImage(moving.truth(warp))));
        return most;
    };
    const QImage ours = readImage(file("aligned.png"));
    const double ofStillDecibels = likeness(readImage(file("still.png")), truth);
    const double plainDecibels = best(readImage(file("plain.png")));
    const double oursDecibels = best(ours);
    std::printf("| **%d drifting images of %d × %d** | | | |\n", SLICES, truth.width(), truth.height());
    printRow("tesmor fuse, the same without drift", ofStill, decibels(ofStillDecibels));
    printRow("tesmor fuse", plain, decibels(plainDecibels));
    printRow("tesmor fuse --align", aligned, decibels(oursDecibels));
    const QImage peers = readImage(file("peers.tif"));
    const double peersDecibels = peers.size() == truth.size() ? best(peers) : 0;
    printRow("align_image_stack and enfuse", theirs, decibels(peersDecibels));

    const QImage plainMiddle = middleOf(readImage(file("plain.png")));
    std::vector<apps::ComparedPicture> pictures{
        {"Without drift", decibels(ofStillDecibels), middleOf(readImage(file("still.png")))},
        {"Drifting", decibels(plainDecibels), plainMiddle},
        {"Drifting, with --align", decibels(oursDecibels), middleOf(ours)}};
    if (peersDecibels > 0)
        pictures.push_back({"align_image_stack, enfuse", decibels(peersDecibels), middleOf(peers)});
    const QRect detail = apps::mostDifferentPart(plainMiddle, middleOf(ours));
    if (!apps::compare(pictures, detail).save(folder.filePath("alignment.jpg"), nullptr, 90))
        throw std::runtime_error("cannot write the comparison");
}

void compareOnSeries(const Tools& tools, const QDir& series, const QDir& folder)
{
    std::vector<std::string> files;
    for (const QString& name : series.entryList({"*.png"}, QDir::Files, QDir::Name))
        files.push_back(nameIn(series, name));
    std::printf("| **%s, %zu images** | | | |\n", qPrintable(series.dirName()), files.size());
    const auto output = [&](const char* name) { return nameIn(folder, series.dirName() + name); };
    fuse(tools, {}, files, output("-plain.png")); // plans this size for the next two
    printRow("tesmor fuse", fuse(tools, {}, files, output("-plain.png")), {});
    printRow("tesmor fuse --align", fuse(tools, {"--align"}, files, output("-aligned.png")), {});
    printRow("align_image_stack and enfuse", alignAndEnfuse(tools, files, folder, output("-peers.tif")), {});
}

} // namespace

} // namespace tesmor::bench

int main(int count, char** arguments)
try {
    if (count < 3) {
        std::fprintf(stderr, "usage: %s COMMAND FOLDER [SERIES]...\n", arguments[0]);
        return 2;
    }
    const QGuiApplication application(count, arguments); // for the text in pictures
    const QDir folder(QString::fromLocal8Bit(arguments[2]));
    const tesmor::bench::Tools tools{arguments[1], "XDG_CACHE_HOME=" + folder.filePath("cache").toStdString()};
    std::printf("| | time | processor time | PSNR |\n| --- | --: | --: | --: |\n");
    if (count == 3)
        tesmor::bench::compareOnDriftingStack(tools, folder);
    for (int i = 3; i < count; ++i)
        tesmor::bench::compareOnSeries(tools, QDir(QString::fromLocal8Bit(arguments[i])), folder);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
