// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "ChineseLocale.h"
#include "StdText.h"
#include "TextModel.h"
#include "code_convert.h"

#include <QRandomGenerator>

namespace
{

constexpr const char* kUtf8Locale = "C.UTF-8";
constexpr const char* kUnknownLocale = "xx_XX.nowhere";
constexpr int kRounds = 5000;

std::string currentLocale()
{
    return std::setlocale(LC_ALL, nullptr);
}

std::string repeated(const std::string& text, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

/// Mostly well-formed text, with now and then any byte at all.
std::string randomBytes(QRandomGenerator& random)
{
    std::wstring wide;
    for (int i = random.bounded(60); i > 0; --i) {
        const int limits[] = {0x80, 0x80, 0x80, 0x800, 0x10000};
        wide.push_back(static_cast<wchar_t>(random.bounded(limits[random.bounded(5)])));
    }
    std::string text = encodedByModel(wide);
    for (int i = random.bounded(4); i > 0 && !text.empty(); --i)
        text[random.bounded(quint32(text.size()))] = static_cast<char>(random.bounded(256));
    return text;
}

} // namespace

class tst_CodeCvt : public BehaviourTest
{
    Q_OBJECT

private slots:
    void decodes_data();
    void decodes();
    void encodes_data();
    void encodes();
    void roundTripOfTheWholePlane();
    void followsTheModel();
    void hugeLengthsAreRefused();
    void localeStaysSwitched();
    void unknownLocaleConvertsInTheCurrentOne();
    void convertsInALocale_data();
    void convertsInALocale();
    void toAnsiFillsTheDestinationAtMost();
    void fromAnsiReadsToTheZero();
    void gbkLocaleMayBePointedElsewhere();
    void gbk_data();
    void gbk();
    void charactersLongerInTheLocaleComeOutWhole();
    void foreignCharacterBeyondTheRoomGoesUnnoticed();
};

void tst_CodeCvt::decodes_data()
{
    QTest::addColumn<std::string>("utf8");
    QTest::addColumn<std::wstring>("wide");
    const auto row = [](const char* name, const std::string& utf8, const std::wstring& wide) {
        QTest::newRow(name) << utf8 << wide;
    };
    row("empty", "", L"");
    row("one, two and three bytes", "a\xC3\xA9\xE4\xB8\xAD", L"a\u00E9\u4E2D");
    row("zero byte", {'a', '\0', 'b'}, {L'a', L'\0', L'b'});
    row("stray continuation byte", "ab\x80 cd", L"ab");
    row("four bytes", "ab\xF0\x9F\x98\x80 cd", L"ab");
    row("five-byte lead", "a\xF8\x88\x80\x80\x80", L"a");
    row("0xFF", "a\xFF", L"a");
    row("second byte bad", "a\xC3 b", L"a");
    row("third byte bad", "a\xE4\xB8 b", L"a");
    row("lead at the end", "ab\xC3", L"ab");
    row("three-byte lead at the end", "ab\xE4", L"ab");
    row("cut after two of three", "ab\xE4\xB8", L"ab");
    row("overlong slash", "\xC0\xAF", L"/");
    row("overlong zero", "\xC0\x80", std::wstring(1, L'\0'));
    row("overlong in three bytes", "\xE0\x80\xAF", L"/");
    row("surrogates", "\xED\xA0\xBD\xED\xB8\x80", {wchar_t(0xD83D), wchar_t(0xDE00)});
    row("limits of two bytes", "\xC2\x80\xDF\xBF", L"\u0080\u07FF");
    row("limits of three bytes", "\xE0\xA0\x80\xEF\xBF\xBF", {wchar_t(0x800), wchar_t(0xFFFF)});
}

void tst_CodeCvt::decodes()
{
    QFETCH(std::string, utf8);
    QFETCH(std::wstring, wide);
    QCOMPARE(CodeCvt::utf8_to_utf16(utf8), wide);
    // A sequence that begins within the length is read to its end.
    for (std::size_t length = 0; length <= utf8.size(); ++length)
        requireDecoded(utf8, length);
}

void tst_CodeCvt::encodes_data()
{
    QTest::addColumn<std::wstring>("wide");
    QTest::addColumn<std::string>("utf8");
    const auto row = [](const char* name, const std::wstring& wide, const std::string& utf8) {
        QTest::newRow(name) << wide << utf8;
    };
    row("empty", L"", "");
    row("one, two and three bytes", L"a\u00E9\u4E2D", "a\xC3\xA9\xE4\xB8\xAD");
    row("zero character", {L'a', L'\0', L'b'}, {'a', '\0', 'b'});
    row("0x7F and 0x80", L"\u007F\u0080", "\x7F\xC2\x80");
    row("0x7FF and 0x800", L"\u07FF\u0800", "\xDF\xBF\xE0\xA0\x80");
    row("0xFFFF", {wchar_t(0xFFFF)}, "\xEF\xBF\xBF");
    row("surrogate", {wchar_t(0xD83D)}, "\xED\xA0\xBD");
    row("0x10000 has the lead byte 0xF0", {wchar_t(0x10000)}, "\xF0\x80\x80");
    row("0x1F600 has the lead byte 0xFF", {wchar_t(0x1F600)}, "\xFF\x98\x80");
    row("0x10FFFF is cut to eight bits", {wchar_t(0x10FFFF)}, "\xEF\xBF\xBF");
    row("negative is its low byte", {wchar_t(-1), wchar_t(-191)}, {'\xFF', 'A'});
}

void tst_CodeCvt::encodes()
{
    QFETCH(std::wstring, wide);
    QFETCH(std::string, utf8);
    QCOMPARE(CodeCvt::utf16_to_utf8(wide), utf8);
    for (std::size_t length = 0; length <= wide.size(); ++length)
        requireEncoded(wide, length);
}

void tst_CodeCvt::roundTripOfTheWholePlane()
{
    std::wstring plane;
    for (int code = 0; code <= 0xFFFF; ++code)
        plane.push_back(static_cast<wchar_t>(code));
    QVERIFY(CodeCvt::utf8_to_utf16(CodeCvt::utf16_to_utf8(plane)) == plane);
}

void tst_CodeCvt::followsTheModel()
{
    const LocaleScope scope("C");
    QRandomGenerator random(20240501);
    for (int round = 0; round < kRounds; ++round)
        requireTextConverted(static_cast<char>(random.bounded(256)) + randomBytes(random));
}

// The limit of so long an input does not fit into an int.
void tst_CodeCvt::hugeLengthsAreRefused()
{
    wchar_t wide[2] = {L'u', L'\0'};
    char narrow[2] = {'u', '\0'};
    QCOMPARE(CodeCvt::_utf8_to_ucs2("a", 0x7FFFFFFF, wide, 2), 0);
    QCOMPARE(CodeCvt::_ucs2_to_utf8(L"a", 0x7FFFFFFF, narrow, 2), 0);
    QCOMPARE(CodeCvt::_utf8_to_ansi("a", 0x7FFFFFFF, narrow, 2, "C"), 0);
    QCOMPARE(CodeCvt::_ansi_to_utf8("a", 0x7FFFFFFF, narrow, 2, "C"), 0);
    QCOMPARE(wide[0], L'u');
    QCOMPARE(narrow[0], 'u');
}

void tst_CodeCvt::localeStaysSwitched()
{
    const LocaleScope scope("C");
    QCOMPARE(CodeCvt::utf8_to_ansi("\xC3\xA9", kUtf8Locale), std::string("\xC3\xA9"));
    QCOMPARE(currentLocale(), std::string(kUtf8Locale));
    QCOMPARE(CodeCvt::asni_to_utf8("a", "C"), std::string("a"));
    QCOMPARE(currentLocale(), std::string("C"));
    char buffer[8];
    QCOMPARE(CodeCvt::_utf8_to_ansi("a", 1, buffer, 8, kUtf8Locale), 1);
    QCOMPARE(currentLocale(), std::string(kUtf8Locale));
    QCOMPARE(CodeCvt::_ansi_to_utf8("a", 1, buffer, 8, "C"), 1);
    QCOMPARE(currentLocale(), std::string("C"));
    QCOMPARE(CodeCvt::asni_to_utf8("\xFF", kUtf8Locale), std::string());
    QCOMPARE(currentLocale(), std::string(kUtf8Locale));
    // A refused conversion leaves the locale.
    QCOMPARE(CodeCvt::_utf8_to_ansi("a", 1, buffer, 1, "C"), 0);
    QCOMPARE(CodeCvt::_ansi_to_utf8("a", 1, buffer, 1, "C"), 0);
    QCOMPARE(currentLocale(), std::string(kUtf8Locale));
}

void tst_CodeCvt::unknownLocaleConvertsInTheCurrentOne()
{
    const LocaleScope scope(kUtf8Locale);
    QCOMPARE(CodeCvt::asni_to_utf8("\xC3\xA9", kUnknownLocale), std::string("\xC3\xA9"));
    QCOMPARE(CodeCvt::utf8_to_ansi("\xC3\xA9", kUnknownLocale), std::string("\xC3\xA9"));
    QCOMPARE(currentLocale(), std::string(kUtf8Locale));
}

void tst_CodeCvt::convertsInALocale_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<std::string>("locale");
    QTest::addColumn<std::string>("toAnsi");
    QTest::addColumn<std::string>("toUtf8");
    const auto row = [](const char* name, const std::string& text, const char* locale,
                        const std::string& toAnsi, const std::string& toUtf8) {
        QTest::newRow(name) << text << std::string(locale) << toAnsi << toUtf8;
    };
    row("text without errors", "caf\xC3\xA9", kUtf8Locale, "caf\xC3\xA9", "caf\xC3\xA9");
    row("invalid in the locale gives nothing", "ab\xFF", kUtf8Locale, "ab", "");
    row("foreign to the locale gives nothing", "ab\xE4\xB8\xAD", "C", "", "");
    row("a zero byte ends it", {'a', '\0', 'b'}, kUtf8Locale, "a", "a");
    row("bad UTF-8 is cut before the locale sees it", "ab\x80", "C", "ab", "");
    row("above the plane", "\xF0\x9F\x98\x80", kUtf8Locale, "", "\xFF\x98\x80");
}

void tst_CodeCvt::convertsInALocale()
{
    const LocaleScope scope("C");
    QFETCH(std::string, text);
    QFETCH(std::string, locale);
    QFETCH(std::string, toAnsi);
    QFETCH(std::string, toUtf8);
    QCOMPARE(CodeCvt::utf8_to_ansi(text, locale.c_str()), toAnsi);
    QCOMPARE(CodeCvt::asni_to_utf8(text, locale.c_str()), toUtf8);
    requireConverted(text, locale.c_str());
}

// A sequence begun inside the length is read to its end, and the destination ends the rest.
void tst_CodeCvt::toAnsiFillsTheDestinationAtMost()
{
    const LocaleScope scope("C");
    char buffer[] = "uuu";
    QCOMPARE(CodeCvt::_utf8_to_ansi("\xE4\xB8\xAD", 1, buffer, 2, kUtf8Locale), 0);
    QCOMPARE(buffer[2], 'u');
    QCOMPARE(CodeCvt::_utf8_to_ansi("\xC3\xA9", 1, buffer, 2, kUtf8Locale), 2);
    QCOMPARE(std::string(buffer), std::string("\xC3\xA9u"));
}

void tst_CodeCvt::fromAnsiReadsToTheZero()
{
    const LocaleScope scope("C");
    char buffer[32];
    // As many wide characters as fit twice the length and two.
    QCOMPARE(CodeCvt::_ansi_to_utf8("abcdefgh", 1, buffer, 32, kUtf8Locale), 4);
    QCOMPARE(std::string(buffer), std::string("abcd"));
    // More characters than the length promised may be refused by the encoder.
    QCOMPARE(CodeCvt::_ansi_to_utf8("abcdefgh", 1, buffer, 12, kUtf8Locale), 0);
}

void tst_CodeCvt::gbkLocaleMayBePointedElsewhere()
{
    const LocaleScope scope("C");
    const char* const before = CodeCvt::china_locale;
    QCOMPARE(std::string(before), std::string("zh_CN.gb18030"));
    CodeCvt::china_locale = kUtf8Locale;
    const std::string decoded = CodeCvt::gbk_to_utf8("\xC3\xA9");
    const std::string encoded = CodeCvt::utf16_to_gbk(L"\u4E2D");
    CodeCvt::china_locale = before;
    QCOMPARE(decoded, std::string("\xC3\xA9"));
    QCOMPARE(encoded, std::string("\xE4\xB8\xAD"));
}

void tst_CodeCvt::gbk_data()
{
    QTest::addColumn<std::string>("bytes");
    QTest::addColumn<std::wstring>("wide");
    const auto row = [](const char* name, const std::string& bytes, const std::wstring& wide) {
        QTest::newRow(name) << bytes << wide;
    };
    row("empty", "", L"");
    row("ASCII", "abc", L"abc");
    row("U+4E2D", "\xD6\xD0", L"\u4E2D");
    row("mixed", "x\xD6\xD0y\xD2\xBB", L"x\u4E2Dy\u4E00");
    row("two bytes in both", "\xA8\xA6", L"\u00E9");
    row("four bytes for two", "\x81\x30\x86\x38", L"\u00C0");
}

void tst_CodeCvt::gbk()
{
    SKIP_WITHOUT_CHINESE_LOCALE();
    const LocaleScope scope("C");
    QFETCH(std::string, bytes);
    QFETCH(std::wstring, wide);
    const std::string utf8 = CodeCvt::utf16_to_utf8(wide);
    QCOMPARE(CodeCvt::gbk_to_utf8(bytes), utf8);
    QCOMPARE(CodeCvt::gbk_to_utf16(bytes), wide);
    QCOMPARE(CodeCvt::utf8_to_gbk(utf8), bytes);
    QCOMPARE(CodeCvt::utf16_to_gbk(wide), bytes);
    QCOMPARE(currentLocale(), std::string("zh_CN.gb18030"));
    QCOMPARE(CodeCvt::gbk_to_utf16(bytes + "\xFF"), std::wstring());
}

void tst_CodeCvt::charactersLongerInTheLocaleComeOutWhole()
{
    SKIP_WITHOUT_CHINESE_LOCALE();
    const LocaleScope scope("C");
    for (const int times : {1, 2, 3, 4, 7, 8, 15, 16, 100, 5000}) {
        const std::string converted = CodeCvt::utf8_to_gbk(repeated("\xC3\x80", times));
        QCOMPARE(converted, repeated("\x81\x30\x86\x38", times));
    }
}

// The string function measures the whole text first, and so finds the surrogate.
void tst_CodeCvt::foreignCharacterBeyondTheRoomGoesUnnoticed()
{
    SKIP_WITHOUT_CHINESE_LOCALE();
    const LocaleScope scope("C");
    const char text[] = "\xC3\x80\xC3\x80\xED\xB2\xB2";
    char buffer[12] = "uuuuuuuuuuu";
    QCOMPARE(CodeCvt::_utf8_to_ansi(text, 7, buffer, 8, CodeCvt::china_locale), 8);
    QCOMPARE(std::string(buffer), repeated("\x81\x30\x86\x38", 2) + "uuu");
    QCOMPARE(CodeCvt::_utf8_to_ansi(text, 7, buffer, 12, CodeCvt::china_locale), 0);
    QCOMPARE(CodeCvt::utf8_to_gbk(text), std::string());
}

QTEST_APPLESS_MAIN(tst_CodeCvt)
#include "tst_CodeCvt.moc"
