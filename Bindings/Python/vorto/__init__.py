# SPDX-License-Identifier: BSD-3-Clause
"""Real-time image effects: bitmaps, colors, gradients, levels, and the effects that work on them.

Pictures are `Bitmap` objects whose memory numpy and others see without a copy. Everything that fails raises `Error`
with the framework's own reason, or ValueError, IndexError or TypeError where Python programs expect these.
"""

from ._vorto import *  # noqa: F401,F403
from ._vorto import __version__  # noqa: F401
from . import ports  # noqa: F401
from .registry import EffectInfo, Patch, PortInfo, effect, effects  # noqa: F401
from .writing import Effect  # noqa: F401
