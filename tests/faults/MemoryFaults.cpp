// SPDX-License-Identifier: MIT
// Stands before the C library's allocation, for this program and the libraries that it loads.
#include "Memory.h"

#include <atomic>
#include <cerrno>
#include <cstdint>

extern "C" {
void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t count, std::size_t bytes);
void* __libc_realloc(void* memory, std::size_t bytes);
}

namespace
{

std::atomic<std::size_t> s_limitBytes(SIZE_MAX);
std::atomic<int> s_refused(0);

bool isRefused(std::size_t bytes)
{
    if (bytes < s_limitBytes)
        return false;
    ++s_refused;
    errno = ENOMEM;
    return true;
}

} // namespace

extern "C" {

void* malloc(std::size_t bytes)
{
    return isRefused(bytes) ? nullptr : __libc_malloc(bytes);
}

void* calloc(std::size_t count, std::size_t bytes)
{
    return isRefused(count * bytes) ? nullptr : __libc_calloc(count, bytes);
}

void* realloc(void* memory, std::size_t bytes)
{
    return isRefused(bytes) ? nullptr : __libc_realloc(memory, bytes);
}
}

MemoryShortage::MemoryShortage(std::size_t bytes)
{
    s_refused = 0;
    s_limitBytes = bytes;
}

MemoryShortage::~MemoryShortage()
{
    s_limitBytes = SIZE_MAX;
}

int MemoryShortage::refused() const
{
    return s_refused;
}
