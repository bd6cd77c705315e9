# SPDX-License-Identifier: GPL-2.0-or-later
from __future__ import annotations

from types import TracebackType
from typing import Callable

import numpy as np
from numpy.typing import NDArray

from . import _native
from ._arrays import Picture


class VirtualMicroscope:
    """A SIMULATED microscope, to work without a real one: a focus motor, a specimen seen through an objective, a camera.

    Its focus drive responds like a real one, so a Session finds it. During the `with` block, the camera's thread calls `sink`
    with each frame:

        with tesmor.Session() as session, tesmor.VirtualMicroscope(session.video, magnification=40) as microscope:
            session.autofocus(40)

    Exceptions from `sink` go to sys.unraisablehook, and do not stop the frames.

    Positions are in motor steps, positive forward; 12800 steps are one turn of the motor and 25 micrometres.
    """

    _running: set[VirtualMicroscope] = set()  # kept alive while their cameras run

    def __init__(
        self,
        sink: Callable[[Picture], object] = lambda frame: None,
        *,
        magnification: int = 10,
        offset: int = -1000,
        width: int = 640,
        height: int = 480,
        seed: int = 1,
        fps: float = 30.0,
        noise: float = 1.5,
        time_scale: float = 1.0,
        unit: int = 0,
    ) -> None:
        """Creates the specimen, which takes a few tenths of a second.

        sink: receives each frame, height x width x 3 in the order red, green, blue; a new array each time.
        magnification: of the objective: 4, 10, 20, 40, 60, 80 or 100.
        offset: where the focus starts: motor steps forward of the best focus; negative: on its reverse side.
        width, height: of the frames, pixels, at least 64.
        seed: the number of the specimen; every number gives a different one.
        fps: frames per second.
        noise: standard deviation at full brightness, grey levels, 0 to 20.
        time_scale: motor and camera run this many times faster than in real time; 0: they take no time at all.
        unit: number of the drive, 0 to 15; a session uses the lowest one.

        Raises ValueError.
        """
        self._sink = sink
        self._native = _native.Microscope(
            magnification=magnification,
            offset=offset,
            width=width,
            height=height,
            seed=seed,
            fps=fps,
            noise=noise,
            time_scale=time_scale,
            unit=unit,
        )

    def __enter__(self) -> VirtualMicroscope:
        self.start()
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None) -> None:
        self.stop()

    def start(self) -> None:
        """Opens the drive and starts the camera. Does nothing if already started. Raises OSError if the unit is taken."""
        if self not in self._running:
            try:
                self._native.start(self._sink)
            except OSError as error:
                raise OSError(
                    error.errno, f"{error.strerror}: the drive's unit is taken by another drive service; stop that service, or choose another unit"
                ) from None
            self._running.add(self)

    def stop(self) -> None:
        """Stops drive and camera; the sink is not called after this. Never call it from the sink. May be called again."""
        if self in self._running:
            self._native.stop()
            self._running.discard(self)

    @property
    def position(self) -> int:
        """Of the focus now, even during a move. Setting it turns the focus as if by hand."""
        return self._native.position()

    @position.setter
    def position(self, steps: int) -> None:
        self._native.set_position(steps)

    @property
    def best_focus(self) -> float:
        """The truth: the position whose view is closest to the sharp image in the middle of the field."""
        return self._native.best_focus()

    @property
    def depth_of_field(self) -> float:
        """Of the objective: the whole of it, half on either side of the best focus."""
        return self._native.depth_of_field()

    @property
    def truth(self) -> Picture:
        """The specimen, sharp everywhere and without noise."""
        return self._native.truth()

    @property
    def height_map(self) -> NDArray[np.float32]:
        """For each pixel, the position where it is in focus; height x width."""
        return self._native.height_map()

    def __repr__(self) -> str:
        return f"<{self._native.description()}>"
