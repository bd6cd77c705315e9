// SPDX-License-Identifier: GPL-2.0-or-later
#include "focusing/focus_trace.h"

#include "protocol/drive_request.h"

#include <algorithm>
#include <cstdlib>

namespace tesmor::apps {

namespace {

constexpr std::size_t PROBE_MOVES = 9;
constexpr std::size_t PROBE_MOVES_WITHOUT_SAMPLE = 2;
constexpr std::size_t RETURN_MOVES = 2;

SearchPhase phaseOfMove(const std::vector<std::int64_t>& moves, std::size_t index)
{
    if (index < PROBE_MOVES)
        return SearchPhase::PROBE;
    const std::int64_t coarseStep = std::abs(moves.front());
    if (std::abs(moves[index]) > coarseStep && index + 1 < moves.size())
        return phaseOfMove(moves, index + 1);
    return std::abs(moves[index]) >= coarseStep ? SearchPhase::COARSE : SearchPhase::FINE;
}

// The last frame within (from, to).
std::optional<SeenFrame> lastFrame(const std::vector<SeenFrame>& frames, Clock::time_point from, Clock::time_point to)
{
    const auto after = std::ranges::lower_bound(frames, to, {}, &SeenFrame::time);
    if (after == frames.begin() || std::prev(after)->time <= from)
        return std::nullopt;
    return *std::prev(after);
}

} // namespace

std::optional<std::int64_t> displacementOf(const microscope::LoggedRequest& request)
{
    const auto command = parseDriveCommand(request.code, request.input);
    if (request.answer != microscope::Answer::accepted || !command || command->kind != DriveCommand::Kind::move)
        return std::nullopt;
    return command->displacement;
}

FocusTrace traceSearch(const std::vector<microscope::LoggedRequest>& requests, const std::vector<SeenFrame>& frames,
                       std::int64_t startPosition, bool complete)
{
    std::vector<std::int64_t> moves;
    for (const auto& request : requests) {
        if (const auto displacement = displacementOf(request))
            moves.push_back(*displacement);
    }
    FocusTrace trace;
    std::int64_t position = startPosition;
    for (std::size_t i = 0; i < requests.size(); ++i) {
        const auto displacement = displacementOf(requests[i]);
        if (!displacement)
            continue;
        position += *displacement;
        const std::size_t move = trace.size();
        const std::chrono::duration<double> time = requests[i].time - requests.front().time;
        TraceStep step{phaseOfMove(moves, move), *displacement, position, time.count(), {}};
        if (complete && move + RETURN_MOVES >= moves.size())
            step.phase = SearchPhase::RETURN;
        else if (move >= PROBE_MOVES_WITHOUT_SAMPLE)
            step.sample = lastFrame(frames, requests[i].time,
                                    i + 1 < requests.size() ? requests[i + 1].time : Clock::time_point::max());
        trace.push_back(step);
    }
    return trace;
}

QByteArray traceAsCsv(const FocusTrace& trace)
{
    QString text = "move,seconds,phase,displacement_steps,motor_position_steps,frame_position_steps,contrast_grey\n";
    int move = 0;
    for (const TraceStep& step : trace) {
        text += QString("%1,%2,%3,%4,%5,")
                    .arg(++move)
                    .arg(step.seconds, 0, 'f', 3)
                    .arg(phaseName(step.phase))
                    .arg(step.displacement)
                    .arg(step.position);
        if (step.sample)
            text += QString("%1,%2").arg(step.sample->position).arg(step.sample->contrast, 0, 'f', 4);
        else
            text += ",";
        text += "\n";
    }
    return text.toUtf8();
}

} // namespace tesmor::apps
