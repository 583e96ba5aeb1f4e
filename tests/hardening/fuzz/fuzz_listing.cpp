// SPDX-License-Identifier: MIT
#include "Files.h"
#include "Require.h"
#include "myfs.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fuzzer/FuzzedDataProvider.h>
#include <map>
#include <string>
#include <vector>

namespace
{

constexpr int kMostEntries = 24;
constexpr std::size_t kMostNameBytes = 255;

using Groups = std::map<myfs::path, std::vector<myfs::path>>;

/// Fails for names that the system does not take, and for those that are there.
bool makeEntry(FuzzedDataProvider& input, const std::string& name)
{
    switch (input.ConsumeIntegralInRange(0, 3)) {
    case 0:
        return ::mkdir(name.c_str(), 0700) == 0;
    case 1:
        return ::mkfifo(name.c_str(), 0600) == 0;
    case 2:
        return ::symlink(".", name.c_str()) == 0;
    default: {
        const int file = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
        return file >= 0 && ::close(file) == 0;
    }
    }
}

/// Makes entries, in `root` or in directories made before; returns how many `root` has.
std::size_t fill(FuzzedDataProvider& input, const std::string& root)
{
    std::vector<std::string> directories = {root};
    std::size_t inRoot = 0;
    for (int i = 0; i < kMostEntries && input.remaining_bytes() > 0; ++i) {
        const std::size_t where =
            input.ConsumeIntegralInRange<std::size_t>(0, directories.size() - 1);
        std::string name = input.ConsumeRandomLengthString(kMostNameBytes);
        name.erase(std::remove_if(name.begin(), name.end(), [](char c) { return c == '/' || !c; }),
                   name.end());
        const std::string entry = directories[where] + "/" + name;
        if (name.empty() || !makeEntry(input, entry))
            continue;
        inRoot += where == 0 ? 1 : 0;
        struct stat status = {};
        if (::lstat(entry.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
            directories.push_back(entry);
    }
    return inRoot;
}

} // namespace

/// The input is a list of entries, of any kind and with any name, of a directory and of those in
/// it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    static const Scratch empty;
    const WorkingDirectoryScope here(empty.path());
    const Scratch scratch;
    const std::size_t inRoot = fill(input, scratch.path());
    const std::ptrdiff_t open = openFiles();

    std::vector<myfs::path> entries;
    myfs::file_path_list(myfs::path(scratch.path()), entries, false);
    REQUIRE(entries.size() == inRoot + 2);
    entries.clear();
    myfs::file_path_list(myfs::path(scratch.path()), entries, true);
    for (const myfs::path& entry : entries)
        REQUIRE(entry.string().rfind(scratch.path(), 0) == 0);

    Groups groups;
    myfs::file_path_list(myfs::path(scratch.path()), groups, true);
    // The types are looked up in the working directory, which has no entries but the dots.
    REQUIRE(groups.size() == 1 && groups.begin()->second.size() == inRoot);

    std::vector<std::string> narrow;
    myfs::u8_file_list(scratch.path(), narrow, true);
    REQUIRE(narrow.size() == entries.size());
    std::vector<std::wstring> wide;
    myfs::u16_file_list(std::wstring(scratch.path().begin(), scratch.path().end()), wide, true);
    REQUIRE(wide.size() == entries.size());
    std::map<std::string, std::vector<std::string>> narrowGroups;
    myfs::u8_file_list(scratch.path(), narrowGroups, false);
    REQUIRE(narrowGroups.size() == (inRoot > 0 ? 1 : 0));
    REQUIRE(openFiles() == open);
    return 0;
}
