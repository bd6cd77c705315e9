# SPDX-License-Identifier: GPL-2.0-or-later
"""Posts a command to the library and waits for its end.

The library's threads never enter Python. Instead, the waiting thread polls twenty times per second, which also lets Python
run what is pending, such as the handler of Ctrl-C.
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

# Once set, aborts the command that was started in its context.
cancellation: ContextVar[threading.Event] = ContextVar("cancellation", default=threading.Event())


def run(post: Callable[[], _native.Command], each_tick: Callable[[_native.Command], None] = lambda command: None) -> _native.Command:
    """Waits for other threads' commands, posts one, and returns when it has succeeded.

    Raises the exception for its result. An exception of `each_tick`, such as Ctrl-C, aborts the command and reaches the
    caller after half a second at most; the command keeps what it still needs, and the next one waits for it to end.
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
    with contextlib.suppress(RuntimeError):  # Python is exiting, which also aborts it
        _native.stop()
