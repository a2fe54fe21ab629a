#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Takes one protection at a time out of a hardened program and expects check_hardening to name it.

usage: check_hardening_test.py PROGRAM
"""

import struct
import sys
import unittest

import check_hardening
from check_hardening import DT_FLAGS, DT_FLAGS_1, PF_W, PF_X, PT_DYNAMIC, PT_GNU_RELRO, PT_GNU_STACK, PT_LOAD, Elf

PT_NOTE = 4
SEGMENT_BYTES = 56


class CheckHardening(unittest.TestCase):
    program = b""

    def segment_at(self, wanted):
        """Where the header of the first such segment stands."""
        elf = Elf(self.program)
        index = next(i for i, segment in enumerate(elf.segments) if wanted(segment))
        return struct.unpack_from("<Q", self.program, 32)[0] + index * SEGMENT_BYTES

    def with_number(self, form, at, number):
        data = bytearray(self.program)
        struct.pack_into(form, data, at, number)
        return bytes(data)

    def with_dynamic(self, changes):
        data = bytearray(self.program)
        for _, _, offset, _, _, size, _, _ in Elf(self.program).segments_of(PT_DYNAMIC):
            for at in range(offset, offset + size, 16):
                tag, value = struct.unpack_from("<qQ", data, at)
                if tag in changes:
                    struct.pack_into("<Q", data, at + 8, value & ~changes[tag])
        return bytes(data)

    def assert_fault(self, data, text):
        found = list(check_hardening.faults(data))
        self.assertEqual(len(found), 1, found)
        self.assertIn(text, found[0])

    def test_the_program_itself_passes(self):
        self.assertEqual(list(check_hardening.faults(self.program)), [])

    def test_fixed_position(self):
        self.assert_fault(self.with_number("<H", 16, 2), "position independent")
        self.assert_fault(self.with_dynamic({DT_FLAGS_1: check_hardening.DF_1_PIE}), "position independent")

    def test_writable_relocations(self):
        at = self.segment_at(lambda segment: segment[0] == PT_GNU_RELRO)
        self.assert_fault(self.with_number("<I", at, PT_NOTE), "stay writable")

    def test_late_binding(self):
        flags = {DT_FLAGS: check_hardening.DF_BIND_NOW, DT_FLAGS_1: check_hardening.DF_1_NOW}
        self.assert_fault(self.with_dynamic(flags), "bound while it runs")

    def test_executable_stack(self):
        at = self.segment_at(lambda segment: segment[0] == PT_GNU_STACK)
        self.assert_fault(self.with_number("<I", at + 4, PF_W | PF_X | 4), "stack can be executed")
        self.assert_fault(self.with_number("<I", at, PT_NOTE), "stack can be executed")

    def test_writable_code(self):
        at = self.segment_at(lambda segment: segment[0] == PT_LOAD and segment[1] & PF_X)
        self.assert_fault(self.with_number("<I", at + 4, PF_W | PF_X | 4), "written and executed")

    def test_no_checks_by_the_compiler(self):
        self.assert_fault(self.program.replace(b"__stack_chk_fail\0", b"__stack_xxx_fail\0"), "stack protector")
        unchecked = b"fprintf\0".ljust(len(b"__fprintf_chk\0"), b"\0")
        self.assert_fault(self.program.replace(b"__fprintf_chk\0", unchecked), "it calls fprintf, not the checked")
        self.assert_fault(self.program.replace(b"__glibcxx_assert", b"__glibcxx_xxxxxx"), "assertions are off")

    def test_jumps_anywhere(self):
        if Elf(self.program).machine != check_hardening.EM_X86_64:
            self.skipTest("no landings on this machine")
        self.assert_fault(self.program.replace(check_hardening.ENDBR64, b"\x0f\x1f\x40\x00"), "jumps may arrive")

    def test_no_program(self):
        with self.assertRaises(ValueError):
            list(check_hardening.faults(b"#!/bin/sh\n"))


if __name__ == "__main__":
    with open(sys.argv.pop(1), "rb") as good:
        CheckHardening.program = good.read()
    unittest.main()
