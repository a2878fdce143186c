# SPDX-License-Identifier: BSD-3-Clause
"""The module as a whole."""

import unittest

import vorto


class Module(unittest.TestCase):
    def test_has_a_version(self):
        self.assertRegex(vorto.__version__, r"^\d+\.\d+\.\d+$")


if __name__ == "__main__":
    unittest.main()
