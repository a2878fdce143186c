# SPDX-License-Identifier: BSD-3-Clause
"""Colors, fingerprints, gradients, levels, and what is saved of them."""

import colorsys
import copy
import datetime
import json
import pathlib
import pickle
import plistlib
import tempfile
import unittest
import warnings

import numpy as np
import vorto
from vorto import Color, ColorModel, ColorStop, Gradient, Interpolation, Levels, OpaqueData, OpacityStop


class Colors(unittest.TestCase):
    def test_models_convert_and_come_back(self):
        for model in ColorModel.__members__.values():
            color = Color(0.2, 0.6, 0.4, 0.5).converted(model)
            self.assertEqual(color.model, model)
            if model not in (ColorModel.HSL, ColorModel.HWB):  # these two do not come back, as they are defined
                self.assertTrue(np.allclose(color.rgba, (0.2, 0.6, 0.4, 0.5), atol=0.005), model)
        self.assertTrue(np.allclose(Color.rgb_to_hsv(0.2, 0.6, 0.4), np.multiply(colorsys.rgb_to_hsv(0.2, 0.6, 0.4), (360, 1, 1))))
        self.assertTrue(np.isnan(Color.hsv_to_rgb(360, 1, 1)).all())
        self.assertEqual(Color.hsl_to_rgb(0, 1, 0.5), (1, 0, 1))

    def test_texts(self):
        for text, rgba in (("navy", (0, 0, 128 / 255, 1)), ("#ff8800", (1, 136 / 255, 0, 1)),
                           ("rgb(255 136 0 / 50%)", (1, 136 / 255, 0, 0.5)), ("color(srgb 0.1 2 -1)", (0.1, 2, -1, 1))):
            color = Color(text)
            self.assertTrue(np.allclose(color.rgba, rgba))
            self.assertEqual(Color(color.text()).rgba[:3], color.rgba[:3])
        self.assertEqual((Color("navy").text(), Color(0.1, 0.2, 0.3).text()), ("#000080", "color(srgb 0.1 0.2 0.3)"))
        for wrong, error in (("navvy", 'column 1: .*did you mean "navy"'), ("#12345", "column"), ("red blue", "column 5"), ("", "column")):
            with self.assertRaisesRegex(ValueError, error):
                Color(wrong)
        with self.assertRaises(ValueError):
            Color(float("nan"), 0, 0).text()
        with self.assertRaises(TypeError):
            Color((1, 2))

    def test_are_values(self):
        color = Color(ColorModel.HSV, 30, 1, 0.5, 0.25)
        for other in (copy.copy(color), copy.deepcopy(color), pickle.loads(pickle.dumps(color)),
                      eval(repr(color), {"vorto": vorto})):
            self.assertEqual((other, other.alpha, other.model), (color, 0.25, ColorModel.HSV))
        other += Color("white")
        other *= 0.5
        other.invert()
        self.assertNotEqual(other, color)
        self.assertNotEqual(color, None)
        Color.RED.c1 = 0
        self.assertEqual(Color.RED, Color(1, 0, 0))
        for state in ((9, 0, 0, 0, 0), (1,), None):
            with self.assertRaises((TypeError, ValueError)):
                Color.__new__(Color).__setstate__(state)


class Fingerprints(unittest.TestCase):
    def test_tell_content_apart(self):
        hash_ = vorto.Hash128(np.arange(100, dtype=np.uint8))
        for other in (vorto.Hash128(bytes(range(100))), vorto.Hash128.from_text(str(hash_)), pickle.loads(pickle.dumps(hash_))):
            self.assertEqual((other, other.words), (hash_, hash_.words))
        self.assertFalse(vorto.Hash128())
        other.add(b"x")
        self.assertNotEqual(other, hash_)
        for wrong in ("12", "x" * 32, "0" * 33):
            with self.assertRaises(ValueError):
                vorto.Hash128.from_text(wrong)
        with self.assertRaises((BufferError, ValueError)):
            vorto.Hash128(np.zeros((4, 4), np.uint8)[:, ::2])


class Gradients(unittest.TestCase):
    TEXT = "navy, orange smooth 60%, white, opacity 50% 0%, opacity 1 100%"

    def test_evaluate_between_stops(self):
        gradient = Gradient([ColorStop(0, (0, 0.5, 1)), ColorStop(1, (1, 0.5, 0))], [OpacityStop(0, 0.0), OpacityStop(1, 1.0)])
        positions = np.linspace(-0.5, 1.5, 9).reshape(3, 3)
        t = np.clip(positions, 0, 1)
        expected = np.stack([t, np.full_like(t, 0.5), 1 - t, t], -1)
        self.assertTrue(np.allclose(gradient.evaluate(positions), expected))
        self.assertEqual(gradient.evaluate([]).shape, (0, 4))
        table = gradient.table(256)
        self.assertTrue(np.allclose(table[:, [1, 2, 3, 0]], gradient.evaluate(np.linspace(0, 1, 256)), atol=1e-6))
        for dtype in ("uint8", np.uint16):
            self.assertTrue(np.array_equal(gradient.table(256, dtype), (table * np.float32(255)).astype(np.int32)))
        self.assertTrue(np.array_equal(gradient.table(100000)[::99999], table[::255]))
        self.assertTrue(np.allclose(gradient.color_at(0.25).rgba, (0.25, 0.5, 0.75, 0.25)))
        for count in (-1, 2**24 + 1, 2**40):
            with self.assertRaises(ValueError):
                gradient.table(count)
        with self.assertRaises(TypeError):
            gradient.table(2, "float64")
        self.assertFalse(Gradient([], []).evaluate([0.5]).any())

    def test_edit(self):
        gradient = Gradient(self.TEXT)
        before = gradient.evaluate(np.linspace(0, 1, 50))
        index = gradient.insert_color(0.3)
        gradient.insert_opacity(0.7)
        self.assertEqual((gradient.colors[index].position, len(gradient.opacities)), (0.3, 3))
        gradient.sort()
        self.assertEqual([stop.position for stop in gradient.colors], [0, 0.3, 0.6, 1])
        self.assertTrue(np.allclose(gradient.evaluate(np.linspace(0, 0.6, 50)), Gradient(self.TEXT).evaluate(np.linspace(0, 0.6, 50))))
        mirrored = Gradient(self.TEXT)
        mirrored.flop()
        self.assertTrue(np.allclose(mirrored.evaluate(np.linspace(1, 0, 50)), before, atol=1e-6))
        mirrored.spread()
        self.assertEqual(sorted(stop.position for stop in mirrored.colors), [0, 0.5, 1])
        stops = gradient.colors
        stops[0].rgb = (1, 1, 1)
        stops[0].interpolation = Interpolation.Constant
        self.assertNotEqual(gradient.colors[0], stops[0])
        gradient.colors = stops
        self.assertEqual(gradient.colors, stops)
        for wrong in ([ColorStop(float("nan"), (0, 0, 0))], [ColorStop(0, (0, float("inf"), 0))], stops * 20000):
            with self.assertRaises(ValueError):
                gradient.colors = wrong
        self.assertEqual(gradient.colors, stops)
        with self.assertRaises(TypeError):
            gradient.colors = [1]

    def test_texts(self):
        gradient = Gradient("navy, orange 60%, white")
        self.assertIn("linear-gradient(to right", gradient.text("css"))
        for form in ("text", "css", "svg", "gimp", "json"):
            again = vorto.parse_parameter(gradient.text(form))
            points = np.linspace(0, 1, 64)
            self.assertTrue(np.allclose(again.evaluate(points), gradient.evaluate(points), atol=1 / 250), form)
        self.assertEqual(eval(repr(Gradient(self.TEXT)), {"vorto": vorto}), Gradient(self.TEXT))
        self.assertEqual(json.loads(gradient.text("json"))["kind"], "gradient")
        for wrong in ("redd, blue", "red 10 20", "", "linear-gradient(red", "gamma=2", "red,\nbluu"):
            with self.assertRaises(ValueError):
                Gradient(wrong)
        with self.assertRaisesRegex(ValueError, "line 2, column 1"):
            Gradient("red,\nbluu")
        with self.assertRaises(ValueError):
            gradient.text("html")
        with warnings.catch_warnings(record=True) as caught:
            warnings.simplefilter("always")
            Gradient("linear-gradient(45deg, red, blue)")
        self.assertEqual(len(caught), 1)


class LevelsValues(unittest.TestCase):
    def test_are_set_by_channel(self):
        levels = Levels("gamma=1.2, red.blackIn=10%")
        levels.blue.white_out = 0.5
        levels["alpha"].gamma = 3
        self.assertTrue(np.allclose(levels.values(), [[0, 0, 1, 1, 1.2], [0.1, 0, 1, 1, 1], [0, 0, 1, 1, 1],
                                                      [0, 0, 1, 0.5, 1], [0, 0, 1, 1, 3]]))
        for again in (Levels(levels.text()), eval(repr(levels), {"vorto": vorto}), Levels(levels.state())):
            self.assertEqual(again, levels)
        channel = levels.red
        del levels
        self.assertEqual(channel.black_in, 0.1)
        for wrong in ("gamma=9", "red.blackin=", "purple.gamma=1", "red, blue"):
            with self.assertRaises(ValueError):
                Levels(wrong)
        with self.assertRaises(KeyError):
            Levels()["purple"]
        with self.assertRaises(ValueError):
            Levels().rgb.gamma = float("nan")
        beyond = Levels()
        beyond.rgb.gamma = 9
        with self.assertRaises(vorto.Error):
            beyond.text()
        self.assertEqual(repr(beyond), "<vorto.Levels>")


class Saved(unittest.TestCase):
    VALUES = [Gradient(Gradients.TEXT), Levels("green.gamma=2"), OpaqueData({"a": [1, None, Levels("gamma=2")], "b": b"x"})]

    def test_states_and_archives_come_back(self):
        for value in self.VALUES:
            kind = type(value)
            for again in (kind.from_state(value.state()), kind.from_bytes(value.archive()), kind.from_bytes(value.archive("xml")),
                          vorto.unarchive(value.archive()), pickle.loads(pickle.dumps(value)), copy.deepcopy(value)):
                self.assertEqual((type(again), again), (kind, value))
            with tempfile.TemporaryDirectory() as folder:
                for form, format_ in (("state", "xml"), ("state", "binary"), ("archive", "xml"), ("archive", "binary")):
                    path = str(pathlib.Path(folder) / "file.plist")
                    value.save(path, form, format_)
                    self.assertEqual((kind.read(path), vorto.read_parameter(path)), (value, value))
                with self.assertRaisesRegex(vorto.Error, "/nowhere/x"):
                    value.save("/nowhere/x")
        self.assertNotEqual(self.VALUES[0], self.VALUES[1])

    def test_bad_states_leave_nothing_behind(self):
        for kind, state in ((Gradient, {"rgbSamples": [1.0]}), (Gradient, {"rgbSamples": 3}), (Gradient, [1]),
                            (Gradient, {"rgbSamples": [0.0, 0.5, 1, float("nan"), 0.0, 0.0]}), (Levels, {"blackInRGB": "x"}),
                            (Levels, b"x"), (OpaqueData, {}), (OpaqueData, b"x")):
            with self.subTest(kind=kind, state=state), self.assertRaises(vorto.Error):
                kind.from_state(state)
        for data in (b"", b"bplist00", b"<plist>", vorto.Levels().archive(), "\udcff".encode("utf8", "surrogatepass")):
            with self.assertRaises(vorto.Error):
                Gradient.from_bytes(data)
        with self.assertRaisesRegex(vorto.Error, "/nowhere"):
            Gradient.read("/nowhere")
        with self.assertRaises(ValueError):
            vorto.parse_parameter("red, blue", "purple")

    def test_archives_of_other_values(self):
        shared = Gradient()
        value = [1, 2.5, True, "text", b"data", {"x": [shared, shared, None]}, datetime.datetime(2020, 1, 2, 3, 4, 5)]
        for format_ in ("binary", "xml"):
            again = vorto.unarchive(vorto.archive(value, format_))
            self.assertEqual(again, value)
            self.assertIs(again[5]["x"][0], again[5]["x"][1])
        deep = endless = []
        for _ in range(600):
            deep = [deep]
        endless.append(endless)
        for wrong, error in ((object(), TypeError), ({1: 2}, TypeError), (deep, ValueError), (endless, ValueError),
                             (plistlib.UID(3), TypeError), (2**64, OverflowError), ("\udcff", ValueError)):
            with self.assertRaises(error):
                vorto.archive(wrong)
        with self.assertRaises(vorto.Error):
            vorto.unarchive(plistlib.dumps({"a": 1}))

    def test_property_lists_beside_the_standard_library(self):
        value = {"b": True, "i": -2**63, "u": 2**64 - 1, "r": 0.1, "s": "\u00e4\U0001f308", "d": b"\x00\xff",
                 "a": [{}, [], 1], "t": datetime.datetime(2024, 2, 29, 12, 0, 1)}
        for format_, other in (("xml", plistlib.FMT_XML), ("binary", plistlib.FMT_BINARY)):
            data = vorto.plist_to_bytes(value, format_)
            self.assertEqual(plistlib.loads(data), value)
            self.assertEqual(vorto.plist_from_bytes(plistlib.dumps(value, fmt=other)), value)
        zoned = datetime.datetime(2024, 1, 1, 1, tzinfo=datetime.timezone(datetime.timedelta(hours=1)))
        self.assertEqual(vorto.plist_from_bytes(vorto.plist_to_bytes([zoned, np.int16(3), np.float32(0.5)])),
                         [datetime.datetime(2024, 1, 1), 3, 0.5])
        with tempfile.TemporaryDirectory() as folder:
            path = f"{folder}/list.plist"
            vorto.write_plist(value, path)
            self.assertEqual(vorto.read_plist(path), value)
        for wrong, error in ((None, TypeError), ({1: 2}, TypeError), (2**64, OverflowError), (-2**63 - 1, OverflowError),
                             ("a\0b", vorto.Error), ("\udcff", ValueError)):
            with self.assertRaises(error):
                vorto.plist_to_bytes(wrong)
        with self.assertRaises(vorto.Error):
            vorto.read_plist("/")


if __name__ == "__main__":
    unittest.main()
