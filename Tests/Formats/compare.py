#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Holds what Docs/formats.md says (formats.py, which was written from it) against what vorto does: each reads what the
other writes, and both take and refuse the same of a table of tricky files.

Usage: compare.py VORTO PAGE
"""
import json
import os
import plistlib
import random
import struct
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True

import formats  # noqa: E402
from formats import Refused, archive_of, read_list, read_state, write_list

# Texts whose kind is told by themselves.
TEXTS = """
red|RED, Blue|#f80|#F808, #ff880080|#12345|#1234567|#ff88001|#fffx|# fff|orange constant, rebeccapurple|orang
red,|,|red,,blue|red blue|red 0%|red 0 %|red -10%, blue 250%|red 1.5|red -0.0|red -0%|red .5, blue 1.|red 5e-1|red 5e|red 1e400%
red 1e-400%|red 5e-324, blue|red 0e400, blue|red +.25e+0|red +-1|red 0x1p-1|red nan|red inf%|red 1_0%|red 12.5%%|red 10%10%
red, lime, blue, white|red 20%, lime, blue, white 30%|red, lime 90%, blue 10%, white|red 70%, blue 70%|red, blue 10%, lime
red 33.333333333333336%, blue 0.1%|red 0.1, blue 7e-3%|red 14.299999999999999%|red 1e-7%, blue 99.99999999999999%
red smooth, blue LINEAR|red smooth linear|red middle 25%|red middle .25 smooth 1|red middle 2|red middle -50%|red middle|red 10% 20%
red interpolation(7)|red interpolation (-3)|red interpolation(1.5)|red interpolation(1e3)|red interpolation(2147483648)
red interpolation(-2147483648)|red interpolation()|red interpolation|red interpolation(5%)|red interpolation(0) constant|red smoothly
none|none, none|none, red|NONE, opacity none|none 10%|opacity none|red, opacity none|red, opacity none, opacity 1|red, opacity 50% 10%
red, opacity 0.5 smooth middle 20%, opacity 150%|red, opacity 1.5|red, opacity|red, opacity half|opacity 1|#f008, opacity 1|#f008, blue
opacity none, rgb(1 2 3 / 0.5)|transparent, red|transparent smooth 10%, red constant middle 3%, blue|red/**/10%|red /* a, b */ , blue/**/
red /* open|/* only */|/*a*//*b*/ red|red	10%
rgb(255 136 0)|rgb(255, 136, 0)|rgb(255,136 0)|rgb(255 136, 0)|rgb(100%, 53%, 0)|rgb(256 0 0)|rgb(-1 0 0)|rgb(0 0 101%)|rgb(1.5.5.5)
rgb (1 2 3)|rgb(1 2 3|rgb(1 2)|rgb(1 2 3 4)|rgb(1 2 3 / 4)|rgb(1 2 3 / 40%)|rgb(1,2,3,40%)|rgb(1,2,3/40%)|rgb(1 2 3, 0.5)|rgba(1 2 3)
rgb(1px 2 3)|hsl(32 100% 50%)|hsl(32, 100, 50)|hsl(-30deg 20% 70% / 1)|hsl(0.1turn, 100%, 50%, 0.5)|hsl(1rad 33% 12%)|hsl(400grad 5 5)
hsl(725.5 0.5 99.5)|hsl(1e300 50 50)|hsl(50% 50 50)|hsl(30 50 101)|hsla(200.25 81% 44%)|color(srgb 1 2 -3)|color(srgb 50% 1e-5 .1)
color(srgb 1, 2, 3)|color(srgb 1 2 3 / .5)|color(srgb 1 2 3 / 1.5)|color(srgb 1 2 3 .5)|color(display-p3 1 1 1)|color(1 2 3)|color(SRGB 1 2 3)
red 50%blue|red50%|red 0.5middle 1|smooth red|10% red|"red"|red;|red, blue }|é|red é
gamma=1.2|gamma = 1.2 , red.blackIn = 10%|GAMMAred=2, gammaRed=3|gamma=120%|gamma=5.1|gamma=-0|blackIn=1.1|blackIn=-1%|white Out=100%
rgb.gamma=2|alpha.white in=0.25|RED.BLACKOUT=.5|.gamma=1|red.=1|red.red.gamma=1|red.gamma|gamma=|gamma=1,|gamma=1 2|gamma==1
selectedChannel=green|selectedchannel = RGB|selectedChannel=2|red.selectedChannel=red|selected channel=alpha, selectedChannel=blue
hue=3|gamma=1px|gammaRGB=0.5|gamma=1;red.gamma=2|/* soft */ gamma=1.5|gamma=1 /* soft */, /* hard */ red.gamma=2|red . gamma=2|gam/**/ma=1
"""
LONG_TEXTS = ["red" + ", red" * 65535, "red" + ", red" * 65536, "gamma=1" + ", gamma=2" * 70000, "\ufeffred", "\r\n red\f,\n\tblue \n"]

GRADIENT = {"rgbSamples": [0.25, 0.5, 1, 0.1, 0.2, 0.3], "alphaSamples": [0.0, 0.5, 0, 1.0]}


def with_entry(index, value):
    return {"rgbSamples": GRADIENT["rgbSamples"][:index] + [value] + GRADIENT["rgbSamples"][index + 1:]}


# Lists, each as XML and as binary.
LISTS = [GRADIENT, {}, [], "red", 3, True, {"rgbSamples": []}, {"alphaSamples": []}, {"rgbSamples": [], "alphaSamples": []},
         {"rgbSamples": [1.0] * 5}, {"rgbSamples": {}}, {"rgbSamples": "0"}, {"alphaSamples": [0.0, 0.5, 2]}, {**GRADIENT, "note": [b"x"]},
         {**GRADIENT, "gammaRed": 3.0}, {"selectedChannel": 1}, {"gammaRed": 2.0}, {"gammaRed": 2, "selectedChannel": 9, "other": "x"},
         {"blackInRGB": True, "whiteInRGB": "0.5 m"}, {"gammaRed": []}, {"gammaRed": float("nan")}, {"gammaRed": "x"},
         {"gammaRed": 1.0, "selectedChannel": "x"}, {"gammaRed": 1.0, "selectedChannel": 1e300}, {"gammared": 1.0}, b"", b"not an archive"]
LISTS += [with_entry(0, value) for value in (
    0, -7, 2**63, True, "0.5", " \t+.5e1x", "+-1", "-", "-.5", ".", "1e400", "1e-400", "inf", "0x10", "", "é", b"1", [], {}, float("inf"), -0.0, 5e-324)]
LISTS += [with_entry(2, value) for value in (
    2.9, -2.9, 1e300, -1e300, 2**40, -2**40, 2**64 - 1, True, "2.9", "1e3", ".5", "+7", "99999999999999999999", "-99999999999999999999x", "x")]

HEAD = '<?xml version="1.0" encoding="UTF-8"?>'
BODY = "<dict><key>gammaRed</key>%s</dict>"
XMLS = [HEAD + "<plist>" + BODY % value + "</plist>" for value in (
    "<real>2</real>", "<real> 2\n</real>", "<real>+2</real>", "<real>2e0</real>", "<real>.5</real>", "<real></real>", "<real>0x1</real>",
    "<real>1 2</real>", "<real>nan</real>", "<integer>0x10</integer>", "<integer>+3</integer>", "<integer>-0x1</integer>",
    "<integer>18446744073709551615</integer>", "<integer>18446744073709551616</integer>", "<integer>1.0</integer>", "<integer></integer>",
    "<true/>", "<false></false>", "<string>2<!-- two -->.5</string>", "<string>&#50;</string>", "<string>&two;</string>", "<what/>",
    "<date>2001-01-01T00:00:02Z</date>", "<data>MQ==</data>", "", "<real>1</real><key>gammaRed</key><real>2</real>", "<real>1</real><real>2</real>",
    "text<real>1</real>", "<dict><key>CF$UID</key><integer>1</integer></dict>")]
XMLS += [BODY % "<real>2</real>", "<plist></plist>", HEAD + "<plist>" + BODY % "<real>2</real>", HEAD + "<plist/>",
         '<?xml version="1.0" encoding="latin-1"?><plist>' + BODY % "<real>2</real>" + "</plist>",
         HEAD + '<!DOCTYPE plist PUBLIC "a" "b"><plist version="2">' + BODY % "<real>2</real>" + "</plist>",
         HEAD + '<!DOCTYPE plist [<!ENTITY two "2">]><plist>' + BODY % "<real>&two;</real>" + "</plist>"]

JSONS = ['{"gammaRed": 2}', '{"gammaRed": 2, "gammaRed": 3}', '{"gammaRed": null}', '{"gammaRed": -0}', '{"gammaRed": "2"}', '{"gammaRed": 2,}', "{",
         '{"kind": "levels", "state": {}}', '{"kind": "levels", "state": {"selectedChannel": 3}}', '{"kind": "gradient", "state": {}}', "{}",
         '{"kind": "sound", "state": {"gammaRed": 1}}', '{"kind": "levels", "class": "x", "state": {"rgbSamples": []}}',
         '{"rgbSamples": [1e2, 2, 2.9, true, "\\u0031", 1E-2]}', '{"rgbSamples": [1, 2, 3, 4, 5, "\\ud800"]}', '{"gammaRed": 1} 2',
         '{"kind": "opaque", "state": {"data": "00"}}', '{"kind": "opaque", "state": {"data": "0g"}}', '{"gammaRed": 1e999}']


def archives():
    yield archive_of(GRADIENT)
    yield from (archive_of(GRADIENT, name) for name in ("VRTGradient", "TarnGradient"))
    yield from (archive_of({"gammaRed": 2.0}, name) for name in ("VRTHistogram", "TarnHistogram"))
    yield from map(archive_of, ([1, "two", b"3", {"four": [True]}], "text", 5, {"gammaRed": 1.0, "other": [1]}))
    good = archive_of(GRADIENT, "VRTGradient")
    for key in good:
        yield {other: value for other, value in good.items() if other != key}
    yield {**good, "$top": {"$0": good["$top"]["root"], "root": plistlib.UID(0)}}
    yield {**good, "$top": {"root": plistlib.UID(0)}}
    yield {**good, "$top": {}}
    yield {**good, "$top": {"root": plistlib.UID(999)}}
    yield {**good, "$objects": ["null"] + good["$objects"][1:]}
    root = good["$top"]["root"].data

    def changed(place, entry):
        objects = list(good["$objects"])
        objects[place] = entry
        return {**good, "$objects": objects}
    instance = good["$objects"][root]
    described = instance["$class"].data
    yield changed(described, {"$classname": "MyGradient", "$classes": ["MyGradient", "VRTGradient", "NSObject"]})
    yield changed(described, {"$classname": "MyGradient", "$classes": ["MyGradient", "NSObject"]})
    yield changed(described, {"$classname": "MyGradient"})
    yield changed(described, {"$classes": ["VRTGradient"]})
    yield changed(root, {"state": instance["state"]})
    yield changed(root, {"$class": instance["$class"]})
    yield changed(root, {**instance, "state": plistlib.UID(root)})
    yield changed(root, {**instance, "state": plistlib.UID(0)})
    yield changed(root, {**instance, "state": {"rgbSamples": []}})
    yield changed(root, {**instance, "state": "text"})
    dictionary = good["$objects"][instance["state"].data]
    yield changed(instance["state"].data, {**dictionary, "NS.keys": dictionary["NS.keys"][:1]})
    yield changed(instance["state"].data, {**dictionary, "NS.keys": [plistlib.UID(0)] * 2})
    yield changed(dictionary["NS.objects"][0].data, {"NS.objects": [0.5, 0.5, 1, 0.1, 0.2, 0.3], "$class": dictionary["$class"]})
    array_class = good["$objects"][dictionary["NS.objects"][0].data]["$class"]
    yield changed(dictionary["NS.objects"][0].data, {"NS.objects": [0.5, 0.5, 1, 0.1, 0.2, "0.3"], "$class": array_class})


def tricky():
    """Names and bytes."""
    for text in [text for line in TEXTS.strip().split("\n") for text in line.split("|")] + LONG_TEXTS:
        yield text[:40], text.encode()
    for value in LISTS:
        yield f"XML of {value!r}"[:90], write_list(value)
        yield f"binary of {value!r}"[:90], write_list(value, binary=True)
    for text in XMLS + JSONS:
        yield text, text.encode()
    for i, archive in enumerate(archives()):
        yield f"archive {i}", write_list(archive)
        yield f"binary archive {i}", write_list(archive, binary=True)


def bits(value):
    """For comparison: reals by their bits, numbers of whatever type as reals."""
    if isinstance(value, dict):
        return {key: bits(each) for key, each in value.items()}
    return [bits(each) for each in value] if isinstance(value, list) else struct.pack(">d", value)


class Vorto:
    def __init__(self, program, folder):
        self.program, self.folder = program, folder
        self.environment = {"HOME": folder, "LC_ALL": "C"}

    def run(self, *arguments):
        return subprocess.run([self.program, "state", *arguments], env=self.environment, capture_output=True, check=False)

    def path(self, data):
        path = os.path.join(self.folder, "state")
        with open(path, "wb") as file:
            file.write(data)
        return path

    def read(self, data):
        run = self.run(self.path(data), "--json")
        if run.returncode == 3 and run.stderr.startswith(b"vorto: "):
            raise Refused(run.stderr.decode(errors="replace"))
        if run.returncode:
            raise RuntimeError(f"exit code {run.returncode}: {run.stderr!r}")
        printed = json.loads(run.stdout)
        if printed["kind"] == "opaque":
            return "opaque", bytes.fromhex(printed["state"]["data"])
        return printed["kind"], printed["state"]

    def converted(self, data, *arguments):
        output = os.path.join(self.folder, "converted")
        run = self.run(self.path(data), "--output", output, "--convert", *arguments)
        if run.returncode:
            raise Refused(run.stderr.decode(errors="replace"))
        with open(output, "rb") as file:
            return file.read()


def outcome(read, *arguments):
    """Comparable: the kind and what is in the state; None when it is refused."""
    try:
        kind, state = read(*arguments)
    except Refused:
        return None
    if kind == "opaque":
        return kind, repr(formats.unarchived(read_list(state), True))
    return kind, bits(state)


def random_state(random_numbers):
    def number():
        kind = random_numbers.randrange(4)
        return [float(random_numbers.randrange(2)), random_numbers.random(), random_numbers.randrange(256) / 255,
                random_numbers.uniform(-3, 3) * 10.0 ** random_numbers.randrange(-20, 20)][kind]
    if random_numbers.randrange(3) == 0:
        state = {key: random_numbers.choice([1.0, random_numbers.random()]) for key in formats.LEVELS}
        return "levels", {**state, "selectedChannel": random_numbers.randrange(5)}
    return "gradient", {key: [random_numbers.randrange(-1, 5) if i % each == 2 else number()
                              for i in range(each * random_numbers.randrange(5))] for key, each in formats.GRADIENT.items()}


def main():
    vorto_path, page = os.path.realpath(sys.argv[1]), sys.argv[2]
    with open(page, encoding="utf-8") as file:
        names = formats.color_names(file.read())
    faults, counts = [], {"read": 0, "refused": 0, "written": 0}
    with tempfile.TemporaryDirectory() as folder:
        vorto = Vorto(vorto_path, folder)
        for name, data in [("all colors", ", ".join(names).encode()), *tricky()]:
            ours, theirs = outcome(read_state, data, names), outcome(vorto.read, data)
            counts["read" if theirs else "refused"] += 1
            if ours != theirs:
                faults.append(f"{name}: the page says {ours}, vorto {theirs}")
        random_numbers = random.Random(20)
        for _ in range(20):
            kind, state = random_state(random_numbers)
            wanted = (kind, bits(state))
            class_name = "VRTGradient" if kind == "gradient" else "VRTHistogram"
            text = (formats.text_of_gradient if kind == "gradient" else formats.text_of_levels)(state)
            archive = archive_of(state, class_name)
            for form in (write_list(state), write_list(state, True), write_list(archive), write_list(archive, True), text.encode(),
                         json.dumps(state).encode()):
                counts["written"] += 1
                if outcome(vorto.read, form) != wanted:
                    faults.append(f"vorto does not read back {form[:200]!r}")
            source = write_list(state, True)
            for arguments in (["xml"], ["binary"], ["xml", "--form", "archive"], ["binary", "--form", "archive"], ["text"]):
                converted = vorto.converted(source, *arguments)
                if outcome(read_state, converted, names) != wanted:
                    faults.append(f"the page does not read back {arguments}: {converted[:200]!r}")
                if arguments == ["text"] and converted.decode() != text and "e" not in text:
                    faults.append(f"the texts differ: {converted.decode()!r} and {text!r}")
    print(f"compare.py: {counts['read']} files read and {counts['refused']} refused by both, {len(names)} colors, "
          f"{counts['written']} written and read again")
    for fault in faults:
        print(fault, file=sys.stderr)
    return 1 if faults or len(names) != 148 else 0


if __name__ == "__main__":
    sys.exit(main())
