// SPDX-License-Identifier: GPL-2.0-or-later
// What `tesmor fuse` makes of the files in stacks/, which other programs wrote. Their pages are flat; see make_stacks.
#include "command_run.h"

#include <QImageReader>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace tesmor::test {

namespace {

constexpr int (*CHANNELS[])(QRgb) = {qRed, qGreen, qBlue};

class StackFilesTest : public CommandTest {
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        for (const QString& name : QDir(TEST_STACKS).entryList({"*.tif"}))
            QFile::copy(TEST_STACKS "/" + name, path(name));
        const QByteArray whole = read("grey16.tif");
        write("cut.tif", whole.first(whole.size() - 1000)); // within the list of pages
        write("cut_strip.tif", read("lzw.tif").first(200));
    }
};

TEST_F(StackFilesTest, ReadsThePagesThatAreNamed)
{
    struct Case {
        QStringList arguments;
        int images;
        QRgb colour;
    };
    const auto grey = [](int value) { return qRgb(value, value, value); };
    const Case cases[] = {
        {{"grey16.tif[3]", "--range", "0,4080"}, 1, grey(120)},
        {{"tiles.tif[2]", "--range", "0,4080"}, 1, grey(110)},
        {{"big_endian.tif[5-]", "--range", "0,4080"}, 1, grey(140)},
        {{"lzw.tif[-1]", "--range", "0,4080"}, 1, grey(100)},
        {{"lzw.tif[4-4]", "--range", "full"}, 1, grey(8)},
        {{"inverted.tif[4]", "--range", "0,4080"}, 1, grey(130)},
        {{"colour.tif[2]"}, 1, qRgb(110, 145, 55)},
        {{"planes.tif[2]"}, 1, qRgb(110, 145, 55)},
        {{"ycbcr.tif[2]"}, 1, qRgb(110, 145, 55)},
        {{"planes.tif[2]", "--range", "0,220"}, 1, qRgb(128, 168, 64)},
        {{"grey16.tif[2-4]", "grey16.tif[3]", "big_endian.tif"}, 9, {}},
        {{"grey16.tif", "colour.tif[1]"}, 6, {}}, // eight bits beside sixteen
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(qPrintable(c.arguments.join(' ')));
        const CommandResult result = run("fuse", QStringList{"--json"} + c.arguments);
        ASSERT_EQ(result.status, 0) << qPrintable(result.errors);
        EXPECT_EQ(QJsonDocument::fromJson(result.output.toUtf8())["images"].toInt(), c.images);
        const QImage fused(path("fused.png"));
        ASSERT_EQ(fused.size(), QSize(24, 16));
        const bool isGrey = !c.arguments.join(' ').contains(QRegularExpression("colour|planes|ycbcr"));
        EXPECT_EQ(fused.format() == QImage::Format_Grayscale8, isGrey);
        if (c.images > 1)
            continue;
        for (const auto channel : CHANNELS)
            EXPECT_NEAR(channel(fused.pixel(23, 15)), channel(c.colour), 1);
    }
}

TEST_F(StackFilesTest, OneRangeServesTheWholeStack)
{
    QImage slope(100, 100, QImage::Format_Grayscale16);
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 100; ++x)
            reinterpret_cast<quint16*>(slope.scanLine(y))[x] = static_cast<quint16>(10 * x);
    }
    reinterpret_cast<quint16*>(slope.scanLine(7))[7] = 60000; // one hot pixel in 10,000
    save(slope, "deep.png");
    const CommandResult result = run("fuse", {"deep.png"});
    EXPECT_EQ(result.status, 0) << qPrintable(result.errors);
    EXPECT_TRUE(result.output.contains("0 becomes black, 990 white")) << qPrintable(result.output);
    EXPECT_NEAR(qGray(QImage(path("fused.png")).pixel(50, 50)), 500 * 255 / 990, 2);
}

TEST_F(StackFilesTest, SayWhatIsWrong)
{
    struct Case {
        QStringList arguments;
        int status;
        QString message;
    };
    const std::vector<Case> cases = {
        {{"grey16.tif[3-6]"}, 1, "grey16.tif: has 5 pages; choose from them, as in grey16.tif[1-5]"},
        {{"grey16.tif[0-2]"}, 1, "grey16.tif[0-2]: no such pages"},
        {{"grey16.tif[3-2]"}, 1, "grey16.tif[3-2]: no such pages"},
        {{"missing.tif[2]"}, 1, "missing.tif: no such file"},
        {{"sizes.tif"}, 1, "sizes.tif, page 2: 24 x 15 pixels, but sizes.tif, page 1 has 24 x 16"},
        {{"cmyk.tif"}, 1, "cmyk.tif, page 1: is a CMYK image, for printing; convert it to RGB"},
        {{"float.tif"}, 1, "float.tif, page 1: holds floating-point numbers; convert it to 16 bits"},
        {{"signed.tif"}, 1, "signed.tif, page 1: holds numbers other than unsigned integers"},
        {{"cut.tif"}, 1, "cut.tif: damaged"},
        {{"cut_strip.tif"}, 1, "cut_strip.tif: damaged"},
        {QStringList(26, "grey16.tif"), 1, "130 images are too many; the maximum is 128"},
        {{"colour.tif", "--range", "9,256"}, 1, "--range ends at 256, but the images have 8 bits"},
        {{"grey16.tif", "--range", "9,9"}, 2, "--range is '9,9'; it must be auto, full, or LOW,HIGH"},
        {{"grey16.tif", "--range", "0,65536"}, 2, "--range is '0,65536'"},
    };
    const QStringList before = names();
    for (const Case& c : cases) {
        SCOPED_TRACE(qPrintable(c.arguments.mid(0, 4).join(' ')));
        const CommandResult result = run("fuse", c.arguments);
        EXPECT_EQ(result.status, c.status);
        EXPECT_TRUE(result.errors.startsWith("tesmor fuse: " + c.message)) << qPrintable(result.errors);
        EXPECT_EQ(result.errors.count('\n'), 1) << qPrintable(result.errors);
        EXPECT_EQ(names(), before);
    }
}

// The resolution that grey16.tif has, 4 pixels per micrometre, in every format that can hold it.
TEST_F(StackFilesTest, ThePixelSizeComesOutAgain)
{
    for (const char* name : {"out.tif", "out.png"}) {
        EXPECT_EQ(run("fuse", {"grey16.tif", "-o", name}).status, 0);
        EXPECT_EQ(QImage(path(name)).dotsPerMeterX(), 4'000'000) << name;
        EXPECT_EQ(QImage(path(name)).format(), QImage::Format_Grayscale8) << name;
    }
}

} // namespace

} // namespace tesmor::test
