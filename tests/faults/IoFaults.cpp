// SPDX-License-Identifier: MIT
// Stands before the C library's calls, for this program and the libraries that it loads.
#include "Io.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

IoFaults* s_faults = nullptr;

/// Counts a call of a kind, and tells whether it is one that fails.
bool fails(int IoFaults::*callsBeforeError)
{
    if (!s_faults || s_faults->*callsBeforeError < 0)
        return false;
    if (s_faults->*callsBeforeError > 0) {
        --(s_faults->*callsBeforeError);
        return false;
    }
    errno = s_faults->error;
    return true;
}

std::size_t atMost(std::size_t bytes)
{
    return s_faults ? std::min(bytes, s_faults->mostBytes) : bytes;
}

int openFile(const char* name, int flags, mode_t mode)
{
    if (s_faults && s_faults->openForWritingError != 0 && (flags & O_ACCMODE) != O_RDONLY) {
        errno = s_faults->openForWritingError;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, name, flags, mode));
}

bool cannotLook()
{
    if (!s_faults || s_faults->statError == 0)
        return false;
    errno = s_faults->statError;
    return true;
}

} // namespace

extern "C" {

ssize_t read(int file, void* data, std::size_t bytes)
{
    if (fails(&IoFaults::readsBeforeError))
        return -1;
    return ::syscall(SYS_read, file, data, atMost(bytes));
}

ssize_t write(int file, const void* data, std::size_t bytes)
{
    if (fails(&IoFaults::writesBeforeError))
        return -1;
    return ::syscall(SYS_write, file, data, atMost(bytes));
}

ssize_t copy_file_range(int in, off64_t* inAt, int out, off64_t* outAt, std::size_t bytes,
                        unsigned flags)
{
    if (fails(&IoFaults::systemCopiesBeforeError))
        return -1;
    return ::syscall(SYS_copy_file_range, in, inAt, out, outAt, atMost(bytes), flags);
}

int close(int file)
{
    const int result = static_cast<int>(::syscall(SYS_close, file));
    return fails(&IoFaults::closesBeforeError) ? -1 : result;
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
