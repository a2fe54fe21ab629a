// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

struct evp_md_ctx_st;

namespace nurv {

/// A fingerprint of bytes that come in pieces.
class SoundHash {
public:
    enum class Kind { Md5, Sha1 };

    /// Throws ToolError(OutOfMemory) where the library gives none.
    explicit SoundHash(Kind kind);

    void add(std::span<const uint8_t> bytes);
    /// Once, at the end.
    [[nodiscard]] std::vector<uint8_t> finish();

private:
    struct Free {
        void operator()(evp_md_ctx_st *context) const;
    };

    std::unique_ptr<evp_md_ctx_st, Free> m_context;
};

/// In hexadecimal digits, small letters.
[[nodiscard]] std::string hexText(std::span<const uint8_t> bytes);

} // namespace nurv
