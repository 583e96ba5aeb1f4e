// SPDX-License-Identifier: MIT
#pragma once

#include "screencapture_export.h"

#include <string>

/// Converts text between UTF-8, wide strings and the multibyte encoding of a locale ("ansi" in the
/// names), with the Chinese locale `china_locale` as the GBK case.
///
/// \code
/// const std::wstring wide = CodeCvt::utf8_to_utf16("caf\xC3\xA9"); // four characters
/// const std::string gbk = CodeCvt::utf16_to_gbk(wide);
/// \endcode
///
/// A wide string holds one code point per element. The UTF-8 coder knows the Basic Multilingual
/// Plane only: sequences of one to three bytes. Decoding stops at the first byte that does not
/// begin such a sequence and keeps what came before; overlong forms and surrogates are taken as
/// they are. Encoding gives every character from U+0800 three bytes, so that one above U+FFFF comes
/// out as invalid UTF-8.
///
/// Lengths are counts of elements, bytes or `wchar_t`, and never negative. Nothing is thrown but
/// for a failed allocation. Errors show only as an empty or a shortened result.
///
/// Thread: the UTF-8 coder may run anywhere. What takes a locale, and the GBK functions, switch the
/// locale of the whole process and leave it switched: they run on one thread at a time and beside
/// no other code that depends on the locale.
class SCREENCAPTURE_EXPORT CodeCvt
{
public:
    CodeCvt() = delete;

    /// The locale of the GBK functions, "zh_CN.gb18030" until a program points it elsewhere. The
    /// text is not owned and must live as long as it is set. Where the system does not know the
    /// locale, the GBK functions convert in the locale that is current.
    static const char* china_locale;

    /// Decodes `src_len` bytes of UTF-8 into `dst` and ends them with a zero. Returns the
    /// characters written without the zero; 0, with `dst` untouched, when `dst_len` is less than
    /// `src_len * 2 + 2`. `src` must be zero-terminated: a sequence that begins before `src_len` is
    /// read to its end.
    static int _utf8_to_ucs2(const char* src, int src_len, wchar_t* dst, int dst_len);

    /// Encodes `src_len` characters into `dst` and ends them with a zero. Returns the bytes written
    /// without the zero; 0, with `dst` untouched, when `dst_len` is less than `src_len * 3 + 1`.
    static int _ucs2_to_utf8(const wchar_t* src, int src_len, char* dst, int dst_len);

    /// Converts UTF-8 to the encoding of `locale`, up to the first zero byte. Returns the bytes
    /// written without the ending zero, for which there is room only where they do not fill `dst`;
    /// 0 when the locale cannot express a character, and, with `dst` untouched, when `dst_len` is
    /// less than `src_len + 1`.
    static int _utf8_to_ansi(const char* src, int src_len, char* dst, int dst_len,
                             const char* locale);

    /// Converts zero-terminated text of `locale` to UTF-8 and ends it with a zero. Returns the
    /// bytes written without the zero; 0 when the text is not valid in that locale, and, with `dst`
    /// untouched, when `dst_len` is less than `src_len * 3 + 3`.
    static int _ansi_to_utf8(const char* src, int src_len, char* dst, int dst_len,
                             const char* locale);

    /// Decodes UTF-8, up to the first bad byte.
    static std::wstring utf8_to_utf16(const std::string& text);

    /// Encodes as UTF-8.
    static std::string utf16_to_utf8(const std::wstring& text);

    /// Converts text of `locale`, up to its first zero byte, to UTF-8; empty where it is not valid
    /// there. The name is spelled so.
    static std::string asni_to_utf8(const std::string& text, const char* locale);

    /// Converts UTF-8, up to its first bad or zero byte, to the encoding of `locale`, whole,
    /// however much longer the text is there; empty where the locale cannot express a character.
    static std::string utf8_to_ansi(const std::string& text, const char* locale);

    /// asni_to_utf8() from `china_locale`.
    static std::string gbk_to_utf8(const std::string& text);

    /// utf8_to_ansi() to `china_locale`.
    static std::string utf8_to_gbk(const std::string& text);

    /// gbk_to_utf8(), decoded.
    static std::wstring gbk_to_utf16(const std::string& text);

    /// utf8_to_gbk() of the encoded text.
    static std::string utf16_to_gbk(const std::wstring& text);
};
