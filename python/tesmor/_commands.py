"""Posts a command to the library and waits for its end.

The library's threads never enter Python: the waiting thread asks twenty times a second, and in between runs what Python has
to run, such as the handler of Ctrl-C.
"""

from __future__ import annotations

import contextlib
import threading
from contextvars import ContextVar
from typing import Callable

from . import _native
from ._errors import Aborted, check

_one_at_a_time = threading.Lock()
_last_abort: threading.Thread | None = None

# When it is set, the command that was begun in its context is aborted.
cancellation: ContextVar[threading.Event] = ContextVar("cancellation", default=threading.Event())


def run(post: Callable[[], _native.Command], each_tick: Callable[[_native.Command], None] = lambda command: None) -> _native.Command:
    """Waits for other threads' commands, posts one, and returns when it has ended well.

    Raises what its result stands for. An exception of `each_tick`, Ctrl-C among them, aborts the command and goes on to the
    caller, half a second later at most: what the command still needs it keeps, and the next one waits for it.
    """
    global _last_abort
    with _one_at_a_time:
        if _last_abort is not None:
            _last_abort.join()
        try:
            command = post()
            while (result := command.wait()) is None:
                if cancellation.get().is_set():
                    raise Aborted
                each_tick(command)
        except BaseException:
            abort = threading.Thread(target=_abort, name="tesmor abort")
            abort.start()
            _last_abort = abort
            abort.join(0.5)
            raise
    check(result)
    return command


def _abort() -> None:
    with contextlib.suppress(RuntimeError):  # Python is ending, which aborts it, too
        _native.stop()
