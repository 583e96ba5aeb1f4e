// SPDX-License-Identifier: MIT
#include "PathModel.h"
#include "code_convert.h"

#include <cstddef>
#include <cstdint>

/// The input chooses operations on two paths. It is then the text of paths, in GBK and in UTF-8.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    requirePathsFollowTheirModels(Choices(text));
    REQUIRE(myfs::gbk_path(text).string() == myfs::path(CodeCvt::gbk_to_utf8(text)).string());
    try {
        REQUIRE(myfs::path(text).make_absolute().is_absolute());
    } catch (const std::runtime_error& error) {
        REQUIRE(std::string(error.what()).rfind("Internal error in realpath(): ", 0) == 0);
    }
    return 0;
}
