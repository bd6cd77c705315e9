// SPDX-License-Identifier: GPL-2.0-or-later
// `tesmor demo` from end to end, its failures and its interruption. They need the drive's unit 0 for themselves.
#include "command_run.h"
#include "platform_linux/raw_service.h"

#include <QDeadlineTimer>
#include <QRegularExpression>

#include <csignal>

namespace tesmor::test {

namespace {

constexpr int PLANES = 9;
constexpr int SHARP_PLANE = 5;

// Speckles that get blurred with the distance from one plane.
QImage makePlane(int plane)
{
    constexpr int WIDTH = 160;
    constexpr int HEIGHT = 120;
    QImage image(WIDTH, HEIGHT, QImage::Format_RGB32);
    unsigned random = 1;
    for (int y = 0; y < HEIGHT; ++y) {
        for (int x = 0; x < WIDTH; ++x) {
            random = random * 1664525 + 1013904223;
            const int grey = static_cast<int>(40 + random / 0x2000000); // 40 to 167
            image.setPixel(x, y, qRgb(grey, grey, grey));
        }
    }
    const int shrink = 1 + std::abs(plane - SHARP_PLANE);
    return image.scaled(WIDTH / shrink, HEIGHT / shrink, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .scaled(WIDTH, HEIGHT, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

class DemoTest : public CommandTest {
protected:
    void savePlanes() const
    {
        QDir(path("")).mkdir("planes");
        for (int plane = 0; plane < PLANES; ++plane)
            save(makePlane(plane), QString("planes/plane-%1.png").arg(plane));
    }

    QStringList namesIn(const QString& folder) const
    {
        return QDir(path(folder)).entryList(QDir::Files, QDir::Name);
    }
};

// Of the first match of the pattern's group.
double numberIn(const QString& text, const QString& pattern)
{
    const auto match = QRegularExpression(pattern).match(text);
    EXPECT_TRUE(match.hasMatch()) << qPrintable(pattern) << "\n" << qPrintable(text);
    return match.captured(1).toDouble();
}

TEST_F(DemoTest, FocusesAndMergesTheSpecimen)
{
    const CommandResult result = run(
        "demo", {"--magnification", "100", "--size", "320x240", "--slices", "5", "--spacing", "10", "--output", "out"});
    ASSERT_EQ(result.status, 0) << qPrintable(result.errors);
    EXPECT_TRUE(result.output.contains("simulated"));
    EXPECT_TRUE(result.output.contains("within one depth of field: yes")) << qPrintable(result.output);
    EXPECT_GT(numberIn(result.output, "fused image +[\\d.]+ +([\\d.]+) dB"),
              numberIn(result.output, "best slice \\(\\d of 5\\) +[\\d.]+ +([\\d.]+) dB"));
    EXPECT_EQ(namesIn("out"),
              QStringList({"comparison.png", "focus-curve.png", "focus-trace.csv", "fused.png", "slice-01.png",
                           "slice-02.png", "slice-03.png", "slice-04.png", "slice-05.png"}));
    const double moves = numberIn(result.output, "autofocus +(\\d+)");
    EXPECT_EQ(read("out/focus-trace.csv").count('\n'), moves + 1);
}

TEST_F(DemoTest, FocusesAndMergesPhotographs)
{
    savePlanes();
    QDir(path("")).mkdir("out");
    write("out/focus-trace.csv", "of an earlier demo");
    write("out/slice-99.png", "of an earlier demo");
    const CommandResult result = run("demo", {"--planes", "planes", "--output", "out"});
    ASSERT_EQ(result.status, 0) << qPrintable(result.errors);
    EXPECT_TRUE(result.output.contains("within one plane: yes")) << qPrintable(result.output);
    EXPECT_EQ(numberIn(result.output, "best slice \\((\\d) of 9\\)"), SHARP_PLANE + 1);
    EXPECT_TRUE(result.output.contains("unknown"));
    EXPECT_EQ(namesIn("out").filter("slice-").size(), PLANES);
    EXPECT_FALSE(namesIn("out").contains("slice-99.png"));
    // A slice is a photograph as it came.
    const QImage slice(path("out/slice-06.png"));
    EXPECT_EQ(slice.convertToFormat(QImage::Format_RGB32),
              makePlane(SHARP_PLANE).convertToFormat(QImage::Format_RGB32));
}

TEST_F(DemoTest, SaysWhatIsWrong)
{
    savePlanes();
    for (const char* folder : {"empty", "single", "mixed", "mine"})
        QDir(path("")).mkdir(folder);
    save(makePlane(0), "single/a.png");
    save(makePlane(0), "mixed/a.png");
    save(flatImage(160, 100), "mixed/b.png");
    save(makePlane(0), "mine/slice-01.png");
    write("file", "");
    struct Case {
        QStringList arguments;
        int status;
        QString message;
    };
    const std::vector<Case> cases = {
        {{"extra"}, 2, "unexpected argument 'extra'"},
        {{"--magnification", "5"}, 2, "--magnification is '5'; it must be 4, 10, 20, 40, 60, 80 or 100"},
        {{"--magnification", "4", "--spacing", "328"}, 2, "--spacing is '328'; it must be a number from 1 to 327"},
        {{"--size", "640*480"}, 2, "--size is '640*480'; it must look like 640x480"},
        {{"--offset", "far"}, 2, "--offset is 'far'"},
        {{"--planes", "missing"}, 1, "missing: no such folder"},
        {{"--planes", "empty"}, 1, "empty: contains none of the 2"},
        {{"--planes", "single"}, 1, "single: contains one of the 2"},
        {{"--planes", "mixed"}, 1, "mixed/b.png: 160 x 100 pixels, but mixed/a.png has 160 x 120"},
        {{"--planes", "planes", "--output", "planes"}, 1, "planes: contains the photographs"},
        {{"--planes", "planes", "--output", "mine"}, 1, "mine/slice-01.png: not written by a demo"},
        {{"--planes", "planes", "--output", "file"}, 1, "file: not a folder"},
        {{"--planes", "planes", "--output", "/proc/out"}, 1, "/proc/out: cannot be created"},
    };
    for (const Case& expected : cases) {
        const CommandResult result = run("demo", expected.arguments);
        EXPECT_EQ(result.status, expected.status) << qPrintable(expected.message);
        EXPECT_TRUE(result.errors.startsWith("tesmor demo: " + expected.message)) << qPrintable(result.errors);
        EXPECT_EQ(result.errors.count('\n'), 1) << qPrintable(result.errors);
    }
    EXPECT_EQ(namesIn("mine"), QStringList("slice-01.png"));
    EXPECT_EQ(namesIn("planes").size(), PLANES);
}

TEST_F(DemoTest, SaysWhenAnotherProgramHasTheDrive)
{
    savePlanes();
    const RawService other(0);
    const CommandResult result = run("demo", {"--planes", "planes"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.contains("stop whatever else simulates a drive")) << qPrintable(result.errors);
}

TEST_F(DemoTest, EndsWhenInterrupted)
{
    for (const auto& [signal, moment] : {std::pair{SIGINT, "Focusing:"}, {SIGTERM, "Capturing:"}}) {
        QProcess process;
        process.setWorkingDirectory(path(""));
        process.start(TESMOR_COMMAND, {"demo", "--magnification", "4", "--size", "320x240", "--output", "out"});
        for (const QDeadlineTimer limit(LIMIT_MS); !process.peek(10'000).contains(moment);)
            ASSERT_FALSE(limit.hasExpired() || process.waitForFinished(1))
                << qPrintable(process.readAllStandardError());
        kill(static_cast<pid_t>(process.processId()), signal);
        const CommandResult result = finish(process);
        EXPECT_EQ(result.status, 130) << qPrintable(result.output + result.errors);
        EXPECT_EQ(result.errors, "tesmor demo: interrupted\n");
        EXPECT_TRUE(namesIn("out").isEmpty());
    }
}

} // namespace

} // namespace tesmor::test
