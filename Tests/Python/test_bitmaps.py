# SPDX-License-Identifier: BSD-3-Clause
"""Bitmaps: memory that is shared with arrays, and operations beside what numpy computes."""

import copy
import gc
import multiprocessing
import pickle
import socket
import threading
import unittest

import numpy as np
import vorto
from vorto import Bitmap, PixelFormat as F

LAYOUTS = {
    F.RGBA8: (4, np.uint8), F.ARGB8: (4, np.uint8), F.YUV8: (2, np.uint8), F.RGBA16: (4, np.uint16),
    F.RGB16: (3, np.uint16), F.LuminanceAlpha16: (2, np.uint16), F.Luminance16: (1, np.uint16),
    F.RGBAHalfFloat: (4, np.float16), F.RGBAFloat: (4, np.float32),
}


def noise(shape, dtype, seed=0):
    values = np.random.default_rng(seed).random(shape)
    return (values if np.issubdtype(dtype, np.floating) else values * np.iinfo(dtype).max).astype(dtype)


def filled(layout, height=6, width=8, padding=0, seed=0):
    bitmap = Bitmap(width, height, layout, padding)
    np.asarray(bitmap)[:] = noise(bitmap.shape, bitmap.dtype, seed)
    return bitmap


class Memory(unittest.TestCase):
    def test_arrays_look_at_the_pixels_in_every_layout(self):
        for layout, (channels, dtype) in LAYOUTS.items():
            for padding in (0, 16):
                with self.subTest(layout=layout, padding=padding):
                    bitmap = Bitmap(5, 3, layout, padding)
                    array = np.asarray(bitmap)
                    self.assertEqual((array.shape, array.dtype), ((3, 5, channels), np.dtype(dtype)))
                    self.assertEqual(array.strides[0], bitmap.bytes_per_row)
                    self.assertFalse(array.any())
                    array[2, 4] = np.arange(1, channels + 1)
                    self.assertEqual(bitmap.tobytes()[-array.itemsize * channels:], array[2, 4].tobytes())
                    taken = np.from_dlpack(bitmap)
                    self.assertEqual((taken.shape, taken.dtype, taken.strides), (array.shape, array.dtype, array.strides))
                    self.assertTrue(np.shares_memory(taken, array))

    def test_arrays_keep_the_pixels_alive(self):
        bitmap = filled(F.RGBA8, 512, 512)
        expected = bitmap.tobytes()
        views = [np.asarray(bitmap), np.from_dlpack(bitmap), np.frombuffer(memoryview(bitmap).cast("B"), np.uint8)]
        del bitmap
        gc.collect()
        trash = [Bitmap(512, 512) for _ in range(4)]
        self.assertEqual([view.tobytes() for view in views], [expected] * 3)
        del trash

    def test_new_memory_leaves_arrays_what_they_look_at(self):
        bitmap, source = filled(F.RGBA8), filled(F.RGBAFloat, 3, 3, seed=1)
        array = np.asarray(bitmap)
        before = array.copy()
        bitmap.copy_with_output_conversion(source)
        self.assertTrue(np.array_equal(array, before))
        self.assertEqual((bitmap.shape, bitmap.format, bitmap == source), ((3, 3, 4), F.RGBAFloat, True))

    def test_buffers_are_refused_with_the_reason(self):
        padded = Bitmap(5, 3, F.RGBA8, 3)
        self.assertEqual(memoryview(padded).strides, (23, 4, 1))
        frozen = Bitmap.from_array(np.frombuffer(bytes(64), np.uint8).reshape(4, 4, 4))
        for wrong, error in ((lambda: vorto.Hash128(padded), BufferError),
                             (lambda: frozen.__dlpack__(), BufferError),
                             (lambda: padded.__dlpack__(dl_device=(2, 0)), BufferError),
                             (lambda: Bitmap(3, 3, F.RGBAFloat, 3).__dlpack__(), BufferError)):
            with self.assertRaises(error):
                wrong()
        self.assertFalse(np.asarray(frozen).flags.writeable)
        for change in (frozen.flip, frozen.invert_alpha, lambda: frozen.copy_from(frozen.copy()),
                       lambda: frozen.copy_with_output_conversion(padded)):
            with self.assertRaisesRegex(vorto.Error, "read-only"):
                change()

    def test_sizes_that_no_bitmap_has(self):
        for arguments in ((0, 1), (1, 0), (2**16, 2**16), (2**40, 1), (1, 2**40), (2**62, 2**62), (1, 1, F.ARGB8NoAlpha),
                          (1, 2**20, F.RGBA8, 2**20), (1, 1, F.RGBA8, 2**63)):
            with self.subTest(arguments=arguments), self.assertRaises(ValueError):
                Bitmap(*arguments)
        for arguments in ((-1, 1), ("1", 1), (1.5, 1)):
            with self.subTest(arguments=arguments), self.assertRaises(TypeError):
                Bitmap(*arguments)

    def test_copies_and_pickles(self):
        for layout in LAYOUTS:
            bitmap = filled(layout, padding=8)
            for other in (bitmap.copy(), copy.copy(bitmap), copy.deepcopy(bitmap), pickle.loads(pickle.dumps(bitmap))):
                self.assertEqual(other, bitmap)
                self.assertFalse(np.shares_memory(np.asarray(other), np.asarray(bitmap)))
            np.asarray(other)[0, 0, 0] += 1
            self.assertNotEqual(other, bitmap)
        for state in ((), (1, 1, 0, b"123"), (1, 1, 3, b"1234"), (0, 0, 0, b"")):
            with self.assertRaises(ValueError):
                Bitmap.__new__(Bitmap).__setstate__(state)
        for use in (memoryview, Bitmap.copy, Bitmap.flip, repr, lambda unmade: Bitmap(1, 1).copy_from(unmade)):
            with self.assertRaises((TypeError, BufferError)):
                use(Bitmap.__new__(Bitmap))


class FromArray(unittest.TestCase):
    def test_lies_over_the_array_where_it_can(self):
        big = noise((20, 30, 4), np.float32)
        for array in (big, big[3:9], big[:, 4:20], big[2:3, 5:6], noise((4, 5), np.uint16), noise((4, 6, 2), np.uint8)):
            for exporter in (array, Exporter(array)):
                bitmap = Bitmap.from_array(exporter, copy=False)
                seen = np.asarray(bitmap).reshape(array.shape)
                self.assertTrue(np.shares_memory(seen, array) and np.array_equal(seen, array))
                seen[0, 0] = 0
                self.assertFalse(np.any(array[0, 0]))

    def test_keeps_the_array_alive_and_lets_it_go(self):
        released = []

        class Kept(np.ndarray):
            def __del__(self):
                released.append(True)

        array = np.zeros((64, 64, 4), np.float32).view(Kept)
        bitmap = Bitmap.from_array(array)
        del array
        gc.collect()
        self.assertFalse(released)
        view = np.asarray(bitmap)
        del bitmap
        gc.collect()
        self.assertFalse(released)
        view[:] = 1
        del view
        gc.collect()
        self.assertTrue(released)
        data = bytearray(64)
        bitmap = Bitmap.from_array(memoryview(data).cast("B", (4, 4, 4)))
        with self.assertRaises(BufferError):
            data.append(0)

    def test_copies_what_cannot_be_used_as_it_is(self):
        array = noise((6, 8, 4), np.uint8)
        odd = np.frombuffer(bytearray(2 * 6 * 8 * 4 + 1), np.uint8)[1:].view(np.uint16).reshape(6, 8, 4)
        for each in (array[::-1], array[:, ::-1], array[:, ::2], array[..., ::-1], np.asfortranarray(array), odd,
                     np.broadcast_to(array[0], array.shape)):
            with self.assertRaisesRegex(ValueError, "without a copy"):
                Bitmap.from_array(each, copy=False)
            copied = np.asarray(Bitmap.from_array(each))
            self.assertTrue(np.array_equal(copied, each) and not np.shares_memory(copied, each))
        self.assertFalse(np.shares_memory(np.asarray(Bitmap.from_array(array, copy=True)), array))
        for dtype in (np.uint8, np.float16, np.float32):
            full = np.iinfo(dtype).max if dtype == np.uint8 else 1
            for shape in ((5, 4, 3), (5, 4), (5, 4, 1)):
                colors = noise(shape, dtype)
                made = np.asarray(Bitmap.from_array(colors))
                self.assertTrue(np.array_equal(made[..., :3], np.broadcast_to(colors.reshape(5, 4, -1), (5, 4, 3))))
                self.assertTrue(np.all(made[..., 3] == full))
        swapped = np.asarray(Bitmap.from_array(array[..., :3], F.ARGB8))
        self.assertTrue(np.array_equal(swapped[..., 1:], array[..., :3]) and np.all(swapped[..., 0] == 255))

    def test_refuses_the_rest(self):
        for array, error in ((np.zeros((4, 4, 4)), TypeError), (np.zeros((4, 4, 4), ">u2"), TypeError), (object(), TypeError),
                             (np.zeros((4, 4, 4), np.int8), TypeError), (np.zeros(4, np.uint8), ValueError),
                             (np.zeros((4, 4, 5), np.uint8), ValueError), (np.zeros((0, 4, 4), np.uint8), ValueError),
                             (np.zeros((1, 4, 4, 4), np.uint8), ValueError), (b"1234", ValueError),
                             (np.zeros((4, 4, 2), np.float32), ValueError),
                             (np.broadcast_to(np.zeros((1, 1, 4), np.uint8), (2**16, 2**16, 4)), ValueError)):
            with self.assertRaises(error):
                Bitmap.from_array(array)
        with self.assertRaises(ValueError):
            Bitmap.from_array(np.zeros((4, 4, 4), np.uint8), F.RGBA16)
        with self.assertRaises(ValueError):
            Bitmap.from_array(np.zeros((4, 4, 4), np.uint8), F.ARGB8NoAlpha)


class Exporter:
    """An array that is known by DLPack alone."""

    def __init__(self, array):
        self.array = array

    def __dlpack__(self):
        return self.array.__dlpack__()

    def __dlpack_device__(self):
        return (1, 0)


class Operations(unittest.TestCase):
    def changed(self, layout, name, *arguments, padding=0):
        bitmap = filled(layout, padding=padding)
        before = np.asarray(bitmap).copy()
        getattr(bitmap, name)(*arguments)
        return before, np.asarray(bitmap), bitmap

    def test_in_place_with_and_without_padding(self):
        for padding in (0, 4, 20):
            for layout, alpha in ((F.RGBA8, 3), (F.ARGB8, 0), (F.RGBA16, 3), (F.LuminanceAlpha16, 1), (F.RGBAFloat, 3)):
                full = 1 if layout == F.RGBAFloat else 255 if layout in (F.RGBA8, F.ARGB8) else 65535
                before, after, _ = self.changed(layout, "invert_alpha", padding=padding)
                self.assertTrue(np.array_equal(after[..., alpha], full - before[..., alpha]))
                self.assertTrue(np.array_equal(np.delete(after, alpha, 2), np.delete(before, alpha, 2)))
                _, after, _ = self.changed(layout, "set_constant_alpha", 1, padding=padding)
                self.assertTrue(np.all(after[..., alpha] == full))
            before, after, _ = self.changed(F.RGBA16, "duplicate_alpha_to_rgb", padding=padding)
            self.assertTrue(np.all(after[..., :3] == before[..., 3:]))
            for layout in LAYOUTS:
                before, after, _ = self.changed(layout, "flip", padding=padding)
                self.assertTrue(np.array_equal(after, before[::-1]), (layout, padding))
            before, after, _ = self.changed(F.RGBA8, "pre_mult", padding=padding)
            expected = before[..., :3].astype(int) * before[..., 3:] // 255
            self.assertTrue(np.array_equal(after[..., :3], expected))
            before, after, bitmap = self.changed(F.RGBA8, "convert_to_argb", padding=padding)
            self.assertEqual(bitmap.format, F.ARGB8)
            self.assertTrue(np.array_equal(after, np.roll(before, 1, 2)))
            before, after, _ = self.changed(F.RGBAFloat, "unpremultiply", padding=padding)
            self.assertTrue(np.allclose(after[..., :3], before[..., :3] / before[..., 3:], rtol=1e-5))

    def test_between_bitmaps_with_and_without_padding(self):
        for there in (0, 12):
            for here in (0, 4):
                source = filled(F.ARGB8, padding=there)
                array = np.asarray(source)
                target = Bitmap(8, 6, F.ARGB8, here)
                seen = np.asarray(target)
                target.copy_from(source)
                self.assertEqual(target, source)
                target.copy_with_flip(source)
                self.assertTrue(np.array_equal(seen, array[::-1]))
                target.copy_with_swizzle_argb_to_rgba(source)
                self.assertTrue(np.array_equal(seen, np.roll(array, -1, 2)))
                target.copy_with_flip_and_swizzle_argb_to_rgba(source)
                self.assertTrue(np.array_equal(seen, np.roll(array, -1, 2)[::-1]))
                part = Bitmap(3, 2, F.ARGB8, here)
                part.copy_with_cropping(source, 4, 1, True)
                self.assertTrue(np.array_equal(part, array[1:3, 4:7][::-1]))
                double = Bitmap(16, 12, F.ARGB8, here)
                double.copy_with_scaling(source)
                self.assertTrue(np.array_equal(double, array.repeat(2, 0).repeat(2, 1)))
                deep = Bitmap(8, 6, F.RGBA16, here)
                deep.copy_with_scaling_and_depth_conversion(source)
                self.assertTrue(np.array_equal(deep, np.roll(array, -1, 2).astype(np.uint16) * 257))
                target.set_data(bytes(8 * 6 * 4))
                self.assertFalse(seen.any())

    def test_what_would_end_the_process_or_mean_nothing_is_refused(self):
        eight, float32, small = filled(F.ARGB8), filled(F.RGBAFloat), filled(F.ARGB8, 3, 3)
        for call in (lambda: eight.copy_with_flip(float32), lambda: eight.copy_with_flip(small),
                     lambda: eight.copy_with_flip_and_swizzle_argb_to_rgba(float32), lambda: eight.copy_from(small),
                     lambda: eight.copy_with_flip_and_swizzle_argb_to_rgba(small), lambda: eight.copy_from(float32),
                     lambda: small.copy_with_cropping(eight, -1, 0), lambda: small.copy_with_cropping(eight, 6, 0),
                     lambda: small.copy_with_cropping(eight, 0, 2**40), lambda: small.copy_with_cropping(float32, 0, 0),
                     lambda: filled(F.RGB16).invert_alpha(), lambda: filled(F.YUV8).unpremultiply(),
                     lambda: filled(F.RGBA8).un_pre_mult(), lambda: filled(F.YUV8).copy_with_scaling(filled(F.YUV8, 2, 2)),
                     lambda: filled(F.RGBA8).copy_with_scaling_and_depth_conversion(eight),
                     lambda: filled(F.Luminance16).histogram(), lambda: eight.set_data(b"12"), lambda: eight.scaled(0, 1),
                     lambda: eight.scaled(1, 1, "sharp"), lambda: eight.cropped(0, 0, 9, 1),
                     lambda: filled(F.RGBA8, 2, 3).converted(F.YUV8), lambda: eight.converted(F.ARGB8NoAlpha)):
            with self.assertRaises(ValueError):
                call()
        for call in (lambda: eight.copy_from(None), lambda: eight.unpremultiply(3), lambda: eight.set_constant_alpha("1")):
            with self.assertRaises(TypeError):
                call()

    def test_conversions_between_all_layouts(self):
        gray = Bitmap(4, 2, F.RGBAFloat)
        np.asarray(gray)[:] = 1, 1, 1, 1
        for one in LAYOUTS:
            for other in LAYOUTS:
                back = gray.converted(one).converted(other).converted(F.RGBAFloat)
                self.assertTrue(np.allclose(back, 1, atol=0.01), (one, other))
        exact = filled(F.RGBA16)
        self.assertEqual(exact.converted(F.RGBAFloat).converted(F.RGBA16), exact)
        luminance = np.asarray(exact) @ np.array([0.299, 0.587, 0.114, 0])
        self.assertLessEqual(np.abs(np.asarray(exact.converted(F.Luminance16))[..., 0] - luminance).max(), 1)

    def test_histogram_counts_as_numpy_does(self):
        for layout, order in ((F.RGBA8, (0, 1, 2, 3)), (F.ARGB8, (1, 2, 3, 0)), (F.RGBA16, (0, 1, 2, 3))):
            bitmap = filled(layout, 40, 50, padding=8)
            array = np.asarray(bitmap).astype(np.float64) / (257 if layout == F.RGBA16 else 1)
            counts = bitmap.histogram()
            for name, channel in zip(("red", "green", "blue", "alpha"), order):
                bins = np.minimum(np.floor(array[..., channel] + 0.5), 254).astype(int)
                self.assertTrue(np.array_equal(counts[name], np.bincount(bins.ravel(), minlength=256)))
            self.assertTrue(np.array_equal(counts["rgb"], counts["red"] + counts["green"] + counts["blue"]))

    def test_scaling_keeps_a_constant(self):
        bitmap = Bitmap(40, 30, F.RGBA8)
        np.asarray(bitmap)[:] = 10, 20, 30, 255
        for name in ("nearest", "box", "linear", "cubic", "lanczos"):
            self.assertTrue(np.all(np.asarray(bitmap.scaled(17, 51, name)) == (10, 20, 30, 255)))
        same = bitmap.scaled(40, 30)
        self.assertFalse(np.shares_memory(np.asarray(same), np.asarray(bitmap)))


class Sharing(unittest.TestCase):
    def test_another_process_sees_the_same_pixels(self):
        here, there = socket.socketpair()
        bitmap = filled(F.RGBAFloat)
        other = multiprocessing.get_context("fork").Process(target=Sharing.answer, args=(there,))
        other.start()
        there.close()
        here.settimeout(None)
        bitmap.send(here)
        self.assertEqual(here.recv(1), b"x")
        other.join()
        self.assertEqual(np.asarray(bitmap)[0, 0, 0], 42)
        with self.assertRaisesRegex(vorto.Error, "closed"):
            Bitmap.receive(here)
        with self.assertRaisesRegex(vorto.Error, "copy"):
            Bitmap.from_array(np.zeros((2, 2, 4), np.uint8)).send(here)
        with self.assertRaises(TypeError):
            bitmap.send("nowhere")
        here.close()

    @staticmethod
    def answer(connection):
        received = Bitmap.receive(connection)
        np.asarray(received)[0, 0, 0] = 42
        connection.sendall(b"x")

    def test_a_second_thread_meets_an_error_and_no_damage(self):
        bitmap, source = Bitmap(1500, 1000, F.RGBAFloat), Bitmap(1500, 1000, F.RGBAFloat)
        outcomes = []

        def work(call):
            for _ in range(20):
                try:
                    call()
                    outcomes.append(None)
                except vorto.Error as error:
                    outcomes.append(str(error))

        threads = [threading.Thread(target=work, args=(call,)) for call in
                   (lambda: bitmap.copy_from(source), lambda: bitmap.invert_alpha(), source.copy, source.copy)]
        for each in threads:
            each.start()
        for each in threads:
            each.join()
        self.assertEqual(len(outcomes), 80)
        self.assertTrue(all(each is None or "another thread" in each for each in outcomes))
        bitmap.copy_from(source)
        self.assertEqual(bitmap, source)


if __name__ == "__main__":
    unittest.main()
