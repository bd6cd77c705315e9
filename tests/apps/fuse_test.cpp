// SPDX-License-Identifier: GPL-2.0-or-later
// What `tesmor fuse` makes of images.
#include "command_run.h"

#include <QImageReader>
#include <QImageWriter>

#include <algorithm>
#include <cstdlib>

namespace tesmor::test {

namespace {

class FuseTest : public CommandTest {};

int worstDifference(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
}

// Flat images come out as they are, so every step but the fusion itself shows: orders of channels, depth, alpha.
TEST_F(FuseTest, ReadsAndWritesEveryFormat)
{
    const QImage image = flatImage(33, 17);
    const QStringList files = {"a.png", "b.jpg", "c.jpeg", "d.tif", "e.tiff", "f.bmp", "deep.png", "clear.png", "PNG"};
    for (const QString& file : files.first(6))
        save(image, file);
    save(image.convertToFormat(QImage::Format_RGBA64), "deep.png");
    QImage clear = image.convertToFormat(QImage::Format_ARGB32);
    clear.fill(qRgba(150, 100, 10, 128));
    save(clear, "clear.png");
    QFile::copy(path("a.png"), path("PNG")); // formats are told by content
    struct Case {
        const char* suffix;
        const char* format;
    };
    const Case cases[] = {{"png", "png"},  {"jpg", "jpeg"},  {"JPEG", "jpeg"},
                          {"tif", "tiff"}, {"tiff", "tiff"}, {"bmp", "bmp"}};
    for (const Case& c : cases) {
        const QString out = QString("out.") + c.suffix;
        const CommandResult result = run("fuse", QStringList{"--quiet", "-o", out} + files);
        EXPECT_EQ(result.status, 0) << qPrintable(result.errors);
        EXPECT_TRUE(result.output.isEmpty() && result.errors.isEmpty());
        const QImage fused(path(out));
        ASSERT_EQ(fused.size(), image.size()) << c.suffix;
        EXPECT_LE(worstDifference(fused.pixel(32, 16), image.pixel(32, 16)), 2) << c.suffix;
        EXPECT_EQ(QImageReader::imageFormat(path(out)), c.format) << c.suffix;
    }
}

TEST_F(FuseTest, AppliesTheOrientation)
{
    QImageWriter writer(path("turned.tif"));
    writer.setTransformation(QImageIOHandler::TransformationRotate90);
    ASSERT_TRUE(writer.write(flatImage(40, 20)));
    save(flatImage(20, 40), "upright.png");
    EXPECT_EQ(run("fuse", {"turned.tif", "upright.png"}).status, 0);
    EXPECT_EQ(QImage(path("fused.png")).size(), QSize(20, 40));
}

TEST_F(FuseTest, KeepsTheScale)
{
    QImage image = flatImage(8, 8);
    image.setDotsPerMeterX(5000);
    save(image, "a.png");
    EXPECT_EQ(run("fuse", {"a.png"}).status, 0);
    EXPECT_EQ(QImage(path("fused.png")).dotsPerMeterX(), 5000);
}

TEST_F(FuseTest, ReplacesAnOlderOutput)
{
    save(flatImage(8, 8), "a.png");
    write("fused.png", "old");
    const CommandResult result = run("fuse", {"a.png", "a.png"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.contains("2 images of 8 x 8 pixels")) << qPrintable(result.output);
    EXPECT_TRUE(result.errors.isEmpty()) << qPrintable(result.errors);
    EXPECT_EQ(QImage(path("fused.png")).size(), QSize(8, 8));
    EXPECT_EQ(names(), QStringList({"a.png", "fused.png"}));
}

TEST_F(FuseTest, KeepsThePlanningOfEarlierRunsWhereItCan)
{
    save(flatImage(64, 48), "a.png");
    save(flatImage(50, 60), "b.png");
    const auto fuses = [this](const char* image) {
        const CommandResult result = run("fuse", {"--quiet", image});
        EXPECT_EQ(result.status, 0);
        EXPECT_TRUE(result.errors.isEmpty()) << qPrintable(result.errors);
    };
    const auto cached = [this] {
        const QStringList files = QDir(cachePath("tesmor")).entryList(QDir::Files | QDir::Hidden);
        EXPECT_EQ(files.size(), 1);
        QFile file(cachePath("tesmor/" + files.value(0)));
        EXPECT_TRUE(file.open(QIODevice::ReadWrite));
        const QByteArray content = file.readAll();
        file.write("damage"); // for the next run
        file.flush();
        return content;
    };
    fuses("a.png");
    fuses("b.png");
    const QByteArray both = cached();
    fuses("b.png");
    const QByteArray last = cached();
    EXPECT_GT(both.size(), last.size()); // which began anew, from a damaged file
    EXPECT_FALSE(last.contains("damage"));
    QDir(cachePath("tesmor")).removeRecursively();
    QFile inTheWay(cachePath("tesmor")); // a file where the folder should be
    EXPECT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    fuses("a.png");
    EXPECT_EQ(names(), QStringList({"a.png", "b.png", "fused.png"}));
}

} // namespace

} // namespace tesmor::test
