# SPDX-License-Identifier: GPL-2.0-or-later
"""Automatic focusing, manual focus moves, focus stacks, and images that are sharp throughout.

    fused = tesmor.fuse(images)

    with tesmor.Session() as session:
        ...                         # the camera's thread calls session.video(frame) for every frame
        session.autofocus(40)
"""

from . import _native

_native.require_main_interpreter()

import atexit
import os

from ._async_session import AsyncSession
from ._errors import Aborted, Error, MoveFailed, NoDrive, NoFrame
from ._fusion import fuse
from ._microscope import VirtualMicroscope
from ._session import Session

__version__ = _native.VERSION
__all__ = [
    "Aborted",
    "AsyncSession",
    "Error",
    "MoveFailed",
    "NoDrive",
    "NoFrame",
    "Session",
    "VirtualMicroscope",
    "fuse",
]

atexit.register(_native.leave_interpreter)
if hasattr(os, "register_at_fork"):
    os.register_at_fork(after_in_child=_native.forbid_after_fork)
