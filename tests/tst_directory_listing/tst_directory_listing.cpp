// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Files.h"
#include "StdText.h"
#include "code_convert.h"
#include "myfs.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <dirent.h>
#include <sys/socket.h>
#include <sys/un.h>

using myfs::path;

namespace
{

constexpr int kManyEntries = 20000;
constexpr uid_t kNobody = 65534;

Texts sorted(Texts texts)
{
    std::sort(texts.begin(), texts.end());
    return texts;
}

Texts listed(const std::string& dir, bool recursive)
{
    std::vector<path> entries;
    myfs::file_path_list(path(dir), entries, recursive);
    Texts texts;
    for (const path& entry : entries)
        texts.push_back(entry.str());
    return texts;
}

/// The names in the order in which the system returns them.
Texts readNames(const std::string& dir)
{
    Texts names;
    DIR* directory = ::opendir(dir.c_str());
    while (const dirent* entry = ::readdir(directory))
        names.emplace_back(entry->d_name);
    ::closedir(directory);
    return names;
}

void makeSocket(const std::string& name)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, name.c_str(), sizeof address.sun_path - 1);
    const int file = ::socket(AF_UNIX, SOCK_STREAM, 0);
    if (::bind(file, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        qFatal("no socket %s", name.c_str());
    ::close(file);
}

void makeDirectory(const std::string& name)
{
    if (::mkdir(name.c_str(), 0700) != 0)
        qFatal("no directory %s", name.c_str());
}

void makeLink(const std::string& target, const std::string& name)
{
    if (::symlink(target.c_str(), name.c_str()) != 0)
        qFatal("no link %s", name.c_str());
}

} // namespace

class tst_directory_listing : public BehaviourTest
{
    Q_OBJECT

private slots:
    void nothingToList_data();
    void nothingToList();
    void unreadableDirectoryYieldsNothing();
    void flatListingHasEveryEntry();
    void flatListingKeepsTheSystemsOrder();
    void resultsAreAppended();
    void recursiveListingHasWhatIsNoDirectory();
    void linksAreEntriesAndNotFollowed();
    void socketsAreLeftOutWhenRecursing();
    void relativeDirectoriesGiveRelativeEntries();
    void windowsDirectoryIsParsedAsPosix();
    void backslashesInNamesSeparate();
    void strangeNames();
    void wideNamesStopAtWhatCannotBeDecoded();
    void directoryWithManyEntries();
    void directoriesBeyondTheLimitEndTheDescent();
    void nothingStaysOpen();
};

void tst_directory_listing::nothingToList_data()
{
    QTest::addColumn<std::string>("dir");
    for (const char* dir : {"/no/such/directory", "/", "", ".", "/etc/passwd"})
        QTest::newRow(*dir ? dir : "empty text") << std::string(dir);
}

void tst_directory_listing::nothingToList()
{
    QFETCH(std::string, dir);
    for (const bool recursive : {false, true}) {
        std::vector<path> paths{path("before")};
        myfs::file_path_list(path(dir), paths, recursive);
        QCOMPARE(paths.size(), std::size_t(1));
        Texts texts{"before"};
        myfs::u8_file_list(dir, texts, recursive);
        QCOMPARE(texts, Texts{"before"});
        std::vector<std::wstring> wide{L"before"};
        myfs::u16_file_list(CodeCvt::utf8_to_utf16(dir), wide, recursive);
        QCOMPARE(wide.size(), std::size_t(1));
    }
}

void tst_directory_listing::unreadableDirectoryYieldsNothing()
{
    const Scratch scratch;
    makeDirectory(scratch.path("closed"));
    writeFile(scratch.path("closed/file"), "");
    QCOMPARE(::chmod(scratch.path().c_str(), 0711), 0);
    QCOMPARE(::chmod(scratch.path("closed").c_str(), 0), 0);
    const int failed = inChild([&] {
        if (::geteuid() == 0 && ::setuid(kNobody) != 0)
            return 2;
        if (!myfs::is_directory(path(scratch.path("closed"))))
            return 3;
        return listed(scratch.path("closed"), false).empty() ? 0 : 1;
    });
    QCOMPARE(::chmod(scratch.path("closed").c_str(), 0700), 0);
    QCOMPARE(failed, 0);
    QCOMPARE(listed(scratch.path("closed"), true), Texts{scratch.path("closed/file")});
}

void tst_directory_listing::flatListingHasEveryEntry()
{
    const Scratch scratch;
    const std::string d = scratch.path("d");
    makeDirectory(d);
    makeDirectory(d + "/sub");
    writeFile(d + "/sub/inner", "");
    writeFile(d + "/f", "");
    writeFile(d + "/.hidden", "");
    makeSocket(d + "/socket");
    makeLink("nothing", d + "/dangling");
    const Texts expected{d,        d + "/..",     d + "/.hidden", d + "/dangling",
                         d + "/f", d + "/socket", d + "/sub"};
    QCOMPARE(sorted(listed(d, false)), sorted(expected));
    QCOMPARE(sorted(listed(d + "//./", false)), sorted(expected));
}

void tst_directory_listing::flatListingKeepsTheSystemsOrder()
{
    const Scratch scratch;
    for (const char* name : {"b", "a", "d", "c"})
        writeFile(scratch.path(name), "");
    Texts expected;
    for (const std::string& name : readNames(scratch.path()))
        expected.push_back(name == "." ? scratch.path() : scratch.path(name));
    QCOMPARE(listed(scratch.path(), false), expected);
    Texts texts;
    myfs::u8_file_list(scratch.path(), texts, false);
    QCOMPARE(texts, expected);
}

void tst_directory_listing::resultsAreAppended()
{
    const Scratch scratch;
    writeFile(scratch.path("f"), "");
    std::vector<path> paths{path("before")};
    myfs::file_path_list(path(scratch.path()), paths, true);
    myfs::file_path_list(path(scratch.path()), paths, true);
    QCOMPARE(paths.size(), std::size_t(3));
    QCOMPARE(paths[0].str(), std::string("before"));
    QCOMPARE(paths[2].str(), scratch.path("f"));
    Texts texts{"before"};
    myfs::u8_file_list(scratch.path(), texts, true);
    QCOMPARE(texts, (Texts{"before", scratch.path("f")}));
    std::vector<std::wstring> wide{L"before"};
    myfs::u16_file_list(CodeCvt::utf8_to_utf16(scratch.path()), wide, true);
    QCOMPARE(wide.size(), std::size_t(2));
    QCOMPARE(wide[1], CodeCvt::utf8_to_utf16(scratch.path("f")));
}

void tst_directory_listing::recursiveListingHasWhatIsNoDirectory()
{
    const Scratch scratch;
    makeDirectory(scratch.path("a"));
    makeDirectory(scratch.path("a/b"));
    makeDirectory(scratch.path("a/empty"));
    makeDirectory(scratch.path("..."));
    writeFile(scratch.path("f"), "");
    writeFile(scratch.path("a/f"), "");
    writeFile(scratch.path("a/b/f"), "");
    writeFile(scratch.path(".../f"), "");
    QCOMPARE(::mkfifo(scratch.path("a/fifo").c_str(), 0600), 0);
    const Texts expected{scratch.path(".../f"), scratch.path("a/b/f"), scratch.path("a/f"),
                         scratch.path("a/fifo"), scratch.path("f")};
    QCOMPARE(sorted(listed(scratch.path(), true)), expected);
}

void tst_directory_listing::linksAreEntriesAndNotFollowed()
{
    const Scratch scratch;
    makeDirectory(scratch.path("dir"));
    writeFile(scratch.path("dir/f"), "");
    makeLink(".", scratch.path("dir/cycle"));
    makeLink("dir", scratch.path("link"));
    makeLink("nothing", scratch.path("dangling"));
    const Texts expected{scratch.path("dangling"), scratch.path("dir/cycle"), scratch.path("dir/f"),
                         scratch.path("link")};
    QCOMPARE(sorted(listed(scratch.path(), true)), expected);
    // The listed directory itself may be a link.
    QCOMPARE(sorted(listed(scratch.path("link"), true)),
             (Texts{scratch.path("link/cycle"), scratch.path("link/f")}));
}

void tst_directory_listing::socketsAreLeftOutWhenRecursing()
{
    const Scratch scratch;
    makeSocket(scratch.path("socket"));
    writeFile(scratch.path("f"), "");
    QCOMPARE(listed(scratch.path(), true), Texts{scratch.path("f")});
    const Texts flat = listed(scratch.path(), false);
    QCOMPARE(std::count(flat.begin(), flat.end(), scratch.path("socket")), std::ptrdiff_t(1));
}

void tst_directory_listing::relativeDirectoriesGiveRelativeEntries()
{
    const Scratch scratch;
    makeDirectory(scratch.path("d"));
    writeFile(scratch.path("d/f"), "");
    const WorkingDirectoryScope scope(scratch.path());
    QCOMPARE(sorted(listed("d", false)), (Texts{"d", "d/..", "d/f"}));
    QCOMPARE(listed("./d/", true), Texts{"d/f"});
    std::vector<path> paths;
    myfs::file_path_list(path("d"), paths, true);
    QVERIFY(!paths.at(0).is_absolute());
    paths.clear();
    myfs::file_path_list(path(scratch.path("d")), paths, true);
    QVERIFY(paths.at(0).is_absolute());
}

// Its text has backslashes, which are letters to the system and separators to the parser.
void tst_directory_listing::windowsDirectoryIsParsedAsPosix()
{
    const Scratch scratch;
    makeDirectory(scratch.path("a\\b"));
    writeFile(scratch.path("a\\b/f"), "");
    const WorkingDirectoryScope scope(scratch.path());
    path dir;
    dir.set(std::string("a/b"), path::WINDOWS_PATH);
    std::vector<path> paths;
    myfs::file_path_list(dir, paths, true);
    QCOMPARE(paths.size(), std::size_t(1));
    QCOMPARE(paths[0].str(), std::string("a/b/f"));
    QVERIFY(!myfs::exists(paths[0]));
}

void tst_directory_listing::backslashesInNamesSeparate()
{
    const Scratch scratch;
    writeFile(scratch.path("a\\b"), "");
    writeFile(scratch.path("\\"), "");
    writeFile(scratch.path("c\\.\\"), "");
    QCOMPARE(sorted(listed(scratch.path(), true)),
             (Texts{scratch.path(), scratch.path("a/b"), scratch.path("c")}));
}

void tst_directory_listing::strangeNames()
{
    const Scratch scratch;
    makeDirectory(scratch.path("\xE4\xB8\xAD"));
    Texts expected;
    for (const char* name : {"\xE4\xB8\xAD/\xE6\x96\x87", "\xFF\xFE", "\xF0\x9F\x98\x80", " ",
                             "a:b", "line\nend", "....", "x."}) {
        writeFile(scratch.path(name), "");
        expected.push_back(scratch.path(name));
    }
    writeFile(scratch.path(std::string(255, 'n')), "");
    expected.push_back(scratch.path(std::string(255, 'n')));
    QCOMPARE(sorted(listed(scratch.path(), true)), sorted(expected));
}

void tst_directory_listing::wideNamesStopAtWhatCannotBeDecoded()
{
    const Scratch scratch;
    makeDirectory(scratch.path("\xE4\xB8\xAD"));
    writeFile(scratch.path("\xE4\xB8\xAD/caf\xC3\xA9"), "");
    writeFile(scratch.path("bad\xFFname"), "");
    writeFile(scratch.path("face\xF0\x9F\x98\x80"), "");
    std::vector<std::wstring> wide;
    const std::wstring dir = CodeCvt::utf8_to_utf16(scratch.path());
    myfs::u16_file_list(dir, wide, true);
    std::sort(wide.begin(), wide.end());
    QCOMPARE(wide.size(), std::size_t(3));
    QCOMPARE(wide[0], dir + L"/bad");
    QCOMPARE(wide[1], dir + L"/face");
    QCOMPARE(wide[2], dir + L"/\u4E2D/caf\u00E9");
}

void tst_directory_listing::directoryWithManyEntries()
{
    const Scratch scratch;
    Texts expected;
    for (int i = 0; i < kManyEntries; ++i) {
        expected.push_back(scratch.path("entry " + std::to_string(i)));
        writeFile(expected.back(), "");
    }
    std::sort(expected.begin(), expected.end());
    Texts texts;
    myfs::u8_file_list(scratch.path(), texts, true);
    QVERIFY(sorted(texts) == expected);
    QVERIFY(sorted(listed(scratch.path(), true)) == expected);
    QCOMPARE(listed(scratch.path(), false).size(), expected.size() + 2);
}

// Each directory holds one file and the next directory; the deepest have no name that opens them.
void tst_directory_listing::directoriesBeyondTheLimitEndTheDescent()
{
    const Scratch scratch;
    const std::string name(199, 'd');
    const std::size_t level = name.size() + 1;
    constexpr int levels = 30;
    {
        const WorkingDirectoryScope scope(scratch.path());
        for (int i = 0; i < levels; ++i) {
            writeFile("f", "");
            makeDirectory(name);
            QCOMPARE(::chdir(name.c_str()), 0);
        }
    }
    // A name and its ending zero fill PATH_MAX at most.
    const std::size_t opened = (PATH_MAX - 1 - scratch.path().size()) / level + 1;
    QVERIFY(opened < levels);
    const Texts found = listed(scratch.path(), true);
    QCOMPARE(found.size(), opened);
    const auto longest = std::max_element(found.begin(), found.end());
    QCOMPARE(longest->substr(longest->size() - 2), std::string("/f"));
}

void tst_directory_listing::nothingStaysOpen()
{
    const Scratch scratch;
    makeDirectory(scratch.path("a"));
    makeDirectory(scratch.path("a/b"));
    const auto before = openFiles();
    listed(scratch.path(), true);
    listed(scratch.path(), false);
    std::map<path, std::vector<path>> groups;
    myfs::file_path_list(path(scratch.path()), groups, true);
    QCOMPARE(openFiles(), before);
}

QTEST_APPLESS_MAIN(tst_directory_listing)
#include "tst_directory_listing.moc"
