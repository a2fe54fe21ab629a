# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes sound files of all eight kinds whose samples and tags are known."""

import dataclasses
import os
import pathlib
import pickle
import random
import struct
import subprocess
import zlib

from sound import Sound, aiff_bytes, make_sound, wav_bytes

KINDS = ("wav", "aiff", "flac", "shn", "wv", "tta", "ape", "m4a")
COMPRESSED = KINDS[2:]
EXTENSIONS = {"wav": ("wav", "WAV"), "aiff": ("aiff", "aif"), "flac": ("flac", "FLAC"), "shn": ("shn",), "wv": ("wv",),
              "tta": ("tta",), "ape": ("ape",), "m4a": ("m4a",)}
WIDTHS = {kind: (8, 16, 24) for kind in KINDS} | {"shn": (8, 16), "m4a": (16, 24)}
CHANNELS = {kind: (1, 2, 6) for kind in KINDS} | {"shn": (1, 2), "ape": (1, 2)}


@dataclasses.dataclass
class Source:
    """A file that a batch is to convert, and all that is known of it."""

    kind: str
    data: bytes
    sound: Sound  # what was put in when it was made
    bits: int
    markers: frozenset = frozenset()  # texts of tags, pictures and chunks that are in it
    evils: list = dataclasses.field(default_factory=list)
    path: pathlib.Path | None = None
    # What an output may hold for this source to go. Empty: nothing can stand for it.
    accepted: list = dataclasses.field(default_factory=list)
    # Whether anybody knows what a whole output of it holds.
    is_judged: bool = True

    def __post_init__(self):
        if not self.accepted and self.sound is not None:
            self.accepted = [self.sound]

    def accepts(self, sound):
        return any(sound == one for one in self.accepted)


def png_picture(marker):
    """A picture of one dot, whose colour and whose text find it again."""
    def chunk(name, held):
        return struct.pack(">I", len(held)) + name + held + struct.pack(">I", zlib.crc32(name + held))
    head = chunk(b"IHDR", struct.pack(">IIBBBBB", 1, 1, 8, 2, 0, 0, 0))
    return b"\x89PNG\r\n\x1a\n" + head + chunk(b"tEXt", b"Comment\0" + marker) + \
        chunk(b"IDAT", zlib.compress(b"\0" + zlib.crc32(marker).to_bytes(4, "big")[:3])) + chunk(b"IEND", b"")


def ape_tag(fields):
    items = b"".join(struct.pack("<II", len(value), 0) + name.encode() + b"\0" + value for name, value in fields.items())
    def end(flags):
        return b"APETAGEX" + struct.pack("<IIII", 2000, len(items) + 32, len(fields), flags) + bytes(8)
    return end(0xA0000000) + items + end(0x80000000)


def id3v1_tag(fields):
    def text(name, size):
        return fields.get(name, b"")[:size].ljust(size, b"\0")
    return b"TAG" + text("Title", 30) + text("Artist", 30) + text("Album", 30) + bytes(4) + bytes(30) + b"\xff"


class SourceMaker:
    """Files of a fixed set, made once each. Several processes may use one library at the same time."""

    VARIATIONS = 4

    def __init__(self, library, tools):
        self.library = pathlib.Path(library)
        self.folder = self.library / f"maker-{os.getpid()}"
        self.folder.mkdir(parents=True, exist_ok=True)
        self.tools = pathlib.Path(tools)
        self._made = {}

    def make(self, kind, bits, channels, variation, adorned):
        """`adorned`: with tags, and pictures or chunks where the kind has them."""
        key = (kind, bits, channels, variation, adorned)
        if key not in self._made:
            stored = self.library / "-".join(str(word) for word in key)
            if not stored.exists():
                unfinished = self.folder / "stored"
                unfinished.write_bytes(pickle.dumps(self._make_new(*key)))
                unfinished.rename(stored)
            self._made[key] = pickle.loads(stored.read_bytes())
        return dataclasses.replace(self._made[key], evils=[], accepted=list(self._made[key].accepted))

    def random(self, chance, kinds=KINDS, widths=(8, 16, 16, 16, 24), adorned=0.3, most_channels=6):
        kind = chance.choice(kinds)
        bits = chance.choice([width for width in widths if width in WIDTHS[kind]])
        usual = [count for count in (1, 2, 2, 6) if count in CHANNELS[kind] and count <= most_channels]
        return self.make(kind, bits, chance.choice(usual), chance.randrange(self.VARIATIONS), chance.random() < adorned)

    def from_wav(self, kind, wav, sound, bits):
        """A file of that kind which its encoder made of these bytes, or None when it refuses them."""
        try:
            return Source(kind, self._encode(kind, wav, {}, None), sound, bits)
        except subprocess.CalledProcessError:
            return None

    def _make_new(self, kind, bits, channels, variation, adorned):
        chance = random.Random(f"{kind} {bits} {channels} {variation} {adorned}")
        seconds = (0.1, 0.3, 0.5, 1.0)[variation] / (1 if channels < 6 else 3)
        rate_hz = 44100 if variation % 2 == 0 else chance.choice((22050, 48000, 32000))
        sound = make_sound(chance, rate_hz, channels, bits, seconds)
        fields = {name: f"{name} {chance.randrange(16**8):08x}".encode() for name in ("Title", "Artist", "Album")}
        if not adorned:
            fields = {}
        picture = png_picture(f"dot {chance.randrange(16**8):08x}".encode()) if adorned and chance.random() < 0.4 else None
        if kind == "wav":
            return self._adorned_wav(chance, sound, bits, adorned)
        if kind == "aiff":
            chunks = [(b"NAME", fields["Title"]), (b"APPL", b"test" + fields["Album"])] if adorned else []
            markers = {fields["Title"], fields["Album"]} if adorned else set()
            return Source(kind, aiff_bytes(sound, bits, chunks), sound, bits, frozenset(markers))
        data = self._encode(kind, wav_bytes(sound, bits), fields, picture)
        markers = {value for value in fields.values() if value in data}
        if picture and picture in data:
            markers.add(picture)
        return Source(kind, data, sound, bits, frozenset(markers))

    def _adorned_wav(self, chance, sound, bits, adorned):
        if not adorned:
            return Source("wav", wav_bytes(sound, bits), sound, bits)
        marker = f"Description {chance.randrange(16**8):08x}".encode()
        broadcast = (b"bext", marker.ljust(602, b"\0"))
        title = f"Title {chance.randrange(16**8):08x}".encode()
        info = (b"LIST", b"INFOINAM" + struct.pack("<I", len(title) + 2) + title + b"\0\0")
        before, after = ([broadcast], [info]) if chance.random() < 0.5 else ([], [info, broadcast])
        return Source("wav", wav_bytes(sound, bits, before, after), sound, bits, frozenset((marker, title)))

    def _run(self, *command):
        subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL, capture_output=True, timeout=60,
                       check=True)

    def _encode(self, kind, wav, fields, picture):
        source, target = self.folder / "made.wav", self.folder / f"made.{kind}"
        source.write_bytes(wav)
        target.unlink(missing_ok=True)
        getattr(self, f"_encode_{kind}")(source, target, fields, picture)
        data = target.read_bytes()
        if kind == "ape" and fields:
            data += ape_tag(fields)
        if kind == "tta" and fields:
            data += id3v1_tag(fields)
        return data

    def _encode_flac(self, source, target, fields, picture):
        words = [f"--tag={name.upper()}={value.decode()}" for name, value in fields.items()]
        if picture:
            image = self.folder / "picture.png"
            image.write_bytes(picture)
            words.append(f"--picture={image}")
        self._run("flac", "-s", "-f", "--no-padding", *words, "-o", target, source)

    def _encode_shn(self, source, target, _fields, _picture):
        self._run(self.tools / "shorten", source, target)

    def _encode_wv(self, source, target, fields, picture):
        words = [word for name, value in fields.items() for word in ("-w", f"{name}={value.decode()}")]
        if picture:
            image = self.folder / "picture.png"
            image.write_bytes(picture)
            words += ["--write-binary-tag", f"Cover Art (Front)=@{image}"]
        self._run("wavpack", "-q", "-y", *words, source, "-o", target)

    def _encode_tta(self, source, target, _fields, _picture):
        self._run(self.tools / "ttaenc", "-e", "-o", target, source)

    def _encode_ape(self, source, target, _fields, _picture):
        self._run(self.tools / "mac", source, target, "-c1000")

    def _encode_m4a(self, source, target, fields, picture):
        words = [word for name, value in fields.items() for word in ("-metadata", f"{name.lower()}={value.decode()}")]
        cover = []
        if picture:
            image = self.folder / "picture.png"
            image.write_bytes(picture)
            cover = ["-i", image, "-map", "0:a", "-map", "1:v", "-c:v", "copy", "-disposition:v:0", "attached_pic"]
        self._run("ffmpeg", "-v", "error", "-threads", "1", "-y", "-i", source, *cover, "-c:a", "alac",
                  *words, target)
