# SPDX-License-Identifier: BSD-3-Clause
"""The module as a whole: names, documentation, types."""

import ast
import importlib.util
import inspect
import pathlib
import re
import unittest

import vorto
from vorto import _vorto

BINDINGS = pathlib.Path(__file__).parents[2] / "Bindings" / "Python"


def load_stub_maker():
    spec = importlib.util.spec_from_file_location("stubs", BINDINGS / "stubs.py")
    maker = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(maker)
    return maker


def public_members(kind):
    for name, value in vars(kind).items():
        is_constant = name in getattr(kind, "__members__", {}) or type(value).__name__ == "pybind11_static_property"
        if not name.startswith("_") and not is_constant:
            yield name, value.__func__ if isinstance(value, staticmethod) else value


class Module(unittest.TestCase):
    def test_has_a_version(self):
        self.assertRegex(vorto.__version__, r"^\d+\.\d+\.\d+$")

    def test_every_public_name_is_documented(self):
        documented = load_stub_maker().documented
        missing = []
        for name in _vorto.__all__:
            value = getattr(_vorto, name)
            if not documented(value.__doc__):
                missing.append(name)
            if inspect.isclass(value) and not issubclass(value, Exception):
                missing += [f"{name}.{member}" for member, each in public_members(value)
                            if not documented(inspect.getdoc(each)) and member not in ("name", "value")]
        self.assertEqual(missing, [])

    def test_no_signature_names_a_type_of_cpp(self):
        unclear = [line for name in _vorto.__all__ for line in (getattr(_vorto, name).__doc__ or "").splitlines()
                   if re.search(r"\) -> .*(::|<)", line)]
        for name in _vorto.__all__:
            if inspect.isclass(getattr(_vorto, name)):
                unclear += [f"{name}.{member}" for member, each in public_members(getattr(_vorto, name))
                            if re.search(r"::.*\) -> |-> .*::", inspect.getdoc(each) or "")]
        self.assertEqual(unclear, [])

    def test_stubs_are_those_of_the_module(self):
        committed = (BINDINGS / "vorto" / "_vorto.pyi").read_text()
        ast.parse(committed)
        self.assertEqual(committed, load_stub_maker().stub(), "run Bindings/Python/stubs.py again")


if __name__ == "__main__":
    unittest.main()
