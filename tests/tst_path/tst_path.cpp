// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "ChineseLocale.h"
#include "StdText.h"
#include "code_convert.h"
#include "myfs.h"

#include <QDir>
#include <QTemporaryDir>

#include <cstring>
#include <map>
#include <stdexcept>
#include <type_traits>

using myfs::path;

namespace
{

path windows(const std::string& text)
{
    path p;
    p.set(text, path::WINDOWS_PATH);
    return p;
}

path assigned(const path& source)
{
    path p;
    p = source;
    return p;
}

} // namespace

class tst_path : public BehaviourTest
{
    Q_OBJECT

private slots:
    void parsing_data();
    void parsing();
    void windowsParsing_data();
    void windowsParsing();
    void tokenizing_data();
    void tokenizing();
    void rendersAppendingToTheText();
    void rendersAMarkerInTheMiddleAsAnyComponent();
    void separators();
    void defaultIsEmptyAndRelative();
    void everyConstructorParses();
    void wideText();
    void wideTextStopsWhereUtf8CannotBeDecoded();
    void copyKeepsTheStyle();
    void moveKeepsTheStyle();
    void assignmentParsesAgain();
    void assignmentTurnsTheRootIntoOneEmptyComponent();
    void assignmentToItself();
    void clearKeepsStyleAndRoot();
    void swapExchangesComponentsOnly();
    void appending_data();
    void appending();
    void appendKeepsStyle();
    void appendToItself();
    void parents_data();
    void parents();
    void parentIsPosix();
    void removingTheFilename_data();
    void removingTheFilename();
    void names_data();
    void names();
    void rootAndLeaf_data();
    void rootAndLeaf();
    void replacingTheExtension_data();
    void replacingTheExtension();
    void replacingWithItself();
    void comparing_data();
    void comparing();
    void orderOfAMapIgnoresTheRoot();
    void absoluteResolvesLinks();
    void absoluteOfAMissingFileThrows();
    void gbkText();
};

void tst_path::parsing_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<Texts>("components");
    QTest::addColumn<bool>("absolute");
    QTest::addColumn<std::string>("rendered");
    const auto row = [](const char* name, const std::string& text, const Texts& components,
                        bool absolute, const std::string& rendered) {
        QTest::newRow(name) << text << components << absolute << rendered;
    };
    row("empty text is one empty component", "", {""}, false, "");
    row("root", "/", {}, true, "");
    row("slashes only", "///", {}, true, "");
    row("dot", ".", {}, false, "");
    row("dots only", "./././", {}, false, "");
    row("two dots", "..", {".."}, false, "..");
    row("relative", "a/b", {"a", "b"}, false, "a/b");
    row("absolute", "/a/b", {"a", "b"}, true, "/a/b");
    row("runs, dot and trailing slash", "a//b/./c/", {"a", "b", "c"}, false, "a/b/c");
    row("parent is kept", "a/../b", {"a", "..", "b"}, false, "a/../b");
    row("root's parent is kept", "/..", {".."}, true, "/..");
    row("backslashes", "\\tmp\\x", {"tmp", "x"}, false, "tmp/x");
    row("backslashes only", "\\\\", {}, false, "");
    row("UNC text is not absolute", R"(\\srv\share)", {"srv", "share"}, false, "srv/share");
    row("drive text is not absolute", "C:\\dir", {"C:", "dir"}, false, "C:/dir");
    row("three dots", "a/.../b", {"a", "...", "b"}, false, "a/.../b");
    row("hidden file", "/.profile", {".profile"}, true, "/.profile");
    row("dot at the end", "a/.", {"a"}, false, "a");
    row("space", " ", {" "}, false, " ");
    row("Chinese", "/\xE4\xB8\xAD/\xE6\x96\x87", {"\xE4\xB8\xAD", "\xE6\x96\x87"}, true,
        "/\xE4\xB8\xAD/\xE6\x96\x87");
    row("invalid UTF-8", "/\xFF\xFE", {"\xFF\xFE"}, true, "/\xFF\xFE");
    for (const std::size_t count : {15, 16, 17, 40}) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i)
            text += "/d" + std::to_string(i);
        Texts names;
        for (std::size_t i = 0; i < count; ++i)
            names.push_back("d" + std::to_string(i));
        row((std::to_string(count) + " components").c_str(), text, names, true, text);
    }
    row("zero byte", std::string("a\0b", 3), {std::string("a\0b", 3)}, false,
        std::string("a\0b", 3));
}

void tst_path::parsing()
{
    QFETCH(std::string, text);
    QFETCH(Texts, components);
    QFETCH(bool, absolute);
    QFETCH(std::string, rendered);
    const path p(text);
    QCOMPARE(myfs::tokenize(text, "/\\"), components);
    QCOMPARE(p.size(), components.size());
    QCOMPARE(p.empty(), components.empty());
    QCOMPARE(p.is_absolute(), absolute);
    QCOMPARE(p.string(), rendered);
    QCOMPARE(p.str(), rendered);
    QCOMPARE(p.generic_string(), rendered);
}

void tst_path::windowsParsing_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("absolute");
    QTest::addColumn<std::string>("rendered");
    QTest::addColumn<std::string>("generic");
    const auto row = [](const char* name, const std::string& text, int size, bool absolute,
                        const std::string& rendered, const std::string& generic) {
        QTest::newRow(name) << text << size << absolute << rendered << generic;
    };
    row("drive", "C:\\dir\\f.txt", 3, true, "C:\\dir\\f.txt", "/C:/dir/f.txt");
    row("drive alone", "C:", 1, true, "C:", "/C:");
    row("any character before the colon", "1:/x", 2, true, "1:\\x", "/1:/x");
    row("colon elsewhere", "ab:\\x", 2, false, "ab:\\x", "ab:/x");
    row("UNC", R"(\\srv\share)", 3, true, R"(\\srv\share)", "\\\\srv/share");
    row("UNC with slashes", "//srv/share", 3, true, R"(\\srv\share)", "\\\\srv/share");
    row("UNC of mixed separators", "/\\srv", 2, true, "\\\\srv", "\\\\srv");
    row("UNC of separators only", R"(\\\)", 1, true, "\\\\", "\\\\");
    row("two separators are no UNC", "\\\\", 0, false, "", "");
    row("one leading separator", "\\dir\\x", 2, false, "dir\\x", "dir/x");
    row("leading slash", "/dir/x", 2, false, "dir\\x", "dir/x");
    row("relative", "dir/x", 2, false, "dir\\x", "dir/x");
    row("drive letter with UNC look", "\\:\\x", 2, true, ":\\x", "/:/x");
    row("empty", "", 1, false, "", "");
}

void tst_path::windowsParsing()
{
    QFETCH(std::string, text);
    QFETCH(int, size);
    QFETCH(bool, absolute);
    QFETCH(std::string, rendered);
    QFETCH(std::string, generic);
    const path p = windows(text);
    QCOMPARE(int(p.size()), size);
    QCOMPARE(p.is_absolute(), absolute);
    QCOMPARE(p.string(), rendered);
    QCOMPARE(p.str(), rendered);
    QCOMPARE(p.generic_string(), generic);
    QCOMPARE(p.wstring(), CodeCvt::utf8_to_utf16(rendered));
    QCOMPARE(p.wstr(), CodeCvt::utf8_to_utf16(rendered));
    QCOMPARE(p.generic_wstring(), CodeCvt::utf8_to_utf16(generic));
}

void tst_path::tokenizing_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<std::string>("delimiters");
    QTest::addColumn<Texts>("pieces");
    QTest::newRow("other delimiters")
        << std::string("a,b;;c/d") << std::string(",;") << Texts{"a", "b", "c/d"};
    QTest::newRow("no delimiters") << std::string("a/b") << std::string() << Texts{"a/b"};
    QTest::newRow("dot without delimiters") << std::string(".") << std::string() << Texts{};
    QTest::newRow("a delimiter that is a dot")
        << std::string("a.b..c") << std::string(".") << Texts{"a", "b", "c"};
    QTest::newRow("empty") << std::string() << std::string(",") << Texts{""};
    QTest::newRow("one delimiter") << std::string(",") << std::string(",") << Texts{};
    QTest::newRow("leading and trailing") << std::string(",,a,,") << std::string(",") << Texts{"a"};
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
}

void tst_path::rendersAMarkerInTheMiddleAsAnyComponent()
{
    std::string out;
    myfs::path_to_string({"a", "\\\\", "b"}, out, false, path::POSIX_PATH);
    QCOMPARE(out, std::string("a/\\\\/b"));
    out.clear();
    myfs::path_to_string({"\\\\", "b", "c"}, out, true, path::POSIX_PATH);
    QCOMPARE(out, std::string("\\\\b/c"));
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

void tst_path::defaultIsEmptyAndRelative()
{
    const path p;
    QVERIFY(p.empty());
    QCOMPARE(p.size(), std::size_t(0));
    QVERIFY(!p.is_absolute());
    QCOMPARE(p.string(), std::string());
}

void tst_path::everyConstructorParses()
{
    QCOMPARE(path("/a//b").string(), std::string("/a/b"));
    QCOMPARE(path(std::string("/a//b")).string(), std::string("/a/b"));
    QCOMPARE(path(L"/a//b").string(), std::string("/a/b"));
    QCOMPARE(path(std::wstring(L"/a//b")).string(), std::string("/a/b"));
    path p;
    QCOMPARE((p = "/c").string(), std::string("/c"));
    QCOMPARE((p = std::string("d/")).string(), std::string("d"));
    QVERIFY(!p.is_absolute());
    p.set(std::wstring(L"C:/e"), path::WINDOWS_PATH);
    QCOMPARE(p.string(), std::string("C:\\e"));
    QCOMPARE((p = "C:\\f").string(), std::string("C:/f"));
    QCOMPARE(&(p = path("x")), &p);
    QCOMPARE(&(p = "x"), &p);
    QCOMPARE(&(p = std::string("x")), &p);
}

void tst_path::wideText()
{
    const path p(L"/\u4E2D/caf\u00E9");
    QCOMPARE(p.string(), std::string("/\xE4\xB8\xAD/caf\xC3\xA9"));
    QCOMPARE(p.wstring(), std::wstring(L"/\u4E2D/caf\u00E9"));
    QCOMPARE(p.wstr(), p.wstring());
    QCOMPARE(p.generic_wstring(), p.wstring());
}

void tst_path::wideTextStopsWhereUtf8CannotBeDecoded()
{
    QCOMPARE(path("a/b\xFF/c").wstring(), std::wstring(L"a/b"));
    QCOMPARE(path("a/\xF0\x9F\x98\x80/c").wstring(), std::wstring(L"a/"));
    QCOMPARE(path(std::wstring(1, wchar_t(0x1F600))).string(), std::string("\xFF\x98\x80"));
}

void tst_path::copyKeepsTheStyle()
{
    path source = windows("C:\\dir");
    const path copy(source);
    source.clear();
    QCOMPARE(copy.string(), std::string("C:\\dir"));
    QVERIFY(copy.is_absolute());
    const path root(path("/"));
    QVERIFY(root.empty() && root.is_absolute());
}

void tst_path::moveKeepsTheStyle()
{
    QVERIFY(std::is_nothrow_move_constructible<path>::value);
    path source = windows(R"(\\srv\x)");
    const path moved(std::move(source));
    QCOMPARE(moved.string(), std::string("\\\\srv\\x"));
    QVERIFY(moved.is_absolute());
}

void tst_path::assignmentParsesAgain()
{
    const path drive = assigned(windows("C:\\dir"));
    QCOMPARE(drive.string(), std::string("C:/dir"));
    QVERIFY(!drive.is_absolute());
    const path share = assigned(windows(R"(\\srv\share)"));
    QCOMPARE(share.string(), std::string("srv/share"));
    QVERIFY(!share.is_absolute());
    QVERIFY(assigned(path("/a")).is_absolute());

    path relative;
    relative.append(path("/lib"));
    QVERIFY(!assigned(relative).is_absolute());

    path withSlash("a");
    withSlash.replace_extension(path("b/c"));
    QCOMPARE(withSlash.size(), std::size_t(1));
    QCOMPARE(assigned(withSlash).size(), std::size_t(2));
}

void tst_path::assignmentTurnsTheRootIntoOneEmptyComponent()
{
    for (const path& source : {path("/"), path(), path(".")}) {
        path p("x");
        p = source;
        QVERIFY(!p.empty());
        QCOMPARE(p.size(), std::size_t(1));
        QVERIFY(!p.is_absolute());
        QCOMPARE(p.string(), std::string());
    }
    path p("x");
    p = path("/"); // also from a temporary
    QCOMPARE(p.size(), std::size_t(1));
}

void tst_path::assignmentToItself()
{
    path p = windows("C:\\dir");
    const path& same = p;
    p = same;
    QCOMPARE(p.string(), std::string("C:/dir"));
}

void tst_path::clearKeepsStyleAndRoot()
{
    path p = windows("C:\\dir");
    p.clear();
    QVERIFY(p.empty());
    QVERIFY(p.is_absolute());
    p.append("x");
    p.append("y");
    QCOMPARE(p.string(), std::string("x\\y"));

    path absolute("/a/b");
    absolute.clear();
    absolute.append("c");
    QCOMPARE(absolute.string(), std::string("/c"));
}

void tst_path::swapExchangesComponentsOnly()
{
    path a("/a/b");
    path b = windows("c\\d");
    a.swap(b);
    QCOMPARE(a.string(), std::string("/c/d"));
    QCOMPARE(b.string(), std::string("a\\b"));
    QVERIFY(a.is_absolute());
    QVERIFY(!b.is_absolute());
}

void tst_path::appending_data()
{
    QTest::addColumn<std::string>("base");
    QTest::addColumn<std::string>("added");
    QTest::addColumn<std::string>("result");
    const auto row = [](const char* name, const char* base, const char* added, const char* result) {
        QTest::newRow(name) << std::string(base) << std::string(added) << std::string(result);
    };
    row("relative", "/usr", "lib/x", "/usr/lib/x");
    row("absolute is ignored", "/usr", "/lib", "/usr");
    row("absolute is ignored by a relative path", "usr", "/lib", "usr");
    row("root is ignored", "usr", "/", "usr");
    row("to the root", "/", "lib", "/lib");
    row("absolute to the root", "/", "/lib", "/lib");
    row("absolute to nothing is relative", ".", "/lib", "lib");
    row("empty text adds an empty component", "a", "", "a/");
    row("to empty text", "", "a", "/a");
    row("absolute to empty text is ignored", "", "/a", "");
    row("parent", "a", "../b", "a/../b");
    row("dot", "a", ".", "a");
}

void tst_path::appending()
{
    QFETCH(std::string, base);
    QFETCH(std::string, added);
    QFETCH(std::string, result);
    path p(base);
    const bool absolute = p.is_absolute();
    QCOMPARE(&p.append(path(added)), &p);
    QCOMPARE(p.string(), result);
    QCOMPARE(p.is_absolute(), absolute);
    path fromText(base);
    QCOMPARE(&fromText.append(added), &fromText);
    QCOMPARE(fromText.string(), result);
    path fromArray(base);
    QCOMPARE(&fromArray.append(added.c_str()), &fromArray);
    QCOMPARE(fromArray.string(), result);
}

void tst_path::appendKeepsStyle()
{
    path p = windows("C:\\dir");
    p.append("a/b");
    QCOMPARE(p.string(), std::string("C:\\dir\\a\\b"));
    path posix("/x");
    posix.append(windows("a\\b"));
    QCOMPARE(posix.string(), std::string("/x/a/b"));
    posix.append(windows("C:\\b"));
    QCOMPARE(posix.string(), std::string("/x/a/b"));
    path none;
    none.append(windows(R"(\\srv\x)"));
    QCOMPARE(none.string(), std::string("\\\\srv/x"));
}

void tst_path::appendToItself()
{
    path p("a/b");
    p.append(p);
    QCOMPARE(p.string(), std::string("a/b/a/b"));
}

void tst_path::parents_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("absolute");
    QTest::addColumn<std::string>("parent");
    const auto row = [](const char* text, int size, bool absolute, const char* parent) {
        QTest::newRow(*text ? text : "empty text")
            << std::string(text) << size << absolute << std::string(parent);
    };
    row("a/b/c", 2, false, "a/b");
    row("/a/b", 1, true, "/a");
    row("/a", 0, true, "");
    row("a", 0, false, "");
    row("/", 0, true, "");
    row(".", 1, false, "..");
    row("", 0, false, "");
    row("..", 0, false, "");
    row("a/..", 1, false, "a");
}

void tst_path::parents()
{
    QFETCH(std::string, text);
    QFETCH(int, size);
    QFETCH(bool, absolute);
    QFETCH(std::string, parent);
    const path p = path(text).parent_path();
    QCOMPARE(int(p.size()), size);
    QCOMPARE(p.empty(), size == 0);
    QCOMPARE(p.is_absolute(), absolute);
    QCOMPARE(p.string(), parent);
}

void tst_path::parentIsPosix()
{
    QCOMPARE(windows("C:\\a\\b").parent_path().string(), std::string("/C:/a"));
    QCOMPARE(windows("\\\\srv\\a\\b").parent_path().string(), std::string("\\\\srv/a"));
    const path none = path().parent_path();
    QCOMPARE(none.string(), std::string(".."));
    QVERIFY(!none.is_absolute());
}

void tst_path::removingTheFilename_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("absolute");
    QTest::addColumn<std::string>("left");
    const auto row = [](const char* name, const char* text, int size, bool absolute,
                        const char* left) {
        QTest::newRow(name) << std::string(text) << size << absolute << std::string(left);
    };
    row("three components", "/a/b/c", 2, true, "/a/b");
    row("relative", "a/b", 1, false, "a");
    row("one component leaves an empty one", "a", 1, false, "");
    row("one absolute component leaves a relative empty one", "/a", 1, false, "");
    row("root stays", "/", 0, true, "");
    row("nothing stays", ".", 0, false, "");
}

void tst_path::removingTheFilename()
{
    QFETCH(std::string, text);
    QFETCH(int, size);
    QFETCH(bool, absolute);
    QFETCH(std::string, left);
    path p(text);
    QCOMPARE(&p.remove_filename(), &p);
    QCOMPARE(int(p.size()), size);
    QCOMPARE(p.is_absolute(), absolute);
    QCOMPARE(p.string(), left);
}

void tst_path::names_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<std::string>("filename");
    QTest::addColumn<std::string>("basename");
    QTest::addColumn<std::string>("extension");
    const auto row = [](const char* text, const char* filename, const char* basename,
                        const char* extension) {
        QTest::newRow(*text ? text : "empty text")
            << std::string(text) << std::string(filename) << std::string(basename)
            << std::string(extension);
    };
    row("x/file.tar.gz", "file.tar.gz", "file.tar", ".gz");
    row("/etc/screencapture.ini", "screencapture.ini", "screencapture", ".ini");
    row("a.tar.gz", "a.tar.gz", "a.tar", ".gz");
    row(".profile", ".profile", "", ".profile");
    row("/a/README", "README", "README", "");
    row("a.", "a.", "a", "");
    row("a/..", "..", "", "");
    row("...", "...", "..", "");
    row("x.y/z", "z", "z", "");
    row("/", "", "", "");
    row("", "", "", "");
    row("a/C:", "", "", "");
    row("a/b:c.d", "", "", "");
}

void tst_path::names()
{
    QFETCH(std::string, text);
    QFETCH(std::string, filename);
    QFETCH(std::string, basename);
    QFETCH(std::string, extension);
    QCOMPARE(path(text).filename().string(), filename);
    QCOMPARE(path(text).basename().string(), basename);
    QCOMPARE(path(text).extension().string(), extension);

    QCOMPARE(windows("\\\\\\").filename().size(), std::size_t(0));
    QCOMPARE(windows("C:\\dir\\f.txt").filename().string(), std::string("f.txt"));
    QVERIFY(path("README").extension().empty());
    QVERIFY(path("a:b").filename().empty());
    QCOMPARE(path(".profile").basename().size(), std::size_t(1));
    QCOMPARE(path("/").basename().size(), std::size_t(1));
}

void tst_path::rootAndLeaf_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<std::string>("root");
    QTest::addColumn<std::string>("leaf");
    const auto row = [](const char* text, const char* root, const char* leaf) {
        QTest::newRow(*text ? text : "empty text")
            << std::string(text) << std::string(root) << std::string(leaf);
    };
    row("/usr/lib/x", "usr", "x");
    row("a", "a", "a");
    row("C:/x", "C:", "x");
    row("a/b:c", "a", "b:c");
    row("/", "", "");
    row("", "", "");
}

void tst_path::rootAndLeaf()
{
    QFETCH(std::string, text);
    QFETCH(std::string, root);
    QFETCH(std::string, leaf);
    QCOMPARE(path(text).root_name().string(), root);
    QCOMPARE(path(text).leaf_name().string(), leaf);
    QVERIFY(!path(text).root_name().is_absolute());
    QVERIFY(path("/").root_name().empty());
    QVERIFY(path("/").leaf_name().empty());
    QVERIFY(windows("\\\\srv\\x").root_name().empty());
}

void tst_path::replacingTheExtension_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<std::string>("extension");
    QTest::addColumn<std::string>("result");
    const auto row = [](const char* name, const char* text, const char* extension,
                        const char* result) {
        QTest::newRow(name) << std::string(text) << std::string(extension) << std::string(result);
    };
    row("last of two", "x/file.tar.gz", "bak", "x/file.tar.bak");
    row("without dot", "/a/b.ini", "png", "/a/b.png");
    row("with dot", "/a/b.ini", ".png", "/a/b.png");
    row("none before", "a/b", "png", "a/b.png");
    row("empty removes", "a/b.c", "", "a/b");
    row("empty removes one", "a.b.c", "", "a.b");
    row("hidden file", ".profile", "x", ".x");
    row("dot in a directory", "a.b/c", "d", "a.b/c.d");
    row("two dots", "a/..", "x", "a/..x");
    row("absolute extension keeps its slash", "a.b", "/c", "a./c");
    row("two components", "a.b", "c/d", "a.c/d");
    row("drive", "C:", "x", "C:");
    row("colon in the name", "a/b:c.d", "x", "a/b:c.d");
    row("nothing", "/", "x", "");
    row("empty text", "", "x", ".x");
}

void tst_path::replacingTheExtension()
{
    QFETCH(std::string, text);
    QFETCH(std::string, extension);
    QFETCH(std::string, result);
    path p(text);
    const std::size_t size = p.size();
    QCOMPARE(&p.replace_extension(path(extension)), &p);
    QCOMPARE(p.string(), result);
    QCOMPARE(p.size(), size);

    path share = windows(R"(\\\)");
    share.replace_extension(path("x"));
    QCOMPARE(share.string(), std::string("\\\\"));
    path generic("a.b");
    generic.replace_extension(windows("c\\d"));
    QCOMPARE(generic.string(), std::string("a.c/d"));
}

void tst_path::replacingWithItself()
{
    path p("a.b");
    p.replace_extension(p);
    QCOMPARE(p.string(), std::string("a.a"));
}

void tst_path::comparing_data()
{
    QTest::addColumn<std::string>("a");
    QTest::addColumn<std::string>("b");
    QTest::addColumn<int>("result");
    const auto row = [](const char* name, const char* a, const char* b, int result) {
        QTest::newRow(name) << std::string(a) << std::string(b) << result;
    };
    row("equal", "a/b", "a/b", 0);
    row("prefix is less", "a/b", "a/b/c", -1);
    row("component decides before length", "a/b/c", "a/c", -1);
    row("not as text", "a/b", "a!/b", -1);
    row("the root does not count", "/a", "a", 0);
    row("root and nothing", "/", ".", 0);
    row("empty text is more than nothing", "", "/", 1);
    row("bytes are unsigned", "\xFF", "a", 1);
    row("case counts", "A", "a", -1);
    row("trailing slash does not", "a/", "a", 0);
    row("parent is not resolved", "a/../b", "b", -1);
}

void tst_path::comparing()
{
    QFETCH(std::string, a);
    QFETCH(std::string, b);
    QFETCH(int, result);
    QCOMPARE(path(a).compare(path(b)), result);
    QCOMPARE(path(b).compare(path(a)), -result);
    QCOMPARE(path(a) < path(b), result < 0);
    QCOMPARE(path(b) < path(a), result > 0);
    QCOMPARE(windows("a\\b").compare(path("/a/b")), 0);
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
    QVERIFY_EXCEPTION_THROWN(myfs::absolute(path(std::string(5000, 'x'))), std::runtime_error);
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
