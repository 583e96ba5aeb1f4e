// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <utility>

/// Turns bytes into choices, so that the bytes of a seed and those of a fuzzer drive the same test.
class Choices
{
public:
    explicit Choices(std::string bytes)
        : m_bytes(std::move(bytes))
    {
    }

    bool atEnd() const { return m_next >= m_bytes.size(); }

    /// Returns a number from 0 to `count` - 1; 0 at the end.
    std::size_t below(std::size_t count)
    {
        return atEnd() ? 0 : static_cast<unsigned char>(m_bytes[m_next++]) % count;
    }

    /// Returns at most `most` bytes. Most of them are taken from `letters`.
    std::string text(std::size_t most, const std::string& letters)
    {
        const std::size_t length = below(most + 1);
        std::string text = m_bytes.substr(m_next, length);
        m_next += text.size();
        for (char& byte : text) {
            const auto value = static_cast<unsigned char>(byte);
            byte = value < kFirstForeignByte ? letters[value % letters.size()] : byte;
        }
        return text;
    }

private:
    static constexpr unsigned char kFirstForeignByte = 224;

    std::string m_bytes;
    std::size_t m_next = 0;
};
