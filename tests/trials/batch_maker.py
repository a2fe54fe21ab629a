# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Random batches, with random evils in them."""

import damages
import header_lies
from batch import DECODE_FORMATS, ENCODE_FORMATS, Batch
from sources import COMPRESSED, EXTENSIONS, KINDS

STEMS = ("Track 01", "Träck 02", "it's", "a.b.c", "-o", "live (1999) [set]", "100%", "x", "日本", "semi;colon",
         'say "hi"')
FOLDERS = ("", "", "", "disc 1", "disc 2", "disc 2/side b")


class BatchMaker:
    def __init__(self, maker, decoder):
        self.maker = maker
        self.decoder = decoder

    def make(self, chance, root):
        command = chance.choice(("encode", "encode", "encode", "decode"))
        chosen = chance.choice(ENCODE_FORMATS if command == "encode" else DECODE_FORMATS)
        batch = Batch(root, command, chosen)
        batch.options = random_options(chance, command, chosen)
        if chance.random() < 0.35:
            batch.settings["trashOrDelete"] = 1
        self._add_sources(chance, batch)
        if chance.random() < 0.25:
            self._add_twin(chance, batch)
        if chance.random() < 0.4:
            self._stand_in_the_way(chance, batch)
        # Without JSON nobody can tell an output that is known to be less from one that is called whole.
        if batch.evil_names() or chance.random() < 0.7:
            batch.options.append("--json")
        (batch.root / "outside" / "bystander.txt").write_bytes(b"nobody's business\n")
        is_folder = chance.random() < 0.4 or batch.has("--keep-folders")
        batch.given = [batch.input_folder] if is_folder else [source.path for source in batch.sources]
        batch.options += ["--beside-source"] if batch.has("--beside-source") else [f"--output-dir={batch.output_folder}"]
        batch.options = [word for number, word in enumerate(batch.options) if word not in batch.options[:number]]
        return batch

    def _add_sources(self, chance, batch):
        kinds = KINDS if batch.command == "encode" or chance.random() < 0.1 else COMPRESSED
        is_tree = chance.random() < 0.3 or batch.has("--keep-folders")
        names = set()
        for number in range(chance.randint(1, 6)):
            source = self._spoiled(chance, self.maker.random(chance, kinds))
            folder = chance.choice(FOLDERS) if is_tree else ""
            name = f"{chance.choice(STEMS)}.{chance.choice(EXTENSIONS[source.kind])}"
            if (folder, name.lower()) in names:
                name = f"{number} {name}"
            names.add((folder, name.lower()))
            batch.add(source, name, folder)

    def _spoiled(self, chance, source):
        """In about half of all cases the source as something has gone wrong with it."""
        dice = chance.random()
        if dice < 0.30:
            return header_lies.tell_lie(chance, self.maker, self.decoder, source) or source
        if dice < 0.34 and source.bits > 8:
            return header_lies.piped_flac(source)
        if dice < 0.39:
            return damages.with_flips(chance, source, self.decoder) or source
        if dice < 0.42:
            return damages.with_header_flip(chance, source)
        if dice < 0.47:
            return damages.cut(chance, source, self.decoder)
        if dice < 0.50:
            return damages.garbage(chance, source.kind)
        if dice < 0.51:
            return damages.silent_header(source)
        if dice < 0.54:
            return damages.lossy_m4a(chance, source, self.maker.folder)
        if dice < 0.56:
            return damages.two_track_m4a(source, self.maker.folder)
        return source

    def _add_twin(self, chance, batch):
        """A second source whose output has the same name, or which is the output of the first."""
        first = chance.choice(batch.sources)
        folder = str(first.path.parent.relative_to(batch.input_folder))
        if chance.random() < 0.5 and batch.command == "encode":
            kind, evil = batch.format, "a source that is an output"
        else:
            kind = chance.choice([kind for kind in COMPRESSED if kind != first.kind])
            evil = "two sources of one output"
        name = f"{first.path.stem}.{kind}"
        if any(source.path.name.lower() == name.lower() for source in batch.sources):
            return
        twin = self.maker.random(chance, (kind,))
        batch.add(twin, name, folder if chance.random() < 0.8 else "other")
        batch.evils.append(evil)

    def _stand_in_the_way(self, chance, batch):
        """Something has the name of an output already."""
        source = chance.choice(batch.sources)
        output = batch.outputs_of(source)[0]
        output.parent.mkdir(parents=True, exist_ok=True)
        if output.exists() or output.is_symlink():
            return
        outside = batch.root / "outside" / "precious.bin"
        what = chance.choice(("file", "file", "sound", "link", "dangling link", "folder"))
        if what == "file":
            output.write_bytes(b"something else\n" * chance.randrange(1, 300))
        elif what == "sound":
            output.write_bytes(self.maker.random(chance, (batch.format,) if batch.format in KINDS else KINDS).data)
        elif what == "link":
            outside.write_bytes(b"precious\n" * 200)
            output.symlink_to(outside)
        elif what == "dangling link":
            output.symlink_to(batch.root / "outside" / "nowhere.bin")
        else:
            output.mkdir()
            (output / "in it.txt").write_bytes(b"in it\n")
        batch.evils.append(f"existing {what}")


def random_options(chance, command, chosen):
    """Options that go together; the folder of the outputs only as --beside-source or not."""
    options = ["--beside-source"] if chance.random() < 0.45 else []
    if not options and chance.random() < 0.3:
        options.append("--keep-folders")
    if chance.random() < 0.88:
        options.append("--delete-originals")
        options += ["--yes"] if chance.random() < 0.97 else []
        options += ["--no-proof"] if chance.random() < 0.15 else []
        options += ["--drop-metadata"] if chance.random() < 0.35 else []
    elif chance.random() < 0.5:
        options.append("--yes")
    options += chance.choice(([], [], [], ["--overwrite"], ["--skip-existing"]))
    options += ["--quiet"] if chance.random() < 0.2 else []
    options += [f"--jobs={chance.randint(1, 4)}"] if chance.random() < 0.9 else []
    own = []
    if command == "encode" and chosen == "flac":
        own = ["--verify", "--keep-foreign-metadata", "--lax", "--ffp", f"--level={chance.randint(0, 8)}"]
    elif command == "encode":
        own = {"shn": ["--md5"], "wv": ["--mode=high"], "ape": ["--level=1000", "--level=3000"]}.get(chosen, [])
    elif command == "decode":
        own = ["--keep-foreign-metadata"] + (["--through-errors"] if chance.random() < 0.3 else [])
    own = [option for option in own if chance.random() < 0.3]
    if "--lax" in own:
        own = [option for option in own if not option.startswith("--level")]
    return options + own
