// SPDX-License-Identifier: MIT
#pragma once

#include <climits>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <sys/resource.h>
#include <sys/types.h>

/// What goes wrong with reading, writing and opening plain files while one lives. Needs
/// IoFaults.cpp in the program, and is for one thread.
class IoFaults
{
public:
    /// A number of calls of each kind.
    struct Calls {
        int reads = 0;
        int writes = 0;
        int closes = 0;
        int opens = 0;
        int stats = 0;
    };

    IoFaults();
    ~IoFaults();
    IoFaults(const IoFaults&) = delete;
    IoFaults& operator=(const IoFaults&) = delete;

    /// The most that one call writes.
    std::size_t mostBytes = SIZE_MAX;
    /// The most that one call reads.
    std::size_t mostReadBytes = SIZE_MAX;
    /// How many calls of its kind succeed before further ones fail; negative: all do.
    int readsBeforeError = -1;
    int writesBeforeError = -1;
    int closesBeforeError = -1;
    /// The error of those calls.
    int error = 0;
    /// How many calls fail before all succeed again.
    int mostErrors = INT_MAX;
    /// What opening a file for writing fails with.
    int openForWritingError = 0;
    /// What looking at a file fails with.
    int statError = 0;

    /// The calls that got no more than the most where they asked for more.
    Calls shortened;
    /// The calls that got an error instead.
    Calls failed;
};

/// The most that a file of this process may have.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit = {bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_before = {};
    void (*m_handler)(int);
};
