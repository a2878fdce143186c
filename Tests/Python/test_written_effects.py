# SPDX-License-Identifier: BSD-3-Clause
"""Effects that are written in Python: in this process, and in the program with --python."""

import json
import subprocess
import unittest

import numpy as np
import vorto
from support import PHOTOS, PROGRAM, FolderCase, run, run_python
from vorto import ports

COFFEE = PHOTOS / "coffee.png"

EFFECTS = '''
import numpy as np
import vorto
from vorto import ports

print("this goes to standard error")

class Tint(vorto.Effect):
    """Multiplies the colors.

    And more."""
    image = ports.Image()
    amount = ports.Number(0.5, minimum=0, maximum=1, description="How much")
    color = ports.Color((1, 0.5, 0))

    def render(self, image, amount, color):
        pixels = np.array(image)
        factors = 1 - amount + amount * np.array(color)
        factors[3] = 1
        return (pixels * factors + 0.5).astype(pixels.dtype)

class Clock(vorto.Effect):
    def render(self, width, height, depth, time):
        return np.full((height, width, 4), [int(time * 100) % 256, width, 0, 255], np.uint8)

class Fails(vorto.Effect):
    image = ports.Image()
    at = ports.Number(0)

    def render(self, image, at, time):
        if time >= at:
            raise ValueError("not\\nnow")
        return image
'''


class Port(vorto.Effect):
    abstract = True
    image = ports.Image()


class Everything(Port):
    """All kinds of ports."""

    amount = ports.Number(1.5, minimum=1, maximum=2, name="How Much")
    count = ports.Index(3, maximum=9)
    on = ports.Boolean(True)
    style = ports.Choice("Rows", "Columns", default="Columns")
    ink = ports.Color((0, 0.5, 1))
    words = ports.String("a, b")
    gradient = ports.Gradient()
    levels = ports.Levels()
    mask = ports.Image(optional=True)
    seen = []

    def render(self, image, **values):
        Everything.seen.append({"image": image, **values})
        return image


class Written(unittest.TestCase):
    def test_gets_its_ports(self):
        info = next(info for info in vorto.effects("filter") if info.name == "Everything")
        self.assertEqual((info.description, info.path, info.depends_on_time, info.keeps_state), ("All kinds of ports.", "", True, False))
        amount = info.parameters[0]
        self.assertEqual((amount.key, amount.name, amount.minimum, amount.default), ("inputAmount", "How Much", 1, 1.5))
        effect = vorto.effect("Everything")
        picture = np.full((3, 2, 4), 255, np.uint8)
        mask = np.zeros((1, 1, 4), np.float32)
        effect(picture)
        effect(picture, amount=2, count=4, on=False, style="Rows", ink="#ff0000", words="x", mask=mask, levels="gamma=2",
               gradient="red, blue", time=1.25)
        first, second = Everything.seen
        self.assertEqual([first[key] for key in ("amount", "count", "on", "style", "ink", "words", "mask", "time")],
                         [1.5, 3, True, "Columns", (0, 0.5, 1, 1), "a, b", None, 0])
        self.assertEqual([second[key] for key in ("amount", "count", "on", "style", "ink", "words", "time")],
                         [2, 4, False, "Rows", (1, 0, 0, 1), "x", 1.25])
        self.assertEqual(np.asarray(second["mask"]).shape, (1, 1, 4))
        for values in (first, second):
            self.assertIsInstance(values["gradient"], vorto.Gradient)
            self.assertIsInstance(values["levels"], vorto.Levels)
        with self.assertRaises((ValueError, TypeError)):
            np.asarray(first["image"])[:] = 0

    def test_results_are_pictures(self):
        cases = (
            (np.zeros((2, 2, 4), np.float64), np.float32),
            (np.zeros((2, 2, 4), np.uint16)[::-1], np.uint16),
            (vorto.Bitmap(2, 2), np.uint8),
        )

        class Given(vorto.Effect):
            result = None

            def render(self):
                return Given.result

        effect = vorto.effect("Given")
        for result, expected in cases:
            Given.result = result
            self.assertEqual(np.asarray(effect()).dtype, expected)
        for wrong in (None, 7, np.zeros(5), "picture"):
            Given.result = wrong
            with self.subTest(wrong=wrong), self.assertRaisesRegex(vorto.Error, 'the effect "Given" could not render'):
                effect()

    def test_refuses_classes_that_make_no_effect(self):
        render = lambda self: None  # noqa: E731
        three = {f"image{i}": ports.Image() for i in range(3)}
        for attributes, reason in (
            ({**three, "render": render}, "3 pictures"),
            ({"kind": "filter", "render": render}, "takes 0 pictures"),
            ({"kind": "filtre", "render": render}, "filtre"),
            ({"name": "Levels", "render": render}, 'there is an effect "Levels" already'),
            ({"render": lambda self, radius: None}, "radius"),
        ):
            with self.subTest(reason), self.assertRaisesRegex((TypeError, ValueError), reason):
                type("Wrong", (vorto.Effect,), attributes)

    def test_may_be_defined_anew(self):
        for value in (1, 2):
            def render(self, image, value=value):
                return np.full((1, 1, 4), value, np.uint8)

            type("Anew", (Port,), {"render": render})
            self.assertEqual(vorto.effect("Anew")(np.zeros((1, 1, 4), np.uint8))[0, 0, 0], value)

    def test_keeps_state_only_when_it_says_so(self):
        def render(self, image):
            self.count = getattr(self, "count", 0) + 1
            return np.full((1, 1, 4), self.count, np.uint8)

        type("Forgets", (Port,), {"render": render})
        type("Counts", (Port,), {"render": render, "keeps_state": True})
        picture = np.zeros((1, 1, 4), np.uint8)
        with self.assertRaisesRegex(vorto.Error, r"keeps_state = True \(test_written_effects.py, line \d+, in render\)"):
            vorto.effect("Forgets")(picture)
        counts = vorto.effect("Counts")
        self.assertEqual([counts(picture)[0, 0, 0] for _ in range(3)], [1, 2, 3])

    def test_failures_have_their_place(self):
        class Broken(Port):
            def render(self, image):
                return {}["key"]

        with self.assertRaisesRegex(vorto.Error, r"KeyError: 'key' \(test_written_effects.py, line \d+, in render\)") as caught:
            vorto.effect("Broken")(np.zeros((1, 1, 4), np.uint8))
        self.assertIsInstance(caught.exception.__cause__, KeyError)


class InTheProgram(FolderCase):
    def setUp(self):
        super().setUp()
        self.effects = self.path("effects.py")
        self.effects.write_text(EFFECTS)

    def test_renders_as_in_python(self):
        run("render", "Tint", "--python", self.effects, "--input", COFFEE, "--set", "color=#00ff00", "--output", self.path("a.png"))
        code, said = run_python(
            "import runpy, vorto; runpy.run_path('effects.py');"
            f"vorto.write('b.png', vorto.effect('Tint')(vorto.read({str(COFFEE)!r}), color='#00ff00'))",
            self.folder,
        )
        self.assertEqual((code, said), (0, "this goes to standard error\n"))
        self.assertSameFile(self.path("a.png"), self.path("b.png"))

    def test_workers_have_it_too(self):
        for jobs in ("1", "2"):
            run("render", "Clock", "--python", self.effects, "--size", "6x4", "--frames", "0-5", "--jobs", jobs,
                "--output", self.path(f"{jobs}.%d.png"))
        for frame in range(6):
            self.assertSameFile(self.path(f"1.{frame}.png"), self.path(f"2.{frame}.png"))
        self.assertEqual(np.asarray(vorto.read(self.path("2.5.png")))[0, 0, 0], 20)

    def test_is_listed(self):
        listed = json.loads(subprocess.run([PROGRAM, "effects", "--json", "--python", self.effects], capture_output=True, check=True).stdout)
        tint = next(effect for effect in listed["filter"] if effect["name"] == "Tint")
        self.assertEqual((tint["description"], tint["dependsOnTime"], tint["keepsState"]), ("Multiplies the colors.", False, False))

    def test_is_given_to_farms(self):
        scripts = subprocess.run(
            [PROGRAM, "submit", "--dry-run", "--", "render", "Clock", "--python", self.effects, "--size", "6x4",
             "--frames", "0-9x5", "--output", self.path("o.%d.png")],
            capture_output=True, text=True, check=True,
        ).stdout
        self.assertIn(f"--python={self.effects}", scripts)

    def test_failures_leave_old_files(self):
        old = self.path("old.png")
        old.write_bytes(b"old")
        said = run("render", "Fails", "--python", self.effects, "--input", COFFEE, "--output", old, expected=5)
        self.assertIn('the effect "Fails" could not render: ValueError: not now (effects.py, line', said)
        frames = self.path("frame.%d.png")
        said = run("render", "Fails", "--python", self.effects, "--input", COFFEE, "--set", "at=0.1", "--frames", "0-5",
                   "--jobs", "2", "--output", frames, expected=5)
        self.assertIn("ValueError: not now", said)
        self.assertTrue(self.path("frame.2.png").exists())
        self.assertFalse(self.path("frame.3.png").exists())
        for text, line in (("import vorto\n1 / 0\n", "ZeroDivisionError: division by zero"), ("def (:\n", "SyntaxError")):
            self.path("wrong.py").write_text(text)
            said = run("render", "Tint", "--python", self.path("wrong.py"), "--input", COFFEE, "--output", old, expected=3)
            self.assertIn(f"vorto: cannot run {self.path('wrong.py')}: {line}", said)
            self.assertIn(f'File "{self.path("wrong.py")}", line', said)
        said = run("effects", "--python", self.path("missing.py"), expected=3)
        self.assertIn(f"cannot run {self.path('missing.py')}: No such file or directory", said)
        self.assertEqual(old.read_bytes(), b"old")


if __name__ == "__main__":
    unittest.main()
