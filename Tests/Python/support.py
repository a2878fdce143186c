# SPDX-License-Identifier: BSD-3-Clause
"""What the tests of effects and files share: the program beside the module, photographs, a folder of their own."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import vorto

ROOT = pathlib.Path(__file__).resolve().parents[2]
PHOTOS = ROOT / "Docs" / "Examples" / "Photos"
PROGRAM = pathlib.Path(os.environ.get("VORTO_PROGRAM", pathlib.Path(vorto.__file__).parents[2] / "bin" / "vorto"))


def run(*arguments, expected=0):
    """Runs vorto, and returns what it said on standard error; `expected` is its exit code."""
    done = subprocess.run([str(PROGRAM), *map(str, arguments)], capture_output=True, text=True)
    if done.returncode != expected:
        raise AssertionError(f"vorto {arguments} ended with {done.returncode}: {done.stderr}")
    return done.stderr


def children():
    """The processes that this one has started and that have not been waited for."""
    return pathlib.Path(f"/proc/self/task/{os.getpid()}/children").read_text().split()


def run_python(text, folder):
    """A program of Python in a process of its own: its exit code and what it said."""
    done = subprocess.run([sys.executable, "-B", "-c", text], capture_output=True, text=True, cwd=folder)
    return done.returncode, done.stdout + done.stderr


class FolderCase(unittest.TestCase):
    """A test with a folder of its own."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def path(self, name):
        return self.folder / name

    def assertSameFile(self, one, other):
        self.assertEqual(pathlib.Path(one).read_bytes(), pathlib.Path(other).read_bytes(), f"{one} is not {other}")
