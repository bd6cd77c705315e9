// SPDX-License-Identifier: GPL-2.0-or-later
#include "command_run.h"

#include <QCoreApplication>

namespace tesmor::test {

void CommandTest::SetUp()
{
    static int argumentCount = 0;
    static const QCoreApplication application(argumentCount, nullptr); // for the formats of images
    ASSERT_TRUE(folder_.isValid() && cache_.isValid());
    qputenv("XDG_CACHE_HOME", cachePath("").toLocal8Bit());
}

QString CommandTest::path(const QString& name) const
{
    return folder_.filePath(name);
}

QString CommandTest::cachePath(const QString& name) const
{
    return cache_.filePath(name);
}

QStringList CommandTest::names() const
{
    return QDir(folder_.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

void CommandTest::write(const QString& name, const QByteArray& bytes) const
{
    QFile file(path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

QByteArray CommandTest::read(const QString& name) const
{
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

void CommandTest::save(const QImage& image, const QString& name) const
{
    ASSERT_TRUE(image.save(path(name), nullptr, 100)) << qPrintable(name);
}

CommandResult CommandTest::run(const QString& subcommand, const QStringList& arguments) const
{
    QProcess process;
    process.setWorkingDirectory(folder_.path());
    process.start(TESMOR_COMMAND, QStringList{subcommand} + arguments);
    return finish(process);
}

CommandResult CommandTest::runLimited(const QString& limits, const QString& subcommand,
                                      const QStringList& arguments) const
{
    QProcess process;
    process.setWorkingDirectory(folder_.path());
    process.start("bash", QStringList{"-c", limits + " && exec \"$0\" \"$@\"", TESMOR_COMMAND, subcommand} + arguments);
    return finish(process);
}

CommandResult CommandTest::finish(QProcess& process)
{
    const bool ended = process.waitForFinished(LIMIT_MS) && process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, process.readAllStandardOutput(), process.readAllStandardError()};
}

QImage flatImage(int width, int height, QRgb colour)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

} // namespace tesmor::test
