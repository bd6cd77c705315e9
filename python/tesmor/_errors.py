# SPDX-License-Identifier: GPL-2.0-or-later
"""Exceptions for the library's result codes."""

from __future__ import annotations


class Error(Exception):
    """A command failed. The focus stays where it stopped, and the next command starts from there."""

    words = "The command failed."

    def __init__(self, words: str | None = None) -> None:
        super().__init__(words or self.words)


class MoveFailed(Error):
    """The motor refused the move or never reported its end; or another program is using it, or its service has ended."""

    words = (
        "The focus motor does not respond. Check the camera's cable, close other programs that use the motor, and try again."
    )


class Aborted(Error):
    """The command was ended by `Session.stop` or by the end of the session."""

    words = "Cancelled. The focus stays where it stopped."


class NoDrive(Error):
    """There is no focus drive."""

    words = "No focus motor was found. Connect a camera that has one, and check that its driver is running."


class NoFrame(Error):
    """`Session.video` received no frame within 4 seconds."""

    words = "The camera is not sending images. Start its live view and try again."


_SUCCESS, _STACK_DONE = 0, 1
_ERRORS = {-1: MoveFailed, -3: Aborted, -4: NoDrive, -5: NoFrame}
_NO_MEMORY = -2


def check(result: int) -> None:
    """Raises the exception for `result`, if it is a failure."""
    if result == _NO_MEMORY:
        raise MemoryError(
            "There is not enough memory to merge images of this size: it takes about 64 bytes per pixel plus 8 MB in addition to "
            "the images, and twice as much to start. Close other programs, or choose a smaller size."
        )
    if result not in (_SUCCESS, _STACK_DONE):
        raise _ERRORS[result]
