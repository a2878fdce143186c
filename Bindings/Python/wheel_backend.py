# SPDX-License-Identifier: BSD-3-Clause
"""Makes a wheel of what was built before (build/release, or the folder in VORTO_BUILD). Needs nothing but Python.

The package stands in the wheel as it does in dist-packages; the library, the program with its helpers and modules, and
the effects stand below vorto/installed as below a prefix. Libraries of the distribution stay what they are: they are not
in the wheel.
"""

import base64
import csv
import hashlib
import io
import os
import pathlib
import re
import subprocess
import sysconfig
import tempfile
import zipfile

HERE = pathlib.Path(__file__).resolve().parent
# What a program that runs needs; headers, pages and what shows windows stay away.
TAKEN = re.compile(r"bin/vorto$|lib/libvorto\.so\.\d+$|lib/vorto/(?!vorto-inspect)|share/vorto/(?!VortoEditors)")
PACKAGE = "lib/python3/dist-packages/"  # VORTO_PYTHON_FOLDER


def build_folder():
    return pathlib.Path(os.environ.get("VORTO_BUILD", HERE.parents[1] / "build" / "release")).resolve()


def cached(name):
    text = (build_folder() / "CMakeCache.txt").read_text()
    match = re.search(rf"^{name}:\w+=(.*)$", text, re.MULTILINE)
    return match[1] if match else ""


def version():
    return cached("CMAKE_PROJECT_VERSION")


def tag():
    # Named by the compiled module, which is for one version of the interpreter.
    python = re.search(r"cpython-(\d+)", sysconfig.get_config_var("EXT_SUFFIX"))[1]
    return f"cp{python}-cp{python}-{sysconfig.get_platform().replace('-', '_').replace('.', '_')}"


def metadata():
    return (f"Metadata-Version: 2.1\nName: vorto\nVersion: {version()}\nLicense: BSD-3-Clause\n"
            "Summary: Real-time image effects: bitmaps, colors, gradients, levels, and the effects that work on them\n"
            "Requires-Python: >=3.9\nProvides-Extra: arrays\nRequires-Dist: numpy; extra == 'arrays'\n")


def place_in_wheel(path):
    """Where a file of the installation stands in the wheel; nothing when it stays away."""
    if path.startswith(PACKAGE):
        return path[len(PACKAGE):]
    return f"vorto/installed/{path}" if TAKEN.match(path) else None


def add(wheel, records, place, data, mode=0o644):
    info = zipfile.ZipInfo(place, (1980, 1, 1, 0, 0, 0))
    info.external_attr = (0o100000 | mode) << 16
    info.compress_type = zipfile.ZIP_DEFLATED
    wheel.writestr(info, data)
    digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
    records.append((place, f"sha256={digest}", len(data)))


def add_installation(wheel, records):
    with tempfile.TemporaryDirectory() as folder:
        environment = {key: value for key, value in os.environ.items() if key != "DESTDIR"}
        subprocess.run(["cmake", "--install", build_folder(), "--strip", "--prefix", folder], check=True,
                       stdout=subprocess.DEVNULL, env=environment)
        for file in sorted(pathlib.Path(folder).rglob("*")):
            place = place_in_wheel(file.relative_to(folder).as_posix())
            if place and file.is_file():
                add(wheel, records, place, file.read_bytes(), 0o755 if os.access(file, os.X_OK) else 0o644)


def wheel_description():
    return f"Wheel-Version: 1.0\nGenerator: vorto\nRoot-Is-Purelib: false\nTag: {tag()}\n"


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    folder = pathlib.Path(metadata_directory) / f"vorto-{version()}.dist-info"
    folder.mkdir()
    (folder / "METADATA").write_text(metadata())
    (folder / "WHEEL").write_text(wheel_description())
    return folder.name


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    name = f"vorto-{version()}-{tag()}.whl"
    information = f"vorto-{version()}.dist-info"
    records = []
    with zipfile.ZipFile(pathlib.Path(wheel_directory) / name, "w") as wheel:
        add_installation(wheel, records)
        add(wheel, records, f"{information}/METADATA", metadata().encode())
        add(wheel, records, f"{information}/WHEEL", wheel_description().encode())
        table = io.StringIO()
        csv.writer(table, lineterminator="\n").writerows(records + [(f"{information}/RECORD", "", "")])
        wheel.writestr(f"{information}/RECORD", table.getvalue())
    return name


def get_requires_for_build_wheel(config_settings=None):
    return []
