"""Reads pictures back for the tests: PNG by itself, other formats through foreign readers."""

import shutil
import struct
import subprocess
import zlib


class Picture:
    """Rows of pixels, three or four bytes each."""

    def __init__(self, data):
        if data[:8] != b"\x89PNG\r\n\x1a\n":
            raise ValueError("no PNG")
        self.chunks = {}
        at = 8
        while at < len(data):
            size, name = struct.unpack(">I4s", data[at:at + 8])
            body = data[at + 8:at + 8 + size]
            check = data[at + 8 + size:at + 12 + size]
            if zlib.crc32(name + body) != int.from_bytes(check, "big"):
                raise ValueError(f"damaged chunk {name}")
            self.chunks[name] = self.chunks.get(name, b"") + body
            at += 12 + size
        self.width, self.height, depth, kind, *_, interlace = struct.unpack(
            ">IIBBBBB", self.chunks[b"IHDR"])
        if depth != 8 or kind not in (2, 6) or interlace:
            raise ValueError("a kind of PNG that is not read here")
        self.samples = 3 if kind == 2 else 4
        self.rows = list(self.decode(zlib.decompress(self.chunks[b"IDAT"])))

    def decode(self, data):
        step, size = self.samples, self.width * self.samples
        above = bytearray(size)
        for start in range(0, len(data), size + 1):
            row = bytearray(data[start + 1:start + 1 + size])
            method = data[start]
            if method == 2:
                row = bytearray((a + b) & 255 for a, b in zip(row, above))
            elif method:
                for i in range(size):
                    left, corner = (row[i - step], above[i - step]) if i >= step else (0, 0)
                    row[i] = (row[i] + self.predict(method, left, above[i], corner)) & 255
            yield row
            above = row

    @staticmethod
    def predict(method, left, up, corner):
        if method == 1:
            return left
        if method == 3:
            return (left + up) // 2
        guess = left + up - corner
        return min((left, up, corner), key=lambda value: abs(guess - value))

    def pixel(self, x, y):
        return tuple(self.rows[y][x * self.samples:x * self.samples + 3])


def missing(*programs):
    """The first of the programs that is not installed, or nothing."""
    return next((program for program in programs if not shutil.which(program)), None)


def through_reader(path):
    """A picture file as a foreign program sees it, at 96 units to an inch."""
    command = {".svg": ["rsvg-convert", path],
               ".pdf": ["pdftoppm", "-r", "96", "-png", path],
               ".emf": ["sh", "-c", 'emf2svg-conv -i "$0" -o "$0.svg" && rsvg-convert "$0.svg"',
                        path]}[path.suffix]
    return Picture(subprocess.run(command, check=True, capture_output=True, timeout=60).stdout)
