// SPDX-License-Identifier: GPL-2.0-or-later
// Runs the command `tesmor` in a folder of its own.
#pragma once

#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace tesmor::test {

constexpr int LIMIT_MS =
    280'000; // far above what a run takes: a fusion, at idle priority, gives way to whatever else runs

struct CommandResult {
    int status; // -1 when it crashed or did not end
    QString output;
    QString errors;
};

class CommandTest : public testing::Test {
protected:
    void SetUp() override;

    QString path(const QString& name) const;
    QString cachePath(const QString& name) const; // in the user's cache folder, which is ours
    QStringList names() const;                    // of all files in the folder, hidden ones too

    void write(const QString& name, const QByteArray& bytes) const;
    QByteArray read(const QString& name) const;

    // In the format of the name.
    void save(const QImage& image, const QString& name) const;

    // Relative names in the arguments are names in the folder.
    CommandResult run(const QString& subcommand, const QStringList& arguments) const;

    // With bash's limits set first, as in "ulimit -f 1".
    CommandResult runLimited(const QString& limits, const QString& subcommand, const QStringList& arguments) const;

    static CommandResult finish(QProcess& process);

private:
    QTemporaryDir folder_;
    QTemporaryDir cache_;
};

QImage flatImage(int width, int height, QRgb colour = qRgb(150, 100, 10));

} // namespace tesmor::test
