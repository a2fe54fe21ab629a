// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/SoundHash.h"

#include "support/ToolError.h"

#include <openssl/evp.h>

namespace nurv {

namespace {

[[noreturn]] void fail()
{
    throw ToolError(ToolError::Kind::OutOfMemory, "the library for fingerprints does not work");
}

} // namespace

void SoundHash::Free::operator()(evp_md_ctx_st *context) const
{
    EVP_MD_CTX_free(context);
}

SoundHash::SoundHash(Kind kind) : m_context(EVP_MD_CTX_new())
{
    const EVP_MD *digest = kind == Kind::Md5 ? EVP_md5() : EVP_sha1();
    if (!m_context || EVP_DigestInit_ex(m_context.get(), digest, nullptr) != 1)
        fail();
}

void SoundHash::add(std::span<const uint8_t> bytes)
{
    if (EVP_DigestUpdate(m_context.get(), bytes.data(), bytes.size()) != 1)
        fail();
}

std::vector<uint8_t> SoundHash::finish()
{
    std::vector<uint8_t> digest(EVP_MAX_MD_SIZE);
    unsigned bytes = 0;
    if (EVP_DigestFinal_ex(m_context.get(), digest.data(), &bytes) != 1)
        fail();
    digest.resize(bytes);
    return digest;
}

std::string hexText(std::span<const uint8_t> bytes)
{
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text;
}

} // namespace nurv
