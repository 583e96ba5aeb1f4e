// SPDX-License-Identifier: MIT
#pragma once

#include "Require.h"
#include "code_convert.h"

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

/// The length of the sequence that a byte announces; 0 where decoding stops.
inline std::size_t announcedLength(unsigned char lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC0 && lead <= 0xDF)
        return 2;
    return lead >= 0xE0 && lead <= 0xEF ? 3 : 0;
}

/// Sums up the payload of each byte of the sequences that begin before `length`. A zero follows the
/// text.
inline std::wstring decodedByModel(const std::string& text, std::size_t length)
{
    constexpr int leadValues[] = {0, 0x80, 0x20, 0x10};
    std::wstring wide;
    for (std::size_t i = 0; i < length;) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t end = i + announcedLength(lead);
        if (end == i)
            return wide;
        int value = lead % leadValues[end - i];
        while (++i < end) {
            const int next = i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
            if (next / 0x40 != 2)
                return wide;
            value = value * 0x40 + next % 0x40;
        }
        wide.push_back(static_cast<wchar_t>(value));
    }
    return wide;
}

inline std::string encodedByModel(const std::wstring& wide)
{
    std::string text;
    for (const wchar_t character : wide) {
        std::uint32_t value = 0;
        std::memcpy(&value, &character, sizeof value);
        const bool negative = value >= 0x80000000U;
        if (negative || value < 0x80) {
            text += static_cast<char>(value % 0x100);
        } else if (value < 0x800) {
            text += static_cast<char>(0xC0 + value / 0x40);
            text += static_cast<char>(0x80 + value % 0x40);
        } else {
            text += static_cast<char>((0xE0U | (value / 0x1000)) % 0x100);
            text += static_cast<char>(0x80 + value / 0x40 % 0x40);
            text += static_cast<char>(0x80 + value % 0x40);
        }
    }
    return text;
}

/// A zero-terminated copy that ends where its allocation does, so that a sanitizer notices more.
inline std::vector<char> terminated(const std::string& text)
{
    return {text.c_str(), text.c_str() + text.size() + 1};
}

/// Calls `convert` with a buffer of `room` elements, and with one less, which it must refuse.
template <typename Char, typename Convert>
std::basic_string<Char> converted(std::size_t room, Convert convert, bool endsWithZero)
{
    const std::vector<Char> untouched(room, Char('u'));
    std::vector<Char> buffer = untouched;
    REQUIRE(convert(buffer.data(), static_cast<int>(room) - 1) == 0);
    REQUIRE(buffer == untouched);
    const int written = convert(buffer.data(), static_cast<int>(room));
    REQUIRE(written >= 0 && static_cast<std::size_t>(written) <= room);
    const auto count = static_cast<std::size_t>(written);
    REQUIRE(!endsWithZero || buffer[count] == 0);
    return {buffer.data(), count};
}

/// Decodes the first `length` bytes.
inline void requireDecoded(const std::string& text, std::size_t length)
{
    const std::vector<char> source = terminated(text);
    const std::wstring expected = decodedByModel(text, length);
    const auto decode = [&](wchar_t* target, int room) {
        return CodeCvt::_utf8_to_ucs2(source.data(), static_cast<int>(length), target, room);
    };
    REQUIRE(converted<wchar_t>(length * 2 + 2, decode, true) == expected);
    REQUIRE(length < text.size() || CodeCvt::utf8_to_utf16(text) == expected);
}

/// Encodes the first `length` characters.
inline void requireEncoded(const std::wstring& wide, std::size_t length)
{
    const std::string expected = encodedByModel(wide.substr(0, length));
    const auto encode = [&](char* target, int room) {
        return CodeCvt::_ucs2_to_utf8(wide.data(), static_cast<int>(length), target, room);
    };
    REQUIRE(converted<char>(length * 3 + 1, encode, true) == expected);
    REQUIRE(length < wide.size() || CodeCvt::utf16_to_utf8(wide) == expected);
}

/// Both ways of converting between UTF-8 and `locale` agree.
inline void requireConverted(const std::string& text, const char* locale)
{
    const std::vector<char> source = terminated(text);
    const int length = static_cast<int>(text.size());
    const auto fromLocale = [&](char* target, int room) {
        return CodeCvt::_ansi_to_utf8(source.data(), length, target, room, locale);
    };
    REQUIRE(converted<char>(text.size() * 3 + 3, fromLocale, false) ==
            CodeCvt::asni_to_utf8(text, locale));

    const std::string whole = CodeCvt::utf8_to_ansi(text, locale);
    const auto toLocale = [&](char* target, int room) {
        return CodeCvt::_utf8_to_ansi(source.data(), length, target, room, locale);
    };
    const std::size_t least = text.size() + 1;
    const std::string cut = converted<char>(least, toLocale, false);
    // A character that the locale lacks is not met where the room ends before it.
    const bool isCut = cut.empty() || cut.size() + MB_CUR_MAX > least;
    REQUIRE(whole.empty() ? isCut : whole.compare(0, cut.size(), cut) == 0);
    std::string roomy(text.size() * 4 + 1, '\0');
    roomy.resize(static_cast<std::size_t>(toLocale(roomy.data(), static_cast<int>(roomy.size()))));
    REQUIRE(roomy == whole);
}

/// The first byte chooses a locale, where a text is cut and how large wide characters are. The rest
/// is the text, and is then taken for wide characters.
inline void requireTextConverted(const std::string& bytes)
{
    constexpr const char* locales[] = {"C", "C.UTF-8", "zh_CN.gb18030", "no such locale"};
    const auto choice = static_cast<unsigned char>(bytes[0]);
    const std::string text = bytes.substr(1);
    std::wstring wide(text.size() / sizeof(wchar_t), L'\0');
    std::memcpy(wide.data(), text.data(), wide.size() * sizeof(wchar_t));
    for (wchar_t& character : wide)
        character >>= choice % 32; // of any magnitude, and negative, too

    std::setlocale(LC_ALL, "C.UTF-8");
    requireDecoded(text, text.size());
    requireDecoded(text, choice % (text.size() + 1));
    requireEncoded(wide, wide.size());
    requireEncoded(wide, choice % (wide.size() + 1));
    requireConverted(text, locales[choice % 4]);
    REQUIRE(CodeCvt::gbk_to_utf16(text) == CodeCvt::utf8_to_utf16(CodeCvt::gbk_to_utf8(text)));
    REQUIRE(CodeCvt::utf16_to_gbk(wide) == CodeCvt::utf8_to_gbk(CodeCvt::utf16_to_utf8(wide)));
}
