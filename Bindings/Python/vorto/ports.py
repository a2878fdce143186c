# SPDX-License-Identifier: BSD-3-Clause
"""The ports of effects that are written in Python: class attributes of a `vorto.Effect`.

Each takes `name`, what people read (else made of the attribute's own name), and `description`. The port's key is
"input" and the attribute's name in one word: `cell_size` becomes `inputCellSize`, "Cell Size".
"""

__all__ = ["Port", "Image", "Number", "Boolean", "Index", "Choice", "Color", "String", "Gradient", "Levels"]


class Port:
    """A port. `kind` is the framework's word for what it carries."""

    kind = ""

    def __init__(self, default=None, *, name=None, description=""):
        self.default = default
        self.name = name
        self.description = description
        self.attribute = None

    def __set_name__(self, owner, attribute):
        self.attribute = attribute
        words = attribute.strip("_").split("_")
        self.key = "input" + "".join(word[:1].upper() + word[1:] for word in words)
        if self.name is None:
            self.name = " ".join(word[:1].upper() + word[1:] for word in words)

    def attributes(self):
        """The attributes of the framework's port."""
        result = {"name": self.name}
        if self.description:
            result["description"] = self.description
        if self.default is not None:
            result["default"] = self.default
        return result

    def value(self, value):
        """What render() gets of the framework's value."""
        return value


class Image(Port):
    """A picture. The first ones are the effect's inputs; an optional one is None unless somebody sets it."""

    kind = "image"

    def __init__(self, *, optional=False, name=None, description=""):
        super().__init__(name=name, description=description)
        self.optional = optional


class Number(Port):
    """A real number from `minimum` to `maximum`, where these are given: a float."""

    kind = "number"

    def __init__(self, default=0.0, *, minimum=None, maximum=None, name=None, description=""):
        super().__init__(float(default), name=name, description=description)
        self.minimum = None if minimum is None else float(minimum)
        self.maximum = None if maximum is None else float(maximum)
        for limit, isOutside in ((self.minimum, lambda v, l: v < l), (self.maximum, lambda v, l: v > l)):
            if limit is not None and isOutside(self.default, limit):
                raise ValueError(f"the default {default} is outside of {minimum} to {maximum}")

    def attributes(self):
        result = super().attributes()
        if self.minimum is not None:
            result["minimum"] = self.minimum
        if self.maximum is not None:
            result["maximum"] = self.maximum
        return result


class Index(Number):
    """A whole number from 0 on: an int."""

    kind = "index"

    def __init__(self, default=0, *, minimum=0, maximum=None, name=None, description=""):
        super().__init__(default, minimum=minimum, maximum=maximum, name=name, description=description)
        if self.default != int(self.default) or self.default < 0:
            raise ValueError(f"the default {default} is no whole number from 0 on")
        self.default = int(self.default)


class Boolean(Port):
    """True or False."""

    kind = "boolean"

    def __init__(self, default=False, *, name=None, description=""):
        super().__init__(bool(default), name=name, description=description)


class Choice(Port):
    """One of some words: a str. The first is the default, unless another is named."""

    kind = "index"

    def __init__(self, *words, default=None, name=None, description=""):
        if not words or not all(isinstance(word, str) for word in words):
            raise ValueError("a choice needs words to choose from")
        if default is not None and default not in words:
            raise ValueError(f"the default {default!r} is none of {', '.join(words)}")
        super().__init__(0 if default is None else words.index(default), name=name, description=description)
        self.words = list(words)

    def attributes(self):
        return {**super().attributes(), "menu": self.words}

    def value(self, value):
        return self.words[min(value, len(self.words) - 1)]


class Color(Port):
    """Red, green, blue and alpha of 0 to 1, not premultiplied: a tuple of four floats."""

    kind = "color"

    def __init__(self, default=(0.0, 0.0, 0.0, 1.0), *, name=None, description=""):
        components = [float(component) for component in default]
        if len(components) == 3:
            components.append(1.0)
        if len(components) != 4:
            raise ValueError("a color has three or four components")
        super().__init__(components, name=name, description=description)


class String(Port):
    """Text: a str."""

    kind = "string"

    def __init__(self, default="", *, name=None, description=""):
        super().__init__(str(default), name=name, description=description)


class Gradient(Port):
    """A `vorto.Gradient`. The default is white to black."""

    kind = "gradient"

    def __init__(self, *, name=None, description=""):
        super().__init__(name=name, description=description)


class Levels(Port):
    """A `vorto.Levels`. The default changes nothing."""

    kind = "levels"

    def __init__(self, *, name=None, description=""):
        super().__init__(name=name, description=description)
