# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Decodes any file to samples with programs that have nothing to do with the one under trial."""

import dataclasses
import json
import pathlib
import subprocess

from sound import Sound, read_aiff, read_wav, widened

LIMIT_SECONDS = 60
# What flac says of every stream that was written into a pipe, and of one with the chunks of a WAV file.
REMARKS = ("WARNING, cannot check", "WARNING: found foreign metadata")


@dataclasses.dataclass(frozen=True)
class Decoded:
    sound: Sound | None
    complaint: str = ""

    @property
    def is_whole(self):
        return self.sound is not None and not self.complaint and self.sound.frames > 0


def kind_of(path):
    """The kind that the first bytes tell, for a file of any name."""
    with open(path, "rb") as file:
        head = file.read(12)
    for kind, magic, at in (("wav", b"RIFF", 0), ("aiff", b"FORM", 0), ("flac", b"fLaC", 0), ("shn", b"ajkg", 0),
                            ("wv", b"wvpk", 0), ("tta", b"TTA1", 0), ("ape", b"MAC ", 0), ("m4a", b"ftyp", 4)):
        if head[at : at + 4] == magic:
            return kind
    return None


class Decoder:
    """`folder`: for files that are decoded from memory."""

    def __init__(self, tools, folder):
        self.tools = pathlib.Path(tools)
        self.folder = pathlib.Path(folder)

    def decode_bytes(self, data, kind):
        path = self.folder / f"decoded.{kind}"
        path.write_bytes(data)
        try:
            return self.decode(path)
        finally:
            path.unlink()

    def decode(self, path):
        """Everything that is in the file, and what its decoder complained about."""
        try:
            kind = kind_of(path)
        except OSError as error:
            return Decoded(None, str(error))
        if kind in ("wav", "aiff"):
            sound = (read_wav if kind == "wav" else read_aiff)(pathlib.Path(path).read_bytes())
            return Decoded(sound, "" if sound else "its chunks make no sense")
        if kind in ("flac", "shn", "wv"):
            return getattr(self, f"_decode_{kind}")(path)
        return self._decode_with_ffmpeg(path, kind)

    def _run(self, *command):
        return subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL, capture_output=True,
                              timeout=LIMIT_SECONDS, check=False)

    def _result(self, run, sound):
        lines = run.stderr.decode("utf-8", "replace").splitlines()
        words = "; ".join(line for line in lines if line.strip() and not any(remark in line for remark in REMARKS))
        if run.returncode != 0 and not words:
            words = f"exit status {run.returncode}"
        return Decoded(sound, words)

    def _decode_flac(self, path):
        data = pathlib.Path(path).read_bytes()
        packed = int.from_bytes(data[18:26], "big")
        rate_hz, channels, bits = packed >> 44, (packed >> 41 & 7) + 1, (packed >> 36 & 31) + 1
        run = self._run("flac", "-d", "-c", "-s", "--force-raw-format", "--endian=little", "--sign=signed", path)
        width = (bits + 7) // 8
        return self._result(run, Sound(rate_hz, channels, widened(run.stdout, width)))

    def _decode_shn(self, path):
        run = self._run(self.tools / "shorten", "-x", path, "-")
        sound = read_wav(run.stdout) or read_aiff(run.stdout)
        return self._result(run, sound)

    def _decode_wv(self, path):
        run = self._run("wvunpack", "-q", "-w", "-o", "-", path)
        return self._result(run, read_wav(run.stdout))

    def _decode_with_ffmpeg(self, path, kind):
        format_name = {"tta": "tta", "ape": "ape", "m4a": "mov"}.get(kind)
        if not format_name:
            return Decoded(None, "no kind of sound file is known by these first bytes")
        facts = self._run("ffprobe", "-v", "error", "-f", format_name, "-select_streams", "a", "-show_entries",
                          "stream=sample_rate,channels,codec_name", "-of", "json", path)
        streams = json.loads(facts.stdout or b"{}").get("streams", [])
        if len(streams) != 1 or not int(streams[0].get("channels", 0)):
            return Decoded(None, f"{len(streams)} sound tracks")
        run = self._run("ffmpeg", "-v", "error", "-threads", "1", "-err_detect", "crccheck", "-f", format_name, "-i", path,
                        "-map", "0:a:0", "-f", "s32le", "-")
        sound = Sound(int(streams[0]["sample_rate"]), int(streams[0]["channels"]), run.stdout)
        return self._result(run, sound)


    def texts(self, path):
        """The bytes of a file, and of the file that it was made of where it keeps that: tags and chunks are among them."""
        data = pathlib.Path(path).read_bytes()
        restoring = {"shn": (self.tools / "shorten", "-x", path, "-"), "wv": ("wvunpack", "-q", "-o", "-", path),
                     "ape": (self.tools / "mac", path, "-", "-d")}.get(kind_of(path))
        return data + self._run(*restoring).stdout if restoring else data

    def pictures(self, path):
        """The colours of all pictures in a file: red, green and blue of every dot."""
        run = self._run("ffmpeg", "-v", "quiet", "-i", path, "-map", "0:v?", "-f", "rawvideo", "-pix_fmt", "rgb24", "-")
        return run.stdout

    def colours(self, picture):
        """The same of a picture by itself."""
        path = self.folder / "picture"
        path.write_bytes(picture)
        return self.pictures(path)
