// SPDX-License-Identifier: MIT
#include "code_convert.h"

#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace
{

constexpr std::size_t kConversionFailed = static_cast<std::size_t>(-1);

bool is_continuation(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

/// Writes at most one character per byte to `dst` and returns how many.
std::size_t decode(const char* src, std::ptrdiff_t length, wchar_t* dst)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(src);
    const wchar_t* const begin = dst;
    // Intended: a sequence may reach beyond the length, up to the zero that ends the text.
    for (std::ptrdiff_t remaining = length; remaining > 0;) {
        std::ptrdiff_t size = 1;
        if (bytes[0] < 0x80) {
            *dst++ = bytes[0];
        } else if ((bytes[0] & 0xE0) == 0xC0 && is_continuation(bytes[1])) {
            // Intended: here and below, overlong forms and surrogates pass.
            *dst++ = ((bytes[0] & 0x1F) << 6) | (bytes[1] & 0x3F);
            size = 2;
        } else if ((bytes[0] & 0xF0) == 0xE0 && is_continuation(bytes[1]) &&
                   is_continuation(bytes[2])) {
            *dst++ = ((bytes[0] & 0x0F) << 12) | ((bytes[1] & 0x3F) << 6) | (bytes[2] & 0x3F);
            size = 3;
        } else {
            // Intended: a stray byte drops the rest of the text, as does a sequence of four bytes.
            break;
        }
        bytes += size;
        remaining -= size;
    }
    return static_cast<std::size_t>(dst - begin);
}

/// Writes at most three bytes per character to `dst` and returns how many.
std::size_t encode(const wchar_t* src, std::ptrdiff_t length, char* dst)
{
    const char* const begin = dst;
    for (std::ptrdiff_t i = 0; i < length; ++i) {
        const auto value = static_cast<std::int32_t>(static_cast<std::uint32_t>(src[i]));
        // Intended: a negative value leaves its low byte.
        if (value < 0x80) {
            *dst++ = static_cast<char>(value);
        } else if (value < 0x800) {
            *dst++ = static_cast<char>(0xC0 | (value >> 6));
            *dst++ = static_cast<char>(0x80 | (value & 0x3F));
        } else {
            // Intended: above 0xFFFF the lead byte is cut to eight bits, which is not valid UTF-8.
            *dst++ = static_cast<char>(0xE0 | (value >> 12));
            *dst++ = static_cast<char>(0x80 | ((value & 0xFC0) >> 6));
            *dst++ = static_cast<char>(0x80 | (value & 0x3F));
        }
    }
    return static_cast<std::size_t>(dst - begin);
}

std::vector<wchar_t> pivot_buffer(int src_len)
{
    return std::vector<wchar_t>(static_cast<std::size_t>(src_len) * 2 + 3);
}

// Intended: the locale of the whole process stays switched. An unknown name changes nothing.
void switch_locale(const char* locale)
{
    std::setlocale(LC_ALL, locale);
}

} // namespace

const char* CodeCvt::china_locale = "zh_CN.gb18030";

int CodeCvt::_utf8_to_ucs2(const char* src, int src_len, wchar_t* dst, int dst_len)
{
    if (dst_len < src_len * 2LL + 2)
        return 0;
    const std::size_t written = decode(src, src_len, dst);
    dst[written] = L'\0';
    return static_cast<int>(written);
}

int CodeCvt::_ucs2_to_utf8(const wchar_t* src, int src_len, char* dst, int dst_len)
{
    if (dst_len < src_len * 3LL + 1)
        return 0;
    const std::size_t written = encode(src, src_len, dst);
    dst[written] = '\0';
    return static_cast<int>(written);
}

int CodeCvt::_utf8_to_ansi(const char* src, int src_len, char* dst, int dst_len, const char* locale)
{
    if (dst_len < src_len + 1LL)
        return 0;
    std::vector<wchar_t> wide = pivot_buffer(src_len);
    decode(src, src_len, wide.data());
    switch_locale(locale);
    const std::size_t written = std::wcstombs(dst, wide.data(), static_cast<std::size_t>(dst_len));
    return written == kConversionFailed ? 0 : static_cast<int>(written);
}

int CodeCvt::_ansi_to_utf8(const char* src, int src_len, char* dst, int dst_len, const char* locale)
{
    if (dst_len < src_len * 3LL + 3)
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
    std::wstring wide(text.size(), L'\0');
    const auto length = static_cast<std::ptrdiff_t>(text.size());
    wide.resize(decode(text.c_str(), length, wide.data()));
    return wide;
}

std::string CodeCvt::utf16_to_utf8(const std::wstring& text)
{
    std::string utf8(text.size() * 3, '\0');
    const auto length = static_cast<std::ptrdiff_t>(text.size());
    utf8.resize(encode(text.data(), length, utf8.data()));
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

// Measures first: a character may take more bytes in the locale than in UTF-8.
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
