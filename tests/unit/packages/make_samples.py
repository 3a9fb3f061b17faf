#!/usr/bin/env python3
"""Packs with the tools that people pack with, for the tests of reading.

    make_samples.py FOLDER

    FOLDER/source      what was packed
    FOLDER/good        archives of it
    FOLDER/refused     archives that are not taken
    FOLDER/streams     texts and what zlib makes of them, by strategy

A tool that is missing is a failure.
"""

import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import zlib

IMPORTS = "import io, pathlib, sys, zipfile\n"
EACH_LEVEL = IMPORTS + """
with zipfile.ZipFile('out.zip', 'w', zipfile.ZIP_DEFLATED) as archive:
    for number, path in enumerate(sorted(pathlib.Path('pack').rglob('*'))):
        archive.write(path, compresslevel=number % 10)
"""
INTO_A_PIPE = IMPORTS + """
class Pipe(io.RawIOBase):
    def __init__(self): self.file = open('out.zip', 'wb')
    def writable(self): return True
    def write(self, data): return self.file.write(data)
    def flush(self): self.file.flush()
with zipfile.ZipFile(Pipe(), 'w', zipfile.ZIP_DEFLATED) as archive:
    for path in sorted(pathlib.Path('pack').rglob('*')): archive.write(path)
"""
UNSAFE_NAME = IMPORTS + "zipfile.ZipFile('out.zip', 'w').writestr('../evil.txt', 'x')"
NAME_TWICE = IMPORTS + """
archive = zipfile.ZipFile('out.zip', 'w')
archive.writestr('pack/text.txt', 'x')
archive.writestr('pack/text.txt', 'y')
"""

# The name of the archive and the command that makes out.zip of the folder pack.
GOOD = {
    "zip": ["zip", "-qr", "out.zip", "pack"],
    "zip, stored": ["zip", "-qr0", "out.zip", "pack"],
    "zip, best": ["zip", "-qr9", "out.zip", "pack"],
    "zip, without folder entries": ["zip", "-qrD", "out.zip", "pack"],
    "zip, without extra fields": ["zip", "-qrX", "out.zip", "pack"],
    "7z": ["7z", "a", "-tzip", "-bd", "out.zip", "pack"],
    "7z, stored": ["7z", "a", "-tzip", "-mx0", "out.zip", "pack"],
    "7z, ultra": ["7z", "a", "-tzip", "-mx9", "out.zip", "pack"],
    "bsdtar": ["bsdtar", "-c", "--format=zip", "-f", "out.zip", "pack"],
    "bsdtar, stored": ["bsdtar", "-c", "--format=zip", "--options=zip:compression=store", "-f", "out.zip", "pack"],
    "python": ["python3", "-m", "zipfile", "-c", "out.zip", "pack"],
    "python, each level": ["python3", "-c", EACH_LEVEL],
    "python, into a pipe": ["python3", "-c", INTO_A_PIPE],
}
REFUSED = {
    "zip, encrypted": ["sh", "-c", "zip -qr -P secret out.zip pack"],
    "zip, ZIP64 forced": ["sh", "-c", "zip -qr -fz out.zip pack"],
    "zip, link kept": ["sh", "-c", "ln -s /etc/passwd pack/link && zip -qry out.zip pack"],
    "zip, bzip2": ["sh", "-c", "zip -qr -Z bzip2 out.zip pack"],
    "zip, self-extractor": [
        "sh", "-c", "zip -qr good.zip pack && cat /bin/true good.zip > out.zip && zip -qA out.zip"],
    "7z, LZMA": ["sh", "-c", "7z a -tzip -mm=LZMA out.zip pack"],
    "7z, encrypted": ["sh", "-c", "7z a -tzip -psecret -mem=AES256 out.zip pack"],
    "7z, another format": ["sh", "-c", "7z a -t7z out.zip pack"],
    "bsdtar, into a pipe": ["sh", "-c", "bsdtar -c --format=zip pack | cat > out.zip"],
    "bsdtar, another format": ["sh", "-c", "bsdtar -c --format=ustar -f out.zip pack"],
    "python, unsafe name": ["python3", "-c", UNSAFE_NAME],
    "python, name twice": ["python3", "-W", "ignore", "-c", NAME_TWICE],
}
STRATEGIES = {
    "fixed codes": zlib.Z_FIXED,
    "no matches": zlib.Z_HUFFMAN_ONLY,
    "runs": zlib.Z_RLE,
    "filtered": zlib.Z_FILTERED,
}


def noise(size, seed):
    return random.Random(seed).randbytes(size)


def source_files():
    lines = "".join(f"frame {line}\n" for line in range(4000))
    return {
        "pack/text.txt": lines.encode(),
        "pack/noise.bin": noise(70_000, 1),
        "pack/empty": b"",
        "pack/sub/deeper/a b.png": b"picture",
        "pack/قاب پخش.webm": noise(3_000, 3),
        "pack/枠🎮.txt": b"text",
    }


def put(folder, files):
    for name, data in files.items():
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)


def pack(files, command, archive):
    with tempfile.TemporaryDirectory() as name:
        put(pathlib.Path(name), files)
        subprocess.run(command, cwd=name, check=True, stdout=subprocess.DEVNULL)
        archive.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(pathlib.Path(name, "out.zip"), archive)


def repetitive(size, seed):
    """Words that come again, near and far, between noise."""
    generator = random.Random(seed)
    data = bytearray(generator.randbytes(100))
    while len(data) < size:
        distance = generator.randint(1, min(len(data), 40_000))
        for _ in range(generator.randint(1, 400)):
            data.append(data[-distance])
        data += generator.randbytes(generator.randrange(30))
    return bytes(data[:size]) + b"x" * 1_000


def compress(folder):
    plain = repetitive(600_000, 3)
    files = {"plain": plain}
    for name, strategy in STRATEGIES.items():
        stream = zlib.compressobj(6, zlib.DEFLATED, -15, 9, strategy)
        files[name] = stream.compress(plain) + stream.flush()
    put(folder, files)


def main():
    folder = pathlib.Path(sys.argv[1])
    shutil.rmtree(folder, ignore_errors=True)
    os.environ["LC_ALL"] = "C.UTF-8"
    good = source_files()
    put(folder / "source", good)
    plain = {"pack/text.txt": b"some text\n" * 50}
    for name, command in GOOD.items():
        pack(good, command, folder / "good" / f"{name}.zip")
    for name, command in REFUSED.items():
        pack(plain, command, folder / "refused" / f"{name}.zip")
    compress(folder / "streams")


main()
