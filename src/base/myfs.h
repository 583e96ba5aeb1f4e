// SPDX-License-Identifier: MIT
#pragma once

#include "screencapture_export.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <system_error>
#include <vector>

/// Paths, file operations, a file stream and directory listings on POSIX systems. All narrow text
/// is UTF-8. Nothing here locks: an object belongs to one thread at a time, and the process-wide
/// state (working directory, app_path(), initial_path()) to one thread.
namespace myfs
{

// Paths

/// The name of a file or directory: a list of components and whether it began at a root. The text
/// it was built from is not kept; string() renders it anew.
///
/// \code
/// myfs::path ini("/home/me//settings/.");
/// ini.append("screencapture.ini");
/// ini.string(); // "/home/me/settings/screencapture.ini"
/// \endcode
///
/// Both '/' and '\\' separate components. Components "." vanish, ".." stays as it is. Two texts
/// that surprise: "" is one empty component, so that empty() is false; "/" has no components, so
/// that it renders as "". No text is refused and nothing but make_absolute() reports errors. The
/// text that string() returns is what the system is asked with.
class SCREENCAPTURE_EXPORT path
{
public:
    /// How text is parsed, and the separator with which string() renders.
    enum SYSPATHTYPE : std::int32_t {
        WINDOWS_PATH = 0, ///< Separated by '\\'.
        POSIX_PATH = 1    ///< Separated by '/'.
    };

    /// A relative POSIX path without components.
    path() = default;

    /// Copies components, style and absoluteness as they are.
    path(const path& other) = default;
    /// Takes them over; `other` has no components then.
    path(path&& other) noexcept = default;
    ~path() = default;

    /// A POSIX path: set(text, POSIX_PATH). Wide text loses what UTF-8 cannot hold, see CodeCvt.
    path(const char* text);
    /// The same from a string.
    path(const std::string& text);
    /// The same from wide text.
    path(const wchar_t* text);
    /// The same from a wide string.
    path(const std::wstring& text);

    /// Parses the rendered text of `other` as a POSIX path: a Windows style is lost, whether the
    /// path is absolute is found anew, and a path that renders as "" becomes one empty component.
    path& operator=(const path& other);

    /// set(text, POSIX_PATH).
    path& operator=(const char* text);
    /// The same from a string.
    path& operator=(const std::string& text);

    /// Parses `text` anew. A POSIX path is absolute when it begins with '/'. A Windows path is
    /// absolute with a drive ("C:", its first component) or a UNC prefix, which becomes a first
    /// component of two backslashes.
    void set(const std::string& text, SYSPATHTYPE type);
    /// The same from wide text.
    void set(const std::wstring& text, SYSPATHTYPE type);

    /// The text, with the separators of the path's own style.
    std::string string() const;
    /// string().
    std::string str() const;

    /// The text with '/' separators, and a leading '/' when absolute, whatever the style.
    std::string generic_string() const;

    /// string() as a wide string, up to the first character that CodeCvt cannot decode.
    std::wstring wstring() const;
    /// wstring().
    std::wstring wstr() const;
    /// generic_string() as a wide string.
    std::wstring generic_wstring() const;

    /// Whether there are no components; true for "/" and ".", false for "".
    bool empty() const;

    /// Whether the path began at a root.
    bool is_absolute() const;

    /// The number of components.
    std::size_t size() const;

    /// Removes the components; style and absoluteness stay.
    void clear();

    /// Adds the components of `p` at the end; nothing at all when `p` is absolute and this path has
    /// components. Style and absoluteness of this path stay, also where it was empty.
    path& append(const path& p);
    /// Appends the path of the text.
    path& append(const char* text);
    /// Appends the path of the string.
    path& append(const std::string& text);

    /// All components but the last, POSIX style, as absolute as this path. Without components: ".."
    /// when relative, the same empty path when absolute.
    path parent_path() const;

    /// Assigns parent_path(), so that "a" becomes one empty component and an absolute path of one
    /// component a relative one. Nothing when empty().
    path& remove_filename();

    /// The first component as a path of its own; an empty path when there is none.
    path root_name() const;

    /// The last component as a path of its own; an empty path when there is none.
    path leaf_name() const;

    /// As leaf_name(), but empty also for a UNC prefix and for a component with a ':'.
    path filename() const;

    /// What the file name holds from its last '.' on, the dot included; an empty path without a
    /// dot.
    path extension() const;

    /// What the file name holds before its last '.'; for ".profile" the path of the text "".
    path basename() const;

    /// Replaces the last component's text from its last '.' on, if any, by `ext`, with or without
    /// its dot; an empty `ext` only removes. Nothing for an empty path, a UNC prefix or a component
    /// with a ':'.
    path& replace_extension(const path& ext);

    /// Exchanges the components only; style and absoluteness stay with their objects.
    void swap(path& other);

    /// The path as the system resolves it, without symbolic links. Throws `std::runtime_error`,
    /// "Internal error in realpath(): " and the system's text, when it does not exist.
    path make_absolute() const;

    /// 0 for the same components, -1 where this path's come first byte by byte and component by
    /// component, else 1. Style and absoluteness do not count: "/usr" equals "usr".
    int compare(const path& other) const;

private:
    SYSPATHTYPE m_type = POSIX_PATH;
    std::vector<std::string> m_components;
    bool m_absolute = false;
};

/// A path built from text in the encoding of CodeCvt::china_locale, whose warning about threads and
/// the process's locale holds here.
class SCREENCAPTURE_EXPORT gbk_path : public path
{
public:
    /// A POSIX path: the text, converted to UTF-8.
    gbk_path(const char* text);
    /// The same from a string.
    gbk_path(const std::string& text);
};

/// The order of path::compare().
SCREENCAPTURE_EXPORT bool operator<(const path& a, const path& b);

/// The separator "/".
SCREENCAPTURE_EXPORT std::string native_sep();
/// The separator as one character.
SCREENCAPTURE_EXPORT char native_sep_char();
/// The separator as wide text.
SCREENCAPTURE_EXPORT std::wstring native_wsep();

/// Whether `c` is '/' or '\\'.
SCREENCAPTURE_EXPORT bool is_separator(char c);

/// The pieces of `text` between any of `delimiters`, without empty ones and without "."; for the
/// text "" one empty piece.
SCREENCAPTURE_EXPORT std::vector<std::string> tokenize(const std::string& text,
                                                       const std::string& delimiters);

/// Appends to `out` the text of a path of that style; nothing when there are no components.
SCREENCAPTURE_EXPORT void path_to_string(const std::vector<std::string>& components,
                                         std::string& out, bool absolute, path::SYSPATHTYPE type);

/// \name File operations
/// Functions return whether they succeeded, or the sentinel that they name; none throws but
/// current_path(), initial_path() and absolute(). The error code is made from `errno` with the
/// system category. Queries (exists, is_directory, is_regular_file) set it only when they fail.
/// Actions set it in any case, on success to whatever `errno` held: judge them by what they return,
/// never by the code.
/// @{

/// The bytes of a file system.
struct disk_space {
    /// The size of the file system.
    std::uint64_t capacity = 0;
    /// What is not used.
    std::uint64_t free = 0;
    /// What an ordinary user may still fill.
    std::uint64_t available = 0;
};

/// Whether there is anything of that name, symbolic links followed. Never for "/", which renders as
/// "".
SCREENCAPTURE_EXPORT bool exists(const path& p, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool exists(const path& p);

/// Whether it is a directory, symbolic links followed.
SCREENCAPTURE_EXPORT bool is_directory(const path& p, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool is_directory(const path& p);

/// Whether it is a regular file, symbolic links followed.
SCREENCAPTURE_EXPORT bool is_regular_file(const path& p, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool is_regular_file(const path& p);

/// is_directory().
SCREENCAPTURE_EXPORT bool directory_exists(const path& p);
/// is_regular_file().
SCREENCAPTURE_EXPORT bool file_exists(const path& p);

/// Whether the current `errno`, not the argument, says that something does not exist.
SCREENCAPTURE_EXPORT bool not_found_error(int error);

/// Makes one directory for its owner alone (0700).
SCREENCAPTURE_EXPORT bool create_directory(const path& p, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool create_directory(const path& p);

/// Makes a directory and its missing parents; true also where it exists. A directory that cannot be
/// made is reported on standard output, "create directory '%s' failed, errno=%d\n"; a plain file in
/// the way gives false without a word. The code is set only where a directory was to be made.
SCREENCAPTURE_EXPORT bool create_directory_r(const path& p, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool create_directory_r(const path& p);

/// Makes `sub` below `parent` as create_directory_r() does and returns its text, made or not.
SCREENCAPTURE_EXPORT std::string create_sub_directory(const char* parent, const char* sub);

/// Copies contents and permission bits (less the process's mask; an existing target keeps its own),
/// not times. With `fail_if_exists` an existing target is left alone. False when reading, writing
/// or closing fails; but true, with the failure in the code alone, when a file cannot be opened.
SCREENCAPTURE_EXPORT bool copy_regular_file(const path& from, const path& to, bool fail_if_exists,
                                            std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool copy_regular_file(const path& from, const path& to, bool fail_if_exists);

/// The size in bytes; 0 on failure. The flag has no effect.
SCREENCAPTURE_EXPORT long long file_size(const path& p, std::error_code& ec, bool flag);
/// The same without a code.
SCREENCAPTURE_EXPORT long long file_size(const path& p, bool flag);

/// The modification time in seconds since 1970; -1 on failure.
SCREENCAPTURE_EXPORT long long last_write_time(const path& p);

/// Sets the modification time and keeps the access time, in seconds since 1970; nothing for a
/// missing file.
SCREENCAPTURE_EXPORT void last_write_time(const path& p, long long t);

/// The modification time in seconds since 1970; meaningless for a missing file.
SCREENCAPTURE_EXPORT long long last_modify_time(const path& p);

/// Removes a file or an empty directory.
SCREENCAPTURE_EXPORT bool remove(const path& p, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool remove(const path& p);

/// Removes an empty directory.
SCREENCAPTURE_EXPORT bool remove_directory(const path& p);

/// Renames or moves within a file system, over an existing file.
SCREENCAPTURE_EXPORT bool rename(const path& from, const path& to, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool rename(const path& from, const path& to);

/// Cuts or extends a file, with zeros, to `size` bytes.
SCREENCAPTURE_EXPORT bool resize_file(const path& p, long long size, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool resize_file(const path& p, long long size);

/// The bytes of the file system that holds `p`; all 0 on failure.
SCREENCAPTURE_EXPORT disk_space space(const path& p, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT disk_space space(const path& p);

/// The working directory. Throws `std::runtime_error`, "Internal error in getcwd(): " and the
/// system's text, where it is gone or its name takes 1024 bytes or more.
SCREENCAPTURE_EXPORT path current_path();

/// Changes the working directory of the process.
SCREENCAPTURE_EXPORT void current_path(const path& p, std::error_code& ec);
/// The same without a code, so that a failure does not show.
SCREENCAPTURE_EXPORT void current_path(const path& p);

/// The working directory as it was at the first call, which throws as current_path() does. The
/// reference is valid until exit.
SCREENCAPTURE_EXPORT const path& initial_path();

/// path::make_absolute().
SCREENCAPTURE_EXPORT path absolute(const path& p);

/// The running executable, asked for once and printed then, "executable path is %s\n"; empty, to be
/// asked again, where the system does not tell it in 1023 bytes.
SCREENCAPTURE_EXPORT path app_path();

/// Makes the executable's directory the working directory.
SCREENCAPTURE_EXPORT void set_app_path();

/// @}

// File stream

/// Owns one open file, read and written as bytes.
///
/// What flock() takes is in <sys/file.h>.
///
/// \code
/// myfs::filestream log;
/// if (log.open("/tmp/log", 0, true) && log.flock(LOCK_EX) == 0) {
///     log.set_end_pos();
///     log.write("line\n", 5);
/// }
/// \endcode
///
/// Positions are bytes from the beginning. Failures show in what is returned, with `errno` as the
/// system left it; nothing is thrown. Not for several threads at once. The position functions and
/// flock() need an open stream and do not check for one.
class SCREENCAPTURE_EXPORT filestream
{
public:
    filestream() = default;
    ~filestream();
    filestream(const filestream&) = delete;
    filestream& operator=(const filestream&) = delete;

    /// Opens at the beginning, for reading when `mode` is exactly 0x80000000, for reading and
    /// writing with any other. A missing file is made only with `create`; nothing is ever
    /// truncated. True, and nothing else happens, when the stream is open already.
    bool open(const path& p, unsigned int mode, bool create);

    /// Also flushes, and gives up the lock. Nothing when closed.
    void close();

    /// Whether a file is open.
    bool is_open() const;

    /// The bytes written; 0 when closed.
    std::size_t write(const void* data, std::size_t n);

    /// The bytes read; 0 when closed.
    std::size_t read(void* data, std::size_t n);

    /// 0 on success and when closed.
    int flush();

    /// Locks the whole file against others that ask for a lock: `LOCK_SH`, `LOCK_EX` or `LOCK_UN`,
    /// and `LOCK_NB` so as not to wait. 0 on success. The stream must be open.
    int flock(int operation);

    /// Whether a read met the end of the file; true when closed.
    bool eof() const;

    /// Stores the position. The stream must be open.
    bool getpos(long long* pos);

    /// Moves to a position, also beyond the end. The stream must be open.
    bool setpos(long long pos);
    /// Moves to the beginning. The stream must be open.
    bool set_begin_pos();
    /// Moves behind the last byte. The stream must be open.
    bool set_end_pos();

private:
    std::FILE* m_file = nullptr;
};

/// \name Directory listing
/// Results are appended, in the order in which the system returns the entries. A directory that is
/// missing or cannot be read yields nothing. Entry paths are the directory's text, "/" and the
/// name, parsed. Directories are descended into without a limit.
/// @{

/// Lists a directory: every entry, "." (as the directory itself) and ".." included; with
/// `recursive` the entries that are not directories, at every depth. Symbolic links are entries and
/// not followed; sockets and block devices are left out when recursing.
SCREENCAPTURE_EXPORT void file_path_list(const path& dir, std::vector<path>& out, bool recursive);

/// Lists a directory and all below it, grouped by directory; with `flag` directories without
/// entries appear too. What is a directory is asked by the bare entry name: right only where the
/// listed directory is the working directory, or the same names exist there.
SCREENCAPTURE_EXPORT void file_path_list(const path& dir, std::map<path, std::vector<path>>& out,
                                         bool flag);

/// The same as UTF-8 text.
SCREENCAPTURE_EXPORT void u8_file_list(const std::string& dir, std::vector<std::string>& out,
                                       bool recursive);
/// Grouped by directory, as UTF-8 text.
SCREENCAPTURE_EXPORT void u8_file_list(const std::string& dir,
                                       std::map<std::string, std::vector<std::string>>& out,
                                       bool flag);

/// The same as wide text, each up to the first character that CodeCvt cannot decode.
SCREENCAPTURE_EXPORT void u16_file_list(const std::wstring& dir, std::vector<std::wstring>& out,
                                        bool recursive);
/// Grouped by directory, as wide text.
SCREENCAPTURE_EXPORT void u16_file_list(const std::wstring& dir,
                                        std::map<std::wstring, std::vector<std::wstring>>& out,
                                        bool flag);

/// @}

} // namespace myfs
