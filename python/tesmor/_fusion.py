from __future__ import annotations

from typing import Callable, Iterable

import numpy as np
from numpy.typing import ArrayLike

from . import _commands, _native
from ._arrays import Picture, picture

_MOST_IMAGES = 128
_LEAST_SIDE = 2


def fuse(images: Iterable[ArrayLike], *, progress: Callable[[int], object] | None = None) -> Picture:
    """Merges images of one field, taken at different focus, into one that is sharp throughout.

    images: 1 to 128 arrays of uint8 and of one shape, at least 2 x 2 pixels: height x width x 3 in the order red, green, blue,
        or height x width in grey. They should show the field without a shift; their order does not matter. An iterator is
        taken one image at a time. Each image is copied, unless it is a contiguous array in the order blue, green, red seen as
        `bgr[..., ::-1]`, of a width that is a multiple of 4: that is used where it is, and must not change meanwhile.
    progress: is called with the percentage done, 0 to 100 and rising, on the calling thread, 20 times a second at most. What
        it raises ends the fusion and goes on to the caller.

    Returns a new array of the images' shape.

    It takes about 64 bytes of memory a pixel and 8 MB beside the images. Other threads run meanwhile; of several fusions, and
    of a fusion and the commands of a Session, one runs at a time. Ctrl-C ends it within a second.

    Raises ValueError, which names the image, MemoryError, and Aborted when `Session.stop` was called.
    """
    if isinstance(images, np.ndarray) and (images.ndim < 3 or (images.ndim == 3 and images.shape[2] in (3, 4))):
        raise ValueError(f"images is one array of the shape {images.shape}; it must be a list of images")
    pictures: list[_native.Picture] = []
    first: Picture | None = None
    for index, image in enumerate(images):
        if index == _MOST_IMAGES:
            raise ValueError(f"there are more than {_MOST_IMAGES} images; fuse them in groups, and then what comes of these")
        array = picture(image, f"images[{index}]")
        if first is None:
            first = array
            if min(array.shape[:2]) < _LEAST_SIDE:
                raise ValueError(f"images[0] has the shape {array.shape}; it must have at least 2 x 2 pixels")
        elif array.shape != first.shape:
            raise ValueError(f"images[{index}] has the shape {array.shape}, images[0] {first.shape}; they must have the same")
        pictures.append(_native.Picture(array))
    if first is None:
        raise ValueError("there are no images; give at least one")

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
