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

/// Paths, file operations, a file stream and directory listings on POSIX systems. Narrow text is
/// UTF-8. Nothing locks: use an object from one thread at a time, and the process-wide state
/// (working directory, app_path(), initial_path()) from one thread only.
namespace myfs
{

// Paths

/// The name of a file or directory: a list of components, and whether it begins at a root. A path
/// does not keep the text that it was parsed from; string() renders it from the components.
///
/// \code
/// myfs::path ini("/home/me//settings/.");
/// ini.append("screencapture.ini");
/// ini.string(); // "/home/me/settings/screencapture.ini"
/// \endcode
///
/// Both '/' and '\\' separate components. Parsing drops "." and keeps "..". Note that "" is parsed
/// as one empty component, so that empty() returns false, and that "/" has no components, so that
/// it is rendered as "". Any text can be parsed; only make_absolute() reports errors. File
/// operations pass the text of string() to the system.
class SCREENCAPTURE_EXPORT path
{
public:
    /// How text is parsed, and which separator string() uses.
    enum SYSPATHTYPE : std::int32_t {
        WINDOWS_PATH = 0, ///< Separated by '\\'.
        POSIX_PATH = 1    ///< Separated by '/'.
    };

    /// Constructs a relative POSIX path without components.
    path() = default;

    /// Copies components, style and absoluteness as they are.
    path(const path& other) = default;
    /// Moves the components, which leaves `other` without any.
    path(path&& other) noexcept = default;
    ~path() = default;

    /// Parses `text` as a POSIX path, as set() does.
    path(const char* text);
    /// The same from a string.
    path(const std::string& text);
    /// The same from wide text, which CodeCvt converts to UTF-8.
    path(const wchar_t* text);
    /// The same from a wide string.
    path(const std::wstring& text);

    /// Parses the text of `other` as a POSIX path. The result is absolute only if that text begins
    /// with '/', and has one empty component if it is empty.
    path& operator=(const path& other);

    /// Parses `text` as a POSIX path, as set() does.
    path& operator=(const char* text);
    /// The same from a string.
    path& operator=(const std::string& text);

    /// Replaces the path by `text`, parsed in the style `type`. A POSIX path is absolute if it
    /// begins with '/'. A Windows path is absolute if it begins with a drive ("C:", its first
    /// component) or with a UNC prefix, which becomes a first component of two backslashes.
    void set(const std::string& text, SYSPATHTYPE type);
    /// The same from wide text.
    void set(const std::wstring& text, SYSPATHTYPE type);

    /// Returns the text with the separators of the path's style.
    std::string string() const;
    /// The same as string().
    std::string str() const;

    /// Returns the text of the path as if it were a POSIX path.
    std::string generic_string() const;

    /// Returns string() as wide text, up to the first byte that CodeCvt cannot decode.
    std::wstring wstring() const;
    /// The same as wstring().
    std::wstring wstr() const;
    /// Returns generic_string() as wide text, up to the first byte that CodeCvt cannot decode.
    std::wstring generic_wstring() const;

    /// Returns true if there are no components, as in "/" and "."; false for "".
    bool empty() const;

    /// Returns true if the path begins at a root.
    bool is_absolute() const;

    /// Returns the number of components.
    std::size_t size() const;

    /// Removes the components. The path keeps its style and stays absolute or relative.
    void clear();

    /// Adds the components of `p` at the end. Does nothing if `p` is absolute and this path is not
    /// empty(). The path keeps its style and stays absolute or relative, even if it was empty().
    path& append(const path& p);
    /// Appends path(text).
    path& append(const char* text);
    /// Appends path(text).
    path& append(const std::string& text);

    /// Returns all components but the last as a POSIX path that is absolute if this path is. If
    /// this path is empty(), returns ".." for a relative and an empty path for an absolute one.
    path parent_path() const;

    /// Assigns parent_path(), whose text is parsed again: "a" and "/a" become one empty component
    /// of a relative path. Does nothing if the path is empty().
    path& remove_filename();

    /// Returns the first component as a path, or an empty path.
    path root_name() const;

    /// Returns the last component as a path, or an empty path.
    path leaf_name() const;

    /// Returns leaf_name(), or an empty path if that is a UNC prefix or contains ':'.
    path filename() const;

    /// Returns the part of filename() from its last '.' on, or an empty path if it has no '.'.
    path extension() const;

    /// Returns the part of filename() before its last '.'; path("") for ".profile".
    path basename() const;

    /// Replaces the extension of the last component by `ext`, which may begin with a dot or not. If
    /// `ext` has no text, only removes the extension. Does nothing if the path is empty() or its
    /// last component is a UNC prefix or contains ':'.
    path& replace_extension(const path& ext);

    /// Exchanges only the components. Both paths keep their style and stay absolute or relative.
    void swap(path& other);

    /// Returns the absolute path to which the system resolves this path, without symbolic links.
    /// Throws `std::runtime_error`, "Internal error in realpath(): " and the system's text, if the
    /// system cannot resolve it, for example because nothing of that name exists.
    path make_absolute() const;

    /// Compares the components byte by byte. Returns 0 if they are equal, -1 if this path comes
    /// first and 1 otherwise. Style and root do not count: "/usr" equals "usr".
    int compare(const path& other) const;

private:
    SYSPATHTYPE m_type = POSIX_PATH;
    std::vector<std::string> m_components;
    bool m_absolute = false;
};

/// A path built from text in the encoding of CodeCvt::china_locale. The construction switches the
/// locale of the process, as the GBK functions of CodeCvt do.
class SCREENCAPTURE_EXPORT gbk_path : public path
{
public:
    /// Converts `text` to UTF-8 and parses it as a POSIX path.
    gbk_path(const char* text);
    /// The same from a string.
    gbk_path(const std::string& text);
};

/// The order of path::compare().
SCREENCAPTURE_EXPORT bool operator<(const path& a, const path& b);

/// Returns the separator "/".
SCREENCAPTURE_EXPORT std::string native_sep();
/// Returns the separator as one character.
SCREENCAPTURE_EXPORT char native_sep_char();
/// Returns the separator as wide text.
SCREENCAPTURE_EXPORT std::wstring native_wsep();

/// Returns true if `c` is '/' or '\\'.
SCREENCAPTURE_EXPORT bool is_separator(char c);

/// Splits `text` at any of `delimiters` and drops pieces that are empty or ".". The text "" gives
/// one empty piece.
SCREENCAPTURE_EXPORT std::vector<std::string> tokenize(const std::string& text,
                                                       const std::string& delimiters);

/// Appends the text of a path to `out`; nothing if there are no components.
SCREENCAPTURE_EXPORT void path_to_string(const std::vector<std::string>& components,
                                         std::string& out, bool absolute, path::SYSPATHTYPE type);

/// \name File operations
/// A function that returns `bool` returns true on success. Only current_path(), initial_path() and
/// absolute() throw. The error code holds `errno` in the system category. Queries (exists,
/// is_directory, is_regular_file) set it only if the system call fails. All other functions always
/// set it, on success to whatever `errno` held: rely on the return value, never on the code.
/// @{

/// The bytes of a file system.
struct disk_space {
    /// The size of the file system.
    std::uint64_t capacity = 0;
    /// The unused part.
    std::uint64_t free = 0;
    /// The unused part that is available to ordinary users.
    std::uint64_t available = 0;
};

/// Returns true if a file of any kind has that name. Follows symbolic links. Returns false for "/",
/// which is rendered as "".
SCREENCAPTURE_EXPORT bool exists(const path& p, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool exists(const path& p);

/// Returns true if `p` is a directory. Follows symbolic links.
SCREENCAPTURE_EXPORT bool is_directory(const path& p, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool is_directory(const path& p);

/// Returns true if `p` is a regular file. Follows symbolic links.
SCREENCAPTURE_EXPORT bool is_regular_file(const path& p, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool is_regular_file(const path& p);

/// The same as is_directory().
SCREENCAPTURE_EXPORT bool directory_exists(const path& p);
/// The same as is_regular_file().
SCREENCAPTURE_EXPORT bool file_exists(const path& p);

/// Returns true if `errno` says that a file does not exist. Ignores the argument.
SCREENCAPTURE_EXPORT bool not_found_error(int error);

/// Creates one directory with the permissions 0700.
SCREENCAPTURE_EXPORT bool create_directory(const path& p, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool create_directory(const path& p);

/// Creates a directory and its missing parents. Returns true also if the directory exists. Prints
/// "create directory '%s' failed, errno=%d\n" to standard output if the system refuses to create a
/// directory, but nothing if a plain file is in the way. Sets the code only when it tries to create
/// a directory.
SCREENCAPTURE_EXPORT bool create_directory_r(const path& p, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool create_directory_r(const path& p);

/// Calls create_directory_r() for `sub` below `parent` and returns the text of that path, even on
/// failure.
SCREENCAPTURE_EXPORT std::string create_sub_directory(const char* parent, const char* sub);

/// Copies the contents and, to a new file, the permissions less the process's umask; not the times.
/// Returns false if reading, writing or closing fails. Note that the function returns true, and
/// only the code tells, if a file cannot be opened, or if `fail_if_exists` is set and the target
/// exists.
SCREENCAPTURE_EXPORT bool copy_regular_file(const path& from, const path& to, bool fail_if_exists,
                                            std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool copy_regular_file(const path& from, const path& to, bool fail_if_exists);

/// Returns the size in bytes; 0 on failure. The flag has no effect.
SCREENCAPTURE_EXPORT long long file_size(const path& p, std::error_code& ec, bool flag);
/// The same without a code.
SCREENCAPTURE_EXPORT long long file_size(const path& p, bool flag);

/// Returns the modification time in seconds since 1970; -1 on failure.
SCREENCAPTURE_EXPORT long long last_write_time(const path& p);

/// Sets the modification time in seconds since 1970 and keeps the access time in full seconds. Does
/// nothing if the file does not exist.
SCREENCAPTURE_EXPORT void last_write_time(const path& p, long long t);

/// Returns the modification time in seconds since 1970; a meaningless value if the file does not
/// exist.
SCREENCAPTURE_EXPORT long long last_modify_time(const path& p);

/// Removes a file or an empty directory.
SCREENCAPTURE_EXPORT bool remove(const path& p, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool remove(const path& p);

/// Removes an empty directory.
SCREENCAPTURE_EXPORT bool remove_directory(const path& p);

/// Renames a file, or moves it within a file system. Replaces an existing file.
SCREENCAPTURE_EXPORT bool rename(const path& from, const path& to, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool rename(const path& from, const path& to);

/// Truncates a file, or extends it with zeros, to `size` bytes.
SCREENCAPTURE_EXPORT bool resize_file(const path& p, long long size, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT bool resize_file(const path& p, long long size);

/// Returns the space of the file system that holds `p`; all 0 on failure.
SCREENCAPTURE_EXPORT disk_space space(const path& p, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT disk_space space(const path& p);

/// Returns the working directory. Throws `std::runtime_error`, "Internal error in getcwd(): " and
/// the system's text, if the directory no longer exists or its name has 1024 bytes or more.
SCREENCAPTURE_EXPORT path current_path();

/// Changes the working directory of the process. Only the code tells of a failure.
SCREENCAPTURE_EXPORT void current_path(const path& p, std::error_code& ec);
/// The same without a code.
SCREENCAPTURE_EXPORT void current_path(const path& p);

/// Returns the directory that current_path() returned at the first call, which throws as
/// current_path() does. The reference is valid until exit.
SCREENCAPTURE_EXPORT const path& initial_path();

/// The same as path::make_absolute().
SCREENCAPTURE_EXPORT path absolute(const path& p);

/// Returns the path of the running executable. The first call that gets it from the system prints
/// "executable path is %s\n" to standard output; later calls return the same. Returns an empty path
/// as long as the system fails, or if the path has more than 1023 bytes.
SCREENCAPTURE_EXPORT path app_path();

/// Makes the directory of the executable the working directory.
SCREENCAPTURE_EXPORT void set_app_path();

/// @}

// File stream

/// Owns one open file, and reads and writes its bytes. The header <sys/file.h> declares the
/// operations of flock().
///
/// \code
/// myfs::filestream log;
/// if (log.open("/tmp/log", 0, true) && log.flock(LOCK_EX) == 0) {
///     log.set_end_pos();
///     log.write("line\n", 5);
/// }
/// \endcode
///
/// Positions are bytes from the beginning of the file. Only return values report failures, with
/// `errno` as the system left it. Functions that return `bool` return true on success. The position
/// functions and flock() must be called on an open stream only; they do not check.
class SCREENCAPTURE_EXPORT filestream
{
public:
    filestream() = default;
    ~filestream();
    filestream(const filestream&) = delete;
    filestream& operator=(const filestream&) = delete;

    /// Opens a file at its beginning, for reading if `mode` is exactly 0x80000000, for reading and
    /// writing if it is anything else. Creates a missing file if `create` is set. Never truncates a
    /// file. Returns true and does nothing if the stream is already open.
    bool open(const path& p, unsigned int mode, bool create);

    /// Flushes and closes the file, which releases the lock. Does nothing if the stream is closed.
    void close();

    /// Returns true if a file is open.
    bool is_open() const;

    /// Returns the number of bytes written; 0 if the stream is closed.
    std::size_t write(const void* data, std::size_t n);

    /// Returns the number of bytes read; 0 if the stream is closed.
    std::size_t read(void* data, std::size_t n);

    /// Writes buffered bytes to the file. Returns 0 on success, or if the stream is closed.
    int flush();

    /// Sets or releases an advisory lock on the whole file: `LOCK_SH`, `LOCK_EX` or `LOCK_UN`, with
    /// `LOCK_NB` added to return instead of waiting. Returns 0 on success.
    int flock(int operation);

    /// Returns true if a read has met the end of the file, or if the stream is closed.
    bool eof() const;

    /// Stores the position in `pos`.
    bool getpos(long long* pos);

    /// Moves to a position, which may be beyond the end.
    bool setpos(long long pos);
    /// Moves to the beginning.
    bool set_begin_pos();
    /// Moves behind the last byte.
    bool set_end_pos();

private:
    std::FILE* m_file = nullptr;
};

/// \name Directory listing
/// Results are appended in the order in which the system returns the entries. A directory that does
/// not exist or cannot be read has no results. The path of an entry is parsed from the text of the
/// directory, "/" and the name. The depth of the descent is not limited.
/// @{

/// Lists the entries of a directory, including "." (as the directory itself) and "..". If
/// `recursive` is set, lists the entries that are not directories, at every depth, without sockets
/// and block devices. Does not follow symbolic links.
SCREENCAPTURE_EXPORT void file_path_list(const path& dir, std::vector<path>& out, bool recursive);

/// Lists a directory and all below it, grouped by directory. If `flag` is set, directories without
/// files appear too. Note that the function looks up the bare name of an entry to find out whether
/// it is a directory. The result is right only if the listed directory is the working directory, or
/// if the same names exist there.
SCREENCAPTURE_EXPORT void file_path_list(const path& dir, std::map<path, std::vector<path>>& out,
                                         bool flag);

/// The same as UTF-8 text.
SCREENCAPTURE_EXPORT void u8_file_list(const std::string& dir, std::vector<std::string>& out,
                                       bool recursive);
/// Grouped by directory, as UTF-8 text.
SCREENCAPTURE_EXPORT void u8_file_list(const std::string& dir,
                                       std::map<std::string, std::vector<std::string>>& out,
                                       bool flag);

/// The same as wide text, each path up to the first byte that CodeCvt cannot decode.
SCREENCAPTURE_EXPORT void u16_file_list(const std::wstring& dir, std::vector<std::wstring>& out,
                                        bool recursive);
/// Grouped by directory, as wide text.
SCREENCAPTURE_EXPORT void u16_file_list(const std::wstring& dir,
                                        std::map<std::wstring, std::vector<std::wstring>>& out,
                                        bool flag);

/// @}

} // namespace myfs
