#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads the ELF headers of programs and fails when one was built without a protection.

usage: check_hardening.py PROGRAM...
"""

import struct
import sys

ET_DYN = 3
EM_X86_64 = 62
PT_LOAD, PT_DYNAMIC, PT_GNU_STACK, PT_GNU_RELRO = 1, 2, 0x6474E551, 0x6474E552
PF_X, PF_W = 1, 2
SHT_DYNSYM = 11
DT_NULL, DT_FLAGS, DT_FLAGS_1 = 0, 30, 0x6FFFFFFB
DF_BIND_NOW = 8
DF_1_NOW, DF_1_PIE = 1, 0x08000000
# Where -fcf-protection lets an indirect jump arrive; what the compiler brings along for the
# start of every program holds a handful.
ENDBR64 = b"\xf3\x0f\x1e\xfa"
START_LANDINGS = 16
# _FORTIFY_SOURCE replaces each call of these; of most others only those that may go wrong.
PRINTING = {prefix + name for prefix in ("", "v") for name in ("printf", "fprintf", "dprintf", "sprintf", "snprintf")}


class Elf:
    """The parts of a 64-bit little-endian file that tell how it was built."""

    def __init__(self, data):
        if data[:6] != b"\x7fELF\x02\x01":
            raise ValueError("no 64-bit little-endian ELF file")
        self.data = data
        self.type, self.machine = struct.unpack_from("<HH", data, 16)
        program_offset, section_offset = struct.unpack_from("<QQ", data, 32)
        program_size, program_count, section_size, section_count = struct.unpack_from("<HHHH", data, 54)
        #: (type, flags, offset, virtual address, physical address, size in the file, in memory, alignment)
        self.segments = [struct.unpack_from("<IIQQQQQQ", data, program_offset + i * program_size)
                         for i in range(program_count)]
        #: (name, type, flags, address, offset, size, link, info, alignment, entry size)
        self.sections = [struct.unpack_from("<IIQQQQIIQQ", data, section_offset + i * section_size)
                         for i in range(section_count)]

    def segments_of(self, kind):
        return [segment for segment in self.segments if segment[0] == kind]

    def dynamic(self):
        values = {}
        for _, _, offset, _, _, size, _, _ in self.segments_of(PT_DYNAMIC):
            for tag, value in struct.iter_unpack("<qQ", self.data[offset:offset + size]):
                if tag == DT_NULL:
                    break
                values[tag] = value
        return values

    def imports(self):
        """The names that the program takes from libraries."""
        names = set()
        for _, kind, _, _, offset, size, link, _, _, entry in self.sections:
            if kind != SHT_DYNSYM:
                continue
            strings = self.sections[link][4]
            for at in range(offset, offset + size, entry):
                name, _, _, section = struct.unpack_from("<IBBH", self.data, at)
                if section == 0 and name:
                    start = strings + name
                    names.add(self.data[start:self.data.index(b"\0", start)].decode("ascii"))
        return names

    def landings(self):
        return sum(self.data.count(ENDBR64, offset, offset + size)
                   for _, flags, offset, _, _, size, _, _ in self.segments_of(PT_LOAD) if flags & PF_X)


def faults(data):
    """What the program lacks."""
    elf = Elf(data)
    dynamic = elf.dynamic()
    imports = elf.imports()
    flags_1 = dynamic.get(DT_FLAGS_1, 0)
    stacks = elf.segments_of(PT_GNU_STACK)
    if elf.type != ET_DYN or not flags_1 & DF_1_PIE:
        yield "it is not position independent"
    if not elf.segments_of(PT_GNU_RELRO):
        yield "its relocations stay writable"
    if not flags_1 & DF_1_NOW and not dynamic.get(DT_FLAGS, 0) & DF_BIND_NOW:
        yield "its symbols are bound while it runs"
    if not stacks or any(segment[1] & PF_X for segment in stacks):
        yield "its stack can be executed"
    if any(segment[1] & PF_X and segment[1] & PF_W for segment in elf.segments_of(PT_LOAD)):
        yield "a part of it can be written and executed"
    if "__stack_chk_fail" not in imports:
        yield "it has no stack protector"
    for name in sorted(imports & PRINTING):
        yield f"it calls {name}, not the checked function of the C library"
    if not any("__glibcxx_assert_fail" in name for name in imports):
        yield "the C++ library's assertions are off"
    if elf.machine == EM_X86_64 and elf.landings() <= START_LANDINGS:
        yield "its indirect jumps may arrive anywhere"


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    found = []
    for path in sys.argv[1:]:
        with open(path, "rb") as program:
            found += [f"{path}: {fault}" for fault in faults(program.read())]
    print("\n".join(found))
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
