// SPDX-License-Identifier: GPL-2.0-or-later
// What `tesmor fuse` makes of the files in stacks/, which other programs wrote. Their pages are flat; see make_stacks.
#include "command_run.h"

#include <QColorSpace>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

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
        write("cut_hidden.tif", read("hidden.tif").chopped(1));
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
        {{"channels.ome.tif", "--channel", "2", "--range", "full"}, 3, {}},
        {{"channels.ome.tif[3]", "--channel", "2", "--range", "0,4080"}, 1, grey(121)},
        {{"swapped.ome.tif[2]", "--channel", "2", "--time", "2", "--range", "0,4080"}, 1, grey(161)},
        {{"times.tif[2]", "--channel", "2", "--time", "2", "--range", "0,4080"}, 1, grey(161)},
        {{"times.tif[1]", "--channel", "1", "--time", "2", "--range", "0,4080"}, 1, grey(150)},
        {{"hidden.tif[2]", "--channel", "2", "--time", "2", "--range", "0,4080"}, 1, grey(161)},
        {{"hidden_colour.tif[3]"}, 1, qRgb(120, 135, 60)},
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
    EXPECT_TRUE(result.output.contains("0 is black, 990 white")) << qPrintable(result.output);
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
        {{"grey16.tif[3-6]"}, 1, "grey16.tif: there are 5 pages; choose from them, as in grey16.tif[1-5]"},
        {{"grey16.tif[0-2]"}, 1, "grey16.tif[0-2]: no such pages"},
        {{"grey16.tif[3-2]"}, 1, "grey16.tif[3-2]: no such pages"},
        {{"missing.tif[2]"}, 1, "missing.tif: no such file"},
        {{"channels.ome.tif"}, 1, "channels.ome.tif: has 2 channels (1 DAPI, 2 GFP); choose one, as in --channel 1"},
        {{"times.tif"}, 1, "times.tif: has 2 channels and 2 points in time; choose one, as in --channel 1 --time 1"},
        {{"times.tif", "--channel", "2"}, 1, "times.tif: has 2 points in time; choose one, as in --time 1"},
        {{"channels.ome.tif", "--channel", "3"}, 1, "channels.ome.tif: has 2 channels (1 DAPI, 2 GFP)"},
        {{"times.tif[4]", "--channel", "1", "--time", "1"}, 1, "times.tif: there are 3 pages"},
        {{"grey16.tif", "--channel", "2"}, 1, "grey16.tif: has only channel 1"},
        {{"cut_hidden.tif"}, 1, "cut_hidden.tif: damaged (only 11 of its 12 images are there)"},
        {{"sizes.tif"}, 1, "sizes.tif, page 2: 24 x 15 pixels, but sizes.tif, page 1 has 24 x 16"},
        {{"cmyk.tif"}, 1, "cmyk.tif: is a CMYK image, for printing; convert it to RGB"},
        {{"float.tif"}, 1, "float.tif: holds floating-point numbers; convert it to 16 bits"},
        {{"signed.tif"}, 1, "signed.tif: holds numbers other than unsigned integers"},
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

// All three files have 4 pixels per micrometre, each in its own way.
TEST_F(StackFilesTest, ThePixelSizeAndTheColourProfileComeOutAgain)
{
    QImage wide = flatImage(24, 16);
    wide.setColorSpace(QColorSpace::AdobeRgb);
    save(wide, "wide.tif");
    save(wide.convertToFormat(QImage::Format_Grayscale8), "grey.tif");
    const QByteArray profile = wide.colorSpace().iccProfile();
    const QByteArray tables = QByteArray(profile).replace("rXYZ", "A2B0"); // none that Qt understands
    write("tables.tif", read("wide.tif").replace(profile, tables));
    for (const char* name : {"out.tif", "out.png"}) {
        for (const char* stack : {"grey16.tif", "channels.ome.tif[1]", "times.tif[1]"}) {
            EXPECT_EQ(run("fuse", {stack, "--channel", "1", "--time", "1", "-o", name}).status, 0);
            EXPECT_EQ(QImage(path(name)).dotsPerMeterX(), 4'000'000) << stack << ' ' << name;
            EXPECT_EQ(QImage(path(name)).dotsPerMeterY(), 4'000'000) << stack << ' ' << name;
            EXPECT_EQ(QImage(path(name)).format(), QImage::Format_Grayscale8) << stack << ' ' << name;
        }
        EXPECT_EQ(run("fuse", {"wide.tif", "-o", name}).status, 0);
        EXPECT_EQ(QImage(path(name)).colorSpace().primaries(), QColorSpace::Primaries::AdobeRgb) << name;
        EXPECT_EQ(run("fuse", {"grey.tif", "-o", name}).status, 0);
        EXPECT_TRUE(QImage(path(name)).colorSpace().iccProfile().isEmpty()) << "a profile for colours, in " << name;
        const CommandResult result = run("fuse", {"tables.tif", "-o", name});
        EXPECT_NE(result.output.contains("profile is left out"), read(name).contains(tables)) << name;
    }
    EXPECT_TRUE(read("out.tif").contains(tables));
}

} // namespace

} // namespace tesmor::test
