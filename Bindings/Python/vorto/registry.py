# SPDX-License-Identifier: BSD-3-Clause
"""The effects of this process: what there is, and calling them."""

import dataclasses
import inspect
import typing

from . import _vorto

# Notebooks show bitmaps as pictures, as they do Pictures.
_vorto.Bitmap._repr_png_ = lambda bitmap: _vorto.encode(bitmap)

__all__ = ["EffectInfo", "Patch", "PortInfo", "effect", "effects"]


@dataclasses.dataclass(frozen=True)
class PortInfo:
    """A port of an effect.

    key, name     as the framework and people call it; `keyword` is how a call does ("inputCellSize": cell_size)
    kind          "image", "number", "boolean", "index", "color", "string", "gradient", "levels", "opaque", "object"
    role          "input" for the pictures that a call begins with, "time", "output", else "parameter"
    minimum, maximum, default, menu   None and () where there is none
    """

    key: str
    name: str
    keyword: str
    kind: str
    role: str
    description: str = ""
    minimum: typing.Optional[float] = None
    maximum: typing.Optional[float] = None
    default: typing.Any = None
    menu: typing.Tuple[str, ...] = ()

    def _text(self):
        text = self.kind
        if self.menu:
            text = ", ".join(self.menu)
        elif self.minimum is not None and self.maximum is not None:
            text += f", {self.minimum:g} to {self.maximum:g}"
        elif self.minimum is not None:
            text += f", at least {self.minimum:g}"
        elif self.maximum is not None:
            text += f", at most {self.maximum:g}"
        if self.default is not None:
            text += f"; default {self._default()}"
        return text + (f". {self.description}" if self.description else "")

    def _default(self):
        if self.menu and self.default < len(self.menu):
            return self.menu[self.default]
        if self.kind == "color":
            return "(" + ", ".join(f"{component:g}" for component in self.default) + ")"
        return f"{self.default:g}" if isinstance(self.default, float) else repr(self.default)


@dataclasses.dataclass(frozen=True)
class EffectInfo:
    """An effect: its name, what it does, its kinds ("filter", "transition", "generator", "blend mode"), its ports.

    path            the file that it came from; empty for one that is written in Python or built in
    depends_on_time, keeps_state   what else than its ports its results depend on
    """

    name: str
    description: str
    kinds: typing.Tuple[str, ...]
    inputs: typing.Tuple[PortInfo, ...]
    outputs: typing.Tuple[PortInfo, ...]
    path: str
    depends_on_time: bool
    keeps_state: bool

    @property
    def pictures(self):
        """The ports of the pictures that a call begins with."""
        return tuple(port for port in self.inputs if port.role == "input")

    @property
    def parameters(self):
        """The ports that keywords set."""
        return tuple(port for port in self.inputs if port.role == "parameter")


def _info(described):
    def ports_of(entries):
        return tuple(PortInfo(**{**entry, "menu": tuple(entry["menu"])}) for entry in entries)

    return EffectInfo(
        **{
            **described,
            "kinds": tuple(described["kinds"]),
            "inputs": ports_of(described["inputs"]),
            "outputs": ports_of(described["outputs"]),
        }
    )


def effects(kind=None):
    """All effects, as a list of EffectInfo; with a kind ("filter", "transition", "generator", "blend mode") those of it.

    The first call loads them, from where the program `vorto` does: the system's folders, VORTO_PLUGIN_PATH, and what came
    along. load_failures() says what could not be loaded.
    """
    return [info for info in map(_info, _vorto._effects()) if kind is None or kind in info.kinds]


class Patch:
    """An effect that is called with pictures and parameters; see effect()."""

    def __init__(self, info):
        self.info = info
        self._patch = _vorto._Patch(info.name)
        self.__signature__ = _signature(info)

    def __call__(self, *pictures, time=0.0, size=None, scaling=None, fit=None, place=None, depth=None, **parameters):
        return self._patch.render(pictures, parameters, time, size, scaling, fit, place, depth)

    def __repr__(self):
        return f"<vorto effect {self.info.name!r}{self.__signature__}>"


def _signature(info):
    kinds = inspect.Parameter
    parameters = [kinds(port.keyword, kinds.POSITIONAL_ONLY) for port in info.pictures]
    for port in info.parameters:
        default = port.menu[port.default] if port.menu and port.default < len(port.menu) else port.default
        parameters.append(kinds(port.keyword, kinds.KEYWORD_ONLY, default=default))
    known = {each.name for each in parameters}
    for name, default in (("time", 0.0), ("size", None), ("scaling", None), ("fit", None), ("place", None), ("depth", None)):
        if name not in known:
            parameters.append(kinds(name, kinds.KEYWORD_ONLY, default=default))
    return inspect.Signature(parameters)


def _documentation(info):
    lines = [info.description or info.name, "", f"{', '.join(info.kinds).capitalize()}. Pictures, then keywords:", ""]
    width = max([len(port.keyword) for port in info.inputs], default=0)
    for port in info.inputs:
        if port.role != "time":
            lines.append(f"  {port.keyword:{width}}  {port._text()}")
    lines += ["", "and time, size, scaling, fit, place and depth, as for vorto.effect()."]
    return "\n".join(lines)


def effect(name):
    """The effect of that name, to be called: `vorto.effect("Levels")(image, levels="gamma=1.2")`.

    A call takes the effect's pictures (Bitmaps, Pictures of read(), or arrays and other buffers of premultiplied pixels,
    which are looked at where they are) and its parameters as keywords; help() of the effect lists them. Parameters are

      numbers, booleans   as such; a number is to be within its range
      choices             a word of the menu, or its number
      colors              (red, green, blue[, alpha]) of 0 to 1, or text as "#ff8800"
      gradients, levels   Gradient and Levels objects, text ("navy, orange 60%, white"; "gamma=1.2"), "preset:NAME", or
                          the path of a saved state; parts as **{"levels.gamma": 1.2}
      pictures            as above, or paths

    What is not given has its default. Besides there are

      time      of a transition 0 to 1, else seconds
      size      (width, height): a generator's, or what the pictures or the result are scaled to
      scaling   "nearest", "box", "linear", "cubic" or "lanczos" (which is usual); fit: "stretch", "fit" or "fill"
      place     where a second picture of another size lies on the first, as `vorto render --place`
      depth     8, 16, "half" or "float": that pictures are worked on in

    The result is what the first picture was: a Bitmap, a Picture with what its file said, or an array; of a generator a
    Bitmap. Pictures of files in other color spaces are converted to that of the first. All is as `vorto render` does it,
    to the byte. The interpreter's lock is given up while it renders; an effect is called by one thread at a time, which
    gives each thread one of its own.

    Raises Error for an unknown name, with those that are close, for what does not fit, and when the effect fails.
    """
    info = _info(_vorto._described(name))
    own = type(name, (Patch,), {"__doc__": _documentation(info), "__module__": "vorto"})
    return own(info)
