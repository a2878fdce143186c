# SPDX-License-Identifier: BSD-3-Clause
"""Clips frame by frame, and the processes that read and write them."""

import gc
import os
import signal
import threading
import time
import unittest
from fractions import Fraction

import numpy as np
import vorto
from support import FolderCase, children, run, run_python


class Clips(FolderCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.frames = [np.full((32, 48, 4), [40 * i, 10 * i, 255 - 20 * i, 255], np.uint8) for i in range(6)]

    def setUp(self):
        super().setUp()
        self.clip = self.path("clip.mkv")
        with vorto.ClipWriter(self.clip, rate=Fraction(24000, 1001), codec="ffv1", sampling="rgb") as clip:
            for frame in self.frames:
                clip.write(frame)
        self.assertEqual(children(), [])

    def test_reads_what_it_wrote(self):
        with vorto.Clip(self.clip) as clip:
            self.assertEqual((len(clip), clip.width, clip.height, clip.rate), (6, 48, 32, Fraction(24000, 1001)))
            self.assertAlmostEqual(clip.duration, 6 * 1001 / 24000, 2)
            self.assertEqual(len(children()), 1)
            for i, frame in enumerate(clip):
                self.assertTrue(np.array_equal(np.asarray(frame), self.frames[i]))
            for i in (3, 0, 5, 4, -1, 1, 2):
                self.assertTrue(np.array_equal(np.asarray(clip[i]), self.frames[i]))
            self.assertTrue(np.array_equal(np.asarray(clip.at(2.5 * 1001 / 24000)), self.frames[2]))
            with self.assertRaises(IndexError):
                clip[6]
        with self.assertRaisesRegex(vorto.Error, "closed"):
            clip[0]
        self.assertEqual(children(), [])

    def test_gives_the_bytes_of_the_program(self):
        run("render", "Invert", "--input", self.clip, "--output", self.path("a.mkv"), "--codec", "ffv1")
        invert = vorto.effect("Invert")
        source = vorto.Clip(self.clip)
        with vorto.ClipWriter(self.path("b.mkv"), like=source, codec="ffv1") as clip:
            for frame in source:
                clip.write(invert(frame))
        self.assertSameFile(self.path("a.mkv"), self.path("b.mkv"))

    def test_an_exception_leaves_the_old_file(self):
        old = self.clip.read_bytes()
        with self.assertRaises(KeyError):
            with vorto.ClipWriter(self.clip) as clip:
                clip.write(self.frames[0])
                raise KeyError
        with self.assertRaisesRegex(vorto.Error, "no frame"):
            with vorto.ClipWriter(self.clip):
                pass
        with self.assertRaisesRegex(vorto.Error, "size"):
            with vorto.ClipWriter(self.clip) as clip:
                clip.write(self.frames[0])
                clip.write(self.frames[0][:16])
        abandoned = vorto.ClipWriter(self.clip)
        abandoned.write(self.frames[0])
        del abandoned, clip
        gc.collect()
        self.assertEqual((self.clip.read_bytes(), children()), (old, []))
        self.assertEqual(os.listdir(self.folder), ["clip.mkv"])
        for path, options, reason in (("x.png", {}, "like no clip"), ("x.webm", {"codec": "h264"}, "h264"), ("no/x.mp4", {}, "no")):
            with self.subTest(path), self.assertRaisesRegex(vorto.Error, reason):
                vorto.ClipWriter(self.path(path), **options)

    def test_processes_end_with_their_objects(self):
        clip = vorto.Clip(self.clip)
        clip[0]
        holder = [clip]
        holder.append(holder)
        del clip, holder
        gc.collect()
        self.assertEqual(children(), [])
        clip = vorto.Clip(self.clip)
        os.kill(int(children()[0]), signal.SIGKILL)
        with self.assertRaisesRegex(vorto.Error, r"clip.mkv.*signal 9"):
            for _ in clip:
                pass
        with self.assertRaises(vorto.Error):
            vorto.Clip(__file__)
        # At the interpreter's end, also where nobody has closed anything.
        code, said = run_python(
            "import os, vorto, pathlib\n"
            "clip = vorto.Clip('clip.mkv'); clip[0]\n"
            "writer = vorto.ClipWriter('new.mkv'); writer.write(clip[1])\n"
            "print(*pathlib.Path(f'/proc/self/task/{os.getpid()}/children').read_text().split())\n",
            self.folder,
        )
        self.assertEqual((code, len(said.split())), (0, 2), said)
        end = time.monotonic() + 20
        while any(os.path.exists(f"/proc/{process}") for process in said.split()) and time.monotonic() < end:
            time.sleep(0.01)
        self.assertFalse([process for process in said.split() if os.path.exists(f"/proc/{process}")])
        self.assertFalse(self.path("new.mkv").exists())

    def test_belongs_to_its_thread(self):
        clip = vorto.Clip(self.clip)
        reasons = []

        def work():
            try:
                clip[0]
            except vorto.Error as error:
                reasons.append(str(error))

        thread = threading.Thread(target=work)
        thread.start()
        thread.join()
        self.assertIn("another thread", reasons[0])


if __name__ == "__main__":
    unittest.main()
