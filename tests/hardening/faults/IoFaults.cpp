// SPDX-License-Identifier: MIT
// Stands before the C library's calls, for this program and the libraries that it loads.
#include "Io.h"

#include <cerrno>
#include <cstdarg>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

using Calls = IoFaults::Calls;

IoFaults* s_faults = nullptr;

/// What wakes an event loop is written and read too, and is no file.
bool isMet(int file)
{
    struct stat status = {};
    return s_faults && ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

/// Counts a call of a kind, and tells whether it is one that fails.
bool fails(int file, int IoFaults::*callsBeforeError, int Calls::*kind)
{
    if (!isMet(file) || s_faults->*callsBeforeError < 0)
        return false;
    if (s_faults->*callsBeforeError > 0) {
        --(s_faults->*callsBeforeError);
        return false;
    }
    if (s_faults->mostErrors == 0)
        return false;
    --s_faults->mostErrors;
    ++(s_faults->failed.*kind);
    return true;
}

int error()
{
    errno = s_faults->error;
    return -1;
}

/// Does `call` with no more bytes than one call gets, and counts it where it got those alone.
template <typename Call>
ssize_t cutShort(int file, std::size_t bytes, std::size_t IoFaults::*most, int Calls::*kind,
                 Call call)
{
    if (!isMet(file) || bytes <= s_faults->*most)
        return call(bytes);
    const ssize_t done = call(s_faults->*most);
    if (done > 0)
        ++(s_faults->shortened.*kind);
    return done;
}

int openFile(const char* name, int flags, mode_t mode)
{
    if (s_faults && s_faults->openForWritingError != 0 && (flags & O_ACCMODE) != O_RDONLY) {
        ++s_faults->failed.opens;
        errno = s_faults->openForWritingError;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, name, flags, mode));
}

bool cannotLook()
{
    if (!s_faults || s_faults->statError == 0)
        return false;
    ++s_faults->failed.stats;
    errno = s_faults->statError;
    return true;
}

} // namespace

extern "C" {

ssize_t read(int file, void* data, std::size_t bytes)
{
    if (fails(file, &IoFaults::readsBeforeError, &Calls::reads))
        return error();
    return cutShort(file, bytes, &IoFaults::mostReadBytes, &Calls::reads,
                    [=](std::size_t most) { return ::syscall(SYS_read, file, data, most); });
}

ssize_t write(int file, const void* data, std::size_t bytes)
{
    if (fails(file, &IoFaults::writesBeforeError, &Calls::writes))
        return error();
    return cutShort(file, bytes, &IoFaults::mostBytes, &Calls::writes,
                    [=](std::size_t most) { return ::syscall(SYS_write, file, data, most); });
}

int close(int file)
{
    const bool failed = fails(file, &IoFaults::closesBeforeError, &Calls::closes);
    const int result = static_cast<int>(::syscall(SYS_close, file));
    return failed ? error() : result;
}

int stat(const char* name, struct stat* status)
{
    return cannotLook() ? -1 : ::fstatat(AT_FDCWD, name, status, 0);
}

int stat64(const char* name, struct stat64* status)
{
    return cannotLook() ? -1 : ::fstatat64(AT_FDCWD, name, status, 0);
}

int open(const char* name, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = static_cast<mode_t>((flags & O_CREAT) != 0 ? va_arg(arguments, int) : 0);
    va_end(arguments);
    return openFile(name, flags, mode);
}

int open64(const char* name, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = static_cast<mode_t>((flags & O_CREAT) != 0 ? va_arg(arguments, int) : 0);
    va_end(arguments);
    return openFile(name, flags, mode);
}
}

IoFaults::IoFaults()
{
    s_faults = this;
}

IoFaults::~IoFaults()
{
    s_faults = nullptr;
}
