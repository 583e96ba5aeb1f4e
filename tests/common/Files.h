// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

/// A directory of the test's own. Names are bytes, which Qt would not all let through.
class Scratch
{
public:
    Scratch()
    {
        std::string name = (std::filesystem::temp_directory_path() / "scratch-XXXXXX").string();
        if (::mkdtemp(&name[0]) == nullptr)
            qFatal("cannot make a directory");
        m_path = name;
    }
    ~Scratch()
    {
        std::error_code ec;
        std::filesystem::remove_all(m_path, ec);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    const std::string& path() const { return m_path; }
    std::string path(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

inline void writeFile(const std::string& name, const std::string& contents)
{
    std::FILE* file = std::fopen(name.c_str(), "wb");
    if (file == nullptr || std::fwrite(contents.data(), 1, contents.size(), file) < contents.size())
        qFatal("cannot write %s", name.c_str());
    std::fclose(file);
}

inline std::string readFile(const std::string& name)
{
    std::string contents;
    char buffer[4096];
    std::FILE* file = std::fopen(name.c_str(), "rb");
    while (file) {
        const std::size_t got = std::fread(buffer, 1, sizeof buffer, file);
        contents.append(buffer, got);
        if (got == 0)
            break;
    }
    if (file)
        std::fclose(file);
    return contents;
}

inline mode_t permissions(const std::string& name)
{
    struct stat status = {};
    return ::stat(name.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

/// Whether there is the device on which nothing fits.
inline bool hasFullDevice()
{
    struct stat status = {};
    return ::stat("/dev/full", &status) == 0 && S_ISCHR(status.st_mode);
}

/// How many files this process has open; one of them is for counting.
inline std::ptrdiff_t openFiles()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// Comes back to the working directory at the end of a scope, however long its name.
class WorkingDirectoryScope
{
public:
    WorkingDirectoryScope()
        : m_before(::open(".", O_RDONLY | O_DIRECTORY))
    {
    }
    explicit WorkingDirectoryScope(const std::string& directory)
        : WorkingDirectoryScope()
    {
        if (::chdir(directory.c_str()) != 0)
            qFatal("cannot change to %s", directory.c_str());
    }
    ~WorkingDirectoryScope()
    {
        if (::fchdir(m_before) != 0)
            qFatal("the working directory is gone");
        ::close(m_before);
    }
    WorkingDirectoryScope(const WorkingDirectoryScope&) = delete;
    WorkingDirectoryScope& operator=(const WorkingDirectoryScope&) = delete;

private:
    int m_before;
};

class UmaskScope
{
public:
    explicit UmaskScope(mode_t mask)
        : m_before(::umask(mask))
    {
    }
    ~UmaskScope() { ::umask(m_before); }
    UmaskScope(const UmaskScope&) = delete;
    UmaskScope& operator=(const UmaskScope&) = delete;

private:
    mode_t m_before;
};

/// What `function` printed to the standard output.
template <typename Function>
std::string printedBy(Function function)
{
    const Scratch scratch;
    const std::string name = scratch.path("printed");
    std::fflush(stdout);
    const int before = ::dup(STDOUT_FILENO);
    const int file = ::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::dup2(file, STDOUT_FILENO);
    ::close(file);
    function();
    std::fflush(stdout);
    ::dup2(before, STDOUT_FILENO);
    ::close(before);
    return readFile(name);
}

/// Runs `function` in a child process and returns its result, 0 to 127, or -1 where it crashed. For
/// what a process does once or cannot undo.
template <typename Function>
int inChild(Function function)
{
    std::fflush(stdout);
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(function());
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
