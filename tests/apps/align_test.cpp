// SPDX-License-Identifier: GPL-2.0-or-later
// `tesmor fuse --align` on stacks of the virtual microscope.
#include "command_run.h"
#include "images/frame_image.h"
#include "images/image_quality.h"
#include "microscope/virtual_microscope.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace tesmor::test {

namespace {

constexpr int SLICES = 9;

class AlignTest : public CommandTest {
protected:
    // Takes a stack, saves it under the prefix, and merges it; the names of the files are left in `files`. Returns the
    // likeness to the truth that the options make the result come closest to, decibels.
    double merge(const microscope::MotionSettings& motion, const QString& prefix, const QStringList& options)
    {
        microscope::Settings settings;
        settings.width = 640;
        settings.height = 480;
        settings.framesPerSecond = 0;
        settings.timeScale = 0;
        settings.motion = motion;
        microscope::VirtualMicroscope microscope(settings);
        std::vector<microscope::Warp> warps;
        QImage image;
        microscope.start([&](const microscope::Frame& frame) {
            image = apps::copyOfFrame(frame.pixels, frame.width, frame.height);
            warps.push_back(frame.warp);
        });
        const auto [low, high] = std::ranges::minmax(microscope.heightMap());
        files.clear();
        for (int i = 0; i < SLICES; ++i) {
            microscope.setPosition(std::llround(low + i * static_cast<double>(high - low) / (SLICES - 1)));
            microscope.deliverFrame();
            files.append(prefix + QString::number(i) + ".png");
            save(image, files.last());
        }
        result = run("fuse", QStringList{"-o", "fused.png"} + options + files);
        EXPECT_EQ(result.status, 0) << qPrintable(result.errors);
        const QImage fused = QImage(path("fused.png")).convertToFormat(QImage::Format_BGR888);
        const QRect middle(40, 40, 560, 400); // all frames show it
        double best = 0;
        for (const microscope::Warp& warp : warps) {
            const microscope::Image truth = microscope.truth(warp);
            best = std::max(
                best, apps::psnr(fused.copy(middle), apps::copyOfFrame(truth.pixels.data(), 640, 480).copy(middle)));
        }
        return best;
    }

    QStringList files;
    CommandResult result;
};

TEST_F(AlignTest, MakesADriftingStackAsGoodAsAStillOne)
{
    const microscope::MotionSettings moving{.breathing = 0.002, .drift = 12, .turn = 0.5};
    const double still = merge({}, "still", {});
    EXPECT_FALSE(result.output.contains("shifted by")) << qPrintable(result.output);
    const double drifting = merge(moving, "drifting", {});
    EXPECT_TRUE(result.output.contains("shifted by up to")) << qPrintable(result.output);
    EXPECT_TRUE(result.output.contains("--align")) << qPrintable(result.output);
    EXPECT_GT(merge(moving, "drifting", {"--align", "--no-crop"}), still - 1);
    EXPECT_LT(drifting, still - 3);

    const CommandResult cropped = run("fuse", QStringList{"--json", "--align"} + files);
    const QJsonObject json = QJsonDocument::fromJson(cropped.output.toUtf8()).object();
    const QImage fused(path("fused.png"));
    EXPECT_EQ(fused.size(), QSize(json["width"].toInt(), json["height"].toInt()));
    EXPECT_LT(fused.width(), 640);
    EXPECT_GT(fused.width(), 580);
}

TEST_F(AlignTest, NamesWhatCannotBeAligned)
{
    merge({.drift = 5}, "slice", {});
    save(flatImage(640, 480), "blank.png");
    save(flatImage(31, 40), "small.png");
    const QStringList spoilt = files.first(4) + QStringList{"blank.png"} + files.mid(4);
    const CommandResult one = run("fuse", QStringList{"--json", "--align"} + spoilt);
    EXPECT_EQ(one.status, 0);
    EXPECT_EQ(one.errors, "tesmor fuse: blank.png: left out; it cannot be aligned\n");
    EXPECT_TRUE(one.output.contains("\"leftOut\":[\"blank.png\"]")) << qPrintable(one.output);

    struct Case {
        QStringList arguments;
        int status;
        QString message;
    };
    const Case cases[] = {
        {QStringList{"--align", files[0]} + QStringList(3, "blank.png"), 1,
         "3 of 4 images cannot be aligned with slice0"},
        {QStringList{"--align"} + QStringList(3, "blank.png"), 1, "2 of 3 images cannot be aligned"},
        {{"--align", "small.png", "small.png"}, 1, "small.png: 31 x 40 pixels are too small to be aligned"},
        {{"--no-crop", "blank.png"}, 2, "--no-crop does nothing without --align"},
    };
    for (const Case& c : cases) {
        const CommandResult failed = run("fuse", QStringList{"-o", "none.png"} + c.arguments);
        EXPECT_EQ(failed.status, c.status) << qPrintable(c.message);
        EXPECT_TRUE(failed.errors.startsWith("tesmor fuse: " + c.message)) << qPrintable(failed.errors);
        EXPECT_EQ(failed.errors.count('\n'), 1);
        EXPECT_FALSE(names().contains("none.png"));
    }
    EXPECT_EQ(run("fuse", {"--align", "blank.png"}).status, 0) << "one image is aligned with itself";
}

} // namespace

} // namespace tesmor::test
