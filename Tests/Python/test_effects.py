# SPDX-License-Identifier: BSD-3-Clause
"""The registry, effects that are called, pictures and documents: what `vorto render` does, to the byte."""

import inspect
import pathlib
import plistlib
import tempfile
import threading
import unittest
import warnings

import numpy as np
import vorto
from support import PHOTOS, FolderCase, run

COFFEE = PHOTOS / "coffee.png"


def parameters(**values):
    return [word for key, value in values.items() for word in ("--set", f"{key}={value}")]


class Registry(unittest.TestCase):
    def test_lists_effects_with_their_ports(self):
        effects = {info.name: info for info in vorto.effects()}
        blur = effects["Gaussian Blur"]
        self.assertEqual((blur.kinds, [port.key for port in blur.pictures]), (("filter",), ["inputImage"]))
        radius, edges = blur.parameters
        self.assertEqual((radius.keyword, radius.minimum, radius.maximum, radius.default), ("radius", 0, 100, 10))
        self.assertEqual((edges.menu, edges.default), (("Transparent", "Repeat"), 1))
        self.assertTrue(blur.path.endswith(".plugin"))
        self.assertEqual({info.name for info in vorto.effects("transition")}, {"Dissolve", "Gradient Wipe", "Iris", "Slide"})

    def test_says_what_an_effect_takes(self):
        blur = vorto.effect("gaussian blur")
        self.assertEqual(str(inspect.signature(blur)).split(", time")[0], "(image, /, *, radius=10.0, edges='Repeat'")
        self.assertIn("number, 0 to 100; default 10", type(blur).__doc__)
        self.assertIn("'Gaussian Blur'", repr(blur))

    def test_loads_compositions_of_effects_written_in_python(self):
        class Halved(vorto.Effect):
            image = vorto.ports.Image()

            def render(self, image):
                return np.asarray(image) // 2

        nodes = [{"identifier": "a", "name": "Halved"}, {"identifier": "b", "name": "Halved"}]
        image = {"inputImagePort": "inputImage", "outputImagePort": "outputImage"}
        composition = {
            "formatVersion": 1,
            "attributes": {"name": "Quartered", "protocols": {"filter": image}},
            "nodes": nodes,
            "connections": [{"from": "a.outputImage", "to": "b.inputImage"}],
            "inputs": [{"key": "inputImage", "node": "a", "port": "inputImage"}],
            "outputs": [{"key": "outputImage", "node": "b", "port": "outputImage"}],
        }
        with tempfile.TemporaryDirectory() as folder:
            pathlib.Path(folder, "Quartered.qtz").write_bytes(plistlib.dumps(composition))
            pathlib.Path(folder, "Broken.qtz").write_text("no list")
            vorto.load_effects(folder)
            self.assertIn(folder + "/Broken.qtz", [path for path, reason in vorto.load_failures()])
        quartered = vorto.effect("Quartered")
        self.assertEqual(quartered(np.full((1, 1, 4), 200, np.uint8)).tolist(), [[[50, 50, 50, 50]]])

    def test_refuses_what_does_not_fit(self):
        picture = np.zeros((4, 4, 4), np.uint8)
        for call, reason in (
            (lambda: vorto.effect("Lewels"), 'did you mean "Levels"'),
            (lambda: vorto.effect("Levels")(picture, gama=2), "has no port"),
            (lambda: vorto.effect("Levels")(picture, levels="gamma=9"), "gamma"),
            (lambda: vorto.effect("Gaussian Blur")(picture, radius=101), "out of range"),
            (lambda: vorto.effect("Gaussian Blur")(picture, edges="Mirror"), "Transparent"),
            (lambda: vorto.effect("Over")(picture), "takes two"),
            (lambda: vorto.effect("Dissolve")(picture, picture, time=2), "out of range"),
            (lambda: vorto.effect("Gradient Map")(picture, gradient="preset:Nothing Such"), "preset"),
            (lambda: vorto.effect("Gradient Map")(picture, gradient={"rgbSamples": [0.0]}), "rgbSamples"),
            (lambda: vorto.read("nothing.png"), "nothing.png"),
        ):
            with self.subTest(reason), self.assertRaisesRegex(vorto.Error, reason):
                call()


class Rendering(FolderCase):
    def test_gives_the_bytes_of_the_program(self):
        deep = self.path("deep.png")
        run("render", "Levels", "--input", COFFEE, "--depth", "16", "--output", deep)
        light = self.path("light.exr")
        run("render", "Levels", "--input", COFFEE, "--depth", "float", "--output", light)
        tea = PHOTOS / sorted(path.name for path in PHOTOS.glob("*.png") if path != COFFEE)[0]
        two = vorto.effect("Dissolve")
        cases = (
            ("Levels", [COFFEE], "png", {"levels": "gamma=1.3, red.blackIn=10%"}, {}),
            ("Gradient Map", [deep], "png", {"gradient": "navy, orange 60%, white"}, {}),
            ("Gaussian Blur", [light], "exr", {"radius": 3.5, "edges": "Transparent"}, {}),
            ("Invert", [light], "png", {}, {}),
            ("Invert", [COFFEE], "exr", {}, {}),
            ("Invert", [COFFEE], "jpg", {}, {"size": "64x48"}),
            ("Fill", [COFFEE], "tif", {"color": "0.25,0.5,1,0.5"}, {"depth": "16"}),
            ("Dissolve", [COFFEE, tea], "png", {}, {"time": 0.25}),
            ("Over", [COFFEE, light], "png", {"opacity": 0.5}, {}),
            ("Over", [light, deep], "exr", {"opacity": 0.5}, {"place": "top-left"}),
            ("Noise", [], "png", {"seed": 7}, {"size": "80x50", "depth": "16"}),
        )
        for name, files, extension, values, options in cases:
            with self.subTest(name, extension=extension), warnings.catch_warnings():
                warnings.simplefilter("ignore")
                one, other = self.path(f"one.{extension}"), self.path(f"other.{extension}")
                words = [word for key, value in options.items() for word in (f"--{key}", value)]
                inputs = ["--input", *files] if files else []
                run("render", name, *inputs, *parameters(**values), *words, "--output", one)
                result = vorto.effect(name)(*map(vorto.read, files), **values, **options)
                vorto.write(other, result)
                self.assertSameFile(one, other)
        self.assertIsNotNone(two)

    def test_takes_parameters_in_every_form(self):
        picture = vorto.read(COFFEE)
        effect = vorto.effect("Gradient Map")
        text = "navy, orange 60%, white"
        state = self.path("state.plist")
        vorto.write(self.path("expected.png"), effect(picture, gradient=text))
        saved = self.path("state.txt")
        saved.write_text(text)
        vorto.read_state(saved).write(state, "binary", form="archive")
        document = vorto.read_state(state)
        self.assertEqual((document.kind, document.form, document.format), ("gradient", "archive", "binary"))
        for value in (state, str(state), document.state, saved):
            with self.subTest(type(value).__name__):
                vorto.write(self.path("got.png"), effect(picture, gradient=value))
                self.assertSameFile(self.path("got.png"), self.path("expected.png"))
        preset = vorto.presets("gradient")[0]
        run("render", "Gradient Map", "--input", COFFEE, "--state", f"gradient={preset['file']}", "--output", self.path("p.png"))
        vorto.write(self.path("got.png"), effect(picture, gradient="preset:" + preset["name"]))
        self.assertSameFile(self.path("got.png"), self.path("p.png"))
        # What is not given has its default again, and color in every form is one.
        fill = vorto.effect("Fill")
        self.assertTrue(np.array_equal(fill(np.full((1, 1, 4), 255, np.uint8), color="#ff8000"), [[[255, 128, 0, 255]]]))
        self.assertTrue(np.array_equal(fill(np.full((1, 1, 4), 255, np.uint8)), [[[0, 0, 0, 255]]]))

    def test_returns_what_it_was_given_and_keeps_none_of_it(self):
        pixels = np.random.default_rng(1).integers(0, 255, (9, 7, 4), np.uint8)
        pixels[..., 3] = 255
        before = pixels.copy()
        invert = vorto.effect("Invert")
        result = invert(pixels)
        self.assertIsInstance(result, np.ndarray)
        self.assertTrue(np.array_equal(result[..., :3], 255 - before[..., :3]))
        pixels[:] = 0
        pixels[..., 3] = 255
        self.assertTrue(np.array_equal(invert(pixels)[..., :3], np.full((9, 7, 3), 255)))
        # A neutral effect may hand on its input: the result is another picture all the same.
        same = vorto.effect("Levels")(pixels)
        same[:] = 9
        self.assertEqual(pixels[0, 0, 0], 0)
        self.assertIsInstance(invert(vorto.Bitmap.from_array(before)), vorto.Bitmap)
        noise = vorto.effect("Noise")
        first = np.asarray(noise(size=(8, 8)))
        kept = first.copy()
        first[:] = 0
        self.assertTrue(np.array_equal(np.asarray(noise(size=(8, 8))), kept))

    def test_keeps_what_a_file_says(self):
        picture = vorto.read(COFFEE)
        self.assertEqual((picture.space, picture.depth), ("sRGB", "8"))
        light = vorto.read(COFFEE, working_space="ACEScg")
        self.assertEqual((light.space, np.asarray(light).dtype), ("ACEScg", np.float32))
        vorto.write(self.path("p3.png"), picture, space="Display P3")
        self.assertEqual(vorto.read(self.path("p3.png")).space, "Display P3")
        changed = vorto.Picture(np.asarray(picture)[::2, ::2].copy(), like=vorto.read(self.path("p3.png")))
        vorto.write(self.path("small.png"), changed)
        self.assertEqual(vorto.describe(self.path("small.png"))["space"], "Display P3")
        old = self.path("old.png")
        old.write_bytes(b"old")
        with self.assertRaises(vorto.Error):
            vorto.write(old, picture, compression="nonsense")
        self.assertEqual(old.read_bytes(), b"old")

    def test_runs_on_several_threads_with_objects_of_their_own(self):
        pixels = vorto.read(COFFEE)
        expected = np.asarray(vorto.effect("Gaussian Blur")(pixels, radius=5)).tobytes()
        results = []

        def work():
            blur = vorto.effect("Gaussian Blur")
            for _ in range(3):
                results.append(np.asarray(blur(vorto.read(COFFEE), radius=5)).tobytes() == expected)

        threads = [threading.Thread(target=work) for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(results, [True] * 12)

    def test_one_object_is_refused_to_two_threads(self):
        class Slow(vorto.Effect):
            image = vorto.ports.Image()

            def render(self, image):
                started.set()
                go_on.wait(20)
                return image

        started, go_on = threading.Event(), threading.Event()
        slow = vorto.effect("Slow")
        picture = np.zeros((2, 2, 4), np.uint8)
        thread = threading.Thread(target=slow, args=(picture,))
        thread.start()
        started.wait(20)
        try:
            with self.assertRaisesRegex(vorto.Error, "another thread"):
                slow(picture)
        finally:
            go_on.set()
            thread.join()


if __name__ == "__main__":
    unittest.main()
