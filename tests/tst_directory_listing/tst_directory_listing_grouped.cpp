// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Files.h"
#include "StdText.h"
#include "code_convert.h"
#include "myfs.h"

#include <algorithm>
#include <map>

using myfs::path;

using Groups = std::map<std::string, Texts>;
Q_DECLARE_METATYPE(Groups)

namespace QTest
{

template <>
inline char* toString(const Groups& groups)
{
    QByteArray joined;
    for (const auto& [directory, entries] : groups) {
        joined += QByteArray::fromStdString(directory) + ": ";
        for (const std::string& entry : entries)
            joined += '[' + QByteArray::fromStdString(entry) + ']';
        joined += "; ";
    }
    return toString(joined);
}

} // namespace QTest

namespace
{

void makeDirectory(const std::string& name)
{
    if (::mkdir(name.c_str(), 0700) != 0)
        qFatal("no directory %s", name.c_str());
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

Groups sorted(Groups groups)
{
    for (auto& [directory, entries] : groups)
        std::sort(entries.begin(), entries.end());
    return groups;
}

Groups listed(const std::string& dir, bool flag)
{
    std::map<path, std::vector<path>> groups;
    myfs::file_path_list(path(dir), groups, flag);
    Groups texts;
    for (const auto& [directory, entries] : groups) {
        Texts& group = texts[directory.str()];
        for (const path& entry : entries)
            group.push_back(entry.str());
    }
    return sorted(texts);
}

} // namespace

class tst_directory_listing_grouped : public BehaviourTest
{
    Q_OBJECT

private slots:
    void missingDirectoryLeavesTheMap();
    void directoriesOfTheWorkingDirectoryAreDescendedInto();
    void flagKeepsEmptyDirectories();
    void elsewhereDirectoriesAreEntries();
    void namesInTheWorkingDirectoryDecide();
    void linksInTheWorkingDirectoryAreEntries();
    void relativeDirectories();
    void resultsAreAppended();
    void textsFollowThePaths();
};

void tst_directory_listing_grouped::missingDirectoryLeavesTheMap()
{
    const Scratch scratch;
    writeFile(scratch.path("file"), "");
    for (const bool flag : {false, true}) {
        QCOMPARE(listed(scratch.path("missing"), flag), Groups());
        QCOMPARE(listed(scratch.path("file"), flag), Groups());
        QCOMPARE(listed("/", flag), Groups());
        Groups texts{{"before", {"x"}}};
        myfs::u8_file_list(scratch.path("missing"), texts, flag);
        QCOMPARE(texts, (Groups{{"before", {"x"}}}));
    }
}

// What lies deeper than the working directory is still looked up in it.
void tst_directory_listing_grouped::directoriesOfTheWorkingDirectoryAreDescendedInto()
{
    const Tree tree;
    const WorkingDirectoryScope scope(tree.d);
    const Groups expected{{tree.d, {tree.d + "/f"}},
                          {tree.d + "/sub", {tree.d + "/sub/f", tree.d + "/sub/inner"}}};
    QCOMPARE(listed(tree.d, false), expected);
}

void tst_directory_listing_grouped::flagKeepsEmptyDirectories()
{
    const Tree tree;
    const WorkingDirectoryScope scope(tree.d);
    const Groups expected{{tree.d, {tree.d + "/f"}},
                          {tree.d + "/empty", {}},
                          {tree.d + "/sub", {tree.d + "/sub/f", tree.d + "/sub/inner"}}};
    QCOMPARE(listed(tree.d, true), expected);
    QCOMPARE(listed(tree.d + "/empty", true), (Groups{{tree.d + "/empty", {}}}));
    QCOMPARE(listed(tree.d + "/empty", false), Groups());
}

void tst_directory_listing_grouped::elsewhereDirectoriesAreEntries()
{
    const Tree tree;
    makeDirectory(tree.path("elsewhere"));
    const WorkingDirectoryScope scope(tree.path("elsewhere"));
    const Groups expected{{tree.d, {tree.d + "/empty", tree.d + "/f", tree.d + "/sub"}}};
    QCOMPARE(listed(tree.d, false), expected);
    QCOMPARE(listed(tree.d, true), expected);
}

void tst_directory_listing_grouped::namesInTheWorkingDirectoryDecide()
{
    const Tree tree;
    for (const char* name : {"elsewhere", "elsewhere/sub", "elsewhere/f", "elsewhere/inner"})
        makeDirectory(tree.path(name));
    writeFile(tree.path("elsewhere/empty"), "");
    const WorkingDirectoryScope scope(tree.path("elsewhere"));
    // The files f are taken for directories, which they are not, and left out.
    QCOMPARE(listed(tree.d, false), (Groups{{tree.d, {tree.d + "/empty"}}}));
    QCOMPARE(listed(tree.d, true), (Groups{{tree.d, {tree.d + "/empty"}},
                                           {tree.d + "/sub", {}},
                                           {tree.d + "/sub/inner", {}}}));
}

void tst_directory_listing_grouped::linksInTheWorkingDirectoryAreEntries()
{
    const Scratch scratch;
    makeDirectory(scratch.path("dir"));
    writeFile(scratch.path("dir/f"), "");
    QCOMPARE(::symlink("dir", scratch.path("link").c_str()), 0);
    const WorkingDirectoryScope scope(scratch.path());
    const Groups expected{{scratch.path(), {scratch.path("link")}},
                          {scratch.path("dir"), {scratch.path("dir/f")}}};
    QCOMPARE(listed(scratch.path(), false), expected);
}

void tst_directory_listing_grouped::relativeDirectories()
{
    const Tree tree;
    const WorkingDirectoryScope scope(tree.d);
    const Groups expected{
        {"../d", {"../d/f"}}, {"../d/empty", {}}, {"../d/sub", {"../d/sub/f", "../d/sub/inner"}}};
    QCOMPARE(listed("../d", true), expected);
    QCOMPARE(listed("sub", true), (Groups{{"sub", {"sub/f", "sub/inner"}}}));
}

void tst_directory_listing_grouped::resultsAreAppended()
{
    const Tree tree;
    const WorkingDirectoryScope scope(tree.d);
    Groups texts{{tree.d, {"before"}}, {"other", {}}};
    myfs::u8_file_list(tree.d, texts, true);
    QCOMPARE(texts[tree.d], (Texts{"before", tree.d + "/f"}));
    QCOMPARE(texts.size(), std::size_t(4));
    std::map<path, std::vector<path>> groups{{path(tree.d), {path("before")}}};
    myfs::file_path_list(path(tree.d), groups, false);
    QCOMPARE(groups[path(tree.d)].size(), std::size_t(2));
}

void tst_directory_listing_grouped::textsFollowThePaths()
{
    const Tree tree;
    writeFile(tree.d + "/\xE4\xB8\xAD", "");
    const WorkingDirectoryScope scope(tree.d);
    for (const bool flag : {false, true}) {
        const Groups expected = listed(tree.d, flag);
        Groups texts;
        myfs::u8_file_list(tree.d, texts, flag);
        QCOMPARE(sorted(texts), expected);

        std::map<std::wstring, std::vector<std::wstring>> wide;
        myfs::u16_file_list(CodeCvt::utf8_to_utf16(tree.d), wide, flag);
        Groups narrow;
        for (const auto& [directory, entries] : wide) {
            Texts& group = narrow[CodeCvt::utf16_to_utf8(directory)];
            for (const std::wstring& entry : entries)
                group.push_back(CodeCvt::utf16_to_utf8(entry));
        }
        QCOMPARE(sorted(narrow), expected);
    }
}

QTEST_APPLESS_MAIN(tst_directory_listing_grouped)
#include "tst_directory_listing_grouped.moc"
