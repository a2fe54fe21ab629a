// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeMd5.h"

#include "ape/ApeError.h"

#include <openssl/evp.h>

namespace nurv {

namespace {

void check(int isDone)
{
    if (isDone != 1)
        throw ApeError(ApeErrorNumber::OutOfMemory,
                       "the MD5 of the file cannot be computed: no memory, or the system does not allow it");
}

} // namespace

ApeMd5::ApeMd5() : m_context(::EVP_MD_CTX_new())
{
    check(m_context ? ::EVP_DigestInit_ex(m_context.get(), ::EVP_md5(), nullptr) : 0);
}

void ApeMd5::add(std::span<const uint8_t> bytes)
{
    check(::EVP_DigestUpdate(m_context.get(), bytes.data(), bytes.size()));
}

std::array<uint8_t, 16> ApeMd5::result()
{
    std::array<uint8_t, 16> digest{};
    check(::EVP_DigestFinal_ex(m_context.get(), digest.data(), nullptr));
    return digest;
}

void ApeMd5::Free::operator()(evp_md_ctx_st *context) const
{
    ::EVP_MD_CTX_free(context);
}

} // namespace nurv
