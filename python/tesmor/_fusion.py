# SPDX-License-Identifier: GPL-2.0-or-later
from __future__ import annotations

from typing import Callable, Iterable

import numpy as np
from numpy.typing import ArrayLike

from . import _commands, _native
from ._arrays import Picture, picture

_MOST_IMAGES = 128
_LEAST_SIDE = 2


def fuse(images: Iterable[ArrayLike], *, progress: Callable[[int], object] | None = None) -> Picture:
    """Merges images of one field, taken at different focus positions, into one that is sharp throughout.

    images: 1 to 128 arrays of uint8 and of one shape, at least 2 x 2 pixels: height x width x 3 in the order red, green, blue,
        or height x width in grey. They should show the field without any shift; their order does not matter. An iterator
        is read one image at a time. Each image is copied, unless it is a view `bgr[..., ::-1]` of a contiguous array in the order
        blue, green, red, with a width that is a multiple of 4: such an array is used in place and must not change meanwhile.
    progress: called with the percentage done, 0 to 100 and increasing, on the calling thread, at most 20 times per second. An
        exception that it raises aborts the fusion and reaches the caller.

    Returns a new array of the images' shape.

    Takes about 64 bytes of memory per pixel plus 8 MB in addition to the images. Python's other threads keep running, but only
    one fusion or Session command runs at a time in a process. Ctrl-C ends it within a second.

    Raises ValueError, which names the image, MemoryError, or Aborted if `Session.stop` was called.
    """
    if isinstance(images, np.ndarray) and (images.ndim < 3 or (images.ndim == 3 and images.shape[2] in (3, 4))):
        raise ValueError(f"images is one array of shape {images.shape}; it must be a list of images")
    pictures: list[_native.Picture] = []
    first: Picture | None = None
    for index, image in enumerate(images):
        if index == _MOST_IMAGES:
            raise ValueError(f"there are more than {_MOST_IMAGES} images; fuse them in groups, then fuse the results")
        array = picture(image, f"images[{index}]")
        if first is None:
            first = array
            if min(array.shape[:2]) < _LEAST_SIDE:
                raise ValueError(f"images[0] has shape {array.shape}; the minimum is 2 x 2 pixels")
        elif array.shape != first.shape:
            raise ValueError(f"images[{index}] has shape {array.shape}, images[0] {first.shape}; all images must have the same shape")
        pictures.append(_native.Picture(array))
    if first is None:
        raise ValueError("there are no images; pass at least one")

    height, width = first.shape[:2]
    grey = first.ndim == 2
    shown = -1

    def show(percent: int) -> None:
        nonlocal shown
        if progress is not None and percent > shown:
            shown = percent
            progress(percent)

    command = _commands.run(
        lambda: _native.start_fusion(pictures, width, height, grey), lambda command: show(command.percent())
    )
    show(100)
    return command.fused()
