// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/subcommands.h"

#include "terminal/errors.h"
#include "terminal/text.h"
#include "tesmor/demo/demo_folder.h"
#include "tesmor/demo/demo_instrument.h"
#include "tesmor/demo/demo_options.h"
#include "tesmor/demo/demo_pictures.h"
#include "tesmor/demo/demo_run.h"
#include "tesmor/demo/demo_summary.h"

#include <QApplication>

namespace tesmor::apps {

namespace {

int demonstrate(const DemoOptions& options)
{
    const LiveLine::Style style = LiveLine::styleOfOutput(false);
    DemoInstrument instrument(options, style);
    const DemoFolder folder(options.output, options.planes);
    printLine(instrument.introduction(options));
    const DemoRun run = runSession(options, instrument, style);

    printLine("Writing the images.");
    const QImage truth = instrument.truth();
    const DemoSummary summary = summarise(run, instrument, truth);
    folder.writeTrace(traceAsCsv(run.trace));
    folder.writeSlices(run.slices);
    folder.writePicture("fused.png", run.fused);
    folder.writePicture("focus-curve.png", drawFocusCurve(run, summary, options.magnification));
    folder.writePicture("comparison.png", drawComparison(run, summary, truth));

    printLine("\n" + summaryText(summary));
    printLine(QString("The images are in %1\n"
                      "  focus-curve.png   the search (figures in focus-trace.csv)\n"
                      "  slice-01.png ...  the stack\n"
                      "  fused.png         the result\n"
                      "  comparison.png    start, best slice and result side by side")
                  .arg(folder.path()));
    return STATUS_DONE;
}

} // namespace

int runDemo(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen"); // charts are drawn, but no window is opened
    const QApplication application(argc, argv);
    const auto options = parseDemoOptions(QCoreApplication::arguments());
    return options ? demonstrate(*options) : STATUS_DONE;
}

} // namespace tesmor::apps
