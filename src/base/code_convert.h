// SPDX-License-Identifier: MIT
#pragma once

#include "screencapture_export.h"

#include <string>

/// Converts text between UTF-8, wide strings and the multibyte encoding of a locale, called "ansi"
/// in the names. The GBK functions use the locale `china_locale`.
///
/// \code
/// const std::wstring wide = CodeCvt::utf8_to_utf16("caf\xC3\xA9"); // four characters
/// const std::string gbk = CodeCvt::utf16_to_gbk(wide);
/// \endcode
///
/// A wide string holds one code point per element. The UTF-8 coder covers only the Basic
/// Multilingual Plane, sequences of one to three bytes. Decoding stops at the first byte that does
/// not begin such a sequence, and keeps the characters before it. Overlong forms and surrogates
/// pass. Encoding gives each character from U+0800 on three bytes; characters above U+FFFF become
/// invalid UTF-8.
///
/// Lengths count elements, bytes or `wchar_t`, and must not be negative. Only an empty or a
/// shortened result tells of an error.
///
/// The UTF-8 coder may be used from any thread. All functions that take a locale, and the GBK
/// functions, switch the locale of the whole process and leave it switched: call them from one
/// thread at a time, and while no other code depends on the locale.
class SCREENCAPTURE_EXPORT CodeCvt
{
public:
    CodeCvt() = delete;

    /// The locale of the GBK functions, by default "zh_CN.gb18030". A program may set another name,
    /// which must outlive its use. If the system does not know the locale, the GBK functions use
    /// the current one.
    static const char* china_locale;

    /// Decodes `src_len` bytes of UTF-8 into `dst` and adds a zero. Returns the number of
    /// characters without the zero. Returns 0 and leaves `dst` unchanged if `dst_len` is less than
    /// `src_len * 2 + 2`. `src` must be zero-terminated, because a sequence that begins before
    /// `src_len` is read to its end.
    static int _utf8_to_ucs2(const char* src, int src_len, wchar_t* dst, int dst_len);

    /// Encodes `src_len` characters into `dst` and adds a zero. Returns the number of bytes without
    /// the zero. Returns 0 and leaves `dst` unchanged if `dst_len` is less than `src_len * 3 + 1`.
    static int _ucs2_to_utf8(const wchar_t* src, int src_len, char* dst, int dst_len);

    /// Converts UTF-8, up to the first zero byte, to the encoding of `locale`. Returns the number
    /// of bytes without the final zero, which is added only if they do not fill `dst`. Returns 0 if
    /// the locale cannot express a character. Returns 0 and leaves `dst` unchanged if `dst_len` is
    /// less than `src_len + 1`.
    static int _utf8_to_ansi(const char* src, int src_len, char* dst, int dst_len,
                             const char* locale);

    /// Converts zero-terminated text of `locale` to UTF-8 and adds a zero. Returns the number of
    /// bytes without the zero. Returns 0 if the text is not valid in that locale. Returns 0 and
    /// leaves `dst` unchanged if `dst_len` is less than `src_len * 3 + 3`.
    static int _ansi_to_utf8(const char* src, int src_len, char* dst, int dst_len,
                             const char* locale);

    /// Decodes UTF-8 up to the first byte that cannot be decoded.
    static std::wstring utf8_to_utf16(const std::string& text);

    /// Encodes wide text as UTF-8.
    static std::string utf16_to_utf8(const std::wstring& text);

    /// Converts text of `locale`, up to its first zero byte, to UTF-8. Returns an empty string if
    /// the text is not valid in that locale. The spelling of the name is intended.
    static std::string asni_to_utf8(const std::string& text, const char* locale);

    /// Converts UTF-8, up to the first byte that is zero or cannot be decoded, to the encoding of
    /// `locale`. Returns an empty string if the locale cannot express a character.
    static std::string utf8_to_ansi(const std::string& text, const char* locale);

    /// Calls asni_to_utf8() with `china_locale`.
    static std::string gbk_to_utf8(const std::string& text);

    /// Calls utf8_to_ansi() with `china_locale`.
    static std::string utf8_to_gbk(const std::string& text);

    /// Returns gbk_to_utf8() as wide text.
    static std::wstring gbk_to_utf16(const std::string& text);

    /// Encodes wide text as UTF-8 and returns utf8_to_gbk() of it.
    static std::string utf16_to_gbk(const std::wstring& text);
};
