# SPDX-License-Identifier: BSD-3-Clause
"""States, archives and texts of gradients and levels, read and written as Docs/formats.md says, with nothing of Vorto's own code."""
import base64
import datetime
import json
import math
import plistlib
import re
import struct
from decimal import Decimal
from xml.parsers import expat

CHANNELS = ["RGB", "Red", "Green", "Blue", "Alpha"]
VALUES = ["blackIn", "blackOut", "whiteIn", "whiteOut", "gamma"]
LEVELS = ["selectedChannel"] + [value + channel for channel in CHANNELS for value in VALUES]
GRADIENT = {"rgbSamples": 6, "alphaSamples": 4}
DEFAULTS = {"rgbSamples": [0.0, 0.5, 2, 1.0, 1.0, 1.0, 1.0, 0.5, 2, 0.0, 0.0, 0.0], "alphaSamples": [0.0, 0.5, 2, 1.0]}
NEW_LEVELS = {key: 0 if key == "selectedChannel" else float(not key.startswith("black")) for key in LEVELS}
CLASSES = {"VRTGradient": "gradient", "TarnGradient": "gradient", "VRTHistogram": "levels", "TarnHistogram": "levels",
           "VRTOpaqueData": "opaque", "TarnOpaqueData": "opaque"}
INTERPOLATIONS = ["constant", "linear", "smooth"]
MOST_ITEMS = 65536


class Refused(Exception):
    pass


def refuse(what):
    raise Refused(what)


# Property lists

class XmlReader:
    """Apart from plistlib, which takes some of what the page refuses, and refuses some of what it allows."""
    LEAVES = ("key", "string", "integer", "real", "true", "false", "data", "date")
    REAL = re.compile(r"[+-]?(?:inf|infinity|nan|(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:e[+-]?[0-9]+)?)", re.I)

    def read(self, data):
        self.open, self.leaf, self.text, self.root, self.depth = [], None, "", [], 0
        parser = expat.ParserCreate("utf-8")
        parser.StartElementHandler, parser.EndElementHandler = self.start, self.end
        parser.CharacterDataHandler = self.characters
        parser.XmlDeclHandler = lambda version, encoding, alone: (
            (encoding or "utf-8").lower() in ("utf-8", "utf8") or data.isascii() or refuse("an encoding"))
        parser.StartDoctypeDeclHandler = lambda name, system, public, own: own and refuse("declarations")
        parser.SkippedEntityHandler = lambda name, parameter: refuse("an entity")
        try:
            parser.Parse(data, True)
        except expat.ExpatError as fault:
            raise Refused(str(fault)) from fault
        return self.root[0]

    def start(self, name, _):
        if self.leaf or (name == "plist" and self.depth) or name not in (*self.LEAVES, "dict", "array", "plist"):
            refuse(f"<{name}>")
        self.depth += 1
        if name == "plist":
            return
        if not self.open and self.root:
            refuse("more than one value")
        is_dict = bool(self.open) and isinstance(self.open[-1][0], dict)
        if (name == "key") != (is_dict and self.open[-1][1] is None):
            refuse("keys and values do not alternate")
        if len(self.open) >= 512:
            refuse("nested too deeply")
        if name in self.LEAVES:
            self.leaf, self.text = name, ""
        else:
            self.open.append([{} if name == "dict" else [], None])

    def characters(self, text):
        if self.leaf:
            self.text += text
        elif text.strip(" \t\n"):
            refuse("text where a tag should be")

    def end(self, name):
        if self.leaf:
            leaf, self.leaf = self.leaf, None
            if leaf == "key":
                self.open[-1][1] = self.text
            else:
                self.put(self.value_of(leaf, self.text.strip(" \t\n")))
        elif name == "plist":
            self.root or refuse("no value")
        else:
            value, key = self.open.pop()
            self.put(value if key is None else refuse("a key without a value"))

    def value_of(self, leaf, text):
        if leaf == "integer":
            number = re.fullmatch(r"([+-]?)(?:0[xX]([0-9A-Fa-f]+)|([0-9]+))", text) or refuse("an integer")
            value = int(number[1] + (number[2] or number[3]), 16 if number[2] else 10)
            return value if -2**63 <= value < 2**64 else refuse("an integer beyond 64 bits")
        if leaf == "real":
            return float(text) if self.REAL.fullmatch(text) else refuse("a real")
        if leaf in ("true", "false"):
            return leaf == "true" if not text else refuse("a boolean with text")
        if leaf == "data":
            text = re.sub("[ \t\n]", "", text)
            return base64.b64decode(text) if re.fullmatch("[A-Za-z0-9+/]*={0,2}", text) and len(text) % 4 == 0 else refuse("data")
        if leaf == "date":
            return datetime.datetime.strptime(text, "%Y-%m-%dT%H:%M:%SZ")
        return self.text

    def put(self, value):
        if isinstance(value, dict) and list(value) == ["CF$UID"]:
            number = value["CF$UID"]
            value = plistlib.UID(number) if type(number) is int and 0 <= number < 2**32 else value
        if not self.open:
            self.root.append(value)
        elif isinstance(self.open[-1][0], list):
            self.open[-1][0].append(value)
        else:
            self.open[-1][0][self.open[-1][1]] = value
            self.open[-1][1] = None


def read_list(data):
    if not data.startswith(b"bplist"):
        return XmlReader().read(data)
    try:
        return plistlib.loads(data)
    except Exception as fault:  # the library has many
        raise Refused(str(fault)) from fault


def write_list(value, binary=False):
    def without_uids(each):
        if isinstance(each, plistlib.UID):
            return {"CF$UID": each.data}
        if isinstance(each, dict):
            return {key: without_uids(inner) for key, inner in each.items()}
        return [without_uids(inner) for inner in each] if isinstance(each, list) else each
    if binary:
        return plistlib.dumps(value, fmt=plistlib.FMT_BINARY, sort_keys=False)
    return plistlib.dumps(without_uids(value), sort_keys=False)


# States

NUMBER_AT_START = re.compile(r"[ \t\n\v\f\r]*(\+?-?)(\d+\.?\d*(?:[eE][+-]?\d+)?|\.\d+(?:[eE][+-]?\d+)?)")


def real_of(value):
    if isinstance(value, str):
        start = NUMBER_AT_START.match(value)
        if not start or start[1] == "+-":
            refuse(f"{value!r} is no number")
        value = float(start[1] + start[2])
    if not isinstance(value, (bool, int, float)):
        refuse(f"{value!r} is no number")
    value = float(value)
    if not math.isfinite(value):
        refuse("not finite")
    return value


def whole_of(value):
    real = real_of(value)
    if isinstance(value, str):
        digits = re.match(r"[ \t\n\v\f\r]*\+?(-?\d+)", value)
        whole = int(digits[1]) if digits else 0
    else:
        whole = int(value) if isinstance(value, int) else math.trunc(real)
    return min(max(whole, -2**31), 2**31 - 1)


def samples_of(numbers, each):
    if not isinstance(numbers, list) or len(numbers) % each:
        refuse("not samples of %d numbers" % each)
    return [whole_of(number) if i % each == 2 else real_of(number) for i, number in enumerate(numbers)]


def state_of(kind, value):
    """What a port keeps of a state."""
    if kind == "opaque":
        return value if isinstance(value, bytes) and unarchived(read_list(value), True) is not None else refuse("no data")
    if not isinstance(value, dict):
        refuse("no dictionary")
    if kind == "gradient":
        return {key: samples_of(value[key], each) if key in value else DEFAULTS[key] for key, each in GRADIENT.items()}
    return {key: (whole_of if key == "selectedChannel" else real_of)(value.get(key, 0)) for key in LEVELS}


def kind_of(value, wanted=None):
    if isinstance(value, dict):
        if any(key in value for key in GRADIENT):
            return "gradient"
        if wanted in ("gradient", "levels") and set(value) <= ({"selectedChannel"} if wanted == "levels" else set()):
            return wanted
        if any(key in value for key in LEVELS[1:]):
            return "levels"
    return None


# Keyed archives

class Nil:
    pass


class Instance:
    def __init__(self, name, chain, value):
        self.name, self.chain, self.value = name, chain, value


FOUNDATION = {"NSArray", "NSMutableArray", "NSDictionary", "NSMutableDictionary", "NSString", "NSMutableString", "NSData",
              "NSMutableData", "NSDate", "NSNumber", "NSNull"}


def unarchived(archive, nil_is_fine=False):
    if not isinstance(archive, dict) or not isinstance(archive.get("$archiver"), str):
        refuse("no archive")
    objects, top = archive.get("$objects"), archive.get("$top")
    if not isinstance(objects, list) or objects[:1] != ["$null"] or not isinstance(top, dict):
        refuse("a damaged archive")
    made, open_ones = {}, set()

    def value_of(place):
        if not isinstance(place, plistlib.UID):
            return refuse("a bare container") if isinstance(place, (dict, list)) else place
        if place.data >= len(objects):
            refuse("a reference that leads nowhere")
        if place.data == 0:
            return Nil
        if place.data not in made:
            if place.data in open_ones:
                refuse("a circle")
            open_ones.add(place.data)
            made[place.data] = make(objects[place.data])
            open_ones.discard(place.data)
        return made[place.data]

    def make(each):
        if not isinstance(each, dict):
            return refuse("a reference to a reference") if isinstance(each, plistlib.UID) else value_of(each)
        reference = each.get("$class")
        described = objects[reference.data] if isinstance(reference, plistlib.UID) and reference.data < len(objects) else None
        if not isinstance(described, dict) or not isinstance(described.get("$classname"), str):
            refuse("an object without a class")
        chain = [described["$classname"]] + [name for name in described.get("$classes", []) if name != "NSObject"]
        known = next((name for name in chain if name in FOUNDATION or name in CLASSES), None)
        if known is None:
            refuse("an unknown class")
        return contents(known, each)

    def contents(known, each):
        if known in CLASSES:
            state = value_of(each["state"]) if "state" in each else Nil
            return Instance(known, CLASSES[known], state_of(CLASSES[known], state if state is not Nil else refuse("no state")))
        if known.endswith("Array"):
            return [value_of(place) for place in array(each, "NS.objects")]
        if known.endswith("Dictionary"):
            keys = [value_of(place) for place in array(each, "NS.keys")]
            values = [value_of(place) for place in array(each, "NS.objects")]
            if len(keys) != len(values) or not all(isinstance(key, str) for key in keys):
                refuse("a damaged dictionary")
            return dict(zip(keys, values))
        if known.endswith("Data"):
            data = value_of(each.get("NS.data", {}))
            return data if isinstance(data, bytes) else refuse("data without bytes")
        if known.endswith("String"):
            text = value_of(each["NS.string"]) if "NS.string" in each else value_of(each.get("NS.bytes", {})).decode()
            return text if isinstance(text, str) else refuse("a string without text")
        if known == "NSNumber":
            key = next((key for key in ("NS.number", "NS.intval", "NS.dblval", "NS.boolval") if key in each), None)
            return value_of(each[key]) if key else refuse("a number without a value")
        return value_of(each["NS.time"]) if known == "NSDate" else Nil

    def array(each, key):
        return each[key] if isinstance(each.get(key), list) else refuse(f"{key} is no array")

    root = top.get("$0", top.get("root"))
    value = value_of(root) if root is not None else Nil
    return value if value is not Nil or nil_is_fine else refuse("an archive of nothing")


def archive_of(value, class_name=None):
    """The list of an archive: of a plain value, or of a gradient's or levels' state under the name of a class."""
    objects = ["$null"]

    def add(each):
        objects.append(each)
        return plistlib.UID(len(objects) - 1)

    def described(*chain):
        for i, each in enumerate(objects):
            if isinstance(each, dict) and each.get("$classname") == chain[0]:
                return plistlib.UID(i)
        return add({"$classname": chain[0], "$classes": list(chain) + ["NSObject"]})

    def put(each):
        if isinstance(each, dict):
            return add({"NS.keys": [put(key) for key in each], "NS.objects": [put(inner) for inner in each.values()],
                        "$class": described("NSDictionary")})
        if isinstance(each, list):
            return add({"NS.objects": [put(inner) for inner in each], "$class": described("NSArray")})
        return add(each)

    root = put(value)
    if class_name:
        present = class_name.replace("Tarn", "VRT")
        chain = [class_name] + [present] * (present != class_name) + ["VRTObject", "QCObject"]
        root = add({"state": root, "$class": described(*chain)})
    return {"$version": 100000, "$archiver": "NSKeyedArchiver", "$top": {"root": root}, "$objects": objects}


# The text forms

def color_names(page):
    """The table at the end of the page."""
    table = page[page.index("## Color names"):]
    return {name: [int(code[i:i + 2], 16) / 255 for i in (0, 2, 4)]
            for name, code in re.findall(r"\b([a-z]+) ([0-9a-f]{6})\b", table)}


class Text:
    BLANK = re.compile(r"(?:[ \t\n\r\f]|/\*.*?\*/)*", re.S)
    NUMBER = re.compile(r"[+-]?(?:[0-9]+(?:\.[0-9]*)?|\.[0-9]+)(?:[eE][+-]?[0-9]+)?")
    WORD = re.compile(r"[A-Za-z][A-Za-z0-9_-]*")

    def __init__(self, text):
        self.text, self.at = text, 0

    def skip(self):
        self.at = self.BLANK.match(self.text, self.at).end()
        if self.text.startswith("/*", self.at):
            refuse("a comment without an end")

    def takes(self, pattern):
        self.skip()
        found = re.compile(pattern).match(self.text, self.at)
        self.at = found.end() if found else self.at
        return found

    def expect(self, pattern):
        return self.takes(pattern) or refuse(f"expected {pattern} at {self.at}")

    def at_end(self):
        self.skip()
        return self.at == len(self.text)

    def word(self, *wanted):
        """Takes the next word where it is one of these; of none given, any."""
        self.skip()
        found = self.WORD.match(self.text, self.at)
        word = found[0].lower() if found else ""
        if not found or (wanted and word not in wanted):
            return None
        self.at = found.end()
        return word

    def quantity(self):
        self.skip()
        found = self.NUMBER.match(self.text, self.at) or refuse(f"expected a number at {self.at}")
        self.at = found.end()
        digits, unit = found[0], ""
        if self.text.startswith("%", self.at):
            self.at, unit = self.at + 1, "%"
        elif (word := self.WORD.match(self.text, self.at)):
            self.at, unit = word.end(), word[0].lower()
        mantissa, _, exponent = digits.lower().partition("e")
        number = float(f"{mantissa}e{int(exponent or 0) - 2 * (unit == '%')}")
        if math.isinf(number) or (number == 0 and re.search("[1-9]", mantissa)):
            refuse("beyond what a number holds")
        return number, unit

    def within(self, most, scale=1.0):
        """A number of 0 to `most`, divided by `scale`, or a percentage of 0 to 100."""
        number, unit = self.quantity()
        if unit not in ("", "%") or not 0 <= number <= (1 if unit else most):
            refuse("out of range")
        return number if unit else number / scale

    def fraction(self):
        number, unit = self.quantity()
        if unit not in ("", "%") or (not unit and not 0 <= number <= 1):
            refuse("no fraction")
        return number

    def color(self, names):
        if self.takes("#"):
            digits = self.expect(r"(?<=#)(?:[0-9A-Fa-f]{8}|[0-9A-Fa-f]{6}|[0-9A-Fa-f]{3,4})(?![0-9A-Za-z])")[0]
            if len(digits) < 6:
                digits = "".join(digit * 2 for digit in digits)
            parts = [int(digits[i:i + 2], 16) / 255 for i in range(0, len(digits), 2)]
            return parts[:3], parts[3] if len(parts) == 4 else None
        name = self.word() or refuse("expected a color")
        if name not in ("rgb", "rgba", "hsl", "hsla", "color"):
            return ([0.0] * 3, 0.0) if name == "transparent" else (names.get(name) or refuse(f"no color {name}"), None)
        self.expect(r"\(")
        if name == "color" and not self.word("srgb"):
            refuse("expected srgb")
        readers = {"r": [lambda: self.within(255, 255)] * 3, "c": [self.plain] * 3,
                   "h": [self.hue, lambda: self.within(100, 100), lambda: self.within(100, 100)]}[name[0]]
        parts = [readers[0]()]
        commas = bool(name != "color" and self.takes(","))
        parts.append(readers[1]())
        if commas:
            self.expect(",")
        parts.append(readers[2]())
        alpha = self.within(1) if self.takes("," if commas else "/") else None
        self.expect(r"\)")
        return of_hsl(*parts) if name[0] == "h" else parts, alpha

    def plain(self):
        number, unit = self.quantity()
        return number if unit in ("", "%") else refuse("a unit")

    def hue(self):
        number, unit = self.quantity()
        if unit not in ("", "deg", "turn", "rad", "grad"):
            refuse("no hue")
        degrees = math.fmod(number * {"turn": 360, "rad": 180 / math.pi, "grad": 0.9}.get(unit, 1), 360)
        return degrees + 360 if degrees < 0 else degrees


def of_hsl(hue, saturation, lightness):
    chroma = saturation * min(lightness, 1 - lightness)

    def component(offset):
        k = math.fmod(offset + hue / 30, 12)
        return min(1.0, max(0.0, lightness - chroma * max(-1.0, min(k - 3, 9 - k, 1.0))))
    return [component(0), component(8), component(4)]


def read_manner(text):
    manner = {}

    def once(key, value):
        if key in manner:
            refuse(f"a second {key}")
        manner[key] = value
    while not text.at_end() and text.text[text.at] != ",":
        if text.NUMBER.match(text.text, text.at):
            once("position", text.fraction())
        elif (word := text.word("interpolation", "middle", *INTERPOLATIONS)) == "middle":
            once("middle", text.fraction())
        elif word == "interpolation":
            text.expect(r"\(")
            number, unit = text.quantity()
            if unit or number != math.floor(number) or not -2**31 <= number < 2**31:
                refuse("no whole number")
            text.expect(r"\)")
            once("interpolation", int(number))
        else:
            once("interpolation", INTERPOLATIONS.index(word) if word else refuse("expected a manner"))
    return manner


def samples_from(row):
    """Of pairs of a manner and components."""
    positions = [manner.get("position") for manner, _ in row]
    if positions and positions[0] is None:
        positions[0] = 0.0
    if positions and positions[-1] is None:
        positions[-1] = 1.0
    known = [i for i, position in enumerate(positions) if position is not None]
    for left, right in zip(known, known[1:]):
        for k in range(1, right - left):
            a, b = positions[left], positions[right]
            positions[left + k] = a + (((b - a) * k) / (right - left))
    return [number for position, (manner, value) in zip(positions, row)
            for number in [position, manner.get("middle", 0.5), manner.get("interpolation", 1), *value]]


def read_gradient(source, names):
    text = Text(source)
    colors, alphas, opacities = [], [], []
    none, opacity_none, has_alpha = False, False, False
    while True:
        if text.word("none"):
            none = True
        elif text.word("opacity"):
            if text.word("none"):
                opacity_none = True
            else:
                value = [text.fraction()]
                opacities.append((read_manner(text), value))
        else:
            value, alpha = text.color(names)
            has_alpha = has_alpha or alpha is not None
            manner = read_manner(text)
            colors.append((manner, value))
            alphas.append((manner, [1.0 if alpha is None else alpha]))
        if len(colors) + len(opacities) > MOST_ITEMS:
            refuse("too many items")
        if not text.takes(","):
            break
    if not text.at_end() or (has_alpha and (opacities or opacity_none)) or bool(colors) == none or (opacities and opacity_none):
        refuse("no gradient")
    row = alphas if has_alpha else opacities
    return {"rgbSamples": samples_from(colors),
            "alphaSamples": samples_from(row) if row or opacity_none else DEFAULTS["alphaSamples"]}


def levels_key(name):
    name = re.sub(r"[ \t\n\r]", "", name).lower()
    keys = {key.lower(): key for key in LEVELS}
    for channel in CHANNELS:
        for value in VALUES:
            keys[f"{channel}.{value}".lower()] = value + channel
    keys |= {value.lower(): value + "RGB" for value in VALUES}
    return keys.get(name) or refuse(f"no value of levels is called {name}")


def read_levels(source):
    text, state = Text(source), dict(NEW_LEVELS)
    while True:
        text.skip()
        key = levels_key(text.expect(r"[^=,]+")[0])
        text.expect("=")
        if key == "selectedChannel":
            word = text.word(*[channel.lower() for channel in CHANNELS]) or refuse("expected a channel")
            state[key] = [channel.lower() for channel in CHANNELS].index(word)
        elif key.startswith("gamma"):
            number, unit = text.quantity()
            state[key] = number if not unit and 0 <= number <= 5 else refuse("no gamma")
        else:
            state[key] = text.within(1)
        if not text.takes(","):
            return state if text.at_end() else refuse("expected a comma")


# Files

def read_state(data, names, wanted=None):
    """The kind and the state of a file: of dictionaries, data, archives, JSON and texts of our own."""
    try:
        text = data.decode("utf-8").removeprefix("\ufeff")
    except UnicodeDecodeError:
        text = ""
    first = text.strip(" \t\r\n\f")[:1]
    if data.startswith(b"bplist") or not first or "\0" in text or first == "<":
        value = read_list(data)
        if isinstance(value, dict) and ("$archiver" in value or "$objects" in value):
            root = unarchived(value)
            if isinstance(root, Instance):
                return root.chain, root.value
            kind = kind_of(root, wanted)
            return (kind, state_of(kind, root)) if kind else ("opaque", data)
        kind = "opaque" if isinstance(value, bytes) else kind_of(value, wanted) or refuse("no state")
        return kind, state_of(kind, value)
    if first == "{":
        return read_json(text, wanted)
    comments = Text.BLANK.match(text).end()
    looks_like_levels = re.match(r"[A-Za-z. \t\r\n]+=", text[comments:])
    if wanted == "levels" or (wanted is None and looks_like_levels):
        return "levels", read_levels(text)
    return "gradient", read_gradient(text, names)


def read_json(text, wanted):
    def refuse_constant(name):
        refuse(f"{name} is no value")

    def checked(value):
        if value is None or (isinstance(value, str) and re.search("[\0\ud800-\udfff]", value)):
            refuse("no value")
        for each in value.values() if isinstance(value, dict) else value if isinstance(value, list) else []:
            checked(each)
        return value
    try:
        value = checked(json.loads(text, parse_constant=refuse_constant,
                                   parse_int=lambda digits: -0.0 if digits == "-0" else int(digits)))
    except (ValueError, RecursionError) as fault:
        raise Refused(str(fault)) from fault
    if "kind" in value and "state" in value:
        wanted = value["kind"] if value["kind"] in ("gradient", "levels", "opaque") else wanted
        value = value["state"]
        if wanted == "opaque" and isinstance(value, dict) and isinstance(value.get("data"), str):
            if not re.fullmatch("(?:[0-9A-Fa-f]{2})*", value["data"]):
                refuse("no hexadecimal digits")
            return "opaque", state_of("opaque", bytes.fromhex(value["data"]))
    kind = kind_of(value, wanted) or refuse("no state")
    return kind, state_of(kind, value)


def percent_text(fraction):
    digits, exponent = Decimal(repr(abs(fraction))).normalize().as_tuple()[1:]
    digits, first = "".join(map(str, digits)), len(digits) - 1 + exponent + 2
    sign = "-" if math.copysign(1, fraction) < 0 else ""
    if fraction == 0:
        return sign + "0%"
    if not -5 <= first <= 15:
        return f"{sign}{digits[0]}{'.' * (len(digits) > 1)}{digits[1:]}e{first}%"
    if first < 0:
        return f"{sign}0.{'0' * (-first - 1)}{digits}%"
    digits = digits.ljust(first + 1, "0")
    return f"{sign}{digits[:first + 1]}{'.' * (len(digits) > first + 1)}{digits[first + 1:]}%"


def number_text(number):
    return repr(number).removesuffix(".0")


def text_of_gradient(state):
    def manner(position, middle, interpolation):
        words = {0: " constant", 1: "", 2: " smooth"}.get(interpolation, f" interpolation({interpolation})")
        return words + " " + percent_text(position) + ("" if middle == 0.5 else " middle " + percent_text(middle))

    def color(parts):
        codes = [round(part * 255) if 0 <= part <= 1 else -1 for part in parts]
        if all(code >= 0 and struct.pack(">d", code / 255) == struct.pack(">d", part) for code, part in zip(codes, parts)):
            return "#" + "".join(f"{code:02x}" for code in codes)
        return "color(srgb " + " ".join(map(number_text, parts)) + ")"
    colors, alphas = state["rgbSamples"], state["alphaSamples"]
    items = [color(colors[i + 3:i + 6]) + manner(*colors[i:i + 3]) for i in range(0, len(colors), 6)] or ["none"]
    if [struct.pack(">d", number) for number in alphas] != [struct.pack(">d", number) for number in DEFAULTS["alphaSamples"]]:
        items += ["opacity " + percent_text(alphas[i + 3]) + manner(*alphas[i:i + 3])
                  for i in range(0, len(alphas), 4)] or ["opacity none"]
    return ",\n".join(items) + "\n"


def text_of_levels(state):
    items = []
    for key in LEVELS[1:]:
        value, channel = re.fullmatch("(.*?)(RGB|Red|Green|Blue|Alpha)", key).groups()
        if struct.pack(">d", state[key]) == struct.pack(">d", NEW_LEVELS[key]):
            continue
        if not 0 <= state[key] <= (5 if value == "gamma" else 1):
            refuse("beyond the range")
        items.append(("" if channel == "RGB" else channel.lower() + ".") + value + "=" + number_text(state[key]))
    if not 0 <= state["selectedChannel"] <= 4:
        refuse("no channel")
    if state["selectedChannel"] or not items:
        items.append("selectedChannel=" + CHANNELS[state["selectedChannel"]].lower())
    return ", ".join(items) + "\n"
