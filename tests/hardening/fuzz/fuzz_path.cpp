// SPDX-License-Identifier: MIT
#include "Require.h"
#include "myfs.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <fuzzer/FuzzedDataProvider.h>
#include <stdexcept>
#include <string>

namespace
{

using myfs::path;

constexpr int kMostOperations = 64;
constexpr std::size_t kMostTextBytes = 64;
/// Appending a path to itself would otherwise double it with every operation.
constexpr std::size_t kMostComponents = 512;

std::string someText(FuzzedDataProvider& input)
{
    return input.ConsumeRandomLengthString(kMostTextBytes);
}

std::wstring someWideText(FuzzedDataProvider& input)
{
    std::wstring text;
    for (const char byte : someText(input))
        text.push_back(static_cast<wchar_t>(static_cast<unsigned char>(byte) * 257));
    return text;
}

void requireParsed(const path& p, const std::string& text)
{
    REQUIRE(path(p).string() == p.string());
    REQUIRE(p.size() <= text.size() / 2 + 2);
    REQUIRE(p.string().find("//") == std::string::npos);
    // Rendered text means the same path, save that the root alone is rendered as nothing.
    if (p.empty())
        return;
    const path again(p.generic_string());
    REQUIRE(again.generic_string() == p.generic_string());
}

void requireOrdered(const path& a, const path& b)
{
    REQUIRE(a.compare(a) == 0);
    REQUIRE(a.compare(b) == -b.compare(a));
    REQUIRE((a < b) == (a.compare(b) < 0));
}

void parse(FuzzedDataProvider& input, path& p)
{
    const path::SYSPATHTYPE type = input.ConsumeBool() ? path::WINDOWS_PATH : path::POSIX_PATH;
    switch (input.ConsumeIntegralInRange(0, 5)) {
    case 0: {
        const std::string text = someText(input);
        p.set(text, path::POSIX_PATH);
        requireParsed(p, text);
        break;
    }
    case 1:
        p.set(someText(input), type);
        break;
    case 2:
        p.set(someWideText(input), type);
        break;
    case 3:
        p = path(someWideText(input).c_str());
        break;
    case 4:
        p = someText(input).c_str();
        break;
    default:
        p = myfs::gbk_path(someText(input));
        break;
    }
}

void query(const path& p)
{
    p.str();
    p.wstr();
    p.generic_wstring();
    p.is_absolute();
    requireOrdered(p, p.parent_path());
    requireOrdered(p.root_name(), p.leaf_name());
    const std::string name = p.filename().string();
    REQUIRE(p.basename().string().size() + p.extension().string().size() <= name.size());
    if (!p.empty())
        REQUIRE(p.parent_path().size() + 1 == p.size());
    try {
        p.make_absolute();
    } catch (const std::runtime_error& error) {
        REQUIRE(std::string(error.what()).rfind("Internal error in realpath(): ", 0) == 0);
    }
}

void edit(FuzzedDataProvider& input, path& p, path& other)
{
    switch (input.ConsumeIntegralInRange(0, 7)) {
    case 0:
        p.append(other);
        break;
    case 1:
        p.append(p);
        break;
    case 2:
        p.append(someText(input));
        break;
    case 3:
        p.remove_filename();
        break;
    case 4:
        p.replace_extension(other);
        break;
    case 5:
        p.swap(other);
        break;
    case 6:
        p = other;
        break;
    default:
        p.clear();
        REQUIRE(p.empty());
        break;
    }
    if (p.size() > kMostComponents || p.string().size() > kMostComponents * kMostTextBytes)
        p.clear();
}

} // namespace

/// The input is a list of operations on two paths.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    std::array<path, 2> paths;
    for (int i = 0; i < kMostOperations && input.remaining_bytes() > 0; ++i) {
        path& p = input.ConsumeBool() ? paths[0] : paths[1];
        path& other = &p == &paths[0] ? paths[1] : paths[0];
        switch (input.ConsumeIntegralInRange(0, 3)) {
        case 0:
            parse(input, p);
            break;
        case 1:
            query(p);
            break;
        case 2:
            requireOrdered(p, other);
            break;
        default:
            edit(input, p, other);
            break;
        }
    }
    const std::string text = input.ConsumeRemainingBytesAsString();
    for (const std::string& piece : myfs::tokenize(text, "/\\"))
        REQUIRE(piece.find_first_of("/\\") == std::string::npos && piece != ".");
    return 0;
}
