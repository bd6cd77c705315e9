// SPDX-License-Identifier: GPL-2.0-or-later
// `tesmor snap`, `focus` and `stack` with GStreamer's test picture and with the virtual microscope. They need the
// drive's unit 0 for themselves.
#include "command_run.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>

#include <csignal>

namespace tesmor::test {

namespace {

const QString TEST_PICTURE = "videotestsrc is-live=true";

class CameraCommandTest : public CommandTest {
protected:
    // A drive to turn, with whatever camera.
    void startDrive()
    {
        drive_.setReadChannel(QProcess::StandardError);
        drive_.setStandardOutputFile(QProcess::nullDevice());
        drive_.start(TESMOR_COMMAND, {"microscope", "--size", "64x64"});
        QByteArray said;
        while (!said.contains("Its drive is unit 0") && drive_.waitForReadyRead(LIMIT_MS))
            said += drive_.readAllStandardError();
        ASSERT_TRUE(said.contains("Its drive is unit 0")) << said.constData();
    }

    ~CameraCommandTest() override
    {
        drive_.kill();
        drive_.waitForFinished();
    }

private:
    QProcess drive_;
};

QJsonObject jsonOf(const CommandResult& result)
{
    return QJsonDocument::fromJson(result.output.toUtf8()).object();
}

TEST_F(CameraCommandTest, SnapWritesTheVeryFrame)
{
    const QString camera = TEST_PICTURE + " pattern=solid-color foreground-color=0xff112233 ! "
                                          "video/x-raw,width=1001,height=3";
    const CommandResult result = run("snap", {"--camera", camera, "-o", "picture.png"});
    ASSERT_EQ(result.status, 0) << qPrintable(result.errors);
    EXPECT_EQ(result.output, "picture.png: 1001 x 3 pixels\n");
    const QImage expected = flatImage(1001, 3, qRgb(0x11, 0x22, 0x33));
    EXPECT_EQ(QImage(path("picture.png")).convertToFormat(expected.format()), expected);
}

TEST_F(CameraCommandTest, TheVirtualMicroscopeFocusesAndCapturesAStack)
{
    const CommandResult focus = run("focus", {"--camera", "virtual", "--json"});
    EXPECT_EQ(focus.status, 0) << qPrintable(focus.errors);
    EXPECT_EQ(jsonOf(focus)["result"].toInt(-99), 0) << qPrintable(focus.output);

    const QStringList arguments{"--camera", "virtual", "--slices", "3", "--spacing", "-2", "-o", "slices"};
    const CommandResult stack = run("stack", arguments);
    EXPECT_EQ(stack.status, 0) << qPrintable(stack.errors);
    EXPECT_TRUE(stack.output.endsWith("slices: 3 slices; the focus is back where it was\n"))
        << qPrintable(stack.output);
    EXPECT_EQ(QImage(path("slices/slice-003.png")).size(), QSize(640, 480));
    EXPECT_NE(read("slices/slice-001.png"), read("slices/slice-003.png"));

    const CommandResult again = run("stack", arguments);
    EXPECT_EQ(again.status, 1);
    EXPECT_TRUE(again.errors.contains("slices: holds slice-001.png already")) << qPrintable(again.errors);
}

TEST_F(CameraCommandTest, EachFailureHasItsLine)
{
    const struct {
        QString subcommand;
        QStringList arguments;
        int status;
        const char* line;
    } cases[] = {
        {"snap", {"--camera", TEST_PICTURE}, 2, "name the file to write with -o"},
        {"snap", {"--camera", "nothing", "-o", "x.png"}, 1, "nothing: no such camera"},
        {"snap", {"--camera", "videotestsrc num-buffers=0", "-o", "x.png"}, 1, "the stream has ended"},
        {"snap", {"--camera", TEST_PICTURE, "--gain", "3", "-o", "x.png"}, 1, "leave --gain out"},
        {"focus", {"--camera", TEST_PICTURE}, 1, "no focus drive found"},
        {"stack", {"--camera", TEST_PICTURE, "-o", "s"}, 1, "no focus drive found"},
    };
    for (const auto& [subcommand, arguments, status, line] : cases) {
        const CommandResult result = run(subcommand, arguments);
        EXPECT_EQ(result.status, status) << line;
        EXPECT_TRUE(result.errors.contains(line)) << qPrintable(result.errors);
        EXPECT_EQ(result.errors.count('\n'), 1) << qPrintable(result.errors);
    }
    EXPECT_EQ(jsonOf(run("focus", {"--camera", TEST_PICTURE, "--json"}))["result"].toInt(), -4);
}

TEST_F(CameraCommandTest, AStreamThatEndsIsToldAndItsSlicesAreKept)
{
    startDrive();
    const CommandResult result =
        run("stack", {"--camera", TEST_PICTURE + " num-buffers=60", "--slices", "128", "-o", "slices"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.contains("the stream has ended")) << qPrintable(result.errors);
    EXPECT_TRUE(result.errors.contains(" of 128 slices are in slices")) << qPrintable(result.errors);
    EXPECT_EQ(QImage(path("slices/slice-001.png")).size(), QSize(320, 240));
}

TEST_F(CameraCommandTest, AnInterruptedStackLeavesNothing)
{
    startDrive();
    QProcess process;
    process.setWorkingDirectory(path(""));
    process.start(TESMOR_COMMAND,
                  {"stack", "--camera", TEST_PICTURE, "--slices", "128", "--spacing", "100", "-o", "s"});
    ASSERT_TRUE(process.waitForReadyRead(LIMIT_MS)); // its progress
    kill(static_cast<pid_t>(process.processId()), SIGINT);
    const CommandResult result = finish(process);
    EXPECT_EQ(result.status, 130) << qPrintable(result.errors);
    EXPECT_EQ(QDir(path("s")).entryList(QDir::Files), QStringList());
}

} // namespace

} // namespace tesmor::test
