// SPDX-License-Identifier: MIT
#include "Require.h"
#include "code_convert.h"

#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace
{

const char* const kLocales[] = {"C", "C.UTF-8", "zh_CN.gb18030", "no such locale"};

/// A copy that ends where its allocation does, so that reading past its zero is noticed.
std::vector<char> zeroTerminated(const std::string& text)
{
    std::vector<char> copy(text.size() + 1);
    std::memcpy(copy.data(), text.data(), text.size());
    return copy;
}

std::wstring wideOf(const std::string& bytes)
{
    std::wstring wide(bytes.size() / sizeof(wchar_t), L'\0');
    if (!wide.empty())
        std::memcpy(wide.data(), bytes.data(), wide.size() * sizeof(wchar_t));
    return wide;
}

/// In the Basic Multilingual Plane, where decoding undoes encoding.
bool isBasic(const std::wstring& wide)
{
    for (const wchar_t character : wide) {
        if (static_cast<std::uint32_t>(character) > 0xFFFF)
            return false;
    }
    return true;
}

void decodeAndBack(const std::string& text)
{
    const std::wstring wide = CodeCvt::utf8_to_utf16(text);
    REQUIRE(wide.size() <= text.size());
    REQUIRE(isBasic(wide));
    REQUIRE(CodeCvt::utf8_to_utf16(CodeCvt::utf16_to_utf8(wide)) == wide);

    const std::vector<char> source = zeroTerminated(text);
    const int length = static_cast<int>(text.size());
    std::vector<wchar_t> target(text.size() * 2 + 2);
    const int room = static_cast<int>(target.size());
    REQUIRE(CodeCvt::_utf8_to_ucs2(source.data(), length, target.data(), room - 1) == 0);
    const int count = CodeCvt::_utf8_to_ucs2(source.data(), length, target.data(), room);
    REQUIRE(std::wstring(target.data(), static_cast<std::size_t>(count)) == wide);
    REQUIRE(target[static_cast<std::size_t>(count)] == 0);
}

/// The end of the text in the middle of a sequence.
void decodePrefix(const std::string& text, std::size_t length)
{
    const std::vector<char> source = zeroTerminated(text);
    std::vector<wchar_t> target(length * 2 + 2);
    const int count = CodeCvt::_utf8_to_ucs2(source.data(), static_cast<int>(length), target.data(),
                                             static_cast<int>(target.size()));
    REQUIRE(count >= 0 && static_cast<std::size_t>(count) <= length);
    REQUIRE(target[static_cast<std::size_t>(count)] == 0);
}

void encode(const std::wstring& wide)
{
    const std::string text = CodeCvt::utf16_to_utf8(wide);
    REQUIRE(text.size() >= wide.size() && text.size() <= 3 * wide.size());
    if (isBasic(wide))
        REQUIRE(CodeCvt::utf8_to_utf16(text) == wide);

    std::vector<char> target(wide.size() * 3 + 1);
    const int length = static_cast<int>(wide.size());
    const int room = static_cast<int>(target.size());
    REQUIRE(CodeCvt::_ucs2_to_utf8(wide.data(), length, target.data(), room - 1) == 0);
    const int count = CodeCvt::_ucs2_to_utf8(wide.data(), length, target.data(), room);
    REQUIRE(std::string(target.data(), static_cast<std::size_t>(count)) == text);
    REQUIRE(target[static_cast<std::size_t>(count)] == 0);
}

void convertInLocale(const std::string& text, const char* locale)
{
    const std::vector<char> source = zeroTerminated(text);
    const int length = static_cast<int>(text.size());

    const std::string utf8 = CodeCvt::asni_to_utf8(text, locale);
    std::vector<char> target(text.size() * 3 + 3);
    int count = CodeCvt::_ansi_to_utf8(source.data(), length, target.data(),
                                       static_cast<int>(target.size()), locale);
    REQUIRE(std::string(target.data(), static_cast<std::size_t>(count)) == utf8);

    const std::string ansi = CodeCvt::utf8_to_ansi(text, locale);
    // As long as the text may become, and as short as is accepted.
    target.assign(text.size() * 4 + 1, 'x');
    count = CodeCvt::_utf8_to_ansi(source.data(), length, target.data(),
                                   static_cast<int>(target.size()), locale);
    REQUIRE(std::string(target.data(), static_cast<std::size_t>(count)) == ansi);
    std::vector<char> shortest(text.size() + 1);
    count = CodeCvt::_utf8_to_ansi(source.data(), length, shortest.data(),
                                   static_cast<int>(shortest.size()), locale);
    REQUIRE(count <= static_cast<int>(shortest.size()));
    // A character that the locale lacks is not met where the room ends before it.
    if (ansi.empty()) {
        REQUIRE(count == 0 || static_cast<std::size_t>(count) + MB_CUR_MAX > shortest.size());
    } else {
        REQUIRE(ansi.compare(0, static_cast<std::size_t>(count), shortest.data(),
                             static_cast<std::size_t>(count)) == 0);
    }
}

} // namespace

/// The first byte chooses the locale and where a text is cut; the rest is the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::setlocale(LC_ALL, "C.UTF-8");
    decodeAndBack(text);
    decodePrefix(text, text.empty() ? 0 : data[0] % text.size());
    encode(wideOf(text));
    convertInLocale(text, kLocales[data[0] % 4]);
    CodeCvt::gbk_to_utf16(text);
    CodeCvt::utf16_to_gbk(wideOf(text));
    return 0;
}
