// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/ModeTable.h"

#include "shntool/CatMode.h"
#include "shntool/CmpMode.h"
#include "shntool/ConvMode.h"
#include "shntool/CueMode.h"
#include "shntool/FixMode.h"
#include "shntool/GenMode.h"
#include "shntool/HashMode.h"
#include "shntool/InfoMode.h"
#include "shntool/JoinMode.h"
#include "shntool/LenMode.h"
#include "shntool/PadMode.h"
#include "shntool/SplitMode.h"
#include "shntool/StripMode.h"
#include "shntool/TrimMode.h"

#include <algorithm>
#include <array>

namespace nurv {

namespace {

constexpr const char *kGlobalOptions = "Global options:\n"
                                       "\n"
                                       "  -D      print debugging information (each one increases debugging level)\n"
                                       "  -F file get input filenames from file, instead of command line or terminal\n"
                                       "  -H      print times in h:mm:ss.{ff,nnn} format, instead of m:ss.{ff,nnn}\n"
                                       "  -P type progress indicator type.  type is: {[pct], dot, spin, face, none}\n"
                                       "  -i fmt  specify input file format decoder and/or arguments.\n"
                                       "          format is:  \"fmt decoder [arg1 ... argN (%f = filename)]\"\n"
                                       "  -q      suppress non-critical output (quiet mode)\n"
                                       "  -r val  reorder input files?  val is: {ask, ascii, [natural], none}\n"
                                       "  -v      show version information\n"
                                       "  -w      suppress warnings\n"
                                       "  --      indicates that everything following it is a filename\n"
                                       "\n";

constexpr const char *kOutputOptions =
    "Global options:\n"
    "\n"
    "  -D      print debugging information (each one increases debugging level)\n"
    "  -F file get input filenames from file, instead of command line or terminal\n"
    "  -H      print times in h:mm:ss.{ff,nnn} format, instead of m:ss.{ff,nnn}\n"
    "  -O val  overwrite existing files?  val is: {[ask], always, never}\n"
    "  -P type progress indicator type.  type is: {[pct], dot, spin, face, none}\n"
    "  -a str  prefix 'str' to base part of output filenames\n"
    "  -d dir  specify output directory\n"
    "  -i fmt  specify input file format decoder and/or arguments.\n"
    "          format is:  \"fmt decoder [arg1 ... argN (%f = filename)]\"\n"
    "  -o fmt  specify output file format, extension, encoder and/or arguments.\n"
    "          format is:  \"fmt [ext=abc] [encoder [arg1 ... argN (%f = filename)]]\"\n"
    "  -q      suppress non-critical output (quiet mode)\n"
    "  -r val  reorder input files?  val is: {ask, ascii, [natural], none}\n"
    "  -v      show version information\n"
    "  -w      suppress warnings\n"
    "  -z str  postfix 'str' to base part of output filenames\n"
    "  --      indicates that everything following it is a filename\n"
    "\n";

template<typename Class>
std::unique_ptr<Mode> make(ModeRun &run)
{
    return std::make_unique<Class>(run);
}

constexpr std::array kModes{
    ModeEntry{
        .name = "len",
        .description = "Displays length, size and properties of PCM WAVE data",
        .usage = "[OPTIONS] [files]",
        .letters = "U:ctu:",
        .help = "  -U unit show total size in specified unit (*)\n"
                "  -c      suppress column names\n"
                "  -h      show this help screen\n"
                "  -t      suppress totals line\n"
                "  -u unit show file sizes in specified unit (*)\n"
                "\n"
                "          (*) unit is one of: {[b], kb, mb, gb, tb}\n"
                "\n",
        .writesFiles = false,
        .make = make<LenMode>,
    },
    ModeEntry{
        .name = "fix",
        .description = "Fixes sector-boundary problems with CD-quality PCM WAVE data",
        .usage = "[OPTIONS] [file1 ...]",
        .letters = "bcfknu",
        .help = "  -b      shift track breaks backward to previous sector boundary (default)\n"
                "  -c      check whether fixing is needed\n"
                "  -f      shift track breaks forward to next sector boundary\n"
                "  -h      show this help screen\n"
                "  -k      don't skip initial unchanged files\n"
                "  -n      don't pad the last file with silence\n"
                "  -u      round track breaks to the nearest sector boundary\n"
                "\n",
        .writesFiles = true,
        .make = make<FixMode>,
    },
    ModeEntry{
        .name = "hash",
        .description = "Computes the MD5 or SHA1 fingerprint of PCM WAVE data",
        .usage = "[OPTIONS] [files]",
        .letters = "cms",
        .help = "  -c      generate composite fingerprint from input files\n"
                "  -h      show this help screen\n"
                "  -m      generate MD5 fingerprints (default)\n"
                "  -s      generate SHA1 fingerprints\n"
                "\n",
        .writesFiles = false,
        .make = make<HashMode>,
    },
    ModeEntry{
        .name = "pad",
        .description = "Pads CD-quality files not aligned on sector boundaries with silence",
        .usage = "[OPTIONS] [files]",
        .letters = "be",
        .help = "  -b      pad the beginning of files with silence\n"
                "  -e      pad the end of files with silence (default)\n"
                "  -h      show this help screen\n"
                "\n",
        .writesFiles = true,
        .make = make<PadMode>,
    },
    ModeEntry{
        .name = "join",
        .description = "Joins PCM WAVE data from multiple files into one",
        .usage = "[OPTIONS] [file1 file2 ...]",
        .letters = "ben",
        .help = "  -b      pad the beginning of the joined file with silence\n"
                "  -e      pad the end of the joined file with silence (default)\n"
                "  -h      show this help screen\n"
                "  -n      don't pad the joined file with silence\n"
                "\n",
        .writesFiles = true,
        .make = make<JoinMode>,
    },
    ModeEntry{
        .name = "split",
        .description = "Splits PCM WAVE data from one file into multiple files",
        .usage = "[OPTIONS] [file]",
        .letters = "c:e:f:l:n:m:t:u:x:",
        .help = "  -c num  start counting from num when naming output files (default is 1)\n"
                "  -e len  prefix each track with len amount of lead-in from previous track (*)\n"
                "  -f file read split point data from file\n"
                "  -h      show this help screen\n"
                "  -l len  split input file into files of length len (*)\n"
                "  -m str  specify character manipulation string (alternating from/to)\n"
                "  -n fmt  specify file count output format (default is %02d -- 01, 02, 03, ...)\n"
                "  -t fmt  name output files in user-specified format based on CUE sheet fields.\n"
                "          (%p = performer, %a = album, %t = track title, %n = track number)\n"
                "  -u len  postfix each track with len amount of lead-out from next track (*)\n"
                "  -x list only extract tracks in list (comma-separated, may contain ranges)\n"
                "\n"
                "          (*) len must be in bytes, m:ss, m:ss.ff or m:ss.nnn format\n"
                "\n"
                "If no split point file is given, then split points are read from the terminal.\n"
                "\n",
        .writesFiles = true,
        .make = make<SplitMode>,
    },
    ModeEntry{
        .name = "cat",
        .description = "Writes PCM WAVE data from one or more files to the terminal",
        .usage = "[OPTIONS] [files]",
        .letters = "cden",
        .help = "  -c      suppress extra RIFF chunks\n"
                "  -d      suppress WAVE data\n"
                "  -e      suppress WAVE headers\n"
                "  -h      show this help screen\n"
                "  -n      suppress NULL pad byte at end of odd-sized data chunks, if present\n"
                "\n",
        .writesFiles = false,
        .make = make<CatMode>,
    },
    ModeEntry{
        .name = "cmp",
        .description = "Compares PCM WAVE data in two files",
        .usage = "[OPTIONS] [file1 file2]",
        .letters = "c:f:ls",
        .help = "  -c secs check the first secs seconds of data for byte shift (default is 3)\n"
                "  -f fuzz fuzz factor: allow up to fuzz mismatches when detecting a byte-shift\n"
                "  -h      show this help screen\n"
                "  -l      list offsets and values of all differing bytes\n"
                "  -s      check if WAVE data in the files is identical modulo a byte-shift\n"
                "\n",
        .writesFiles = false,
        .make = make<CmpMode>,
    },
    ModeEntry{
        .name = "cue",
        .description = "Generates a CUE sheet or split points from a set of files",
        .usage = "[OPTIONS] [files]",
        .letters = "cs",
        .help = "  -c      generate CUE sheet (default)\n"
                "  -h      show this help screen\n"
                "  -s      generate split points in explicit byte-offset format\n"
                "\n",
        .writesFiles = false,
        .make = make<CueMode>,
    },
    ModeEntry{
        .name = "conv",
        .description = "Converts files from one format to another",
        .usage = "[OPTIONS] [files]",
        .letters = "tn:",
        .help = "  -h      show this help screen\n"
                "  -t      read WAVE data from the terminal\n"
                "\n",
        .writesFiles = true,
        .make = make<ConvMode>,
    },
    ModeEntry{
        .name = "info",
        .description = "Displays detailed information about PCM WAVE data",
        .usage = "[OPTIONS] [files]",
        .letters = "",
        .help = "  -h      show this help screen\n"
                "\n",
        .writesFiles = false,
        .make = make<InfoMode>,
    },
    ModeEntry{
        .name = "strip",
        .description = "Strips extra RIFF chunks and/or writes canonical headers",
        .usage = "[OPTIONS] [files]",
        .letters = "ce",
        .help = "  -c      don't strip unnecessary RIFF chunks\n"
                "  -e      don't rewrite WAVE header in canonical format\n"
                "  -h      show this help screen\n"
                "\n",
        .writesFiles = true,
        .make = make<StripMode>,
    },
    ModeEntry{
        .name = "gen",
        .description = "Generates CD-quality PCM WAVE data files containing silence",
        .usage = "[OPTIONS]",
        .letters = "l:",
        .help = "  -h      show this help screen\n"
                "  -l len  generate files containing silence of length len (*)\n"
                "\n"
                "          (*) len must be in bytes, m:ss, m:ss.ff or m:ss.nnn format\n"
                "\n",
        .writesFiles = true,
        .make = make<GenMode>,
    },
    ModeEntry{
        .name = "trim",
        .description = "Trims PCM WAVE silence from the ends of files",
        .usage = "[OPTIONS] [files]",
        .letters = "be",
        .help = "  -b      only trim silence from the beginning of files\n"
                "  -e      only trim silence from the end of files\n"
                "  -h      show this help screen\n"
                "\n",
        .writesFiles = true,
        .make = make<TrimMode>,
    },
};

} // namespace

std::span<const ModeEntry> modeTable()
{
    return kModes;
}

const ModeEntry *modeNamed(std::string_view name)
{
    const auto found = std::ranges::find(kModes, name, &ModeEntry::name);
    return found == kModes.end() ? nullptr : &*found;
}

std::string helpOf(const ModeEntry &mode, const std::string &command)
{
    return "Usage: " + command + ' ' + std::string(mode.usage) + "\n\nMode-specific options:\n\n" + mode.help
           + (mode.writesFiles ? kOutputOptions : kGlobalOptions);
}

} // namespace nurv
