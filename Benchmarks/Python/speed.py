# SPDX-License-Identifier: BSD-3-Clause
"""Whole-picture operations on 3840 x 2160 pixels beside what people write with numpy, and what a call costs.

Usage: PYTHONPATH=BUILD/python speed.py
"""

import statistics
import time

import numpy as np
import vorto
from vorto import Bitmap, PixelFormat as F

WIDTH, HEIGHT = 3840, 2160


def milliseconds(work, times=9):
    taken = []
    for _ in range(times):
        start = time.perf_counter()
        work()
        taken.append(time.perf_counter() - start)
    return 1000 * statistics.median(taken)


def noise(layout):
    bitmap = Bitmap(WIDTH, HEIGHT, layout)
    array = np.asarray(bitmap)
    values = np.random.default_rng(1).random(array.shape, np.float32)
    array[:] = values if layout == F.RGBAFloat else values * np.iinfo(array.dtype).max
    return bitmap


def unpremultiplied(array):
    alpha = array[..., 3:]
    np.divide(array[..., :3], alpha, out=array[..., :3], where=alpha > 0)


def premultiplied8(array):
    array[..., :3] = array[..., :3].astype(np.uint16) * array[..., 3:] // 255


def histogram(array):
    return [np.bincount(array[..., channel].ravel(), minlength=256) for channel in range(4)]


def main():
    eight, words, floats = noise(F.RGBA8), noise(F.RGBA16), noise(F.RGBAFloat)
    argb = eight.converted(F.ARGB8)
    a8, a16, a32 = (np.asarray(each) for each in (eight, words, floats))
    target = Bitmap(WIDTH, HEIGHT, F.RGBAFloat)
    gradient = vorto.Gradient("navy, orange smooth 60%, white")
    positions = np.linspace(0, 1, 1 << 20)
    xs = [stop.position for stop in vorto.Gradient("navy, orange 60%, white").colors]
    ys = np.array([stop.rgb for stop in gradient.colors])
    cases = [
        ("invert alpha, 8 bits", eight.invert_alpha, lambda: np.subtract(255, a8[..., 3], out=a8[..., 3])),
        ("invert alpha, float", floats.invert_alpha, lambda: np.subtract(1, a32[..., 3], out=a32[..., 3])),
        ("flip, 16 bits", words.flip, lambda: a16[:].__setitem__(slice(None), a16[::-1].copy())),
        ("premultiply, 8 bits", eight.pre_mult, lambda: premultiplied8(a8)),
        ("unpremultiply, float", floats.unpremultiply, lambda: unpremultiplied(a32)),
        ("RGBA to ARGB, 8 bits", lambda: argb.copy_with_swizzle_rgb_to_argb(eight), lambda: a8[..., [3, 0, 1, 2]]),
        ("8 bits to float", lambda: target.copy_with_scaling_and_depth_conversion(eight),
         lambda: np.divide(a8, 255, dtype=np.float32)),
        ("float to 16 bits", lambda: floats.converted(F.RGBA16),
         lambda: (np.clip(a32, 0, 1) * 65535 + 0.5).astype(np.uint16)),
        ("histogram, 8 bits", eight.histogram, lambda: histogram(a8)),
        ("half the size, nearest", lambda: eight.scaled(WIDTH // 2, HEIGHT // 2, "nearest"),
         lambda: a8[::2, ::2].copy()),
        ("table of a smooth gradient, 2**20", lambda: gradient.table(1 << 20),
         lambda: [np.interp(positions, xs, ys[:, channel]) for channel in range(3)]),
    ]
    print(f"{'3840 x 2160, milliseconds':34}{'vorto':>8}{'numpy':>8}")
    for name, ours, numpys in cases:
        print(f"{name:34}{milliseconds(ours):8.2f}{milliseconds(numpys):8.2f}")
    tiny = Bitmap(1, 1)
    calls = 100000
    for name, call in (("np.asarray(bitmap)", lambda: np.asarray(tiny)), ("bitmap.invert_alpha()", tiny.invert_alpha),
                       ("bitmap.width", lambda: tiny.width)):
        start = time.perf_counter()
        for _ in range(calls):
            call()
        print(f"a call of {name:22}{1e6 * (time.perf_counter() - start) / calls:8.2f} microseconds")


if __name__ == "__main__":
    main()
