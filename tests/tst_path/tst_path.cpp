// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "ChineseLocale.h"
#include "PathModel.h"
#include "StdText.h"
#include "Throws.h"
#include "code_convert.h"
#include "myfs.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <cstring>
#include <map>
#include <stdexcept>
#include <type_traits>

using myfs::path;

Q_DECLARE_METATYPE(path)

namespace
{

constexpr int kRounds = 1500;
constexpr bool kRelative = false;
constexpr bool kAbsolute = true;

path windows(const std::string& text)
{
    path p;
    p.set(text, path::WINDOWS_PATH);
    return p;
}

path assigned(const path& source)
{
    path p("before");
    p = source;
    return p;
}

path joined(path base, const path& added)
{
    return base.append(added);
}

path withoutFilename(path p)
{
    return p.remove_filename();
}

path replaced(path p, const path& extension)
{
    return p.replace_extension(extension);
}

path cleared(path p)
{
    p.clear();
    return p;
}

void resultColumns()
{
    QTest::addColumn<path>("result");
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("absolute");
    QTest::addColumn<std::string>("text");
    QTest::addColumn<std::string>("genericText");
}

/// A row that says all about a path. The generic text of a POSIX path is its text.
void row(const char* name, const path& result, int size, bool absolute, const std::string& text)
{
    QTest::newRow(name) << result << size << absolute << text << text;
}

void row(const char* name, const path& result, int size, bool absolute, const std::string& text,
         const std::string& genericText)
{
    QTest::newRow(name) << result << size << absolute << text << genericText;
}

void verifyRow()
{
    QFETCH(path, result);
    QFETCH(int, size);
    QFETCH(bool, absolute);
    QFETCH(std::string, text);
    QFETCH(std::string, genericText);
    QCOMPARE(int(result.size()), size);
    QCOMPARE(result.empty(), size == 0);
    QCOMPARE(result.is_absolute(), absolute);
    QCOMPARE(result.string(), text);
    QCOMPARE(result.str(), text);
    QCOMPARE(result.generic_string(), genericText);
    QCOMPARE(result.wstring(), CodeCvt::utf8_to_utf16(text));
    QCOMPARE(result.wstr(), CodeCvt::utf8_to_utf16(text));
    QCOMPARE(result.generic_wstring(), CodeCvt::utf8_to_utf16(genericText));
}

} // namespace

class tst_path : public BehaviourTest
{
    Q_OBJECT

private slots:
    void parsing_data();
    void parsing() { verifyRow(); }
    void windowsParsing_data();
    void windowsParsing() { verifyRow(); }
    void constructing_data();
    void constructing() { verifyRow(); }
    void assigning_data();
    void assigning() { verifyRow(); }
    void appending_data();
    void appending() { verifyRow(); }
    void parents_data();
    void parents() { verifyRow(); }
    void names_data();
    void names() { verifyRow(); }
    void replacingTheExtension_data();
    void replacingTheExtension() { verifyRow(); }
    void editsReturnThePath();
    void swapExchangesComponentsOnly();
    void tokenizing_data();
    void tokenizing();
    void rendersAppendingToTheText();
    void separators();
    void wideTextStopsWhereUtf8CannotBeDecoded();
    void comparing_data();
    void comparing();
    void orderOfAMapIgnoresTheRoot();
    void followsTheModel();
    void absoluteResolvesLinks();
    void absoluteOfAMissingFileThrows();
    void gbkText();
};

void tst_path::parsing_data()
{
    resultColumns();
    row("nothing", path(), 0, kRelative, "");
    row("empty text is one empty component", "", 1, kRelative, "");
    row("root", "/", 0, kAbsolute, "");
    row("slashes only", "///", 0, kAbsolute, "");
    row("dot", ".", 0, kRelative, "");
    row("dots only", "./././", 0, kRelative, "");
    row("two dots", "..", 1, kRelative, "..");
    row("relative", "a/b", 2, kRelative, "a/b");
    row("absolute", "/a/b", 2, kAbsolute, "/a/b");
    row("runs, dot and trailing slash", "a//b/./c/", 3, kRelative, "a/b/c");
    row("parent is kept", "a/../b", 3, kRelative, "a/../b");
    row("root's parent is kept", "/..", 1, kAbsolute, "/..");
    row("backslashes", "\\tmp\\x", 2, kRelative, "tmp/x");
    row("backslashes only", "\\\\", 0, kRelative, "");
    row("UNC text is not absolute", R"(\\srv\share)", 2, kRelative, "srv/share");
    row("drive text is not absolute", "C:\\dir", 2, kRelative, "C:/dir");
    row("three dots", "a/.../b", 3, kRelative, "a/.../b");
    row("hidden file", "/.profile", 1, kAbsolute, "/.profile");
    row("space", " ", 1, kRelative, " ");
    row("Chinese", "/\xE4\xB8\xAD/\xE6\x96\x87", 2, kAbsolute, "/\xE4\xB8\xAD/\xE6\x96\x87");
    row("invalid UTF-8", "/\xFF\xFE", 1, kAbsolute, "/\xFF\xFE");
    row("zero byte", std::string("a\0b", 3), 1, kRelative, std::string("a\0b", 3));
}

void tst_path::windowsParsing_data()
{
    resultColumns();
    const auto row = [](const char* name, const char* text, int size, bool absolute,
                        const char* rendered, const char* generic) {
        ::row(name, windows(text), size, absolute, rendered, generic);
    };
    row("drive", "C:\\dir\\f.txt", 3, kAbsolute, "C:\\dir\\f.txt", "/C:/dir/f.txt");
    row("drive alone", "C:", 1, kAbsolute, "C:", "/C:");
    row("any character before the colon", "1:/x", 2, kAbsolute, "1:\\x", "/1:/x");
    row("separator before the colon", "\\:\\x", 2, kAbsolute, ":\\x", "/:/x");
    row("colon elsewhere", "ab:\\x", 2, kRelative, "ab:\\x", "ab:/x");
    row("UNC", R"(\\srv\share)", 3, kAbsolute, R"(\\srv\share)", "\\\\srv/share");
    row("UNC with slashes", "//srv/share", 3, kAbsolute, R"(\\srv\share)", "\\\\srv/share");
    row("UNC of mixed separators", "/\\srv", 2, kAbsolute, "\\\\srv", "\\\\srv");
    row("UNC of separators only", R"(\\\)", 1, kAbsolute, "\\\\", "\\\\");
    row("two separators are no UNC", "\\\\", 0, kRelative, "", "");
    row("one leading separator", "\\dir\\x", 2, kRelative, "dir\\x", "dir/x");
    row("leading slash", "/dir/x", 2, kRelative, "dir\\x", "dir/x");
    row("relative", "dir/x", 2, kRelative, "dir\\x", "dir/x");
    row("empty", "", 1, kRelative, "", "");
}

void tst_path::constructing_data()
{
    resultColumns();
    const char* const drive = "C:\\dir";
    row("C string", path("/a//b"), 2, kAbsolute, "/a/b");
    row("string", path(std::string("/a//b")), 2, kAbsolute, "/a/b");
    row("wide C string", path(L"/\u4E2D//b"), 2, kAbsolute, "/\xE4\xB8\xAD/b");
    row("wide string", path(std::wstring(L"caf\u00E9")), 1, kRelative, "caf\xC3\xA9");
    path wide;
    wide.set(std::wstring(L"C:/e"), path::WINDOWS_PATH);
    row("set from wide text", wide, 2, kAbsolute, "C:\\e", "/C:/e");
    row("copy keeps the style", path(windows(drive)), 2, kAbsolute, drive, "/C:/dir");
    row("copy keeps the root", path(path("/")), 0, kAbsolute, "");
    path source = windows(drive);
    row("move keeps the style", path(std::move(source)), 2, kAbsolute, drive, "/C:/dir");
    QVERIFY(std::is_nothrow_move_constructible<path>::value);
}

void tst_path::assigning_data()
{
    resultColumns();
    row("C string", windows("x") = "C:\\f", 2, kRelative, "C:/f");
    row("string", path("/x") = std::string("d/"), 1, kRelative, "d");
    row("drive becomes POSIX", assigned(windows("C:\\dir")), 2, kRelative, "C:/dir");
    row("UNC becomes POSIX", assigned(windows(R"(\\s\x)")), 2, kRelative, "s/x");
    row("absolute", assigned("/a"), 1, kAbsolute, "/a");
    row("absolute only by what was appended", assigned(path().append("/lib")), 1, kRelative, "lib");
    row("a slash in a component separates", assigned(replaced("a", "b/c")), 2, kRelative, "a.b/c");
    row("root becomes one empty component", assigned("/"), 1, kRelative, "");
    row("nothing becomes one empty component", assigned(path()), 1, kRelative, "");
    path itself = windows("C:\\dir");
    const path& same = itself;
    row("itself", itself = same, 2, kRelative, "C:/dir");
}

void tst_path::appending_data()
{
    resultColumns();
    row("relative", joined("/usr", "lib/x"), 3, kAbsolute, "/usr/lib/x");
    row("C string", path("/usr").append("lib/x"), 3, kAbsolute, "/usr/lib/x");
    row("string", path("/usr").append(std::string("lib/x")), 3, kAbsolute, "/usr/lib/x");
    row("absolute is ignored", joined("/usr", "/lib"), 1, kAbsolute, "/usr");
    row("absolute is ignored by a relative path", joined("usr", "/lib"), 1, kRelative, "usr");
    row("to the root", joined("/", "lib"), 1, kAbsolute, "/lib");
    row("absolute to the root", joined("/", "/lib"), 1, kAbsolute, "/lib");
    row("absolute to nothing is relative", joined(path(), "/lib"), 1, kRelative, "lib");
    row("empty text adds an empty component", joined("a", ""), 2, kRelative, "a/");
    row("to empty text", joined("", "a"), 2, kRelative, "/a");
    row("absolute to empty text is ignored", joined("", "/a"), 1, kRelative, "");
    row("keeps its style", joined(windows("C:\\d"), "a/b"), 4, kAbsolute, "C:\\d\\a\\b",
        "/C:/d/a/b");
    row("imposes its style", joined("/x", windows("a\\b")), 3, kAbsolute, "/x/a/b");
    row("UNC to nothing", joined(path(), windows(R"(\\s\x)")), 3, kRelative, "\\\\s/x");
    row("to what was cleared", joined(cleared("/a/b"), "c"), 1, kAbsolute, "/c");
    row("style outlives clearing", joined(cleared(windows("C:\\d")), "x/y"), 2, kAbsolute, "x\\y",
        "/x/y");
    path itself("a/b");
    row("itself", itself.append(itself), 4, kRelative, "a/b/a/b");
}

void tst_path::parents_data()
{
    resultColumns();
    row("three components", path("a/b/c").parent_path(), 2, kRelative, "a/b");
    row("absolute", path("/a/b").parent_path(), 1, kAbsolute, "/a");
    row("one absolute component", path("/a").parent_path(), 0, kAbsolute, "");
    row("one component", path("a").parent_path(), 0, kRelative, "");
    row("root", path("/").parent_path(), 0, kAbsolute, "");
    row("nothing", path().parent_path(), 1, kRelative, "..");
    row("empty text", path("").parent_path(), 0, kRelative, "");
    row("two dots", path("a/..").parent_path(), 1, kRelative, "a");
    row("drive becomes POSIX", windows("C:\\a\\b").parent_path(), 2, kAbsolute, "/C:/a");
    row("UNC", windows(R"(\\s\a\b)").parent_path(), 3, kAbsolute, "\\\\s/a");

    row("filename removed", withoutFilename("/a/b/c"), 2, kAbsolute, "/a/b");
    row("only filename removed", withoutFilename("a"), 1, kRelative, "");
    row("only absolute filename removed", withoutFilename("/a"), 1, kRelative, "");
    row("none removed from the root", withoutFilename("/"), 0, kAbsolute, "");
    row("none removed from nothing", withoutFilename(path()), 0, kRelative, "");
}

void tst_path::names_data()
{
    resultColumns();
    row("root name", path("/usr/lib/x").root_name(), 1, kRelative, "usr");
    row("root name of the root", path("/").root_name(), 0, kRelative, "");
    row("root name of UNC", windows(R"(\\s\x)").root_name(), 0, kRelative, "");
    row("leaf name", path("/usr/lib/x").leaf_name(), 1, kRelative, "x");
    row("leaf name with a colon", path("a/b:c").leaf_name(), 1, kRelative, "b:c");
    row("leaf name of the root", path("/").leaf_name(), 0, kRelative, "");
    row("leaf name of empty text", path("").leaf_name(), 1, kRelative, "");

    row("file name", windows("C:\\d\\f.txt").filename(), 1, kRelative, "f.txt");
    row("file name of two dots", path("a/..").filename(), 1, kRelative, "..");
    row("file name of a drive", path("a/C:").filename(), 0, kRelative, "");
    row("file name with a colon", path("a/b:c.d").filename(), 0, kRelative, "");
    row("file name of UNC", windows(R"(\\\)").filename(), 0, kRelative, "");
    row("file name of the root", path("/").filename(), 0, kRelative, "");

    row("base name", path("/etc/screencapture.ini").basename(), 1, kRelative, "screencapture");
    row("base name of two dots", path("a.tar.gz").basename(), 1, kRelative, "a.tar");
    row("base name without a dot", path("x.y/z").basename(), 1, kRelative, "z");
    row("base name of a hidden file", path(".profile").basename(), 1, kRelative, "");
    row("base name of the root", path("/").basename(), 1, kRelative, "");

    row("extension", path("/etc/screencapture.ini").extension(), 1, kRelative, ".ini");
    row("extension of two", path("x/file.tar.gz").extension(), 1, kRelative, ".gz");
    row("extension of a hidden file", path(".profile").extension(), 1, kRelative, ".profile");
    row("extension that is a dot", path("a.").extension(), 0, kRelative, "");
    row("no extension", path("x.y/README").extension(), 0, kRelative, "");
}

void tst_path::replacingTheExtension_data()
{
    resultColumns();
    row("last of two", replaced("x/file.tar.gz", "bak"), 2, kRelative, "x/file.tar.bak");
    row("without dot", replaced("/a/b.ini", "png"), 2, kAbsolute, "/a/b.png");
    row("with dot", replaced("/a/b.ini", ".png"), 2, kAbsolute, "/a/b.png");
    row("none before", replaced("a.b/c", "d"), 2, kRelative, "a.b/c.d");
    row("empty removes", replaced("a.b.c", ""), 1, kRelative, "a.b");
    row("hidden file", replaced(".profile", "x"), 1, kRelative, ".x");
    row("two dots", replaced("a/..", "x"), 2, kRelative, "a/..x");
    row("absolute extension keeps its slash", replaced("a.b", "/c"), 1, kRelative, "a./c");
    row("two components", replaced("a.b", windows("c\\d")), 1, kRelative, "a.c/d");
    row("drive", replaced("C:", "x"), 1, kRelative, "C:");
    row("colon in the name", replaced("a/b:c.d", "x"), 2, kRelative, "a/b:c.d");
    row("UNC", replaced(windows(R"(\\\)"), "x"), 1, kAbsolute, "\\\\", "\\\\");
    row("nothing", replaced("/", "x"), 0, kAbsolute, "");
    row("empty text", replaced("", "x"), 1, kRelative, ".x");
    path itself("a.b");
    row("itself", itself.replace_extension(itself), 1, kRelative, "a.a");
}

void tst_path::editsReturnThePath()
{
    path p("a/b");
    QCOMPARE(&(p = path("x/y.z")), &p);
    QCOMPARE(&(p = "x/y.z"), &p);
    QCOMPARE(&(p = std::string("x/y.z")), &p);
    QCOMPARE(&p.append(path("c")), &p);
    QCOMPARE(&p.append("c"), &p);
    QCOMPARE(&p.append(std::string("c")), &p);
    QCOMPARE(&p.replace_extension("d"), &p);
    QCOMPARE(&p.remove_filename(), &p);
}

void tst_path::swapExchangesComponentsOnly()
{
    path a("/a/b");
    path b = windows("c\\d");
    a.swap(b);
    QCOMPARE(a.string(), std::string("/c/d"));
    QCOMPARE(b.string(), std::string("a\\b"));
    QVERIFY(!b.is_absolute());
}

void tst_path::tokenizing_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<std::string>("delimiters");
    QTest::addColumn<Texts>("pieces");
    const auto row = [](const std::string& text, const std::string& delimiters,
                        const Texts& pieces) {
        QTest::addRow("'%s' at '%s'", text.c_str(), delimiters.c_str())
            << text << delimiters << pieces;
    };
    row("a,b;;c/d", ",;", {"a", "b", "c/d"});
    row("a/b", "", {"a/b"});
    row(".", "", {});
    row("a.b..c", ".", {"a", "b", "c"});
    row("", ",", {""});
    row(",", ",", {});
    row(",,a,,", ",", {"a"});
    row("a,.,..", ",", {"a", ".."});
}

void tst_path::tokenizing()
{
    QFETCH(std::string, text);
    QFETCH(std::string, delimiters);
    QFETCH(Texts, pieces);
    QCOMPARE(myfs::tokenize(text, delimiters), pieces);
}

void tst_path::rendersAppendingToTheText()
{
    std::string out = "before ";
    myfs::path_to_string({"a", "b"}, out, true, path::POSIX_PATH);
    QCOMPARE(out, std::string("before /a/b"));
    myfs::path_to_string({}, out, true, path::POSIX_PATH);
    QCOMPARE(out, std::string("before /a/b"));
    myfs::path_to_string({"c", "d"}, out, true, path::WINDOWS_PATH);
    QCOMPARE(out, std::string("before /a/bc\\d"));
    // Only a first component marks a UNC path.
    myfs::path_to_string({"e", "\\\\", "f"}, out, false, path::POSIX_PATH);
    QCOMPARE(out, std::string("before /a/bc\\de/\\\\/f"));
}

void tst_path::separators()
{
    QCOMPARE(myfs::native_sep(), std::string("/"));
    QCOMPARE(int(myfs::native_sep_char()), 47);
    QCOMPARE(myfs::native_wsep(), std::wstring(L"/"));
    for (int c = -128; c < 128; ++c)
        QCOMPARE(myfs::is_separator(char(c)), c == '/' || c == '\\');
    QCOMPARE(int(path::WINDOWS_PATH), 0);
    QCOMPARE(int(path::POSIX_PATH), 1);
    QCOMPARE(sizeof(path::SYSPATHTYPE), std::size_t(4));
}

void tst_path::wideTextStopsWhereUtf8CannotBeDecoded()
{
    QCOMPARE(path("a/b\xFF/c").wstring(), std::wstring(L"a/b"));
    QCOMPARE(path("a/\xF0\x9F\x98\x80/c").wstring(), std::wstring(L"a/"));
    QCOMPARE(path(std::wstring(1, wchar_t(0x1F600))).string(), std::string("\xFF\x98\x80"));
}

void tst_path::comparing_data()
{
    QTest::addColumn<path>("a");
    QTest::addColumn<path>("b");
    QTest::addColumn<int>("result");
    const auto row = [](const char* name, const path& a, const path& b, int result) {
        QTest::newRow(name) << a << b << result;
    };
    row("equal", "a/b", "a/b", 0);
    row("prefix is less", "a/b", "a/b/c", -1);
    row("component decides before length", "a/b/c", "a/c", -1);
    row("not as text", "a/b", "a!/b", -1);
    row("the root does not count", "/a", "a", 0);
    row("the style does not count", windows("a\\b"), "/a/b", 0);
    row("root and nothing", "/", ".", 0);
    row("empty text is more than nothing", "", "/", 1);
    row("bytes are unsigned", "\xFF", "a", 1);
    row("case counts", "A", "a", -1);
    row("parent is not resolved", "a/../b", "b", -1);
}

void tst_path::comparing()
{
    QFETCH(path, a);
    QFETCH(path, b);
    QFETCH(int, result);
    QCOMPARE(a.compare(b), result);
    QCOMPARE(b.compare(a), -result);
    QCOMPARE(a < b, result < 0);
    QCOMPARE(b<a, result> 0);
}

void tst_path::orderOfAMapIgnoresTheRoot()
{
    std::map<path, int> map;
    map[path("/usr")] = 1;
    map[path("usr")] = 2;
    map[path("a")] = 3;
    QCOMPARE(map.size(), std::size_t(2));
    QCOMPARE(map[path("/usr")], 2);
    QVERIFY(map.rbegin()->first.is_absolute());
}

void tst_path::followsTheModel()
{
    QRandomGenerator random(1);
    for (int round = 0; round < kRounds; ++round) {
        std::string bytes(random.bounded(120u), '\0');
        for (char& byte : bytes)
            byte = char(random.bounded(256));
        requirePathsFollowTheirModels(Choices(bytes));
    }
}

void tst_path::absoluteResolvesLinks()
{
    QTemporaryDir dir;
    const QString real = QFileInfo(dir.path()).canonicalFilePath();
    QVERIFY(QDir(real).mkdir("target"));
    QVERIFY(QFile::link(real + "/target", real + "/link"));
    const path link(dir.filePath("link/../link").toStdString());
    QCOMPARE(link.make_absolute().string(), (real + "/target").toStdString());
    QVERIFY(link.make_absolute().is_absolute());
    QCOMPARE(myfs::absolute(link).string(), (real + "/target").toStdString());
}

void tst_path::absoluteOfAMissingFileThrows()
{
    const std::string prefix = "Internal error in realpath(): ";
    for (const char* missing : {"/no/such/file", "/", "", "."}) {
        try {
            static_cast<void>(path(missing).make_absolute());
            QFAIL("nothing was thrown");
        } catch (const std::runtime_error& error) {
            QCOMPARE(std::string(error.what()), prefix + std::strerror(ENOENT));
        }
    }
    QVERIFY(throws<std::runtime_error>([] { myfs::absolute(path(std::string(5000, 'x'))); }));
}

void tst_path::gbkText()
{
    SKIP_WITHOUT_CHINESE_LOCALE();
    const LocaleScope scope("C");
    const myfs::gbk_path p("/\xD6\xD0/a//b");
    QCOMPARE(p.string(), std::string("/\xE4\xB8\xAD/a/b"));
    QVERIFY(p.is_absolute());
    const path plain = myfs::gbk_path(std::string("\xD6\xD0"));
    QCOMPARE(plain.string(), std::string("\xE4\xB8\xAD"));
    QCOMPARE(sizeof(myfs::gbk_path), sizeof(path));
}

QTEST_APPLESS_MAIN(tst_path)
#include "tst_path.moc"
