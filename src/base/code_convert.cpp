// SPDX-License-Identifier: MIT
#include "code_convert.h"

#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace
{

constexpr std::size_t kConversionFailed = static_cast<std::size_t>(-1);
constexpr std::ptrdiff_t kAsciiBlock = 8;
constexpr std::uint64_t kHighBits = 0x8080808080808080U;

constexpr std::int32_t kFirstOfTwoBytes = 0x80;
constexpr std::int32_t kFirstOfThreeBytes = 0x800;

bool is_continuation(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

std::int32_t signed_code(wchar_t character)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(character));
}

bool is_one_byte(char byte)
{
    return static_cast<unsigned char>(byte) < kFirstOfTwoBytes;
}

// Intended: negative values too, of which the low byte is left.
bool is_one_byte(wchar_t character)
{
    return signed_code(character) < kFirstOfTwoBytes;
}

bool is_ascii_block(const char* src)
{
    std::uint64_t block = 0;
    std::memcpy(&block, src, sizeof block);
    return (block & kHighBits) == 0;
}

bool is_ascii_block(const wchar_t* src)
{
    std::uint32_t bits = 0;
    for (std::ptrdiff_t i = 0; i < kAsciiBlock; ++i)
        bits |= static_cast<std::uint32_t>(src[i]);
    return bits < static_cast<std::uint32_t>(kFirstOfTwoBytes);
}

/// Copies what is one byte in UTF-8, element by element, and returns how many elements these were.
template <typename From, typename To>
std::ptrdiff_t copy_one_byte_run(const From* src, std::ptrdiff_t length, To* dst)
{
    std::ptrdiff_t done = 0;
    for (; length - done >= kAsciiBlock && is_ascii_block(src + done); done += kAsciiBlock) {
        for (std::ptrdiff_t i = 0; i < kAsciiBlock; ++i)
            dst[done + i] = static_cast<To>(src[done + i]);
    }
    for (; done < length && is_one_byte(src[done]); ++done)
        dst[done] = static_cast<To>(src[done]);
    return done;
}

/// Returns the characters written, at most one per lead byte.
std::ptrdiff_t decode(const char* src, std::ptrdiff_t length, wchar_t* dst)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(src);
    const wchar_t* const start = dst;
    // Intended: a sequence is looked at beyond the length, up to the zero that ends the text.
    for (std::ptrdiff_t remaining = length; remaining > 0;) {
        if (bytes[0] < 0x80) {
            const std::ptrdiff_t run =
                copy_one_byte_run(reinterpret_cast<const char*>(bytes), remaining, dst);
            dst += run;
            bytes += run;
            remaining -= run;
        } else if ((bytes[0] & 0xE0) == 0xC0 && is_continuation(bytes[1])) {
            *dst++ = ((bytes[0] & 0x1F) << 6) | (bytes[1] & 0x3F);
            bytes += 2;
            remaining -= 2;
        } else if ((bytes[0] & 0xF0) == 0xE0 && is_continuation(bytes[1]) &&
                   is_continuation(bytes[2])) {
            // Intended: neither overlong forms nor surrogates are refused.
            *dst++ = ((bytes[0] & 0x0F) << 12) | ((bytes[1] & 0x3F) << 6) | (bytes[2] & 0x3F);
            bytes += 3;
            remaining -= 3;
        } else {
            // Intended: the rest is dropped, and four-byte sequences are as bad as stray bytes.
            break;
        }
    }
    return dst - start;
}

/// Returns the bytes written, at most three per character.
std::ptrdiff_t encode(const wchar_t* src, std::ptrdiff_t length, char* dst)
{
    const char* const start = dst;
    for (std::ptrdiff_t i = 0; i < length;) {
        const std::int32_t value = signed_code(src[i]);
        if (value < kFirstOfTwoBytes) {
            const std::ptrdiff_t run = copy_one_byte_run(src + i, length - i, dst);
            dst += run;
            i += run;
        } else if (value < kFirstOfThreeBytes) {
            *dst++ = static_cast<char>(0xC0 | (value >> 6));
            *dst++ = static_cast<char>(0x80 | (value & 0x3F));
            ++i;
        } else {
            // Intended: above 0xFFFF there are no four bytes, and the lead byte is cut to eight
            // bits.
            *dst++ = static_cast<char>(0xE0 | (value >> 12));
            *dst++ = static_cast<char>(0x80 | ((value & 0xFC0) >> 6));
            *dst++ = static_cast<char>(0x80 | (value & 0x3F));
            ++i;
        }
    }
    return dst - start;
}

std::size_t lead_bytes(const std::string& text)
{
    std::size_t count = 0;
    for (const char byte : text)
        count += is_continuation(static_cast<unsigned char>(byte)) ? 0 : 1;
    return count;
}

std::size_t encoded_bytes(const std::wstring& text)
{
    std::size_t count = text.size();
    for (const wchar_t character : text) {
        const std::int32_t value = signed_code(character);
        count += (value >= kFirstOfTwoBytes ? 1 : 0) + (value >= kFirstOfThreeBytes ? 1 : 0);
    }
    return count;
}

/// What a low-level function asks for, free of overflow.
bool is_refused(int dst_len, int src_len, int factor, int extra)
{
    return dst_len < static_cast<long long>(src_len) * factor + extra;
}

std::vector<wchar_t> pivot_buffer(int src_len)
{
    return std::vector<wchar_t>(static_cast<std::size_t>(src_len) * 2 + 3);
}

// Intended: the locale is the whole process's and stays switched; an unknown one changes nothing.
void switch_locale(const char* locale)
{
    std::setlocale(LC_ALL, locale);
}

} // namespace

const char* CodeCvt::china_locale = "zh_CN.gb18030";

int CodeCvt::_utf8_to_ucs2(const char* src, int src_len, wchar_t* dst, int dst_len)
{
    if (is_refused(dst_len, src_len, 2, 2))
        return 0;
    const std::ptrdiff_t written = decode(src, src_len, dst);
    dst[written] = L'\0';
    return static_cast<int>(written);
}

int CodeCvt::_ucs2_to_utf8(const wchar_t* src, int src_len, char* dst, int dst_len)
{
    if (is_refused(dst_len, src_len, 3, 1))
        return 0;
    const std::ptrdiff_t written = encode(src, src_len, dst);
    dst[written] = '\0';
    return static_cast<int>(written);
}

int CodeCvt::_utf8_to_ansi(const char* src, int src_len, char* dst, int dst_len, const char* locale)
{
    if (is_refused(dst_len, src_len, 1, 1))
        return 0;
    std::vector<wchar_t> wide = pivot_buffer(src_len);
    decode(src, src_len, wide.data());
    switch_locale(locale);
    const std::size_t written = std::wcstombs(dst, wide.data(), static_cast<std::size_t>(dst_len));
    return written == kConversionFailed ? 0 : static_cast<int>(written);
}

int CodeCvt::_ansi_to_utf8(const char* src, int src_len, char* dst, int dst_len, const char* locale)
{
    if (is_refused(dst_len, src_len, 3, 3))
        return 0;
    std::vector<wchar_t> wide = pivot_buffer(src_len);
    switch_locale(locale);
    const std::size_t characters = std::mbstowcs(wide.data(), src, wide.size() - 1);
    if (characters == kConversionFailed)
        return 0;
    return _ucs2_to_utf8(wide.data(), static_cast<int>(characters), dst, dst_len);
}

std::wstring CodeCvt::utf8_to_utf16(const std::string& text)
{
    std::wstring wide(lead_bytes(text), L'\0');
    const auto length = static_cast<std::ptrdiff_t>(text.size());
    wide.resize(static_cast<std::size_t>(decode(text.c_str(), length, wide.data())));
    return wide;
}

std::string CodeCvt::utf16_to_utf8(const std::wstring& text)
{
    std::string utf8(encoded_bytes(text), '\0');
    encode(text.data(), static_cast<std::ptrdiff_t>(text.size()), utf8.data());
    return utf8;
}

std::string CodeCvt::asni_to_utf8(const std::string& text, const char* locale)
{
    switch_locale(locale);
    const std::size_t characters = std::mbstowcs(nullptr, text.c_str(), 0);
    if (characters == kConversionFailed)
        return {};
    std::wstring wide(characters, L'\0');
    std::mbstowcs(wide.data(), text.c_str(), characters);
    return utf16_to_utf8(wide);
}

// Measured first, because a character may be longer in the locale than in UTF-8.
std::string CodeCvt::utf8_to_ansi(const std::string& text, const char* locale)
{
    const std::wstring wide = utf8_to_utf16(text);
    switch_locale(locale);
    const std::size_t bytes = std::wcstombs(nullptr, wide.c_str(), 0);
    if (bytes == kConversionFailed)
        return {};
    std::string ansi(bytes, '\0');
    std::wcstombs(ansi.data(), wide.c_str(), bytes);
    return ansi;
}

std::string CodeCvt::gbk_to_utf8(const std::string& text)
{
    return asni_to_utf8(text, china_locale);
}

std::string CodeCvt::utf8_to_gbk(const std::string& text)
{
    return utf8_to_ansi(text, china_locale);
}

std::wstring CodeCvt::gbk_to_utf16(const std::string& text)
{
    return utf8_to_utf16(gbk_to_utf8(text));
}

std::string CodeCvt::utf16_to_gbk(const std::wstring& text)
{
    return utf8_to_gbk(utf16_to_utf8(text));
}
