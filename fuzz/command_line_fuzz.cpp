// SPDX-License-Identifier: GPL-2.0-or-later
// Any arguments of `tesmor fuse` and `tesmor move`, in a folder of its own with two small images and no drive.
// Input: the subcommand and its arguments, one a line; a slash becomes an x, so that nothing outside the folder is
// touched.
#include "fuzz/fuzz_input.h"
#include "terminal/errors.h"
#include "tesmor/subcommands.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include <cstdio>
#include <string>
#include <vector>

using namespace tesmor;

namespace {

void makeFolder()
{
    static const QTemporaryDir folder;
    const QString inner = folder.filePath("inner"); // so that even ".." is ours
    fuzz::require(QDir().mkpath(inner) && chdir(qPrintable(inner)) == 0, "a folder of our own");
    qputenv("XDG_CACHE_HOME", folder.path().toLocal8Bit());
    QImage image(4, 3, QImage::Format_BGR888);
    image.fill(Qt::gray);
    fuzz::require(image.save("a.png") && image.save("b.png"), "two images");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool hasFolder = (makeFolder(), std::freopen("/dev/null", "w", stdout) != nullptr);
    fuzz::require(hasFolder, "a folder, and no output");
    std::vector<std::string> arguments(1);
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == '\n')
            arguments.emplace_back();
        else if (data[i] != 0)
            arguments.back() += data[i] == '/' ? 'x' : static_cast<char>(data[i]);
    }
    const auto run = arguments.front() == "move" ? apps::runMove : apps::runFuse;
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    try {
        run(static_cast<int>(arguments.size()), argv.data());
    } catch (const apps::UserError&) { // a usage error is one, too
    }
    return 0;
}
