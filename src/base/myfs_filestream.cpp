// SPDX-License-Identifier: MIT
#include "myfs.h"

#include <cstring>
#include <sys/file.h>

namespace myfs
{

namespace
{

constexpr unsigned int kReadOnlyMode = 0x80000000U;

// The position type of each platform is, or begins with, a 64-bit offset.
static_assert(sizeof(std::fpos_t) >= sizeof(long long), "positions have 64 bits");

std::FILE* open_file(const path& p, const char* mode)
{
    return std::fopen(p.str().c_str(), mode);
}

bool create_file(const path& p)
{
    std::FILE* file = open_file(p, "ab+");
    if (file == nullptr)
        return false;
    std::fclose(file);
    return true;
}

} // namespace

filestream::~filestream()
{
    close();
}

bool filestream::open(const path& p, unsigned int mode, bool create)
{
    // Intended: an open stream keeps its file and reports success.
    if (is_open())
        return true;
    if (create && !exists(p) && !create_file(p))
        return false;
    // Intended: only this very value opens a file read-only. Its single bits have no meaning.
    m_file = open_file(p, mode == kReadOnlyMode ? "rb" : "rb+");
    return is_open();
}

void filestream::close()
{
    if (!is_open())
        return;
    std::fclose(m_file);
    m_file = nullptr;
}

bool filestream::is_open() const
{
    return m_file != nullptr;
}

std::size_t filestream::write(const void* data, std::size_t n)
{
    return is_open() ? std::fwrite(data, 1, n, m_file) : 0;
}

std::size_t filestream::read(void* data, std::size_t n)
{
    return is_open() ? std::fread(data, 1, n, m_file) : 0;
}

int filestream::flush()
{
    return is_open() ? std::fflush(m_file) : 0;
}

// Intended: flock() and the position functions do not check that the stream is open.
int filestream::flock(int operation)
{
    return ::flock(::fileno(m_file), operation);
}

bool filestream::eof() const
{
    return !is_open() || std::feof(m_file) != 0;
}

bool filestream::getpos(long long* pos)
{
    std::fpos_t position = {};
    if (std::fgetpos(m_file, &position) != 0)
        return false;
    std::memcpy(pos, &position, sizeof *pos);
    return true;
}

bool filestream::setpos(long long pos)
{
    std::fpos_t position = {};
    std::memcpy(&position, &pos, sizeof pos);
    return std::fsetpos(m_file, &position) == 0;
}

bool filestream::set_begin_pos()
{
    return setpos(0);
}

bool filestream::set_end_pos()
{
    return ::fseeko(m_file, 0, SEEK_END) == 0;
}

} // namespace myfs
