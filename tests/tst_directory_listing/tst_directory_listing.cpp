// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "ListingModel.h"
#include "StdText.h"

#include <QRandomGenerator>

#include <climits>
#include <dirent.h>

using myfs::path;

namespace
{

constexpr int kRounds = 40;
constexpr uid_t kNobody = 65534;

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

/// d/f, d/sub/f, d/sub/inner/f and the empty d/empty.
class Tree : public Scratch
{
public:
    Tree()
    {
        for (const char* name : {"", "/sub", "/sub/inner", "/empty"})
            makeDirectory(d + name);
        for (const char* name : {"/f", "/sub/f", "/sub/inner/f"})
            writeFile(d + name, "");
    }

    const std::string d = path("d");
};

} // namespace

class tst_directory_listing : public BehaviourTest
{
    Q_OBJECT

private slots:
    void nothingToList_data();
    void nothingToList();
    void unreadableDirectoryYieldsNothing();
    void flatListingKeepsTheSystemsOrder();
    void recursiveListingHasWhatIsNoDirectory();
    void windowsDirectoryIsParsedAsPosix();
    void directoriesBeyondTheLimitEndTheDescent();
    void groupsDescendIntoWhatTheWorkingDirectoryHas();
    void namesInTheWorkingDirectoryDecide();
    void followsTheModel();
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
    for (const bool flag : {false, true}) {
        QCOMPARE(listed(dir, flag), Listing());
        QCOMPARE(grouped(dir, flag), Groups());
        Listing texts{"before"};
        myfs::u8_file_list(dir, texts, flag);
        QCOMPARE(texts, Listing{"before"});
        Groups groups{{"before", {"x"}}};
        myfs::u8_file_list(dir, groups, flag);
        QCOMPARE(groups, (Groups{{"before", {"x"}}}));
    }
}

void tst_directory_listing::unreadableDirectoryYieldsNothing()
{
    const Scratch scratch;
    const std::string closed = scratch.path("closed");
    makeDirectory(closed);
    writeFile(closed + "/file", "");
    QCOMPARE(::chmod(scratch.path().c_str(), 0711), 0);
    QCOMPARE(::chmod(closed.c_str(), 0), 0);
    const int failed = inChild([&] {
        if (::geteuid() == 0 && ::setuid(kNobody) != 0)
            return 3;
        if (!listed(closed, false).empty())
            return 2;
        return grouped(closed, true) == Groups{{closed, {}}} ? 0 : 1;
    });
    QCOMPARE(::chmod(closed.c_str(), 0700), 0);
    QCOMPARE(failed, 0);
    QCOMPARE(listed(closed, true), Listing{closed + "/file"});
}

void tst_directory_listing::flatListingKeepsTheSystemsOrder()
{
    const Scratch scratch;
    for (const char* name : {"b", "a", "d", "c"})
        writeFile(scratch.path(name), "");
    Listing expected;
    DIR* directory = ::opendir(scratch.path().c_str());
    while (const dirent* entry = ::readdir(directory))
        expected.push_back(parsedText(scratch.path(entry->d_name)));
    ::closedir(directory);
    QCOMPARE(listed(scratch.path(), false), expected);
}

void tst_directory_listing::recursiveListingHasWhatIsNoDirectory()
{
    const Tree tree;
    makeLink(".", tree.d + "/sub/cycle");
    makeLink("sub", tree.d + "/link");
    const WorkingDirectoryScope scope(tree.path());
    const Listing expected{"d/f", "d/link", "d/sub/cycle", "d/sub/f", "d/sub/inner/f"};
    QCOMPARE(sorted(listed("./d/", true)), expected);
    // The listed directory itself may be a link.
    QCOMPARE(sorted(listed("d/link", true)),
             (Listing{"d/link/cycle", "d/link/f", "d/link/inner/f"}));
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
    QCOMPARE(listed(scratch.path(), true).size(), opened);
}

// What lies deeper than the working directory is still looked up in it.
void tst_directory_listing::groupsDescendIntoWhatTheWorkingDirectoryHas()
{
    const Tree tree;
    makeLink("sub", tree.d + "/link");
    const WorkingDirectoryScope scope(tree.d);
    Groups expected{{"../d", {"../d/f", "../d/link"}},
                    {"../d/sub", {"../d/sub/f", "../d/sub/inner"}}};
    QCOMPARE(sorted(grouped("../d", false)), expected);
    expected["../d/empty"] = {};
    QCOMPARE(sorted(grouped("../d", true)), expected);
}

void tst_directory_listing::namesInTheWorkingDirectoryDecide()
{
    const Tree tree;
    for (const char* name : {"elsewhere", "elsewhere/sub", "elsewhere/f", "elsewhere/inner"})
        makeDirectory(tree.path(name));
    writeFile(tree.path("elsewhere/empty"), "");
    const WorkingDirectoryScope scope(tree.path("elsewhere"));
    // The files f are taken for directories, which they are not, and left out.
    QCOMPARE(grouped(tree.d, false), (Groups{{tree.d, {tree.d + "/empty"}}}));
    QCOMPARE(grouped(tree.d, true), (Groups{{tree.d, {tree.d + "/empty"}},
                                            {tree.d + "/sub", {}},
                                            {tree.d + "/sub/inner", {}}}));
}

void tst_directory_listing::followsTheModel()
{
    QRandomGenerator random(20240504);
    for (int round = 0; round < kRounds; ++round) {
        std::string bytes(random.bounded(80u), '\0');
        for (char& byte : bytes)
            byte = char(random.bounded(256));
        requireListingsFollowTheModel(Choices(bytes));
    }
}

QTEST_APPLESS_MAIN(tst_directory_listing)
#include "tst_directory_listing.moc"
