/**
 * @file
 * tesmor: automatic focusing, manual focus moves, focus-stack capture and multi-focus image fusion for
 * microscope-camera viewers.
 *
 * @par How it works
 *   The host calls tesmor_init once. The library then owns one worker thread, which runs one command at a time.
 *   The host hands every live frame to tesmor_video, posts commands with the functions below, and hears of their
 *   outcome through the callback that it passed in. No function returns the outcome of a command.
 *
 * @par Frames and images
 *   3 bytes a pixel in the order blue, green, red. Rows follow one another, each padded to a multiple of 4 bytes:
 *   ((width * 24 + 31) / 32) * 4 bytes a row. Top-down or bottom-up makes no difference. Sizes are in pixels.
 *
 * @par Motor steps
 *   12800 steps of the focus motor are one turn of the focus, 360 degrees. A positive move is forward.
 *
 * @par Threads
 *   Every function may be called from any thread but the worker, tesmor_doing from any thread at all.
 *   A posting function (all but tesmor_init, tesmor_doing and tesmor_video) first waits, WITHOUT LIMIT, until the
 *   worker is idle; of several threads that post at once one proceeds and the others wait their turn. An abort on one
 *   thread may be overtaken by a post on another; it then waits until that command has ended by itself.
 * @par
 *   No two calls of tesmor_init and tesmor_fini may overlap. A command that another thread posts during tesmor_fini is run after
 *   the next tesmor_init; posts after it wait until then. A child process made by fork must not use the library.
 * @par
 *   Do not post from a callback. On the worker thread the post would wait for itself, for ever. On the video thread
 *   (a live frame in FrameCallback) a post that does not abort would keep the worker waiting for the very callback
 *   that posts, until the frame wait gives up after 4 seconds with TESMOR_NO_FRAME. Hand the wish to another thread instead.
 * @par
 *   A fusion uses FFTW, whose planner serves one thread at a time: a host that uses FFTW itself must not plan meanwhile.
 *
 * @par How long a command may take
 *   A frame wait ends within 4.2 seconds, a motor move within 7.7 seconds (normally as soon as the motor stops). On
 *   Linux a drive service has 1 second more for each answer; one that uses it up makes that 17.7 seconds a move.
 *   tesmor_stop, tesmor_cancelif and tesmor_fini interrupt a frame wait within 128 milliseconds and a fusion at the
 *   end of the step in hand (planning, one round of transforms, or the last composition); they never interrupt a
 *   motor move.
 *
 * @par Ownership
 *   The host owns all memory that it passes in. Live frames are read only during tesmor_video. The pixels of the
 *   fusion's input images and its output buffer must stay valid and unchanged until the fusion's last callback.
 *   A context is never looked at, only handed back. It must stay valid until the command has ended and, after an abort
 *   or a time-out, until the call of tesmor_video that was under way then has returned.
 *
 * @par Checks
 *   No argument is checked, and nothing is logged. A null callback is allowed where this header says so and nowhere
 *   else. A callback may throw a C++ exception: on the worker it ends the command, on the video thread it passes
 *   through tesmor_video to the caller.
 */
#ifndef TESMOR_H
#define TESMOR_H

#include <stdint.h>

/** The version of this header, by the rules of semantic versioning; the library's file name carries its own. */
#define TESMOR_VERSION "0.1.0"
#define TESMOR_VERSION_MAJOR 0 /**< first number of TESMOR_VERSION */
#define TESMOR_VERSION_MINOR 1 /**< second number */
#define TESMOR_VERSION_PATCH 0 /**< third number */

/** @cond */
/* TESMOR_STATIC: for code that is linked into one module with the library's own objects. */
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

/** Result codes. They reach the host through the callbacks only. */
enum {
    /** A focus stack is complete and the focus is back where the capture started. */
    TESMOR_STACK_DONE = 1,
    /** The command is complete; or: one captured frame, one slice. */
    TESMOR_SUCCESS = 0,
    /** The focus motor refused a move five times, or five waits of 1.5 seconds for its acknowledgement were in vain.
       The motor may or may not have moved. On Linux also: another program has the drive, or its service has gone. */
    TESMOR_MOVE_FAILED = -1,
    /** The fusion could not get its working memory, or the images are smaller than 2 x 2 pixels or have more than
       2^31 - 1 bytes. */
    TESMOR_NO_MEMORY = -2,
    /** tesmor_stop, tesmor_cancelif or tesmor_fini ended the command. The focus stays where it is. */
    TESMOR_ABORTED = -3,
    /** No focus drive: no camera with a focus motor is connected, its driver is not there, or (on Windows) another
       program has it. */
    TESMOR_NO_DRIVE = -4,
    /** No frame came through tesmor_video within 4 seconds, or the host's frame callback took longer than that.
       The focus stays where it is. */
    TESMOR_NO_FRAME = -5
};

/**
 * Ends an autofocus or a manual move. Called once a command, on the worker thread.
 * tesmor_doing still returns 1 inside it. It must not post.
 * @param context the host's own pointer
 * @param result a result code
 */
typedef void (*DoneCallback)(void* context, int32_t result);

/**
 * Carries frames, reports and the fused image. Which of them a call is:
 * - image not null, result 0, during a stack or a capture: a live frame with its size, the very pointer that the host
 *   gave to tesmor_video, on the thread that called tesmor_video. Copy what is to be kept.
 * - image null, width and height 0, during a stack: a result code of the stack (TESMOR_SUCCESS only with notifyOnly),
 *   on the worker thread.
 * - image null, width and height 0, during a fusion: progress in percent, 0 to 100, on the worker thread.
 * - image = the fusion's output, with its size and the fusion's result code: the fusion has ended, on the worker thread.
 *   Unless result is TESMOR_SUCCESS the output is untouched.
 *
 * It must not post. After an abort or a time-out a live frame may still be in this callback, on the video thread, while
 * the report or calls of later commands arrive; at no other time do two calls overlap.
 * @param image a frame, the fused image, or null
 * @param width,height its size, or 0
 * @param context the host's own pointer
 * @param result a result code, or the fusion's progress in percent
 */
typedef void (*FrameCallback)(const uint8_t* image, int32_t width, int32_t height, void* context, int32_t result);

/**
 * Starts the worker thread. Call it once, before the first command; again only after tesmor_fini. Does not block.
 * @return 1, or 0 when the system could not create the thread.
 */
TESMOR_API int32_t tesmor_init(void);

/**
 * Aborts the running command, ends the worker thread and waits for it without limit; the focus drive is closed.
 * The only function that gives back what tesmor_init took. Never from a callback.
 * Call it once for each tesmor_init, never without a worker: it would block for ever where a command is still waiting,
 * and otherwise end the next worker as soon as that starts.
 * @return nonzero when the last call to the system succeeded.
 */
TESMOR_API int32_t tesmor_fini(void);

/**
 * Hands one live frame to the library. Call it for every frame, always from the same thread; a call that the worker
 * does not wait for costs one test. A frame of an autofocus is measured (at most a quarter of its area is read), a
 * frame of a stack or a capture is passed to FrameCallback before the call returns.
 * @param image the frame; read only, and no longer than the call
 * @param width,height its size
 */
TESMOR_API void tesmor_video(const uint8_t* image, int32_t width, int32_t height);

/**
 * Tells whether a command runs. Never blocks. A command that was posted but not yet begun does not count.
 * @return 1 while an autofocus, a manual move, a stack, a capture or a fusion runs, else 0
 */
TESMOR_API int32_t tesmor_doing(void);

/**
 * @name Posting functions
 * Each waits without limit until the worker is idle, hands its command over and returns, nonzero when the worker could
 * be woken. tesmor_stop and tesmor_cancelif first abort the running command; the others wait until it has ended by
 * itself.
 * @{
 */

/**
 * Autofocus: drives the focus to the sharpest position near the present one, moving up to a few turns either way.
 * @param magnification of the objective: 4, 10, 20, 40, 60, 80 or 100; any other value gets a middling search range
 * @param doneCallback must not be null
 * @param context handed to every call of the callback
 * @return nonzero when the worker could be woken
 * @par Results
 *   TESMOR_SUCCESS, TESMOR_MOVE_FAILED, TESMOR_ABORTED, TESMOR_NO_DRIVE, TESMOR_NO_FRAME.
 */
TESMOR_API int32_t tesmor_start(uint16_t magnification, DoneCallback doneCallback, void* context);

/**
 * Aborts whatever runs. The aborted command reports TESMOR_ABORTED through its own callback before this returns; a
 * capture says nothing, and a command past its last look for an abort reports its result as always.
 * @return nonzero when the worker could be woken
 */
TESMOR_API int32_t tesmor_stop(void);

/**
 * Focus stack: sliceCount times, moves the focus by one spacing and hands the next live frame to frameCallback; then
 * drives the focus back to where it was and reports TESMOR_STACK_DONE. The start position itself is not captured.
 * After a failure or an abort the focus stays where the run stopped.
 * @param magnification of the objective; sets the motor steps of one spacing unit: 4: 200, 10: 120, 20: 96,
 *   40, 60 and 100: 48, any other: 100
 * @param sliceCount number of slices, 0 to 65535
 * @param sliceSpacing spacing units between two slices; negative: the stack runs in reverse
 * @param frameCallback must not be null
 * @param context handed to every call of the callback
 * @param notifyOnly 0: deliver a frame for each slice; otherwise: no frame is waited for, frameCallback is called with
 *   a null image and TESMOR_SUCCESS after each move, and the next move waits until it returns. Such a
 *   run cannot be aborted.
 * @return nonzero when the worker could be woken
 * @par Results
 *   TESMOR_STACK_DONE, TESMOR_MOVE_FAILED, TESMOR_ABORTED, TESMOR_NO_DRIVE, TESMOR_NO_FRAME; exactly one.
 */
TESMOR_API int32_t tesmor_startif(uint16_t magnification, uint16_t sliceCount, int32_t sliceSpacing,
                                  FrameCallback frameCallback, void* context, uint32_t notifyOnly);

/**
 * Aborts whatever runs, as tesmor_stop, and also clears the slice count and spacing that the last stack left behind.
 * @return nonzero when the worker could be woken
 */
TESMOR_API int32_t tesmor_cancelif(void);

/**
 * Hands the next live frame to frameCallback. When none comes within 4 seconds, or the capture is aborted, the host
 * hears nothing: tesmor_doing falls back to 0.
 * @param frameCallback must not be null
 * @param context handed to every call of the callback
 * @return nonzero when the worker could be woken
 */
TESMOR_API int32_t tesmor_capture(FrameCallback frameCallback, void* context);

/**
 * Fusion: merges images of one field at different focus into one that is sharp throughout.
 * Takes about 64 bytes of memory a pixel and 8 MB beside the images, however many there are, and does not start unless
 * twice as much can be had. The worker runs at the lowest priority meanwhile from which the system
 * lets it come back; on Linux, for an ordinary user, that is hardly lower than before.
 * @param images count pointers to images of width x height; the array itself is copied, the pixels are not
 * @param count 0 to 128; a larger count is the host's fault and overruns the library's memory
 * @param width,height of every image and of output, at least 2 x 2
 * @param output the fused image is written here, at the very end; padding bytes are left alone. It may not overlap
 *   an input image. Stays untouched on failure.
 * @param frameCallback must not be null; gets the progress and, last, the output with the result
 * @param context handed to every call of the callback
 * @return nonzero when the worker could be woken
 * @par Results
 *   TESMOR_SUCCESS, TESMOR_NO_MEMORY, TESMOR_ABORTED.
 */
TESMOR_API int32_t tesmor_fusion(const uint8_t* const* images, uint64_t count, uint32_t width, uint32_t height,
                                 uint8_t* output, FrameCallback frameCallback, void* context);

/**
 * Manual move: turns the focus by an angle and reports when the motor has stopped. The drive stays open for the next
 * manual move, until tesmor_reset or another command that moves the focus. Cannot be aborted.
 * @param angle degrees, positive forward; one motor step is 0.028125 degrees. Stay under 1843.2 degrees (5.12
 *   turns) either way: the step count is sent in 16 bits, and what is above wraps round.
 *   Beyond 60 million degrees the move is undefined
 * @param doneCallback may be null
 * @param context handed to every call of the callback
 * @return nonzero when the worker could be woken
 * @par Results
 *   TESMOR_SUCCESS, TESMOR_MOVE_FAILED, TESMOR_NO_DRIVE.
 */
TESMOR_API int32_t tesmor_manual(double angle, DoneCallback doneCallback, void* context);

/**
 * Closes the focus drive that a manual move has left open, so that another program can have it. No callback.
 * @return nonzero when the worker could be woken
 */
TESMOR_API int32_t tesmor_reset(void);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
