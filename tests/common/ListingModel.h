// SPDX-License-Identifier: MIT
#pragma once

#include "Choices.h"
#include "Files.h"
#include "PathModel.h"
#include "Require.h"
#include "code_convert.h"

#include <algorithm>
#include <map>
#include <vector>

// Directories as std::filesystem lists them, and lists of paths, in any order.

using Listing = std::vector<std::string>;
using Groups = std::map<std::string, Listing>;

inline std::string parsedText(const std::string& text)
{
    return PathModel::parsed(QByteArray::fromStdString(text)).text().toStdString();
}

inline bool hasType(const std::string& name, std::filesystem::file_type type)
{
    std::error_code ignored;
    return std::filesystem::symlink_status(name, ignored).type() == type;
}

/// A name with a backslash is parsed as another path, so that nothing leads into the directory.
inline bool canBeDescended(const std::string& name)
{
    return hasType(name, std::filesystem::file_type::directory) &&
           name.substr(name.rfind('/')).find('\\') == std::string::npos;
}

inline Listing listedByModel(const std::string& dir, bool recursive)
{
    Listing texts;
    if (!recursive)
        texts = {parsedText(dir), parsedText(dir + "/..")};
    for (const auto& entry : std::filesystem::directory_iterator(dir)) {
        const std::string name = entry.path().string();
        const bool directory = hasType(name, std::filesystem::file_type::directory);
        if (!recursive || !(directory || hasType(name, std::filesystem::file_type::socket)))
            texts.push_back(parsedText(name));
        else if (canBeDescended(name))
            for (const std::string& text : listedByModel(name, true))
                texts.push_back(text);
    }
    return texts;
}

/// What is a directory is decided by the bare name in the working directory.
inline void groupByModel(const std::string& dir, bool flag, Groups& groups)
{
    if (flag)
        groups[dir];
    for (const auto& entry : std::filesystem::directory_iterator(dir)) {
        const std::string name = entry.path().string();
        if (!hasType(entry.path().filename().string(), std::filesystem::file_type::directory))
            groups[dir].push_back(parsedText(name));
        else if (canBeDescended(name))
            groupByModel(name, flag, groups);
    }
}

template <typename Text>
std::vector<Text> sorted(std::vector<Text> texts)
{
    std::sort(texts.begin(), texts.end());
    return texts;
}

template <typename Text>
std::map<Text, std::vector<Text>> sorted(std::map<Text, std::vector<Text>> groups)
{
    for (auto& [directory, entries] : groups)
        entries = sorted(entries);
    return groups;
}

/// Listings are appended to what is there.
inline Listing listed(const std::string& dir, bool recursive)
{
    std::vector<myfs::path> entries = {"before"};
    myfs::file_path_list(dir, entries, recursive);
    REQUIRE(entries[0].str() == "before");
    Listing texts;
    for (std::size_t i = 1; i < entries.size(); ++i) {
        REQUIRE(entries[i].is_absolute() == (dir[0] == '/'));
        texts.push_back(entries[i].str());
    }
    return texts;
}

inline Groups grouped(const std::string& dir, bool flag)
{
    std::map<myfs::path, std::vector<myfs::path>> groups;
    myfs::file_path_list(myfs::path(dir), groups, flag);
    Groups texts;
    for (const auto& [directory, entries] : groups) {
        Listing& group = texts[directory.str()];
        for (const myfs::path& entry : entries)
            group.push_back(entry.str());
    }
    return texts;
}

inline void requireListed(const std::string& dir, bool recursive)
{
    const Listing texts = listed(dir, recursive);
    REQUIRE(sorted(texts) == sorted(listedByModel(dir, recursive)));
    Listing narrow = {"before"};
    myfs::u8_file_list(dir, narrow, recursive);
    std::vector<std::wstring> wide = {L"before"};
    myfs::u16_file_list(CodeCvt::utf8_to_utf16(dir), wide, recursive);
    REQUIRE(narrow.size() == texts.size() + 1 && wide.size() == texts.size() + 1);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        REQUIRE(narrow[i + 1] == texts[i]);
        REQUIRE(wide[i + 1] == CodeCvt::utf8_to_utf16(texts[i]));
    }
}

inline void requireGrouped(const std::string& dir, bool flag)
{
    const Groups groups = grouped(dir, flag);
    Groups expected;
    groupByModel(dir, flag, expected);
    REQUIRE(sorted(groups) == sorted(expected));
    Groups narrow = {{dir, {"before"}}};
    myfs::u8_file_list(dir, narrow, flag);
    REQUIRE(narrow[dir][0] == "before");
    narrow[dir].erase(narrow[dir].begin());
    if (!groups.count(dir))
        narrow.erase(dir);
    REQUIRE(narrow == groups);
    std::map<std::wstring, std::vector<std::wstring>> wide;
    std::map<std::wstring, std::vector<std::wstring>> expectedWide;
    myfs::u16_file_list(CodeCvt::utf8_to_utf16(dir), wide, flag);
    for (const auto& [directory, entries] : groups) {
        auto& group = expectedWide[CodeCvt::utf8_to_utf16(directory)];
        for (const std::string& entry : entries)
            group.push_back(CodeCvt::utf8_to_utf16(entry));
    }
    REQUIRE(sorted(wide) == sorted(expectedWide));
}

constexpr std::size_t kFirstDirectoryKind = 4;

/// Makes an entry of any kind, unless the name is taken or not allowed.
inline bool makeEntry(const std::string& name, std::size_t kind)
{
    switch (kind) {
    case 0:
        return ::mkfifo(name.c_str(), 0600) == 0;
    case 1:
        return ::symlink("nothing", name.c_str()) == 0;
    case 2:
        return ::mknod(name.c_str(), S_IFSOCK | 0600, 0) == 0;
    case 3:
        return ::mknod(name.c_str(), S_IFREG | 0600, 0) == 0;
    default:
        return ::mkdir(name.c_str(), 0700) == 0;
    }
}

/// Makes the directories and entries that `choices` say, and lists them from one of them.
inline void requireListingsFollowTheModel(Choices choices)
{
    constexpr std::size_t mostNameBytes = 3;
    const Scratch scratch;
    std::vector<std::string> directories = {scratch.path("listed"), scratch.path("elsewhere")};
    for (const std::string& directory : directories)
        makeEntry(directory, kFirstDirectoryKind);
    while (!choices.atEnd()) {
        const std::filesystem::path parent = directories[choices.below(directories.size())];
        const std::string name = choices.text(mostNameBytes, "abab.\\");
        const std::size_t kind = choices.below(7);
        const bool isName = name.find_first_of(std::string("/\0", 2)) == std::string::npos;
        const std::string entry = parent / name;
        if (!name.empty() && isName && makeEntry(entry, kind) && kind >= kFirstDirectoryKind)
            directories.push_back(entry);
    }
    for (const std::string& directory : directories) {
        const WorkingDirectoryScope scope(directory);
        const std::ptrdiff_t open = openFiles();
        for (const bool flag : {false, true}) {
            requireListed(scratch.path("listed"), flag);
            requireGrouped(scratch.path("listed"), flag);
        }
        REQUIRE(openFiles() == open);
    }
}
