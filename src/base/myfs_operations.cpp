// SPDX-License-Identifier: MIT
#include "myfs.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#ifdef __APPLE__
#include <mach-o/dyld.h>
#include <sys/mount.h>
#include <sys/param.h>
#else
#include <sys/vfs.h>
#endif

namespace myfs
{

namespace
{

constexpr std::size_t kCopyBufferBytes = 0x8000;
constexpr std::size_t kPathBufferBytes = 1024;
constexpr mode_t kDirectoryMode = 0700;

std::error_code last_error()
{
    return {errno, std::system_category()};
}

bool query(const path& p, struct stat& status)
{
    return ::stat(p.str().c_str(), &status) == 0;
}

bool has_type(const path& p, mode_t type, std::error_code& ec)
{
    struct stat status = {};
    if (query(p, status))
        return (status.st_mode & S_IFMT) == type;
    ec = last_error();
    return false;
}

/// Fills a buffer of kPathBufferBytes with the zero-terminated path of the executable. Fails if the
/// path does not fit.
bool query_executable(char* buffer)
{
#ifdef __APPLE__
    std::uint32_t size = kPathBufferBytes;
    return ::_NSGetExecutablePath(buffer, &size) == 0;
#else
    const ssize_t length = ::readlink("/proc/self/exe", buffer, kPathBufferBytes);
    if (length < 0 || length >= static_cast<ssize_t>(kPathBufferBytes))
        return false;
    buffer[length] = '\0';
    return true;
#endif
}

bool write_all(int file, const char* data, ssize_t length)
{
    while (length > 0) {
        const ssize_t written = ::write(file, data, static_cast<std::size_t>(length));
        if (written < 0)
            return false;
        data += written;
        length -= written;
    }
    return true;
}

bool copy_contents(int in, int out)
{
    std::vector<char> buffer(kCopyBufferBytes);
    ssize_t got = ::read(in, buffer.data(), buffer.size());
    while (got > 0) {
        if (!write_all(out, buffer.data(), got))
            return false;
        got = ::read(in, buffer.data(), buffer.size());
    }
    return got == 0;
}

int open_target(const path& to, bool fail_if_exists, mode_t mode)
{
    const int flags = O_WRONLY | O_CREAT | O_TRUNC | (fail_if_exists ? O_EXCL : 0);
    return ::open(to.str().c_str(), flags, mode);
}

void close_keeping_errno(int file)
{
    const int kept = errno;
    ::close(file);
    errno = kept;
}

bool copy(const path& from, const path& to, bool fail_if_exists)
{
    // Intended: a file that cannot be opened counts as copied. Only errno tells.
    constexpr bool not_opened = true;
    const int in = ::open(from.str().c_str(), O_RDONLY);
    if (in < 0)
        return not_opened;
    struct stat source = {};
    const int out = query(from, source) ? open_target(to, fail_if_exists, source.st_mode) : -1;
    if (out < 0) {
        close_keeping_errno(in);
        return not_opened;
    }
    bool ok = copy_contents(in, out);
    ok = ::close(in) == 0 && ok;
    return ::close(out) == 0 && ok;
}

} // namespace

bool exists(const path& p, std::error_code& ec)
{
    if (::access(p.str().c_str(), F_OK) == 0)
        return true;
    ec = last_error();
    return false;
}

bool exists(const path& p)
{
    std::error_code ignored;
    return exists(p, ignored);
}

bool is_directory(const path& p, std::error_code& ec)
{
    return has_type(p, S_IFDIR, ec);
}

bool is_directory(const path& p)
{
    std::error_code ignored;
    return is_directory(p, ignored);
}

bool is_regular_file(const path& p, std::error_code& ec)
{
    return has_type(p, S_IFREG, ec);
}

bool is_regular_file(const path& p)
{
    std::error_code ignored;
    return is_regular_file(p, ignored);
}

bool directory_exists(const path& p)
{
    return exists(p) && is_directory(p);
}

bool file_exists(const path& p)
{
    return exists(p) && is_regular_file(p);
}

// Intended: the function ignores its argument.
bool not_found_error(int /*error*/)
{
    return errno == ENOENT || errno == ENOTDIR;
}

// Intended: this and the other actions set the code from errno on success, too.
bool create_directory(const path& p, std::error_code& ec)
{
    const bool ok = ::mkdir(p.str().c_str(), kDirectoryMode) == 0;
    ec = last_error();
    return ok;
}

bool create_directory(const path& p)
{
    std::error_code ignored;
    return create_directory(p, ignored);
}

bool create_directory_r(const path& p, std::error_code& ec)
{
    const path parent = p.parent_path();
    if (!parent.empty()) {
        const bool usable = exists(parent) ? is_directory(parent) : create_directory_r(parent, ec);
        if (!usable)
            return false;
    }
    if (exists(p))
        return is_directory(p);
    const bool ok = create_directory(p, ec);
    if (!ok)
        std::printf("create directory '%s' failed, errno=%d\n", p.string().c_str(), ec.value());
    return ok;
}

bool create_directory_r(const path& p)
{
    std::error_code ignored;
    return create_directory_r(p, ignored);
}

std::string create_sub_directory(const char* parent, const char* sub)
{
    path p(parent);
    p.append(sub);
    create_directory_r(p);
    return p.string();
}

bool copy_regular_file(const path& from, const path& to, bool fail_if_exists, std::error_code& ec)
{
    const bool ok = copy(from, to, fail_if_exists);
    ec = last_error();
    return ok;
}

bool copy_regular_file(const path& from, const path& to, bool fail_if_exists)
{
    std::error_code ignored;
    return copy_regular_file(from, to, fail_if_exists, ignored);
}

// Intended: the flag has no effect.
long long file_size(const path& p, std::error_code& ec, bool /*flag*/)
{
    struct stat status = {};
    const bool ok = query(p, status);
    ec = last_error();
    return ok ? status.st_size : 0;
}

long long file_size(const path& p, bool flag)
{
    std::error_code ignored;
    return file_size(p, ignored, flag);
}

long long last_write_time(const path& p)
{
    struct stat status = {};
    return query(p, status) ? status.st_mtime : -1;
}

void last_write_time(const path& p, long long t)
{
    struct stat status = {};
    if (!query(p, status))
        return;
    const utimbuf times = {status.st_atime, static_cast<std::time_t>(t)};
    ::utime(p.str().c_str(), &times);
}

long long last_modify_time(const path& p)
{
    struct stat status = {};
    // Intended: stat() may fail.
    query(p, status);
    return status.st_mtime;
}

bool remove(const path& p, std::error_code& ec)
{
    const bool ok = std::remove(p.str().c_str()) == 0;
    ec = last_error();
    return ok;
}

bool remove(const path& p)
{
    std::error_code ignored;
    return remove(p, ignored);
}

bool remove_directory(const path& p)
{
    return ::rmdir(p.str().c_str()) == 0;
}

bool rename(const path& from, const path& to, std::error_code& ec)
{
    const bool ok = std::rename(from.str().c_str(), to.str().c_str()) == 0;
    ec = last_error();
    return ok;
}

bool rename(const path& from, const path& to)
{
    std::error_code ignored;
    return rename(from, to, ignored);
}

bool resize_file(const path& p, long long size, std::error_code& ec)
{
    const bool ok = ::truncate(p.str().c_str(), static_cast<off_t>(size)) == 0;
    ec = last_error();
    return ok;
}

bool resize_file(const path& p, long long size)
{
    std::error_code ignored;
    return resize_file(p, size, ignored);
}

disk_space space(const path& p, std::error_code& ec)
{
    struct statfs status = {};
    disk_space bytes;
    const bool ok = ::statfs(p.str().c_str(), &status) == 0;
    ec = last_error();
    if (!ok)
        return bytes;
    const auto block = static_cast<std::uint64_t>(status.f_bsize);
    bytes.capacity = block * status.f_blocks;
    bytes.free = block * status.f_bfree;
    bytes.available = block * status.f_bavail;
    return bytes;
}

disk_space space(const path& p)
{
    std::error_code ignored;
    return space(p, ignored);
}

path current_path()
{
    char buffer[kPathBufferBytes] = {};
    if (::getcwd(buffer, sizeof buffer) == nullptr) {
        throw std::runtime_error(std::string("Internal error in getcwd(): ") +
                                 std::strerror(errno));
    }
    return {buffer};
}

void current_path(const path& p, std::error_code& ec)
{
    static_cast<void>(::chdir(p.str().c_str()) == 0);
    ec = last_error();
}

void current_path(const path& p)
{
    std::error_code ignored;
    current_path(p, ignored);
}

const path& initial_path()
{
    static path cached;
    if (cached.empty())
        cached = current_path();
    return cached;
}

path absolute(const path& p)
{
    return p.make_absolute();
}

path app_path()
{
    static path cached;
    char buffer[kPathBufferBytes] = {};
    // A path of the empty text is not empty(): caching it would keep later calls from asking.
    if (cached.empty() && query_executable(buffer)) {
        std::printf("executable path is %s\n", buffer);
        cached = path(buffer);
    }
    return cached;
}

void set_app_path()
{
    // The parent of an empty path is "..", which is not where an unknown executable is.
    const path executable = app_path();
    if (!executable.empty())
        current_path(executable.parent_path());
}

} // namespace myfs
