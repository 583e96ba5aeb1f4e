// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "ChineseLocale.h"
#include "StdText.h"
#include "code_convert.h"

#include <QRandomGenerator>

namespace
{

constexpr const char* kUtf8Locale = "C.UTF-8";
constexpr const char* kUnknownLocale = "xx_XX.nowhere";
constexpr char kUntouched = 'u';

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

} // namespace

class tst_CodeCvt_locales : public BehaviourTest
{
    Q_OBJECT

private slots:
    void localeStaysSwitched();
    void unknownLocaleConvertsInTheCurrentOne();
    void refusedConversionLeavesTheLocale();
    void textInvalidInTheLocaleGivesNothing();
    void characterForeignToTheLocaleGivesNothing();
    void ansiEndsAtAZeroByte();
    void badUtf8IsCutBeforeTheLocaleSeesIt();
    void charactersAboveThePlaneComeFromTheLocale();
    void toAnsiRefusesASmallDestination();
    void fromAnsiRefusesASmallDestination();
    void toAnsiFillsTheDestinationAtMost();
    void fromAnsiReadsToTheZero();
    void gbkLocaleMayBePointedElsewhere();
    void gbk_data();
    void gbk();
    void charactersLongerInTheLocaleComeOutWhole();
    void toAnsiCutsWhatDoesNotFit();
    void foreignCharacterBeyondTheRoomGoesUnnoticed();
    void invalidGbkGivesNothing();
    void gbkRoundTripOfRandomText();
};

void tst_CodeCvt_locales::localeStaysSwitched()
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
}

void tst_CodeCvt_locales::unknownLocaleConvertsInTheCurrentOne()
{
    const LocaleScope scope(kUtf8Locale);
    QCOMPARE(CodeCvt::asni_to_utf8("\xC3\xA9", kUnknownLocale), std::string("\xC3\xA9"));
    QCOMPARE(CodeCvt::utf8_to_ansi("\xC3\xA9", kUnknownLocale), std::string("\xC3\xA9"));
    QCOMPARE(currentLocale(), std::string(kUtf8Locale));
}

void tst_CodeCvt_locales::refusedConversionLeavesTheLocale()
{
    const LocaleScope scope("C");
    char buffer[1];
    QCOMPARE(CodeCvt::_utf8_to_ansi("a", 1, buffer, 1, kUtf8Locale), 0);
    QCOMPARE(CodeCvt::_ansi_to_utf8("a", 1, buffer, 1, kUtf8Locale), 0);
    QCOMPARE(currentLocale(), std::string("C"));
}

void tst_CodeCvt_locales::textInvalidInTheLocaleGivesNothing()
{
    const LocaleScope scope("C");
    QCOMPARE(CodeCvt::asni_to_utf8("ab\xFF", kUtf8Locale), std::string());
    char buffer[32];
    QCOMPARE(CodeCvt::_ansi_to_utf8("ab\xFF", 3, buffer, 32, kUtf8Locale), 0);
}

void tst_CodeCvt_locales::characterForeignToTheLocaleGivesNothing()
{
    const LocaleScope scope(kUtf8Locale);
    QCOMPARE(CodeCvt::utf8_to_ansi("ab\xE4\xB8\xAD", "C"), std::string());
    char buffer[32];
    QCOMPARE(CodeCvt::_utf8_to_ansi("ab\xE4\xB8\xAD", 5, buffer, 32, "C"), 0);
}

void tst_CodeCvt_locales::ansiEndsAtAZeroByte()
{
    const LocaleScope scope("C");
    const std::string text{'a', '\0', 'b'};
    QCOMPARE(CodeCvt::utf8_to_ansi(text, kUtf8Locale), std::string("a"));
    QCOMPARE(CodeCvt::asni_to_utf8(text, kUtf8Locale), std::string("a"));
}

void tst_CodeCvt_locales::badUtf8IsCutBeforeTheLocaleSeesIt()
{
    const LocaleScope scope("C");
    QCOMPARE(CodeCvt::utf8_to_ansi("ab\xF0\x9F\x98\x80", kUtf8Locale), std::string("ab"));
    QCOMPARE(CodeCvt::utf8_to_ansi("ab\x80", "C"), std::string("ab"));
}

void tst_CodeCvt_locales::charactersAboveThePlaneComeFromTheLocale()
{
    const LocaleScope scope("C");
    QCOMPARE(CodeCvt::asni_to_utf8("\xF0\x9F\x98\x80", kUtf8Locale), std::string("\xFF\x98\x80"));
}

void tst_CodeCvt_locales::toAnsiRefusesASmallDestination()
{
    const LocaleScope scope("C");
    char buffer[4] = {kUntouched, kUntouched, kUntouched, kUntouched};
    QCOMPARE(CodeCvt::_utf8_to_ansi("abc", 3, buffer, 3, kUtf8Locale), 0);
    QCOMPARE(buffer[0], kUntouched);
    QCOMPARE(CodeCvt::_utf8_to_ansi("abc", 3, buffer, 4, kUtf8Locale), 3);
    QCOMPARE(std::string(buffer), std::string("abc"));
}

void tst_CodeCvt_locales::fromAnsiRefusesASmallDestination()
{
    const LocaleScope scope("C");
    char buffer[12] = {kUntouched};
    QCOMPARE(CodeCvt::_ansi_to_utf8("abc", 3, buffer, 11, kUtf8Locale), 0);
    QCOMPARE(buffer[0], kUntouched);
    QCOMPARE(CodeCvt::_ansi_to_utf8("abc", 3, buffer, 12, kUtf8Locale), 3);
    QCOMPARE(std::string(buffer), std::string("abc"));
}

// A sequence begun inside the length is read to its end, and the destination ends the rest.
void tst_CodeCvt_locales::toAnsiFillsTheDestinationAtMost()
{
    const LocaleScope scope("C");
    char buffer[4] = {kUntouched, kUntouched, kUntouched, kUntouched};
    QCOMPARE(CodeCvt::_utf8_to_ansi("\xC3\xA9", 1, buffer, 2, kUtf8Locale), 2);
    QCOMPARE(std::string(buffer, 2), std::string("\xC3\xA9"));
    QCOMPARE(buffer[2], kUntouched);
    QCOMPARE(CodeCvt::_utf8_to_ansi("\xE4\xB8\xAD", 1, buffer, 2, kUtf8Locale), 0);
    QCOMPARE(buffer[2], kUntouched);
}

void tst_CodeCvt_locales::fromAnsiReadsToTheZero()
{
    const LocaleScope scope("C");
    char buffer[32];
    // As many wide characters as fit twice the length and two.
    QCOMPARE(CodeCvt::_ansi_to_utf8("abcdefgh", 1, buffer, 32, kUtf8Locale), 4);
    QCOMPARE(std::string(buffer), std::string("abcd"));
    // More characters than the length promised may be refused by the encoder.
    QCOMPARE(CodeCvt::_ansi_to_utf8("abcdefgh", 1, buffer, 12, kUtf8Locale), 0);
}

void tst_CodeCvt_locales::gbkLocaleMayBePointedElsewhere()
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

void tst_CodeCvt_locales::gbk_data()
{
    QTest::addColumn<std::string>("bytes");
    QTest::addColumn<std::wstring>("wide");
    const auto row = [](const char* name, const std::string& bytes, const std::wstring& wide) {
        QTest::newRow(name) << bytes << wide;
    };
    row("empty", "", L"");
    row("ASCII", "abc", L"abc");
    row("U+4E2D", "\xD6\xD0", L"\u4E2D");
    row("mixed",
        "a\xD6\xD0"
        "b\xD2\xBB",
        L"a\u4E2D"
        L"b\u4E00");
    row("two bytes in both", "\xA8\xA6", L"\u00E9");
    row("four bytes for two", "\x81\x30\x86\x38", L"\u00C0");
}

void tst_CodeCvt_locales::gbk()
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
    QCOMPARE(CodeCvt::asni_to_utf8(bytes, CodeCvt::china_locale), utf8);
    QCOMPARE(currentLocale(), std::string("zh_CN.gb18030"));
}

void tst_CodeCvt_locales::charactersLongerInTheLocaleComeOutWhole()
{
    SKIP_WITHOUT_CHINESE_LOCALE();
    const LocaleScope scope("C");
    for (const int times : {1, 2, 3, 4, 7, 8, 15, 16, 100, 5000}) {
        const std::string converted = CodeCvt::utf8_to_gbk(repeated("\xC3\x80", times));
        QCOMPARE(converted, repeated("\x81\x30\x86\x38", times));
    }
}

void tst_CodeCvt_locales::toAnsiCutsWhatDoesNotFit()
{
    SKIP_WITHOUT_CHINESE_LOCALE();
    const LocaleScope scope("C");
    char buffer[8];
    std::fill(std::begin(buffer), std::end(buffer), kUntouched);
    QCOMPARE(CodeCvt::_utf8_to_ansi("\xC3\x80\xC3\x80", 4, buffer, 5, CodeCvt::china_locale), 4);
    QCOMPARE(std::string(buffer, 4), std::string("\x81\x30\x86\x38"));
    for (int i = 5; i < 8; ++i)
        QCOMPARE(buffer[i], kUntouched);
}

// The string function measures the whole text first, and so finds the surrogate.
void tst_CodeCvt_locales::foreignCharacterBeyondTheRoomGoesUnnoticed()
{
    SKIP_WITHOUT_CHINESE_LOCALE();
    const LocaleScope scope("C");
    const char text[] = "\xC3\x80\xC3\x80\xED\xB2\xB2";
    char buffer[12];
    QCOMPARE(CodeCvt::_utf8_to_ansi(text, 7, buffer, 8, CodeCvt::china_locale), 8);
    QCOMPARE(std::string(buffer, 8), repeated("\x81\x30\x86\x38", 2));
    QCOMPARE(CodeCvt::_utf8_to_ansi(text, 7, buffer, 12, CodeCvt::china_locale), 0);
    QCOMPARE(CodeCvt::utf8_to_gbk(text), std::string());
}

void tst_CodeCvt_locales::invalidGbkGivesNothing()
{
    SKIP_WITHOUT_CHINESE_LOCALE();
    const LocaleScope scope("C");
    QCOMPARE(CodeCvt::gbk_to_utf8("ab\xFF"), std::string());
    QCOMPARE(CodeCvt::gbk_to_utf16("ab\xD6"), std::wstring());
}

void tst_CodeCvt_locales::gbkRoundTripOfRandomText()
{
    SKIP_WITHOUT_CHINESE_LOCALE();
    const LocaleScope scope("C");
    QRandomGenerator random(20240503);
    for (int round = 0; round < 500; ++round) {
        std::wstring wide;
        for (int i = random.bounded(1, 40); i > 0; --i) {
            const bool chinese = random.bounded(2) == 1;
            const int code = chinese ? random.bounded(0x4E00, 0x9FA6) : random.bounded(0x20, 0x7F);
            wide.push_back(static_cast<wchar_t>(code));
        }
        QCOMPARE(CodeCvt::gbk_to_utf16(CodeCvt::utf16_to_gbk(wide)), wide);
    }
}

QTEST_APPLESS_MAIN(tst_CodeCvt_locales)
#include "tst_CodeCvt_locales.moc"
