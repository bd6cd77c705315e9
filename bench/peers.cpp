// Times the command `tesmor fuse` and the program enfuse, whole processes that alternate, on a stack of the virtual
// microscope, and scores both against its truth. Arguments: the command tesmor, a folder for the images.
#include "images/image_quality.h"
#include "microscope/virtual_microscope.h"
#include "ratio.h"

#include <QDir>
#include <QImage>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tesmor::bench {

namespace {

constexpr int ROUNDS = 7;

QImage imageOf(const std::uint8_t* pixels, int width, int height)
{
    return QImage(pixels, width, height, static_cast<qsizetype>(microscope::rowBytes(width)), QImage::Format_BGR888)
        .copy();
}

// The specimen's whole relief, half a depth of field apart, with the camera's noise.
std::vector<std::string> renderStack(microscope::VirtualMicroscope& microscope, const QDir& folder)
{
    const auto [low, high] = std::minmax_element(microscope.heightMap().begin(), microscope.heightMap().end());
    const double spacing = microscope.depthOfField() / 2;
    const int slices = std::clamp(static_cast<int>((*high - *low) / spacing) + 1, 2, 128);
    QImage frame;
    microscope.start([&](const microscope::Frame& f) { frame = imageOf(f.pixels, f.width, f.height); });
    std::vector<std::string> files;
    for (int i = 0; i < slices; ++i) {
        microscope.setPosition(std::llround(*low + i * spacing));
        microscope.deliverFrame();
        const QString file = folder.filePath(QString("slice-%1.png").arg(i + 1, 3, 10, QChar('0')));
        if (!frame.save(file))
            throw std::runtime_error("cannot write " + file.toStdString());
        files.push_back(file.toStdString());
    }
    microscope.stop();
    return files;
}

struct Usage {
    double seconds;
    double processorSeconds;
    double peakBytes;
};

Usage runProcess(const std::vector<std::string>& command)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    const double start = ElapsedTime::seconds();
    const pid_t child = fork();
    if (child == 0) {
        const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error(command[0] + " failed");
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return {ElapsedTime::seconds() - start, seconds(usage.ru_utime) + seconds(usage.ru_stime),
            static_cast<double>(usage.ru_maxrss) * 1024.0};
}

struct Peer {
    std::string name;
    std::vector<std::string> command;
    std::string output;
    std::vector<double> seconds{}, processorSeconds{};
    double peakBytes = 0.0;
};

void printLine(const std::string& name, const std::string& costs, const QImage& image, const QImage& truth)
{
    std::printf("| %s | %s | %.2f dB | %.4f |\n", name.c_str(), costs.c_str(), apps::psnr(image, truth),
                apps::ssim(image, truth));
}

QImage loaded(const std::string& file)
{
    return QImage(QString::fromStdString(file)).convertToFormat(QImage::Format_BGR888);
}

void comparePeers(const std::string& tesmorCommand, const QDir& folder)
{
    microscope::Settings settings;
    settings.framesPerSecond = 0;
    microscope::VirtualMicroscope microscope(settings);
    const std::vector<std::string> slices = renderStack(microscope, folder);
    const std::string ours = folder.filePath("tesmor.png").toStdString();
    const std::string theirs = folder.filePath("enfuse.png").toStdString();
    Peer peers[] = {
        {"tesmor fuse", {tesmorCommand, "fuse", "-o", ours}, ours},
        {"enfuse",
         {"enfuse", "--exposure-weight=0", "--saturation-weight=0", "--contrast-weight=1", "--hard-mask", "-o", theirs},
         theirs}};
    for (Peer& peer : peers)
        peer.command.insert(peer.command.end(), slices.begin(), slices.end());
    for (int round = 0; round < ROUNDS; ++round) {
        for (Peer& peer : peers) {
            const Usage usage = runProcess(peer.command);
            peer.seconds.push_back(usage.seconds);
            peer.processorSeconds.push_back(usage.processorSeconds);
            peer.peakBytes = std::max(peer.peakBytes, usage.peakBytes);
        }
    }
    const QImage truth = imageOf(microscope.truth().pixels.data(), settings.width, settings.height);
    std::printf("%zu slices of %d × %d\n\n", slices.size(), settings.width, settings.height);
    std::printf("| | time | processor time | peak memory | PSNR | SSIM |\n| --- | --: | --: | --: | --: | --: |\n");
    for (const Peer& peer : peers) {
        char costs[96];
        std::snprintf(costs, sizeof costs, "%.2f s | %.2f s | %.0f MB", median(peer.seconds),
                      median(peer.processorSeconds), peer.peakBytes / 1e6);
        printLine(peer.name, costs, loaded(peer.output), truth);
    }
    printLine("the slice in the middle", "| |", loaded(slices[slices.size() / 2]), truth);
}

} // namespace

} // namespace tesmor::bench

int main(int count, char** arguments)
try {
    if (count != 3) {
        std::fprintf(stderr, "usage: %s COMMAND FOLDER\n", arguments[0]);
        return 2;
    }
    tesmor::bench::comparePeers(arguments[1], QDir(QString::fromLocal8Bit(arguments[2])));
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
