// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/AudioFormat.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nurv {

class RunMessages;

/// A program with the arguments that the command line or the environment gives it. No arguments: those that the
/// format has by default.
struct CodecCommand {
    std::string program;
    std::vector<std::string> arguments;
};

/// Which programs decode and encode, and what is to be written: the formats' defaults, the environment
/// (ST_FLAC_DEC, ST_FLAC_ENC), and the options -i and -o, in this order.
class FormatSettings {
public:
    explicit FormatSettings(const RunMessages &messages);

    /// "fmt decoder [arg1 ... argN]". Ends the run for what cannot be read.
    void readInputOption(const std::string &text);
    /// "fmt [ext=abc] [encoder [arg1 ... argN]]", which chooses the format as well.
    void readOutputOption(const std::string &text);
    void readEnvironment();

    [[nodiscard]] const AudioFormat &outputFormat() const { return *m_outputFormat; }
    /// Of files in that format, without a dot.
    [[nodiscard]] std::string extension(const AudioFormat &format) const;

    /// Whether the format is decoded in the process, as nobody asked for anything else.
    [[nodiscard]] bool decodesItself(const AudioFormat &format) const;
    /// The words that start the decoder for a file. Ends the run where they have no room for its name.
    [[nodiscard]] std::vector<std::string> decoderWords(const AudioFormat &format, const std::string &file) const;
    /// The same of the encoder.
    [[nodiscard]] std::vector<std::string> encoderWords(const AudioFormat &format, const std::string &file) const;
    /// The decoder by its name.
    [[nodiscard]] std::string decoderName(const AudioFormat &format) const;

private:
    void setEncoder(const AudioFormat &format, std::vector<std::string> words);

    const RunMessages &m_messages;
    const AudioFormat *m_outputFormat;
    std::map<std::string_view, CodecCommand> m_decoders;
    std::map<std::string_view, CodecCommand> m_encoders;
    std::map<std::string_view, std::string> m_extensions;
};

} // namespace nurv
