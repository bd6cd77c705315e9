// SPDX-License-Identifier: GPL-2.0-or-later
// `tesmor fuse --each`: many stacks, some of them broken.
#include "command_run.h"

#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QJsonObject>

#include <csignal>

namespace tesmor::test {

namespace {

class FuseEachTest : public CommandTest {
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        for (const char* name : {"grey16.tif", "colour.tif", "cmyk.tif", "channels.ome.tif"})
            QFile::copy(QString(TEST_STACKS "/") + name, path(name));
        QDir(path("")).mkdir("A1");
        save(flatImage(24, 16), "A1/slice-1.png");
        save(flatImage(24, 16), "A1/slice-2.png");
        QDir(path("")).mkdir("empty");
    }

    QStringList results() const
    {
        return QDir(path("out")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
};

TEST_F(FuseEachTest, ABrokenStackDoesNotEndTheOthers)
{
    const QStringList stacks = {"A1/", "cmyk.tif", "grey16.tif[2-3]", "empty", "missing", "channels.ome.tif"};
    const CommandResult result = run("fuse", QStringList{"--each", "--json", "-o", "out", "--channel", "1"} + stacks);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(results(), QStringList({"A1.png", "channels.png", "grey16.png"}));
    for (const char* culprit : {"cmyk.tif: is a CMYK image", "empty: holds no PNG", "missing: no such file"})
        EXPECT_TRUE(result.errors.contains(culprit)) << qPrintable(result.errors);
    EXPECT_EQ(result.errors.count('\n'), 3) << qPrintable(result.errors);

    const QStringList lines = result.output.trimmed().split('\n');
    ASSERT_EQ(lines.size(), stacks.size());
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QJsonDocument line = QJsonDocument::fromJson(lines[i].toUtf8());
        EXPECT_EQ(line["stack"].toString(), stacks[i]);
        const bool isDone = QFile::exists(path(line["output"].toString()));
        EXPECT_EQ(line["result"].toString(), isDone ? "done" : "failed");
        EXPECT_EQ(line["images"].toInt(), isDone ? (i == 5 ? 3 : 2) : 0);
        EXPECT_NE(line["error"].isUndefined(), !isDone);
    }
    run("fuse", {"A1/slice-1.png", "A1/slice-2.png"});
    EXPECT_EQ(read("out/A1.png"), read("fused.png")); // merged among others as alone
}

TEST_F(FuseEachTest, GoesOnWhereItEnded)
{
    QDir(path("")).mkdir("out");
    write("out/grey16.tif", "of an earlier run");
    const QStringList arguments = {"--each", "--format", "tif", "-o", "out", "A1", "grey16.tif", "colour.tif"};
    const CommandResult result = run("fuse", QStringList{"--skip-existing"} + arguments);
    EXPECT_EQ(result.status, 0) << qPrintable(result.errors);
    EXPECT_EQ(results(), QStringList({"A1.tif", "colour.tif", "grey16.tif"}));
    EXPECT_EQ(read("out/grey16.tif"), "of an earlier run");
    EXPECT_TRUE(result.output.contains("2 merged, 1 skipped in ")) << qPrintable(result.output);
    EXPECT_EQ(run("fuse", arguments).status, 0);
    EXPECT_NE(read("out/grey16.tif"), "of an earlier run");
}

TEST_F(FuseEachTest, SayWhatIsWrongBeforeItBegins)
{
    struct Case {
        QStringList arguments;
        int status;
        QString message;
    };
    const Case cases[] = {
        {{"--each", "A1"}, 2, "--each needs a folder for the results"},
        {{"--skip-existing", "grey16.tif"}, 2, "--skip-existing goes with --each"},
        {{"--each", "--format", "gif", "-o", "out", "A1"}, 2, "--format is 'gif'"},
        {{"--each", "-o", "out", "A1", "grey16.tif", "./A1/"}, 2, "A1 and ./A1/ would both become out/A1.png"},
        {{"--each", "-o", "A1", "A1"}, 2, "A1: is the folder for the results, too"},
        {{"--each", "-o", "grey16.tif", "A1"}, 1, "grey16.tif: cannot be created"},
        {{"--each", "-o", ".", "--format", "tif", "grey16.tif"}, 1, "./grey16.tif: is one of the images"},
    };
    const QByteArray stack = read("grey16.tif");
    for (const Case& c : cases) {
        SCOPED_TRACE(qPrintable(c.arguments.join(' ')));
        const CommandResult result = run("fuse", c.arguments);
        EXPECT_EQ(result.status, c.status);
        EXPECT_TRUE(result.errors.startsWith("tesmor fuse: " + c.message)) << qPrintable(result.errors);
        EXPECT_EQ(result.errors.count('\n'), 1) << qPrintable(result.errors);
        EXPECT_EQ(read("grey16.tif"), stack);
    }
}

TEST_F(FuseEachTest, AFullDiskEndsTheRunAndLeavesNoPart)
{
    QDir(path("")).mkdir("noise");
    QImage noise = flatImage(200, 200);
    for (int i = 0; i < 200 * 200; ++i)
        noise.setPixel(i % 200, i / 200, qRgb(i * i % 251, i * 7 % 241, i * i % 239));
    save(noise, "noise/1.png");
    const CommandResult result = runLimited("trap '' XFSZ && ulimit -f 1", "fuse",
                                            {"--each", "-o", "out", "A1", "noise", "grey16.tif", "colour.tif"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.startsWith("tesmor fuse: out/noise.png: cannot be written")) << qPrintable(result.errors);
    EXPECT_TRUE(result.errors.contains("--skip-existing"));
    EXPECT_TRUE(result.output.contains("1 merged, 1 failed (noise), 2 not begun in ")) << qPrintable(result.output);
    EXPECT_EQ(results(), QStringList({"A1.png"}));
}

// Ends as told, and leaves whole images only.
TEST_F(FuseEachTest, AnInterruptionLeavesWholeImages)
{
    QStringList stacks;
    for (int i = 0; i < 40; ++i) {
        stacks.append(QString("stack-%1").arg(i));
        QDir(path("")).mkdir(stacks.last());
        save(flatImage(300, 200), stacks.last() + "/1.png");
    }
    QProcess process;
    process.setWorkingDirectory(path(""));
    process.start(TESMOR_COMMAND, QStringList{"fuse", "--each", "-o", "out"} + stacks);
    for (const QDeadlineTimer limit(LIMIT_MS); results().size() < 3;)
        ASSERT_FALSE(limit.hasExpired() || process.waitForFinished(1));
    kill(static_cast<pid_t>(process.processId()), SIGINT);
    EXPECT_EQ(finish(process).status, 130);
    EXPECT_LT(results().size(), 40);
    for (const QString& name : results())
        EXPECT_EQ(QImage(path("out/" + name)).size(), QSize(300, 200)) << qPrintable(name);
}

} // namespace

} // namespace tesmor::test
