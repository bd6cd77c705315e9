// SPDX-License-Identifier: GPL-2.0-or-later
// How `tesmor fuse` fails: one line that names the culprit, the right status, and no file touched.
#include "command_run.h"

#include <QDeadlineTimer>

#include <csignal>
#include <functional>

namespace tesmor::test {

namespace {

class FuseErrorsTest : public CommandTest {
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        const QImage noise = [] {
            QImage image = flatImage(64, 48);
            for (int y = 0; y < 48; ++y) {
                for (int x = 0; x < 64; ++x)
                    image.setPixel(x, y, qRgb(x * y % 251, (x + y) * (x + 7) % 241, (x * x + 31 * y) % 239));
            }
            return image;
        }();
        for (const char* name : {"a.png", "whole.jpg", "whole.tif", "whole.bmp"})
            save(noise, name);
        for (const char* suffix : {"png", "jpg", "tif", "bmp"}) {
            const QByteArray whole = read(suffix == std::string("png") ? "a.png" : QString("whole.") + suffix);
            write(QString("cut.") + suffix, whole.first(whole.size() / 2));
        }
        save(flatImage(64, 47), "other.png");
        save(flatImage(1, 48), "narrow.png");
        write("empty.png", "");
        write("text.png", "no image at all\n");
        write("vector.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='64' height='48'/>");
        // The header of a million pixels each way.
        write("huge.png", QByteArray::fromHex("89504e470d0a1a0a"
                                              "0000000d49484452000f4240000f42400802000000d30faf2a"
                                              "0000000049444154"));
        QDir(path("")).mkdir("folder.png");
        write("old.png", "old");
    }
};

TEST_F(FuseErrorsTest, SayWhatIsWrong)
{
    struct Case {
        QStringList arguments;
        int status;
        QString message;
    };
    const std::vector<Case> cases = {
        {{}, 2, "tesmor fuse: no images named"},
        {{"--bogus", "a.png"}, 2, "tesmor fuse: Unknown option 'bogus'"},
        {{"a.png", "-o"}, 2, "tesmor fuse: Missing value after '-o'"},
        {{"a.png", "missing.png"}, 1, "missing.png: no such file"},
        {{"a.png", "folder.png"}, 1, "folder.png: is a folder"},
        {{"a.png", "empty.png"}, 1, "empty.png: not a PNG, JPEG, TIFF or BMP image"},
        {{"a.png", "text.png"}, 1, "text.png: not a PNG, JPEG, TIFF or BMP image"},
        {{"a.png", "vector.svg"}, 1, "vector.svg: not a PNG, JPEG, TIFF or BMP image"},
        {{"a.png", "/dev/null"}, 1, "/dev/null: not a regular file"},
        {{"a.png", "cut.png"}, 1, "cut.png: damaged"},
        {{"a.png", "cut.jpg"}, 1, "cut.jpg: damaged"},
        {{"a.png", "cut.tif"}, 1, "cut.tif: damaged"},
        {{"a.png", "cut.bmp"}, 1, "cut.bmp: damaged"},
        {{"a.png", "other.png"}, 1, "other.png: 64 x 47 pixels, but a.png has 64 x 48"},
        {{"narrow.png"}, 1, "narrow.png: only 1 x 48 pixels"},
        {QStringList(129, "a.png"), 1, "129 images are too many; the maximum is 128"},
        {{"huge.png"}, 1, "not enough memory"},
        {{"a.png", "-o", "noformat"}, 1, "noformat: unknown image format"},
        {{"a.png", "-o", "out.gif"}, 1, "out.gif: unknown image format"},
        {{"a.png", "-o", "nowhere/out.png"}, 1, "nowhere/out.png: no such folder: nowhere"},
        {{"a.png", "-o", "folder.png"}, 1, "folder.png: is a folder"},
        {{"a.png", "-o", "/proc/out.png"}, 1, "/proc/out.png: cannot be written"},
        {{"other.png", "a.png", "-o", "./a.png"}, 1, "a.png: 64 x 48 pixels"},
        {{"a.png", "-o", "./a.png"}, 1, "./a.png: is one of the images"},
    };
    const QStringList before = names();
    const QByteArray image = read("a.png");
    for (const Case& c : cases) {
        SCOPED_TRACE(qPrintable(c.arguments.mid(0, 4).join(' ')));
        const bool ownOutput = c.arguments.contains("-o");
        const CommandResult result = run("fuse", ownOutput ? c.arguments : QStringList{"-o", "old.png"} + c.arguments);
        EXPECT_EQ(result.status, c.status);
        EXPECT_TRUE(result.errors.startsWith("tesmor fuse: ")) << qPrintable(result.errors);
        EXPECT_TRUE(result.errors.contains(c.message)) << qPrintable(result.errors);
        EXPECT_EQ(result.errors.count('\n'), 1) << qPrintable(result.errors);
        EXPECT_EQ(names(), before);
        EXPECT_EQ(read("old.png"), "old");
        EXPECT_EQ(read("a.png"), image);
    }
}

TEST_F(FuseErrorsTest, AFullDiskLeavesTheOldOutput)
{
    const QStringList before = names();
    const CommandResult result = runLimited("trap '' XFSZ && ulimit -f 1", "fuse", {"a.png", "-o", "old.png"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.startsWith("tesmor fuse: old.png: cannot be written")) << qPrintable(result.errors);
    EXPECT_EQ(names(), before);
    EXPECT_EQ(read("old.png"), "old");
}

TEST_F(FuseErrorsTest, AnInterruptionLeavesTheOldOutput)
{
    save(flatImage(1500, 1200), "flat.png");
    const QStringList before = names();
    struct Case {
        int signal;
        std::function<bool(QProcess&)> isTime;
    };
    const Case cases[] = {
        {SIGINT, [](QProcess&) { return true; }},
        {SIGTERM,
         [](QProcess& p) { return QDir(QString("/proc/%1/task").arg(p.processId())).count() > 3; }}, // planning
        {SIGINT, [](QProcess& p) { return p.peek(10'000).contains("Merging: "); }},
    };
    for (const Case& c : cases) {
        QProcess process;
        process.setWorkingDirectory(path(""));
        process.start(TESMOR_COMMAND, QStringList{"fuse", "-o", "old.png"} + QStringList(128, "flat.png"));
        ASSERT_TRUE(process.waitForReadyRead(LIMIT_MS));
        for (const QDeadlineTimer limit(LIMIT_MS); !c.isTime(process);)
            ASSERT_FALSE(limit.hasExpired() || process.waitForFinished(1));
        kill(static_cast<pid_t>(process.processId()), c.signal);
        EXPECT_EQ(finish(process).status, 130);
        EXPECT_EQ(names(), before);
        EXPECT_EQ(read("old.png"), "old");
    }
}

TEST_F(FuseErrorsTest, TheLibraryRunsOutOfMemory)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the address sanitizer needs more address space than any limit leaves";
#endif
    save(flatImage(8000, 3000), "large.png"); // some 800 MB for the fusion, 144 MB beside it
    const CommandResult result = runLimited("ulimit -v 800000", "fuse", {"large.png", "-o", "old.png"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.startsWith("tesmor fuse: not enough memory")) << qPrintable(result.errors);
    EXPECT_EQ(read("old.png"), "old");
}

} // namespace

} // namespace tesmor::test
