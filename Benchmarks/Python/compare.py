# SPDX-License-Identifier: BSD-3-Clause
"""The same jobs with Pillow, OpenCV, OpenImageIO and vorto, in Python: processor time and lines of code.

    PYTHONPATH=build/release/python /usr/bin/python3 Benchmarks/Python/compare.py PHOTO [WIDTHxHEIGHT]

Each job is a function for each library, written as its documentation would have it; what a library does not do is left
out. Libraries run with one thread. Times are the best of some runs, as ratios to vorto (above 1: vorto is faster); lines are
those of the function's body. How far results lie apart is told in levels of 8 bits, so that it is seen that the jobs are
the same: filters and gradients of libraries differ in their kernels and rounding.
"""

import ast
import inspect
import os
import pathlib
import sys
import tempfile
import textwrap
import time

os.environ.setdefault("OPENCV_IO_ENABLE_OPENEXR", "1")

import cv2
import numpy as np
import OpenImageIO as oiio
import PIL.Image
import PIL.ImageFilter
import PIL.ImageOps
import vorto

cv2.setNumThreads(1)
oiio.attribute("threads", 1)

GAMMA = 1.4
STOPS = ((0.0, (0, 0, 128)), (0.6, (255, 165, 0)), (1.0, (255, 255, 255)))
TABLE = np.stack([np.interp(np.linspace(0, 1, 256), [p for p, _ in STOPS], [c[i] for _, c in STOPS]) for i in range(3)], 1)
TABLE = np.round(TABLE).astype(np.uint8)
CURVE = np.round(255 * (np.arange(256) / 255) ** (1 / GAMMA)).astype(np.uint8)
JOBS = {}


def job(name, library):
    """Registers a function that does a job with a library."""

    def taken(function):
        JOBS.setdefault(name, {})[library] = function
        return function

    return taken


class Data:
    """What the jobs get: one picture in the form that each library likes, and files."""

    def __init__(self, photo, size, folder):
        self.size = size
        self.half = (size[0] // 2, size[1] // 2)
        self.folder = folder
        image = PIL.Image.open(photo).convert("RGBA").resize(size, PIL.Image.BICUBIC)
        image.putalpha(255)
        self.png = str(folder / "in.png")
        image.save(self.png)
        self.pil = image
        self.array = np.array(image)
        self.cv = cv2.cvtColor(self.array, cv2.COLOR_RGBA2BGRA)
        self.oiio = oiio.ImageBuf(self.png)
        self.bitmap = vorto.Bitmap.from_array(self.array, copy=True)
        self.exr = str(folder / "in.exr")
        vorto.write(self.exr, self.array.astype(np.float32) / np.float32(255), compression="zip")
        self.levels = vorto.effect("Levels")
        self.gradient = vorto.effect("Gradient Map")
        self.blur = vorto.effect("Gaussian Blur")

    def out(self, extension):
        return str(self.folder / f"out.{extension}")


@job("levels", "vorto")
def _(data):
    return data.levels(data.bitmap, levels="gamma=1.4")


@job("levels", "PIL")
def _(data):
    curve = list(CURVE) * 3 + list(range(256))
    return data.pil.point(curve)


@job("levels", "OpenCV")
def _(data):
    curve = np.stack([CURVE, CURVE, CURVE, np.arange(256, dtype=np.uint8)], 1)
    return cv2.LUT(data.cv, curve[None])


@job("levels", "OIIO")
def _(data):
    return oiio.ImageBufAlgo.pow(data.oiio, (1 / GAMMA, 1 / GAMMA, 1 / GAMMA, 1.0))


@job("gradient map", "vorto")
def _(data):
    return data.gradient(data.bitmap, gradient="navy, orange 60%, white")


@job("gradient map", "PIL")
def _(data):
    gray = data.pil.convert("L")
    result = PIL.ImageOps.colorize(gray, "navy", "white", mid="orange", midpoint=153)
    result.putalpha(data.pil.getchannel("A"))
    return result


@job("gradient map", "OpenCV")
def _(data):
    gray = cv2.cvtColor(data.cv, cv2.COLOR_BGRA2GRAY)
    result = cv2.cvtColor(cv2.applyColorMap(gray, TABLE[:, None, ::-1].copy()), cv2.COLOR_BGR2BGRA)
    result[..., 3] = data.cv[..., 3]
    return result


@job("gradient map", "OIIO")
def _(data):
    knots = [component / 255 for color in TABLE for component in color]
    colors = oiio.ImageBufAlgo.color_map(data.oiio, -1, 256, 3, knots)
    return oiio.ImageBufAlgo.channel_append(colors, oiio.ImageBufAlgo.channels(data.oiio, (3,)))


@job("resize", "vorto")
def _(data):
    return data.levels(data.bitmap, size=data.half, scaling="lanczos")


@job("resize", "PIL")
def _(data):
    return data.pil.resize(data.half, PIL.Image.LANCZOS)


@job("resize", "OpenCV")
def _(data):
    return cv2.resize(data.cv, data.half, interpolation=cv2.INTER_AREA)


@job("resize", "OIIO")
def _(data):
    return oiio.ImageBufAlgo.resize(data.oiio, "lanczos3", roi=oiio.ROI(0, data.half[0], 0, data.half[1]))


@job("blur", "vorto")
def _(data):
    return data.blur(data.bitmap, radius=8, edges="Repeat")


@job("blur", "PIL")
def _(data):
    return data.pil.filter(PIL.ImageFilter.GaussianBlur(8))


@job("blur", "OpenCV")
def _(data):
    return cv2.GaussianBlur(data.cv, (0, 0), 8, borderType=cv2.BORDER_REPLICATE)


@job("blur", "OIIO")
def _(data):
    rows = oiio.ImageBufAlgo.convolve(data.oiio, oiio.ImageBufAlgo.make_kernel("gaussian", 49, 1))
    return oiio.ImageBufAlgo.convolve(rows, oiio.ImageBufAlgo.make_kernel("gaussian", 1, 49))


@job("PNG: read, gamma, write", "vorto")
def _(data):
    image = vorto.read(data.png)
    vorto.write(data.out("png"), data.levels(image, levels="gamma=1.4"))


@job("PNG: read, gamma, write", "PIL")
def _(data):
    image = PIL.Image.open(data.png)
    image.point(list(CURVE) * 3 + list(range(256))).save(data.out("png"))


@job("PNG: read, gamma, write", "OpenCV")
def _(data):
    image = cv2.imread(data.png, cv2.IMREAD_UNCHANGED)
    curve = np.stack([CURVE, CURVE, CURVE, np.arange(256, dtype=np.uint8)], 1)
    cv2.imwrite(data.out("png"), cv2.LUT(image, curve[None]))


@job("PNG: read, gamma, write", "OIIO")
def _(data):
    image = oiio.ImageBuf(data.png)
    oiio.ImageBufAlgo.pow(image, (1 / GAMMA, 1 / GAMMA, 1 / GAMMA, 1.0)).write(data.out("png"))


@job("EXR: read, halve, write", "vorto")
def _(data):
    image = vorto.read(data.exr)
    np.asarray(image)[..., :3] *= 0.5
    vorto.write(data.out("exr"), image, compression="zip")


@job("EXR: read, halve, write", "OpenCV")
def _(data):
    image = cv2.imread(data.exr, cv2.IMREAD_UNCHANGED)
    image[..., :3] *= 0.5
    cv2.imwrite(data.out("exr"), image)


@job("EXR: read, halve, write", "OIIO")
def _(data):
    image = oiio.ImageBuf(data.exr)
    result = oiio.ImageBufAlgo.mul(image, (0.5, 0.5, 0.5, 1.0))
    result.write(data.out("exr"))


def lines_of(function):
    """The lines of a function's body."""
    body = ast.parse(textwrap.dedent(inspect.getsource(function))).body[0].body
    return body[-1].end_lineno - body[0].lineno + 1


def seconds_of(function, data):
    """Processor time of the best of some runs."""
    best, spent, runs = float("inf"), 0.0, 0
    while spent < 0.3 or runs < 2:
        begin = time.process_time()
        function(data)
        took = time.process_time() - begin
        best, spent, runs = min(best, took), spent + took, runs + 1
    return best


def pixels_of(result):
    """A result as RGBA of 0 to 255, or None of one that wrote a file."""
    if result is None:
        return None
    if isinstance(result, oiio.ImageBuf):
        return result.get_pixels(oiio.FLOAT) * 255.0
    pixels = np.asarray(result).astype(np.float32)
    return pixels[..., [2, 1, 0, 3]] if isinstance(result, np.ndarray) else pixels


def main(arguments):
    size = tuple(int(side) for side in (arguments[1] if len(arguments) > 1 else "1920x1080").split("x"))
    libraries = ("vorto", "PIL", "OpenCV", "OIIO")
    print(f"{size[0]} x {size[1]}, one thread: times as ratios to vorto / lines / mean distance to vorto's result\n")
    print(f"{'':26}" + "".join(f"{library:>20}" for library in libraries))
    with tempfile.TemporaryDirectory() as folder:
        data = Data(arguments[0], size, pathlib.Path(folder))
        for name, functions in JOBS.items():
            own = seconds_of(functions["vorto"], data)
            expected = pixels_of(functions["vorto"](data))
            row = f"{name:26}"
            for library in libraries:
                if library not in functions:
                    row += f"{'-':>20}"
                    continue
                function = functions[library]
                text = f"{seconds_of(function, data) / own:.2f}" if library != "vorto" else f"{1000 * own:.1f} ms"
                text += f" / {lines_of(function)}"
                pixels = pixels_of(function(data))
                if library != "vorto" and pixels is not None:
                    text += f" / {np.abs(pixels - expected).mean():.1f}"
                row += f"{text:>20}"
            print(row, flush=True)


if __name__ == "__main__":
    main(sys.argv[1:])
