// SPDX-License-Identifier: GPL-2.0-or-later
// tesmor-drive: a drive service for a real motor.
#include "drive/backends.h"
#include "drive/dry_run.h"
#include "drive/log.h"
#include "drive/motor_list.h"
#include "drive/motor_runner.h"
#include "drive_service/drive_service.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <string_view>
#include <system_error>
#include <tesmor.h>

namespace tesmor::drive {

namespace {

using namespace std::string_view_literals;

enum Status { DONE, FAILED, WRONG_USAGE };

// Before any thread begins, which inherits it.
sigset_t blockEndSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    return signals;
}

MotorRunner::Settings runnerSettings(const Options& options, const PositionFile& file)
{
    const std::int64_t position = options.position ? *options.position : file.read().value_or(0);
    if (position < options.travel.low || position > options.travel.high)
        throw UsageError("the motor stands at " + std::to_string(position) +
                         ", outside of --limit; if it stands elsewhere, say where with --position");
    return {options.travel, options.settle, position};
}

int serve(const Options& options)
{
    const sigset_t signals = blockEndSignals();
    std::unique_ptr<Motor> motor = makeMotor(options);
    if (options.dryRun)
        motor = std::make_unique<DryRun>(std::move(motor));
    const PositionFile file(options.motorId() + (options.dryRun ? " dry run" : ""));
    const MotorRunner::Settings settings = runnerSettings(options, file);
    motor->connect();
    MotorRunner runner(*motor, file, settings);
    try {
        const service::DriveService service(runner, options.unit);
        logLine("unit " + std::to_string(options.unit) + " is " + motor->name() + ", at position " +
                std::to_string(settings.position));
        int signal = 0;
        sigwait(&signals, &signal);
        runner.rest();
    } catch (const std::system_error& error) {
        if (error.code() != std::errc::address_in_use)
            throw;
        throw MotorLost("unit " + std::to_string(options.unit) +
                        " is taken by another drive service; end that, or choose another with --unit");
    }
    return DONE;
}

int run(int argc, char** argv)
{
    const std::string first = argc > 1 ? argv[1] : "";
    if (std::any_of(argv, argv + argc, [](const char* word) { return word == "--help"sv || word == "-h"sv; })) {
        std::fputs(USAGE, stdout);
        return DONE;
    }
    if (first == "--version") {
        std::printf("tesmor-drive %s\n%s\n", TESMOR_VERSION, builtWith().c_str());
        return DONE;
    }
    if (first == "list" && argc == 2) {
        if (listMotors())
            return DONE;
        logLine("nothing here could be a motor; plug a board or a camera in, or start an INDI server");
        return FAILED;
    }
    if (first.empty())
        throw UsageError("it needs a kind of motor; see tesmor-drive --help, or try: tesmor-drive list");
    return serve(parseOptions(argc - 1, argv + 1));
}

} // namespace

} // namespace tesmor::drive

int main(int argc, char** argv)
{
    using namespace tesmor::drive;
    try {
        return run(argc, argv);
    } catch (const UsageError& error) {
        logLine(error.what());
        return WRONG_USAGE;
    } catch (const std::exception& error) {
        logLine(error.what());
        return FAILED;
    }
}
