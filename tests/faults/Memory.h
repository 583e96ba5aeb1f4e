// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/// While one lives, this process gets no memory in pieces of `bytes` and more: enough for widgets,
/// not for pictures. Needs MemoryFaults.cpp in the program.
class MemoryShortage
{
public:
    explicit MemoryShortage(std::size_t bytes);
    ~MemoryShortage();
    MemoryShortage(const MemoryShortage&) = delete;
    MemoryShortage& operator=(const MemoryShortage&) = delete;

    /// How many requests were refused.
    int refused() const;
};
