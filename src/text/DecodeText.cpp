// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/DecodeText.h"

#include "text/Utf8Text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <optional>

#include <unicode/ucnv.h>
#include <unicode/ucsdet.h>

namespace nurv {

namespace {

// The detector guesses by letter frequencies: on texts of some lines it is right
// above the first value, and on a few letters it is wrong with any confidence.
constexpr int kSureConfidence = 50;
constexpr qsizetype kFewestForeignBytes = 8;
// Text that is foreign for the most part is not Western, so the best guess above
// the detector's "possible" (10) is better than the fallback.
constexpr int kForeignTextConfidence = 12;
// Enough to know an encoding; the detector's time grows with the length.
constexpr qsizetype kDetectorSample = 64 * 1024;

struct ByteOrderMark {
    const char *bytes;
    qsizetype length;
    const char *encoding;
};

// UTF-32 first: its little-endian mark begins with that of UTF-16.
constexpr std::array<ByteOrderMark, 5> kByteOrderMarks = {{
    {"\xFF\xFE\0\0", 4, "UTF-32LE"},
    {"\0\0\xFE\xFF", 4, "UTF-32BE"},
    {"\xEF\xBB\xBF", 3, "UTF-8"},
    {"\xFF\xFE", 2, "UTF-16LE"},
    {"\xFE\xFF", 2, "UTF-16BE"},
}};

enum class OnBadBytes { Fail, Replace };

std::optional<QString> convert(const QByteArray &bytes, const char *encoding, OnBadBytes onBadBytes)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(
        ucnv_open(encoding, &status), &ucnv_close);
    if (U_FAILURE(status))
        return std::nullopt;
    if (onBadBytes == OnBadBytes::Fail)
        ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                            &status);
    // No encoding here gives more than two UTF-16 units for one byte.
    QString text(bytes.size() * 2 + 1, Qt::Uninitialized);
    const auto length = ucnv_toUChars(converter.get(), reinterpret_cast<UChar *>(text.data()),
                                      static_cast<int32_t>(text.size()), bytes.constData(),
                                      static_cast<int32_t>(bytes.size()), &status);
    if (U_FAILURE(status))
        return std::nullopt;
    text.truncate(length);
    return text;
}

// Text of one script in UTF-16 without a mark has a zero in every second byte
// wherever it uses ASCII, blanks and line ends included.
const char *unmarkedUtf16(const QByteArray &bytes)
{
    if (bytes.size() % 2 != 0)
        return nullptr;
    qsizetype zerosAtEven = 0;
    qsizetype zerosAtOdd = 0;
    for (qsizetype at = 0; at < bytes.size(); ++at) {
        if (bytes.at(at) == 0)
            ++(at % 2 == 0 ? zerosAtEven : zerosAtOdd);
    }
    const qsizetype units = bytes.size() / 2;
    if (zerosAtEven == 0 && zerosAtOdd * 10 >= units)
        return "UTF-16LE";
    if (zerosAtOdd == 0 && zerosAtEven * 10 >= units)
        return "UTF-16BE";
    return nullptr;
}

// The confidence to ask of the detector, or nothing when it is not worth asking.
std::optional<int> neededConfidence(const QByteArray &bytes)
{
    const auto isForeign = [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; };
    const auto isLetter = [](char byte) {
        return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
    };
    const auto foreign = std::count_if(bytes.begin(), bytes.end(), isForeign);
    if (foreign < kFewestForeignBytes)
        return std::nullopt;
    const auto letters = std::count_if(bytes.begin(), bytes.end(), isLetter);
    return foreign > letters ? kForeignTextConfidence : kSureConfidence;
}

QByteArray detectedEncoding(const QByteArray &bytes)
{
    const std::optional<int> needed = neededConfidence(bytes);
    if (!needed)
        return {};
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UCharsetDetector, decltype(&ucsdet_close)> detector(ucsdet_open(&status),
                                                                              &ucsdet_close);
    if (U_FAILURE(status))
        return {};
    ucsdet_setText(detector.get(), bytes.constData(),
                   static_cast<int32_t>(std::min(bytes.size(), kDetectorSample)), &status);
    const UCharsetMatch *match = ucsdet_detect(detector.get(), &status);
    if (U_FAILURE(status) || !match || ucsdet_getConfidence(match, &status) < *needed)
        return {};
    const QByteArray name(ucsdet_getName(match, &status));
    if (U_FAILURE(status))
        return {};
    // Files labelled so use the typographic quotes of its superset.
    return name == "ISO-8859-1" ? QByteArray("windows-1252") : name;
}

} // namespace

QString decodeText(const QByteArray &bytes)
{
    for (const ByteOrderMark &mark : kByteOrderMarks) {
        if (bytes.size() >= mark.length
            && std::memcmp(bytes.constData(), mark.bytes, static_cast<size_t>(mark.length)) == 0)
            return convert(bytes.sliced(mark.length), mark.encoding, OnBadBytes::Replace)
                .value_or(QString());
    }
    if (bytes.contains('\0')) {
        if (const char *encoding = unmarkedUtf16(bytes)) {
            if (const auto text = convert(bytes, encoding, OnBadBytes::Fail))
                return *text;
        }
    }
    if (const std::optional<QString> text = fromStrictUtf8(bytes))
        return *text;
    if (const QByteArray encoding = detectedEncoding(bytes); !encoding.isEmpty()) {
        if (const auto text = convert(bytes, encoding.constData(), OnBadBytes::Fail))
            return *text;
    }
    return convert(bytes, "windows-1252", OnBadBytes::Replace).value_or(QString());
}

} // namespace nurv
