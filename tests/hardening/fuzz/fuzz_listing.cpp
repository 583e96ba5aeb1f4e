// SPDX-License-Identifier: MIT
#include "ListingModel.h"

#include <cstddef>
#include <cstdint>

/// The input chooses the entries of a directory and of those in it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t mostBytes = 100;
    const std::string bytes(reinterpret_cast<const char*>(data), std::min(size, mostBytes));
    requireListingsFollowTheModel(Choices(bytes));
    return 0;
}
