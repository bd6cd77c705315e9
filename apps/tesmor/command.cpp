// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/command.h"

#include "cameras/camera_list.h"
#include "terminal/errors.h"
#include "terminal/interrupt.h"
#include "tesmor.h"
#include "tesmor/fuse_alignment.h"
#include "tesmor/subcommands.h"

#include <QtGlobal>

#include <cstdio>
#include <new>
#include <string>

namespace tesmor::apps {

namespace {

struct Subcommand {
    const char* name;
    const char* summary; // one line for `tesmor --help`
    int (*run)(int argc, char** argv);
};

constexpr Subcommand SUBCOMMANDS[] = {
    {"cameras", "list the cameras", runCameras},
    {"demo", "run a complete session on a simulated microscope", runDemo},
    {"devices", "list the focus drives", runDevices},
    {"focus", "focus a camera's image with a focus drive", runFocus},
    {"fuse", "merge a focus stack into one image that is sharp throughout", runFuse},
    {"microscope", "simulate a microscope, with a focus drive and live frames", runMicroscope},
    {"move", "turn the focus by hand", runMove},
    {"snap", "take one image with a camera", runSnap},
    {"stack", "capture a focus stack with a camera and a focus drive", runStack},
};

constexpr const char* USAGE = "Usage: tesmor SUBCOMMAND [ARGUMENT]...\n"
                              "       tesmor SUBCOMMAND --help\n"
                              "       tesmor --version\n";

void printHelp()
{
    std::printf("%s\nAutofocus, focus stacks and multi-focus image fusion for microscope cameras.\n\nSubcommands:\n",
                USAGE);
    for (const Subcommand& subcommand : SUBCOMMANDS)
        std::printf("  %-11s %s\n", subcommand.name, subcommand.summary);
    std::printf("\nExample: merge five images taken at different focus positions\n"
                "  tesmor fuse -o sharp.png slice-1.png slice-2.png slice-3.png slice-4.png slice-5.png\n");
}

const Subcommand* findSubcommand(const std::string& name)
{
    for (const Subcommand& subcommand : SUBCOMMANDS) {
        if (name == subcommand.name)
            return &subcommand;
    }
    return nullptr;
}

int runSubcommand(const Subcommand& subcommand, int argc, char** argv)
{
    std::string title = std::string("tesmor ") + subcommand.name;
    argv[0] = title.data();
    installInterruptHandler();
    try {
        return subcommand.run(argc, argv);
    } catch (const UsageError& error) {
        std::fprintf(stderr, "%s: %s; see %s --help\n", title.c_str(), error.what(), title.c_str());
        return STATUS_USAGE;
    } catch (const UserError& error) {
        std::fprintf(stderr, "%s: %s\n", title.c_str(), error.what());
    } catch (const Interrupted&) {
        std::fprintf(stderr, "%s: interrupted\n", title.c_str());
        return STATUS_INTERRUPTED;
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "%s: not enough memory; close other programs\n", title.c_str());
    }
    return STATUS_FAILED;
}

// Keeps Qt's remarks on a file or on the locale out of our own output.
void dropMessage(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(message));
}

} // namespace

int runCommand(int argc, char** argv)
{
    qInstallMessageHandler(dropMessage);
    const std::string name = argc > 1 ? argv[1] : "";
    if (name == "--help" || name == "-h") {
        printHelp();
        return STATUS_DONE;
    }
    if (name == "--version") {
        std::printf("tesmor %s\nCameras: %s\nAlignment: %s\n", TESMOR_VERSION, cameras::kindsOfCameras().c_str(),
                    alignmentText().c_str());
        return STATUS_DONE;
    }
    if (const Subcommand* subcommand = findSubcommand(name))
        return runSubcommand(*subcommand, argc - 1, argv + 1);
    if (name.empty())
        std::fprintf(stderr, "%s", USAGE);
    else
        std::fprintf(stderr, "tesmor: unknown subcommand '%s'; see tesmor --help\n", name.c_str());
    return STATUS_USAGE;
}

} // namespace tesmor::apps
