# SPDX-License-Identifier: GPL-2.0-or-later
from __future__ import annotations

import asyncio
import contextvars
import threading
from types import TracebackType
from typing import Any, Callable, TypeVar

from numpy.typing import ArrayLike

from . import _commands
from ._arrays import Picture
from ._session import Session

_Result = TypeVar("_Result")


class AsyncSession:
    """A Session for asyncio, with the same commands as coroutines. They run on threads of the loop's executor.

    Cancelling a task aborts its command; a motor move in progress is still carried out.
    """

    def __init__(self) -> None:
        """Raises RuntimeError if another session is open."""
        self._session = Session()
        self._one_at_a_time = asyncio.Lock()

    async def __aenter__(self) -> AsyncSession:
        return self

    async def __aexit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        await self.close()

    async def close(self) -> None:
        """Like Session.close."""
        await asyncio.to_thread(self._session.close)

    def video(self, frame: ArrayLike) -> None:
        """Like Session.video, and not a coroutine: for the camera's thread, not the loop's."""
        self._session.video(frame)

    async def autofocus(self, magnification: int) -> None:
        """Like Session.autofocus."""
        await self._run(self._session.autofocus, magnification)

    async def stack(self, magnification: int, count: int, spacing: int = 1) -> list[Picture]:
        """Like Session.stack."""
        return await self._run(self._session.stack, magnification, count, spacing)

    async def move(self, degrees: float) -> None:
        """Like Session.move."""
        await self._run(self._session.move, degrees)

    async def capture(self) -> Picture:
        """Like Session.capture."""
        return await self._run(self._session.capture)

    async def stop(self) -> None:
        """Like Session.stop, for another task's command."""
        await asyncio.to_thread(self._session.stop)

    async def _run(self, command: Callable[..., _Result], *arguments: Any) -> _Result:
        async with self._one_at_a_time:
            cancellation = threading.Event()
            context = contextvars.copy_context()
            context.run(_commands.cancellation.set, cancellation)
            loop = asyncio.get_running_loop()
            work = loop.run_in_executor(None, lambda: context.run(command, *arguments))
            try:
                return await asyncio.shield(work)
            except asyncio.CancelledError:
                cancellation.set()
                await asyncio.wait([work])
                work.exception()  # so that asyncio does not report it as never retrieved
                raise
