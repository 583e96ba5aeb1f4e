// SPDX-License-Identifier: MIT
#include "TextModel.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 0)
        requireTextConverted(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
