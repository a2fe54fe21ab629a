// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>

struct evp_md_ctx_st;

namespace nurv {

/// The MD5 of bytes that come in pieces.
class ApeMd5 {
public:
    ApeMd5();

    void add(std::span<const uint8_t> bytes);

    /// Once, at the end.
    [[nodiscard]] std::array<uint8_t, 16> result();

private:
    struct Free {
        void operator()(evp_md_ctx_st *context) const;
    };

    std::unique_ptr<evp_md_ctx_st, Free> m_context;
};

} // namespace nurv
