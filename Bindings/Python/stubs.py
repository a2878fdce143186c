# SPDX-License-Identifier: BSD-3-Clause
"""Writes vorto/_vorto.pyi, the types of the compiled module, from the signatures that the module itself states.

Usage: PYTHONPATH=BUILD/python stubs.py [--check] FILE
"""

import inspect
import pathlib
import re
import sys

# The package beside this file is the one that is to be built.
sys.path = [place for place in sys.path if pathlib.Path(place).resolve() != pathlib.Path(__file__).resolve().parent]

import vorto._vorto as module  # noqa: E402

HEADER = '''# SPDX-License-Identifier: BSD-3-Clause
# Made by Bindings/Python/stubs.py from the module.
import datetime
import enum
import typing

import numpy
import numpy.typing

ColorLike = typing.Union["Color", str, typing.Tuple[float, float, float], typing.Tuple[float, float, float, float]]
'''

SPECIAL = {"__init__", "__eq__", "__ne__", "__bool__", "__len__", "__getitem__", "__iter__", "__next__", "__enter__",
           "__exit__", "__call__", "__contains__", "__copy__", "__deepcopy__", "__dlpack__", "__dlpack_device__",
           "__iadd__", "__isub__", "__imul__", "__itruediv__", "__str__"}


def python_type(text):
    """A type as pybind11 writes it, as Python's type checkers know it."""
    text = re.sub(r"\bvorto\._vorto\.", "", text)
    text = re.sub(r"numpy\.ndarray\[numpy\.(\w+)\]", r"numpy.typing.NDArray[numpy.\1]", text)
    text = re.sub(r"\b(Optional|Union|List|Tuple|Dict|Set|Callable|Iterator|Iterable|Sequence|Annotated)\[",
                  r"typing.\1[", text)
    text = re.sub(r"\bbuffer\b", "typing.Union[bytes, bytearray, memoryview]", text)
    text = re.sub(r"\b(object|handle)\b", "typing.Any", text)
    text = re.sub(r"\bfunction\b", "typing.Callable[..., typing.Any]", text)
    text = re.sub(r"\bos\.PathLike\b", "str", text)
    return text


def split(arguments):
    """The arguments of a signature, apart at commas that no bracket, quote or <...> holds."""
    parts, depth, part, quote = [], 0, "", ""
    for one in arguments:
        if quote:
            quote = "" if one == quote else quote
        elif one in "'\"":
            quote = one
        elif one in "[({<":
            depth += 1
        elif one in "])}>":
            depth -= 1
        if one == "," and depth == 0 and not quote:
            parts.append(part.strip())
            part = ""
        else:
            part += one
    return parts + ([part.strip()] if part.strip() else [])


def parameter(text):
    if text.startswith("*") and ":" not in text or text == "/":
        return text
    name, colon, rest = text.partition(":")
    if not colon:
        return "self" if name == "self" else text
    if name == "self":
        return "self"
    kind, equals, default = rest.strip().partition(" = ")
    kind = python_type(kind)
    kind = re.sub(r"\bColor\b", "ColorLike", kind)
    return f"{name}: {kind}" + (f" = {plain_default(default)}" if equals else "")


def plain_default(default):
    return default if re.fullmatch(r"-?[\d.]+|None|True|False|'[^']*'", default) else "..."


def signatures(function):
    """The signatures that the docstring of a function states: [(parameters, result)]."""
    found = []
    name = function.__name__
    for line in (function.__doc__ or "").splitlines():
        match = re.fullmatch(r"(?:\d+\. )?" + re.escape(name) + r"\((.*)\) -> (.*)", line.strip())
        if match:
            parameters = [parameter(each) for each in split(match[1])]
            found.append((", ".join(parameters), python_type(match[2])))
    return found


def documented(doc):
    """The sentence of a docstring, without what pybind11 put in front."""
    lines = [line for line in (doc or "").splitlines()
             if line.strip() and not re.match(r"^(\d+\. )?\w+\(.*\) -> |^Overloaded function", line)]
    return lines[0].strip() if lines else ""


def function_lines(name, function, indent, is_static=False):
    found = signatures(function)
    decorator = [f"{indent}@typing.overload"] if len(found) > 1 else []
    for parameters, result in found:
        yield from decorator
        if is_static:
            yield f"{indent}@staticmethod"
        if name in ("__eq__", "__ne__"):
            parameters, result = "self, other: object", "bool"
        yield f"{indent}def {name}({parameters}) -> {result}: ..."


def property_type(value):
    getter = value.fget.__doc__ or ""
    match = re.search(r"-> (.*)", getter)
    return python_type(match[1]) if match else "typing.Any"


def class_lines(name, kind):
    bases = [base.__name__ for base in kind.__bases__ if base.__module__ == module.__name__]
    if issubclass(kind, Exception):
        yield f"class {name}({', '.join(base.__name__ for base in kind.__bases__)}): ..."
        return
    yield f"class {name}({', '.join(bases)}):" if bases else f"class {name}:"
    lines = []
    members = dict(getattr(kind, "__members__", {}))
    for key in members:
        lines.append(f"    {key}: typing.ClassVar[{name}]")
    if members:
        lines += ["    __members__: typing.ClassVar[typing.Dict[str, typing.Any]]",
                  "    def __init__(self, value: int) -> None: ...", "    def __int__(self) -> int: ...",
                  "    def __index__(self) -> int: ...", "    def __hash__(self) -> int: ...",
                  "    @property", "    def value(self) -> int: ..."]
        lines += ["    @property", "    def name(self) -> str: ..."]
    for key in sorted(vars(kind)):
        value = inspect.getattr_static(kind, key)
        if key in members or members and key in ("name", "value", "__init__", "__eq__", "__ne__", "__str__"):
            continue
        if key.startswith("_") and key not in SPECIAL:
            continue
        if key == "__hash__" or callable(value) and not hasattr(value, "__name__"):
            continue
        if isinstance(value, staticmethod):
            lines += function_lines(key, value.__func__, "    ", is_static=True)
        elif isinstance(value, property) and type(value).__name__ == "pybind11_static_property":
            lines.append(f"    {key}: typing.ClassVar[{type(getattr(kind, key)).__name__}]")
        elif isinstance(value, property):
            lines += ["    @property", f"    def {key}(self) -> {property_type(value)}: ..."]
            if value.fset:
                taken = re.search(r"arg1: (.*?)\) -> None", value.fset.__doc__ or "")
                lines += [f"    @{key}.setter",
                          f"    def {key}(self, value: {python_type(taken[1]) if taken else 'typing.Any'}) -> None: ..."]
        elif callable(value):
            lines += function_lines(key, value, "    ")
    yield from lines or ["    ..."]


def stub():
    lines = [HEADER]
    for name in module.__all__:
        value = getattr(module, name)
        if inspect.isclass(value):
            lines += ["", *class_lines(name, value)]
        elif callable(value):
            lines += ["", *function_lines(name, value, "")]
        else:
            lines += ["", f"{name}: {type(value).__name__}"]
    return "\n".join(lines + ["", "__version__: str", ""])


def main(arguments):
    check = "--check" in arguments
    path = arguments[-1]
    if not check:
        with open(path, "w", encoding="utf-8") as file:
            file.write(stub())
        return 0
    with open(path, encoding="utf-8") as file:
        return 0 if file.read() == stub() else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
