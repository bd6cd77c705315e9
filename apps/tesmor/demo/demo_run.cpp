// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/demo/demo_run.h"

#include "terminal/text.h"
#include "tesmor/demo/stack_plan.h"

#include <new>

namespace tesmor::apps {

DemoRun runSession(const DemoOptions& options, DemoInstrument& instrument, LiveLine::Style style)
{
    const microscope::VirtualMicroscope& microscope = instrument.microscope();
    DemoSession session(instrument.microscope(), style);
    DemoRun run;
    run.start = session.firstImage();
    if (run.start.isNull())
        throw std::bad_alloc();
    run.trace = session.focus();
    run.chosenPosition = microscope.position();
    printLine(QString("Focused at position %1.").arg(run.chosenPosition));

    const StackPlan plan = planStack(options, microscope, instrument.planeCount());
    session.moveTo(plan.firstPosition - plan.stepsPerSlice);
    printLine(QString("Moved to position %1, one slice before the first.").arg(microscope.position()));
    run.slices = session.captureStack(plan.slices, plan.spacing);
    printLine(QString("Captured %1 slices, %2 motor steps apart.").arg(run.slices.size()).arg(plan.stepsPerSlice));
    run.fused = session.merge(run.slices);
    printLine("Merged them.");
    run.costs = session.costs();
    return run;
}

} // namespace tesmor::apps
