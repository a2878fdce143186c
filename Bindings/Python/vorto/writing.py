# SPDX-License-Identifier: BSD-3-Clause
"""Effects that are written in Python: the base class, and how a class joins the registry."""

import inspect
import os
import traceback

from . import _vorto, ports

__all__ = ["Effect"]

_KINDS = {0: "generator", 1: "filter", 2: "blend mode"}


class Effect:
    """Base of effects that are written in Python. Each subclass that has a render() joins the registry of the process.

    The ports are class attributes (`vorto.ports`). render() gets by name what it names of them, pictures in the order of
    the ports, `time` (seconds; of a transition 0 to 1), and of a generator `width`, `height` and `depth` (8, 16 or
    "float"). Pictures are read-only `Bitmap`s, premultiplied, RGBA of 8 bits, 16 bits or floats; it returns a `Bitmap`
    or an array of such pixels.

    Attributes of the class:
      name        the effect's name; else that of the class, its words apart ("OldFilm": "Old Film")
      kind        "filter", "generator", "transition" or "blend mode"; else what the number of pictures says
      keeps_state True when a result depends on what was rendered before: frames are then rendered one after another.
                  Only such an effect may set attributes of its own in render().
      abstract    True for a class that is only to be derived from

    The docstring's first paragraph is the description. An exception in render() is the failure of the frame.
    """

    name = None
    kind = None
    keeps_state = False
    abstract = False

    def __init_subclass__(cls, **arguments):
        super().__init_subclass__(**arguments)
        if cls.__dict__.get("abstract") or cls.render is Effect.render:
            return
        cls.abstract = False
        _register(cls)

    def render(self, **values):
        """The picture. Subclasses have it."""
        raise NotImplementedError

    def __setattr__(self, attribute, value):
        if self.__dict__.get("_renders") and not self.keeps_state:
            raise AttributeError(
                f"render() sets self.{attribute}: frames are rendered in any order, by several processes, "
                "unless the class says keeps_state = True"
            )
        object.__setattr__(self, attribute, value)


def _words(name):
    text = ""
    for before, letter in zip(" " + name, name):
        text += " " + letter if letter.isupper() and before.islower() else letter
    return text.replace("_", " ")


def _ports(cls):
    """The ports in the order in which they stand, those of base classes first."""
    found = {}
    for base in reversed(cls.__mro__):
        for attribute, value in vars(base).items():
            if isinstance(value, ports.Port):
                found[attribute] = value
            elif attribute in found:
                del found[attribute]
    return list(found.values())


def _kind(cls, inputs):
    kind = cls.kind or _KINDS.get(len(inputs))
    expected = {"generator": 0, "filter": 1, "transition": 2, "blend mode": 2}
    if kind is None:
        raise TypeError(f"{cls.__name__} takes {len(inputs)} pictures: more than two are to be optional")
    if kind not in expected:
        raise TypeError(f"{cls.__name__}.kind is {kind!r}: give filter, generator, transition or blend mode")
    if expected[kind] != len(inputs):
        raise TypeError(f"{cls.__name__} takes {len(inputs)} pictures, and a {kind} takes {expected[kind]}")
    return kind


def _protocols(kind, inputs):
    keys = [port.key for port in inputs]
    if kind == "generator":
        return {"generator": {"outputImagePort": "outputImage"}}
    if kind == "filter":
        return {"filter": {"inputImagePort": keys[0], "outputImagePort": "outputImage"}}
    if kind == "transition":
        return {
            "transition": {
                "inputImageAPort": keys[0],
                "inputImageBPort": keys[1],
                "inputTimePort": "inputTime",
                "outputImagePort": "outputImage",
            }
        }
    return {
        "blendMode": {
            "inputBackgroundImagePort": keys[0],
            "inputForegroundImagePort": keys[1],
            "outputImagePort": "outputImage",
        }
    }


class _Plan:
    """What the framework is told of a class, and how its render() is called."""

    def __init__(self, cls):
        own = _ports(cls)
        inputs = [port for port in own if port.kind == "image" and not port.optional]
        self.cls = cls
        self.kind = _kind(cls, inputs)
        self.name = cls.__dict__.get("name") or _words(cls.__name__)
        self.added = self._added()
        self.ports = own + list(self.added.values())
        parameters = inspect.signature(cls.render).parameters
        takes_all = any(each.kind is each.VAR_KEYWORD for each in parameters.values())
        known = [port.attribute for port in self.ports] + ["time"]
        names = [each.name for each in list(parameters.values())[1:] if each.kind in (each.POSITIONAL_OR_KEYWORD, each.KEYWORD_ONLY)]
        unknown = [name for name in names if name not in known and parameters[name].default is inspect.Parameter.empty]
        if unknown:
            raise TypeError(f"{cls.__name__}.render() takes {unknown[0]!r}, and there is no such port")
        self.wanted = [port for port in self.ports if takes_all or port.attribute in names]
        self.takes_time = takes_all or "time" in names
        self.attributes = {
            "name": self.name,
            "description": " ".join((inspect.getdoc(cls) or "").split("\n\n")[0].split()),
            "protocols": _protocols(self.kind, inputs),
            "dependsOnTime": self.takes_time or self.kind == "transition",
            "keepsState": bool(cls.keeps_state),
        }

    def _added(self):
        """The ports that a kind has beside those of the class."""
        if self.kind == "transition":
            added = {"time": ports.Number(0, minimum=0, maximum=1)}
        elif self.kind == "generator":
            added = {
                "width": ports.Index(1920, minimum=1, maximum=65536),
                "height": ports.Index(1080, minimum=1, maximum=65536),
                "depth": ports.Choice("8-bit", "16-bit", "Float"),
            }
        else:
            added = {}
        for attribute, port in added.items():
            port.__set_name__(self.cls, attribute)
        return added

    def declaration(self):
        """Key, kind and attributes of each port."""
        return [(port.key, port.kind, port.attributes()) for port in self.ports]

    def keys(self):
        return [port.key for port in self.wanted]

    def required(self):
        return [port.key for port in self.ports if port.kind == "image" and not port.optional]

    def instance(self):
        return self.cls()

    def failure(self, exception):
        return _failure(exception)

    def render(self, instance, values, time):
        arguments = {}
        for port, value in zip(self.wanted, values):
            arguments[port.attribute] = port.value(value)
        if self.kind == "generator" and "depth" in arguments:
            arguments["depth"] = {"8-bit": 8, "16-bit": 16}.get(arguments["depth"], "float")
        if self.takes_time and self.kind != "transition":
            arguments["time"] = time
        instance.__dict__["_renders"] = True
        try:
            result = instance.render(**arguments)
        finally:
            instance.__dict__["_renders"] = False
        if result is None:
            raise TypeError(f"{self.cls.__name__}.render() returned None, not a picture")
        # What numpy computes with unless it is told otherwise.
        isDouble = not isinstance(result, _vorto.Bitmap) and getattr(getattr(result, "dtype", None), "char", "") == "d"
        return result.astype("f4") if isDouble else result


def _register(cls):
    plan = _Plan(cls)
    _vorto._register_effect(plan.name, plan.attributes, plan)


def _failure(exception):
    """An exception in one line, with the place in the author's code where it came from."""
    text = f"{type(exception).__name__}: {exception}" if str(exception) else type(exception).__name__
    frames = [frame for frame in traceback.extract_tb(exception.__traceback__) if frame.filename != __file__]
    if frames:
        place = frames[-1]
        text += f" ({os.path.basename(place.filename)}, line {place.lineno}, in {place.name})"
    return " ".join(text.split())
