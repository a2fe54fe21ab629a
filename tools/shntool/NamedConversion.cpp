// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/NamedConversion.h"

#include "support/ToolError.h"

#include <string_view>

#include <getopt.h>

namespace nurv {

namespace {

/// Those of `conv` in shntool 3.0.10, and -n. The leading colon: a missing value is told
/// from an unknown option.
constexpr char kOptions[] = ":DF:HP:hi:qr:vwO:a:d:o:z:tn:";

/// The words as getopt takes them: it moves the pointers about.
std::vector<char *> wordsOf(std::vector<std::string> &arguments)
{
    std::vector<char *> words;
    for (std::string &argument : arguments)
        words.push_back(argument.data());
    words.push_back(nullptr);
    return words;
}

NamedConversion::Overwrite overwriteNamed(std::string_view word)
{
    if (word == "always")
        return NamedConversion::Overwrite::Always;
    return word == "never" ? NamedConversion::Overwrite::Never : NamedConversion::Overwrite::Ask;
}

} // namespace

std::optional<NamedConversion> parseNamedConversion(std::span<const std::string> arguments)
{
    std::vector<std::string> copies{"shntool"};
    copies.insert(copies.end(), arguments.begin(), arguments.end());
    std::vector<char *> words = wordsOf(copies);
    const int count = static_cast<int>(copies.size());

    NamedConversion conversion;
    std::optional<std::string> name;
    std::optional<std::string> folder;
    bool readsNamesFromFile = false;
    bool readsStandardInput = false;
    opterr = 0;
    optind = 0; // starts anew, whatever was read before
    for (int option = 0; (option = ::getopt(count, words.data(), kOptions)) != -1;) {
        switch (option) {
        case 'n': name = optarg; continue;
        case 'd': folder = optarg; continue;
        case 'O': conversion.overwrite = overwriteNamed(optarg); break;
        case 'F': readsNamesFromFile = true; break;
        case 't': readsStandardInput = true; break;
        case ':':
            if (optopt == 'n')
                badArguments("option -n needs the name of the file to make");
            return std::nullopt;
        case 'h':
        case 'v':
        case '?': return std::nullopt;
        default: break;
        }
        conversion.options.push_back({'-', static_cast<char>(option)});
        if (optarg)
            conversion.options.emplace_back(optarg);
    }
    if (!name)
        return std::nullopt;
    if (name->empty())
        badArguments("option -n needs the name of the file to make");
    if (readsNamesFromFile)
        badArguments("option -n names one file, so it does not go with -F");

    const std::vector<std::string> sources(words.begin() + optind, words.begin() + count);
    const size_t expected = readsStandardInput ? 0 : 1;
    if (sources.size() != expected) {
        badArguments("option -n names one file, so it takes " + std::to_string(expected) + " source files, not "
                     + std::to_string(sources.size()));
    }
    if (!readsStandardInput)
        conversion.source = sources.front();
    conversion.output = folder && !folder->empty() && name->front() != '/' ? *folder + '/' + *name : *name;
    return conversion;
}

} // namespace nurv
