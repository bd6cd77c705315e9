# SPDX-License-Identifier: GPL-2.0-or-later
from __future__ import annotations

import math
import time
import weakref
from types import TracebackType
from typing import Any

from numpy.typing import ArrayLike

from . import _commands, _native
from ._arrays import Picture, picture
from ._errors import NoFrame

_LONGEST_MOVE_DEGREES = 1843.2  # a longer one wraps around in the drive
_CAPTURE_LIMIT_SECONDS = 5.0  # a failed capture reports nothing


class Session:
    """A microscope camera with its focus drive. One at a time in a process.

    The camera's thread calls `video` for every frame. Any other thread gives commands, which return when they are done and
    raise an exception when they fail. If several threads give commands, one proceeds and the others wait. Ctrl-C aborts a
    command and raises KeyboardInterrupt within a second; a motor move in progress is still carried out.

    `close`, or the end of the `with` block, aborts the running command and releases the drive for other programs.
    """

    _open: weakref.ref[Session] | None = None
    _closed = False

    def __init__(self) -> None:
        """Raises RuntimeError if another session is open."""
        other = Session._open() if Session._open is not None else None
        if other is not None and not other._closed:
            raise RuntimeError("another tesmor.Session is open, and a process can have only one; close it first with close()")
        Session._open = weakref.ref(self)

    def __enter__(self) -> Session:
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None) -> None:
        self.close()

    def close(self) -> None:
        """Aborts the running command and releases the drive. May be called again."""
        if not self._closed:
            self._closed = True
            _native.release()

    def video(self, frame: ArrayLike) -> None:
        """Passes on one live frame. Call it for every frame, always from the camera's thread.

        frame: array of uint8, height x width x 3 in the order red, green, blue, or height x width in grey. It is not kept. While
            no command is waiting for a frame, a call costs next to nothing. Otherwise the frame is copied, unless it is a view
            `bgr[..., ::-1]` of a contiguous array in the order blue, green, red, with a width that is a multiple of 4.

        After a motor move the very next frame is used: pass on only the camera's newest frame and drop older ones.

        Raises ValueError. Does nothing once the session is closed.
        """
        array = picture(frame, "the frame")
        if not self._closed:
            _native.video(array)

    def autofocus(self, magnification: int) -> None:
        """Drives the focus to the sharpest position near the current one, up to a few turns either way.

        magnification: of the objective: 4, 10, 20, 40, 60, 80 or 100; any other value up to 65535 gets a medium search range.

        Raises MoveFailed, Aborted, NoDrive, NoFrame, ValueError.
        """
        self._require_open()
        _require_whole("the magnification", magnification, 0, 65535)
        _commands.run(lambda: _native.start_autofocus(magnification))

    def stack(self, magnification: int, count: int, spacing: int = 1) -> list[Picture]:
        """Moves the focus by one spacing and captures the next frame, `count` times; then drives the focus back.

        The start position itself is not captured. After an error the focus stays where it stopped.

        magnification: of the objective; sets the motor steps of one unit of spacing: 4: 200, 10: 120, 20: 96, 40, 60 and
            100: 48, any other: 100. 12800 steps are one turn.
        count: number of frames, 0 to 65535.
        spacing: units from one frame to the next; negative: in reverse.

        Returns the frames in the shape in which the camera delivered them.

        Raises MoveFailed, Aborted, NoDrive, NoFrame, ValueError, MemoryError.
        """
        self._require_open()
        _require_whole("the magnification", magnification, 0, 65535)
        _require_whole("the number of frames", count, 0, 65535)
        _require_whole("the spacing", spacing, -(2**31), 2**31 - 1)
        return _commands.run(lambda: _native.start_stack(magnification, count, spacing)).take_frames()

    def move(self, degrees: float) -> None:
        """Turns the focus and returns when the motor has stopped. `stop` does not abort it.

        degrees: positive forward, less than 1843.2 (5.12 turns) either way; one motor step is 0.028125.

        The drive stays open for the next move, until another command moves the focus or the session is closed.

        Raises MoveFailed, NoDrive, ValueError.
        """
        self._require_open()
        if not (math.isfinite(degrees) and abs(degrees) < _LONGEST_MOVE_DEGREES):
            raise ValueError(f"the angle is {degrees}; it must be less than {_LONGEST_MOVE_DEGREES} degrees either way")
        _commands.run(lambda: _native.start_move(degrees))

    def capture(self) -> Picture:
        """Returns the next frame, in the shape in which the camera delivered it.

        Raises Aborted, NoFrame, MemoryError.
        """
        self._require_open()
        limit = math.inf

        def post() -> _native.Command:
            nonlocal limit
            command = _native.start_capture()
            limit = time.monotonic() + _CAPTURE_LIMIT_SECONDS
            return command

        def give_up(command: _native.Command) -> None:
            if time.monotonic() > limit:
                raise NoFrame

        return _commands.run(post, give_up).take_frames()[0]

    def stop(self) -> None:
        """Aborts another thread's command, which raises Aborted there; returns when it has ended.

        A wait for a frame ends within 0.13 seconds, a fusion after its current step, and a motor move when it is complete: after
        7.7 seconds at most, 17.7 with a drive that barely responds. A stack's return to its start and `move` are not aborted.
        The focus stays where it is.
        """
        _native.stop()

    def _require_open(self) -> None:
        if self._closed:
            raise RuntimeError("the session is closed; open another with tesmor.Session()")


def _require_whole(name: str, value: Any, low: int, high: int) -> None:
    if not hasattr(value, "__index__") or not low <= value <= high:
        raise ValueError(f"{name} is {value!r}; it must be a whole number from {low} to {high}")
