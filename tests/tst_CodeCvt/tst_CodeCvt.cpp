// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "StdText.h"
#include "code_convert.h"

#include <QRandomGenerator>

#include <cstdint>
#include <cstring>

namespace
{

constexpr char kUntouched = 'u';
constexpr wchar_t kUntouchedWide = L'u';

/// What a byte announces: the length of its sequence, 0 where decoding stops.
int announcedLength(unsigned char lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC0 && lead <= 0xDF)
        return 2;
    return lead >= 0xE0 && lead <= 0xEF ? 3 : 0;
}

/// Sums up the payload of each byte; `text` has a zero behind its end.
std::wstring modelDecode(const std::string& text)
{
    std::wstring wide;
    std::size_t i = 0;
    while (i < text.size()) {
        const int length = announcedLength(static_cast<unsigned char>(text[i]));
        if (length == 0)
            return wide;
        const int leadValues[] = {0, 0x80, 0x20, 0x10};
        int value = static_cast<unsigned char>(text[i]) % leadValues[length];
        for (int k = 1; k < length; ++k) {
            const std::size_t at = i + static_cast<std::size_t>(k);
            const int next = at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
            if (next / 0x40 != 2)
                return wide;
            value = value * 0x40 + next % 0x40;
        }
        wide.push_back(static_cast<wchar_t>(value));
        i += static_cast<std::size_t>(length);
    }
    return wide;
}

std::string modelEncode(const std::wstring& wide)
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

/// Mostly well-formed text, with runs of ASCII, and now and then any byte at all.
std::string randomBytes(QRandomGenerator& random)
{
    std::wstring wide;
    const int length = random.bounded(60);
    for (int i = 0; i < length; ++i) {
        const int limits[] = {0x80, 0x80, 0x80, 0x800, 0x10000};
        wide.push_back(static_cast<wchar_t>(random.bounded(limits[random.bounded(5)])));
    }
    std::string text = modelEncode(wide);
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
    void zeroCharactersAreKept();
    void decoderFollowsTheModel();
    void encoderFollowsTheModel();
    void decoderRefusesASmallDestination();
    void encoderRefusesASmallDestination();
    void hugeLengthsAreRefused();
    void sequenceIsReadBeyondTheLength();
    void lengthEndsTheInput();
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
    row("stray continuation byte",
        "ab\x80"
        "cd",
        L"ab");
    row("stray byte after long ASCII", std::string(40, 'x') + "\xBF" + std::string(40, 'y'),
        std::wstring(40, L'x'));
    row("four bytes",
        "ab\xF0\x9F\x98\x80"
        "cd",
        L"ab");
    row("five-byte lead", "a\xF8\x88\x80\x80\x80", L"a");
    row("0xFF", "a\xFF", L"a");
    row("second byte bad",
        "a\xC3"
        "b",
        L"a");
    row("third byte bad",
        "a\xE4\xB8"
        "b",
        L"a");
    row("lead at the end", "ab\xC3", L"ab");
    row("three-byte lead at the end", "ab\xE4", L"ab");
    row("cut after two of three", "ab\xE4\xB8", L"ab");
    row("overlong slash", "\xC0\xAF", L"/");
    row("overlong zero", "\xC0\x80", std::wstring(1, L'\0'));
    row("overlong in three bytes", "\xE0\x80\xAF", L"/");
    row("surrogates", "\xED\xA0\xBD\xED\xB8\x80", {wchar_t(0xD83D), wchar_t(0xDE00)});
    row("limits of two bytes", "\xC2\x80\xDF\xBF", L"\u0080\u07FF");
    row("limits of three bytes", "\xE0\xA0\x80\xEF\xBF\xBF", {wchar_t(0x800), wchar_t(0xFFFF)});
    row("ASCII, block by block",
        "0123456\xC3\xA9"
        "01234567\xC3\xA9"
        "012345678",
        L"0123456\u00E9"
        L"01234567\u00E9"
        L"012345678");
}

void tst_CodeCvt::decodes()
{
    QFETCH(std::string, utf8);
    QFETCH(std::wstring, wide);
    QCOMPARE(CodeCvt::utf8_to_utf16(utf8), wide);

    std::wstring buffer(utf8.size() * 2 + 2, kUntouchedWide);
    const int written =
        CodeCvt::_utf8_to_ucs2(utf8.c_str(), int(utf8.size()), &buffer[0], int(buffer.size()));
    QCOMPARE(written, int(wide.size()));
    QCOMPARE(buffer.substr(0, wide.size()), wide);
    QCOMPARE(buffer[wide.size()], L'\0');
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
    row("0x7F and 0x80", L"\u007F\u0080", "\x7F\xC2\x80");
    row("0x7FF and 0x800", L"\u07FF\u0800", "\xDF\xBF\xE0\xA0\x80");
    row("0xFFFF", {wchar_t(0xFFFF)}, "\xEF\xBF\xBF");
    row("surrogate", {wchar_t(0xD83D)}, "\xED\xA0\xBD");
    row("0x10000 has the lead byte 0xF0", {wchar_t(0x10000)}, "\xF0\x80\x80");
    row("0x1F600 has the lead byte 0xFF", {wchar_t(0x1F600)}, "\xFF\x98\x80");
    row("0x10FFFF is cut to eight bits", {wchar_t(0x10FFFF)}, "\xEF\xBF\xBF");
    row("negative is its low byte", {wchar_t(-1), wchar_t(-191)},
        "\xFF"
        "A");
    row("ASCII, block by block",
        L"0123456\u00E9"
        L"01234567\u4E2D"
        L"012345678",
        "0123456\xC3\xA9"
        "01234567\xE4\xB8\xAD"
        "012345678");
}

void tst_CodeCvt::encodes()
{
    QFETCH(std::wstring, wide);
    QFETCH(std::string, utf8);
    QCOMPARE(CodeCvt::utf16_to_utf8(wide), utf8);

    std::string buffer(wide.size() * 3 + 1, kUntouched);
    const int written =
        CodeCvt::_ucs2_to_utf8(wide.c_str(), int(wide.size()), &buffer[0], int(buffer.size()));
    QCOMPARE(written, int(utf8.size()));
    QCOMPARE(buffer.substr(0, utf8.size()), utf8);
    QCOMPARE(buffer[utf8.size()], '\0');
}

void tst_CodeCvt::roundTripOfTheWholePlane()
{
    std::wstring plane;
    for (int code = 0; code <= 0xFFFF; ++code)
        plane.push_back(static_cast<wchar_t>(code));
    QVERIFY(CodeCvt::utf8_to_utf16(CodeCvt::utf16_to_utf8(plane)) == plane);
}

void tst_CodeCvt::zeroCharactersAreKept()
{
    const std::wstring wide{L'a', L'\0', L'b'};
    const std::string utf8{'a', '\0', 'b'};
    QCOMPARE(CodeCvt::utf16_to_utf8(wide), utf8);
    QCOMPARE(CodeCvt::utf8_to_utf16(utf8), wide);
}

void tst_CodeCvt::decoderFollowsTheModel()
{
    QRandomGenerator random(20240501);
    for (int round = 0; round < 20000; ++round) {
        const std::string text = randomBytes(random);
        QCOMPARE(CodeCvt::utf8_to_utf16(text), modelDecode(text));
    }
}

void tst_CodeCvt::encoderFollowsTheModel()
{
    QRandomGenerator random(20240502);
    for (int round = 0; round < 20000; ++round) {
        std::wstring wide;
        for (int i = random.bounded(40); i > 0; --i)
            wide.push_back(static_cast<wchar_t>(random.generate() >> random.bounded(32)));
        QCOMPARE(CodeCvt::utf16_to_utf8(wide), modelEncode(wide));
    }
}

void tst_CodeCvt::decoderRefusesASmallDestination()
{
    wchar_t buffer[6];
    std::fill(std::begin(buffer), std::end(buffer), kUntouchedWide);
    QCOMPARE(CodeCvt::_utf8_to_ucs2("ab", 2, buffer, 5), 0);
    QCOMPARE(buffer[0], kUntouchedWide);
    QCOMPARE(CodeCvt::_utf8_to_ucs2("ab", 2, buffer, 6), 2);
    QCOMPARE(std::wstring(buffer), std::wstring(L"ab"));
    QCOMPARE(CodeCvt::_utf8_to_ucs2("", 0, buffer, 1), 0);
    QCOMPARE(buffer[0], L'a');
    QCOMPARE(CodeCvt::_utf8_to_ucs2("", 0, buffer, 2), 0);
    QCOMPARE(buffer[0], L'\0');
}

void tst_CodeCvt::encoderRefusesASmallDestination()
{
    char buffer[7];
    std::fill(std::begin(buffer), std::end(buffer), kUntouched);
    QCOMPARE(CodeCvt::_ucs2_to_utf8(L"ab", 2, buffer, 6), 0);
    QCOMPARE(buffer[0], kUntouched);
    QCOMPARE(CodeCvt::_ucs2_to_utf8(L"ab", 2, buffer, 7), 2);
    QCOMPARE(std::string(buffer), std::string("ab"));
    QCOMPARE(CodeCvt::_ucs2_to_utf8(L"", 0, buffer, 0), 0);
    QCOMPARE(buffer[0], 'a');
    QCOMPARE(CodeCvt::_ucs2_to_utf8(L"", 0, buffer, 1), 0);
    QCOMPARE(buffer[0], '\0');
}

// The limit of so long an input does not fit into an int.
void tst_CodeCvt::hugeLengthsAreRefused()
{
    wchar_t wide[2] = {kUntouchedWide, L'\0'};
    char narrow[2] = {kUntouched, '\0'};
    QCOMPARE(CodeCvt::_utf8_to_ucs2("a", 0x7FFFFFFF, wide, 2), 0);
    QCOMPARE(CodeCvt::_ucs2_to_utf8(L"a", 0x7FFFFFFF, narrow, 2), 0);
    QCOMPARE(wide[0], kUntouchedWide);
    QCOMPARE(narrow[0], kUntouched);
}

void tst_CodeCvt::sequenceIsReadBeyondTheLength()
{
    wchar_t buffer[8];
    QCOMPARE(CodeCvt::_utf8_to_ucs2("\xC3\xA9"
                                    "b",
                                    1, buffer, 8),
             1);
    QCOMPARE(std::wstring(buffer), std::wstring(L"\u00E9"));
    QCOMPARE(CodeCvt::_utf8_to_ucs2("a\xE4\xB8\xAD"
                                    "b",
                                    2, buffer, 8),
             2);
    QCOMPARE(std::wstring(buffer), std::wstring(L"a\u4E2D"));
    QCOMPARE(CodeCvt::_utf8_to_ucs2("\xE4\xB8\xAD"
                                    "b",
                                    2, buffer, 8),
             1);
    QCOMPARE(std::wstring(buffer), std::wstring(L"\u4E2D"));
}

void tst_CodeCvt::lengthEndsTheInput()
{
    wchar_t wide[32];
    QCOMPARE(CodeCvt::_utf8_to_ucs2("0123456789abcdef", 11, wide, 32), 11);
    QCOMPARE(std::wstring(wide), std::wstring(L"0123456789a"));
    char narrow[40];
    QCOMPARE(CodeCvt::_ucs2_to_utf8(L"0123456789abcdef", 11, narrow, 40), 11);
    QCOMPARE(std::string(narrow), std::string("0123456789a"));
}

QTEST_APPLESS_MAIN(tst_CodeCvt)
#include "tst_CodeCvt.moc"
