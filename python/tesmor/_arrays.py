# SPDX-License-Identifier: GPL-2.0-or-later
"""Which arrays are images."""

from __future__ import annotations

from typing import Any

import numpy as np
from numpy.typing import NDArray

Picture = NDArray[np.uint8]

_WANTED = "it must be height x width x 3 (red, green, blue) or height x width (grey)"


def picture(image: Any, name: str) -> Picture:
    """`image` as an array, not copied if it already is one. Raises ValueError, which refers to it as `name`."""
    if isinstance(image, (str, bytes)) or hasattr(image, "__fspath__"):
        raise ValueError(f"{name} is a file name; read the file first, for example with tifffile.imread")
    array = np.asarray(image)
    if array.ndim not in (2, 3) or (array.ndim == 3 and array.shape[2] != 3):
        remedy = ""
        if array.ndim == 3 and array.shape[2] == 4:
            remedy = "; drop the transparency with image[..., :3]"
        elif array.ndim == 3 and array.shape[2] == 1:
            remedy = "; use image[..., 0]"
        elif array.ndim == 3 and array.shape[0] == 3:
            remedy = "; use np.moveaxis(image, 0, -1)"
        raise ValueError(f"{name} has shape {array.shape}; {_WANTED}{remedy}")
    if array.dtype != np.uint8:
        raise ValueError(
            f"{name} has dtype {array.dtype}; it must be uint8. Scale all images by the same range: "
            "np.clip((image - low) * (255 / (high - low)), 0, 255).astype(np.uint8)"
        )
    if array.size == 0:
        raise ValueError(f"{name} has shape {array.shape}; it has no pixels")
    return array
