/* SPDX-License-Identifier: GPL-2.0-or-later */
/**
 * @file
 * tesmor: automatic focusing, manual focus moves, focus-stack capture and multi-focus image fusion for
 * microscope-camera viewers.
 *
 * @par How it works
 *   The host calls tesmor_init once. From then on the library owns one worker thread, which runs one command at a time.
 *   The host passes every live frame to tesmor_video, posts commands with the functions below, and learns their outcome
 *   through the callback it passed in. No function returns the outcome of a command.
 *
 * @par Frames and images
 *   3 bytes per pixel in the order blue, green, red. Rows follow one another, each padded to a multiple of 4 bytes:
 *   ((width * 24 + 31) / 32) * 4 bytes per row. Top-down or bottom-up makes no difference. Sizes are in pixels.
 *
 * @par Motor steps
 *   12800 steps of the focus motor are one turn of the focus, 360 degrees. A positive move is forward.
 *
 * @par Threads
 *   Every function may be called from any thread except the worker; tesmor_doing may be called there, too.
 *   A posting function (all but tesmor_init, tesmor_doing and tesmor_video) first waits, WITHOUT LIMIT, until the
 *   worker is idle. When several threads post at once, one proceeds and the others wait their turn. An abort can be
 *   overtaken by a post from another thread; it then waits for that command to end on its own.
 * @par
 *   Calls of tesmor_init and tesmor_fini must not overlap. A command that another thread posts during tesmor_fini runs
 *   after the next tesmor_init, and further posts wait until then. A child process created by fork must not use the
 *   library.
 * @par
 *   Never post from a callback. On the worker thread the post would wait for itself, forever. On the video thread
 *   (a live frame in FrameCallback), a post that does not abort would keep the worker waiting for the very callback
 *   that is posting, until the frame wait gives up after 4 seconds with TESMOR_NO_FRAME. Signal another thread instead,
 *   and post from there.
 * @par
 *   A fusion uses FFTW, whose planner is not thread-safe: a host that uses FFTW itself must not create or destroy plans
 *   while a fusion is running.
 *
 * @par How long a command may take
 *   A frame wait ends within 4.2 seconds, a motor move within 7.7 seconds (normally as soon as the motor stops). On
 *   Linux, a drive service has another second for each reply; one that always takes it makes a move 17.7 seconds long.
 *   tesmor_stop, tesmor_cancelif and tesmor_fini interrupt a frame wait within 128 milliseconds, and a fusion at the
 *   end of its current step (planning, one round of transforms, or the final composition); they never interrupt a
 *   motor move.
 *
 * @par Ownership
 *   The host owns all memory that it passes in. Live frames are read only during tesmor_video. The pixels of the
 *   fusion's input images and its output buffer must stay valid and unchanged until the fusion's last callback.
 *   The library never dereferences a context, it only passes it on. A context must stay valid until the command has
 *   ended and, after an abort or a timeout, until the call of tesmor_video that was then in progress has returned.
 *
 * @par Checks
 *   Arguments are not checked, and nothing is logged. A callback may be null only where this header says so. In a
 *   host that was built with the same compiler family as the library, a callback may throw a C++ exception: on the
 *   worker thread it ends the command, on the video thread it passes through tesmor_video to the caller. Nothing else
 *   was shown: with any other compiler, let no exception leave a callback.
 */
#ifndef TESMOR_H
#define TESMOR_H

#include <stdint.h>

/** The version of this header, following semantic versioning; the library's file name carries its own. */
#define TESMOR_VERSION "0.1.0"
#define TESMOR_VERSION_MAJOR 0 /**< first number of TESMOR_VERSION */
#define TESMOR_VERSION_MINOR 1 /**< second number */
#define TESMOR_VERSION_PATCH 0 /**< third number */

/** @cond */
/* TESMOR_STATIC: for code linked into the same module as the library's own objects. */
#if defined(_WIN32) && !defined(TESMOR_STATIC)
#define TESMOR_API __declspec(dllimport)
#elif defined(__GNUC__) && !defined(_WIN32)
#define TESMOR_API __attribute__((visibility("default")))
#else
#define TESMOR_API
#endif
/** @endcond */

#ifdef __cplusplus
extern "C" {
#endif

/** Result codes. They reach the host only through the callbacks. */
enum {
    /** A focus stack is complete, and the focus is back where the capture started. */
    TESMOR_STACK_DONE = 1,
    /** The command is complete; or this is one captured frame, or one slice. */
    TESMOR_SUCCESS = 0,
    /** The focus motor refused a move five times, or did not acknowledge it in five waits of 1.5 seconds. The motor may
       or may not have moved. On Linux also: another program is using the drive, or its service hangs or has ended. */
    TESMOR_MOVE_FAILED = -1,
    /** The fusion could not get its working memory, or the images are smaller than 2 x 2 pixels or larger than
       2^31 - 1 bytes. */
    TESMOR_NO_MEMORY = -2,
    /** tesmor_stop, tesmor_cancelif or tesmor_fini ended the command. The focus stays where it is. */
    TESMOR_ABORTED = -3,
    /** No focus drive: no camera with a focus motor is connected, its driver is missing, or (on Windows) another
       program is using it. */
    TESMOR_NO_DRIVE = -4,
    /** tesmor_video received no frame within 4 seconds, or the host's frame callback took longer than that.
       The focus stays where it is. */
    TESMOR_NO_FRAME = -5
};

/**
 * Reports the end of an autofocus or a manual move. Called once per command, on the worker thread, where tesmor_doing
 * still returns 1. It must not post.
 * @param context the host's own pointer
 * @param result a result code
 */
typedef void (*DoneCallback)(void* context, int32_t result);

/**
 * Receives frames, reports and the fused image. The arguments tell which:
 * - image not null, result 0, during a stack or a capture: a live frame with its size, on the thread that called
 *   tesmor_video, and with the same pointer that it passed. Copy what you want to keep.
 * - image null, width and height 0, during a stack: a result code of the stack (TESMOR_SUCCESS only with notifyOnly),
 *   on the worker thread.
 * - image null, width and height 0, during a fusion: progress in percent, 0 to 100, on the worker thread.
 * - image = the fusion's output, with its size and the fusion's result code: on the worker thread, at the fusion's end.
 *   Unless result is TESMOR_SUCCESS, the output is untouched.
 *
 * It must not post. A fusion reports its progress at the worker's lowered priority: do not hold a lock there that a
 * thread of normal priority waits for. After an abort or a timeout, a live frame may still be in this callback on the
 * video thread while the report, or calls for later commands, arrive; at no other time do two calls overlap.
 * @param image a frame, the fused image, or null
 * @param width,height its size, or 0
 * @param context the host's own pointer
 * @param result a result code, or the fusion's progress in percent
 */
typedef void (*FrameCallback)(const uint8_t* image, int32_t width, int32_t height, void* context, int32_t result);

/**
 * Starts the worker thread. Call it once, before the first command, and again only after tesmor_fini. Does not block.
 * @return 1, or 0 when the system could not create the thread.
 * @note On Linux the worker takes no signals, except for its own faults and for profilers. Inside a callback it has the
 *   signal mask of the thread that called this function, and so has what the callback starts.
 */
TESMOR_API int32_t tesmor_init(void);

/**
 * Aborts the running command, ends the worker thread, waits for it without limit, and closes the focus drive. The only
 * function that releases what tesmor_init acquired. Never call it from a callback.
 * Call it once for each tesmor_init and never without a worker: it would block forever if a command is still waiting,
 * and otherwise end the next worker as soon as that starts.
 * @return nonzero when the last call to the system succeeded.
 */
TESMOR_API int32_t tesmor_fini(void);

/**
 * Passes one live frame to the library. Call it for every frame, always from the same thread; while the worker is not
 * waiting for a frame, a call costs one test. During an autofocus the frame is measured (at most a quarter of its area
 * is read); during a stack or a capture it is passed to FrameCallback before the call returns.
 * @param image the frame; only read, and only during the call
 * @param width,height its size
 */
TESMOR_API void tesmor_video(const uint8_t* image, int32_t width, int32_t height);

/**
 * Tells whether a command is running. Never blocks. A command that is posted but has not begun does not count.
 * @return 1 while an autofocus, a manual move, a stack, a capture or a fusion is running, else 0
 */
TESMOR_API int32_t tesmor_doing(void);

/**
 * @name Posting functions
 * Each waits without limit until the worker is idle, hands over its command and returns, nonzero if the worker could be
 * woken. tesmor_stop and tesmor_cancelif first abort the running command; the others wait for it to end on its own.
 * @{
 */

/**
 * Autofocus: drives the focus to the sharpest position near the current one, moving up to a few turns either way.
 * @param magnification of the objective: 4, 10, 20, 40, 60, 80 or 100; any other value gets a medium search range
 * @param doneCallback must not be null
 * @param context passed to every call of the callback
 * @return nonzero if the worker could be woken
 * @par Results
 *   TESMOR_SUCCESS, TESMOR_MOVE_FAILED, TESMOR_ABORTED, TESMOR_NO_DRIVE, TESMOR_NO_FRAME.
 */
TESMOR_API int32_t tesmor_start(uint16_t magnification, DoneCallback doneCallback, void* context);

/**
 * Aborts the running command. It reports TESMOR_ABORTED through its own callback before this returns; a capture reports
 * nothing, and a command past its last check for an abort reports its result as usual.
 * @return nonzero if the worker could be woken
 */
TESMOR_API int32_t tesmor_stop(void);

/**
 * Focus stack: sliceCount times, moves the focus by one spacing and passes the next live frame to frameCallback; then
 * drives the focus back to where it was and reports TESMOR_STACK_DONE. The start position itself is not captured.
 * After a failure or an abort, the focus stays where it stopped.
 * @param magnification of the objective; sets the motor steps of one spacing unit: 4: 200, 10: 120, 20: 96,
 *   40, 60 and 100: 48, any other: 100
 * @param sliceCount number of slices, 0 to 65535
 * @param sliceSpacing spacing units from one slice to the next; if negative, the stack runs in reverse
 * @param frameCallback must not be null
 * @param context passed to every call of the callback
 * @param notifyOnly 0: deliver a frame for each slice. Otherwise: wait for no frame, call frameCallback with a null
 *   image and TESMOR_SUCCESS after each move, and start the next move when it returns. Such a stack cannot be
 *   aborted.
 * @return nonzero if the worker could be woken
 * @par Results
 *   TESMOR_STACK_DONE, TESMOR_MOVE_FAILED, TESMOR_ABORTED, TESMOR_NO_DRIVE, TESMOR_NO_FRAME; exactly one.
 */
TESMOR_API int32_t tesmor_startif(uint16_t magnification, uint16_t sliceCount, int32_t sliceSpacing,
                                  FrameCallback frameCallback, void* context, uint32_t notifyOnly);

/**
 * Aborts the running command, like tesmor_stop, and also clears the slice count and spacing that the last stack left.
 * @return nonzero if the worker could be woken
 */
TESMOR_API int32_t tesmor_cancelif(void);

/**
 * Passes the next live frame to frameCallback. If none arrives within 4 seconds, or the capture is aborted, nothing is
 * called: tesmor_doing just returns to 0.
 * @param frameCallback must not be null
 * @param context passed to every call of the callback
 * @return nonzero if the worker could be woken
 */
TESMOR_API int32_t tesmor_capture(FrameCallback frameCallback, void* context);

/**
 * Fusion: merges images of one field, taken at different focus positions, into one that is sharp throughout.
 * Takes about 32 bytes of memory per pixel plus 2 MB in addition to the images, however many there are. Meanwhile the
 * worker runs at the lowest priority from which the system lets it return; on Linux, for an ordinary user, that is
 * hardly lower than before.
 * @param images count pointers to images of width x height; the array itself is copied, the pixels are not
 * @param count 0 to 128; more is an error of the host and overruns the library's memory
 * @param width,height of every image and of output, at least 2 x 2
 * @param output receives the fused image, at the very end; padding bytes are left alone. It must not overlap an input
 *   image. Stays untouched on failure.
 * @param frameCallback must not be null; receives the progress and, last, the output with the result
 * @param context passed to every call of the callback
 * @return nonzero if the worker could be woken
 * @par Results
 *   TESMOR_SUCCESS, TESMOR_NO_MEMORY, TESMOR_ABORTED.
 */
TESMOR_API int32_t tesmor_fusion(const uint8_t* const* images, uint64_t count, uint32_t width, uint32_t height,
                                 uint8_t* output, FrameCallback frameCallback, void* context);

/**
 * Manual move: turns the focus by an angle and reports when the motor has stopped. The drive stays open for the next
 * manual move, until tesmor_reset or another command that moves the focus. Cannot be aborted.
 * @param angle degrees, positive forward; one motor step is 0.028125 degrees. Stay below 1843.2 degrees (5.12 turns)
 *   either way: the step count is sent in 16 bits and wraps around beyond that. Beyond 60 million degrees the move is
 *   undefined.
 * @param doneCallback may be null
 * @param context passed to every call of the callback
 * @return nonzero if the worker could be woken
 * @par Results
 *   TESMOR_SUCCESS, TESMOR_MOVE_FAILED, TESMOR_NO_DRIVE.
 */
TESMOR_API int32_t tesmor_manual(double angle, DoneCallback doneCallback, void* context);

/**
 * Closes the focus drive that a manual move has left open, so that another program can use it. No callback.
 * @return nonzero if the worker could be woken
 */
TESMOR_API int32_t tesmor_reset(void);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
