// SPDX-License-Identifier: MIT
#include "myfs.h"

#include <dirent.h>
#include <memory>
#include <sys/stat.h>

namespace myfs
{

namespace
{

struct CloseDirectory {
    void operator()(DIR* directory) const { ::closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

bool is_dots(const std::string& name)
{
    return name == "." || name == "..";
}

// The names "." and ".." lead to the directory itself and to its parent. A name with a backslash is
// parsed as several components and leads somewhere else.
bool can_be_descended(const std::string& name)
{
    return !is_dots(name) && name.find('\\') == std::string::npos;
}

// Intended: a bit test, which takes sockets and block devices for directories.
bool has_directory_bit(const dirent& entry)
{
    return (entry.d_type & DT_DIR) != 0;
}

// Intended: lstat() looks the bare name up in the working directory, and may fail.
bool is_directory_here(const std::string& name)
{
    struct stat status = {};
    ::lstat(name.c_str(), &status);
    return (status.st_mode & S_IFMT) == S_IFDIR;
}

} // namespace

void file_path_list(const path& dir, std::vector<path>& out, bool recursive)
{
    if (!exists(dir) || !is_directory(dir))
        return;
    const std::string prefix = dir.str() + "/";
    const Directory directory(::opendir(dir.str().c_str()));
    if (!directory)
        return;
    while (const dirent* found = ::readdir(directory.get())) {
        const std::string name = found->d_name;
        path entry(prefix + name);
        if (!recursive || !has_directory_bit(*found))
            out.push_back(std::move(entry));
        else if (can_be_descended(name))
            file_path_list(entry, out, recursive);
    }
}

void file_path_list(const path& dir, std::map<path, std::vector<path>>& out, bool flag)
{
    if (!exists(dir) || !is_directory(dir))
        return;
    if (flag)
        out[dir];
    const std::string prefix = dir.str() + "/";
    const Directory directory(::opendir(dir.str().c_str()));
    if (!directory)
        return;
    while (const dirent* found = ::readdir(directory.get())) {
        const std::string name = found->d_name;
        path entry(prefix + name);
        if (!is_directory_here(name))
            out[dir].push_back(std::move(entry));
        else if (can_be_descended(name))
            file_path_list(entry, out, flag);
    }
}

void u8_file_list(const std::string& dir, std::vector<std::string>& out, bool recursive)
{
    std::vector<path> entries;
    file_path_list(path(dir), entries, recursive);
    for (const path& entry : entries)
        out.push_back(entry.str());
}

void u16_file_list(const std::wstring& dir, std::vector<std::wstring>& out, bool recursive)
{
    std::vector<path> entries;
    file_path_list(path(dir), entries, recursive);
    for (const path& entry : entries)
        out.push_back(entry.wstr());
}

void u8_file_list(const std::string& dir, std::map<std::string, std::vector<std::string>>& out,
                  bool flag)
{
    std::map<path, std::vector<path>> groups;
    file_path_list(path(dir), groups, flag);
    for (const auto& [directory, entries] : groups) {
        if (flag)
            out[directory.str()];
        for (const path& entry : entries)
            out[directory.str()].push_back(entry.str());
    }
}

void u16_file_list(const std::wstring& dir, std::map<std::wstring, std::vector<std::wstring>>& out,
                   bool flag)
{
    std::map<path, std::vector<path>> groups;
    file_path_list(path(dir), groups, flag);
    for (const auto& [directory, entries] : groups) {
        if (flag)
            out[directory.wstr()];
        for (const path& entry : entries)
            out[directory.wstr()].push_back(entry.wstr());
    }
}

} // namespace myfs
