# SPDX-License-Identifier: BSD-3-Clause
"""The size of a PNG or JPEG, so that pages do not jump while pictures load."""
import struct


def size_of(path):
    with open(path, 'rb') as file:
        return size_in(file)


def size_in(file):
    start = file.read(24)
    if start.startswith(b'\x89PNG\r\n'):
        return struct.unpack('>II', start[16:24])
    if not start.startswith(b'\xff\xd8'):
        raise SystemExit('site: a picture is neither PNG nor JPEG')
    file.seek(2)
    while True:
        marker, length = struct.unpack('>HH', file.read(4))
        if 0xffc0 <= marker <= 0xffcf and marker not in (0xffc4, 0xffc8, 0xffcc):
            _, height, width = struct.unpack('>BHH', file.read(5))
            return width, height
        file.seek(length - 2, 1)
