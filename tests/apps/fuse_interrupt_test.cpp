// Ctrl-C at different moments of `tesmor fuse`.
#include "command_run.h"

#include <QDeadlineTimer>

#include <csignal>
#include <functional>

namespace tesmor::test {

namespace {

class FuseInterruptTest : public CommandTest {
protected:
    void interrupt(int signal, const std::function<bool(QProcess&)>& itIsTime)
    {
        save(flatImage(1500, 1200), "a.png");
        write("fused.png", "old");
        QProcess process;
        process.setWorkingDirectory(path(""));
        process.start(TESMOR_COMMAND, QStringList{"fuse"} + QStringList(128, "a.png"));
        ASSERT_TRUE(process.waitForReadyRead(LIMIT_MS));
        for (const QDeadlineTimer limit(LIMIT_MS); !itIsTime(process);)
            ASSERT_FALSE(limit.hasExpired() || process.waitForFinished(1));
        kill(static_cast<pid_t>(process.processId()), signal);
        const CommandResult result = finish(process);
        EXPECT_EQ(result.status, 130) << qPrintable(result.output + result.errors);
        EXPECT_EQ(names(), QStringList({"a.png", "fused.png"}));
        EXPECT_EQ(read("fused.png"), "old");
    }
};

bool atOnce(QProcess&)
{
    return true;
}

bool withTheWorkerRunning(QProcess& process)
{
    return QDir(QString("/proc/%1/task").arg(process.processId())).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size() >
           1;
}

bool afterTheFirstProgress(QProcess& process)
{
    return process.peek(10'000).contains("Merging: ");
}

TEST_F(FuseInterruptTest, WhileReading)
{
    interrupt(SIGINT, atOnce);
}

TEST_F(FuseInterruptTest, WhilePlanning)
{
    interrupt(SIGTERM, withTheWorkerRunning);
}

TEST_F(FuseInterruptTest, WhileMerging)
{
    interrupt(SIGINT, afterTheFirstProgress);
}

} // namespace

} // namespace tesmor::test
