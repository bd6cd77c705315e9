"""What can go wrong, by the library's result codes."""

from __future__ import annotations


class Error(Exception):
    """What a command can end with. After it the focus stands where it stopped; the next command starts from there."""

    words = "The command failed."

    def __init__(self, words: str | None = None) -> None:
        super().__init__(words or self.words)


class MoveFailed(Error):
    """The motor refused, or never said that it has arrived; or another program has it, or its service has ended."""

    words = (
        "The focus motor does not answer. Check the camera's cable, close other programs that use its motor, and try again."
    )


class Aborted(Error):
    """`Session.stop`, or the end of the session, has ended the command."""

    words = "Cancelled. The focus stays where it was stopped."


class NoDrive(Error):
    """No focus drive answers."""

    words = "No focus motor was found. Connect a camera that has one, and see that its driver is running."


class NoFrame(Error):
    """No frame came through `Session.video` within 4 seconds."""

    words = "The camera sends no pictures. Start its live view and try again."


_SUCCESS, _STACK_DONE = 0, 1
_ERRORS = {-1: MoveFailed, -3: Aborted, -4: NoDrive, -5: NoFrame}
_NO_MEMORY = -2


def check(result: int) -> None:
    """Raises what `result` stands for."""
    if result == _NO_MEMORY:
        raise MemoryError(
            "There is not enough memory to merge pictures of this size: about 64 bytes a pixel and 8 MB beside the images, "
            "and twice as much to start. Close other programs, or choose a smaller size."
        )
    if result not in (_SUCCESS, _STACK_DONE):
        raise _ERRORS[result]
