// SPDX-License-Identifier: MIT
#include "code_convert.h"
#include "myfs.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace myfs
{

namespace
{

constexpr const char* kUncMarker = "\\\\";

bool is_unc_marker(const std::string& component)
{
    return component == kUncMarker;
}

bool has_drive(const std::string& text)
{
    return text.size() >= 2 && text[1] == ':';
}

bool has_unc_prefix(const std::string& text)
{
    return text.size() > 2 && is_separator(text[0]) && is_separator(text[1]);
}

bool names_no_file(const std::string& component)
{
    return is_unc_marker(component) || component.find(':') != std::string::npos;
}

} // namespace

path::path(const char* text)
{
    set(std::string(text), POSIX_PATH);
}

path::path(const std::string& text)
{
    set(text, POSIX_PATH);
}

path::path(const wchar_t* text)
{
    set(std::wstring(text), POSIX_PATH);
}

path::path(const std::wstring& text)
{
    set(text, POSIX_PATH);
}

path& path::operator=(const path& other)
{
    // Intended: assignment parses the text again, which turns the root into one empty component.
    set(other.string(), POSIX_PATH);
    return *this;
}

path& path::operator=(const char* text)
{
    set(std::string(text), POSIX_PATH);
    return *this;
}

path& path::operator=(const std::string& text)
{
    set(text, POSIX_PATH);
    return *this;
}

void path::set(const std::string& text, SYSPATHTYPE type)
{
    m_type = type;
    m_components = tokenize(text, "/\\");
    if (type != WINDOWS_PATH) {
        // Intended: a leading backslash does not make the path absolute.
        m_absolute = !text.empty() && text[0] == '/';
        return;
    }
    m_absolute = has_drive(text);
    if (!m_absolute && has_unc_prefix(text)) {
        m_absolute = true;
        m_components.insert(m_components.begin(), kUncMarker);
    }
}

void path::set(const std::wstring& text, SYSPATHTYPE type)
{
    set(CodeCvt::utf16_to_utf8(text), type);
}

std::string path::string() const
{
    std::string text;
    path_to_string(m_components, text, m_absolute, m_type);
    return text;
}

std::string path::str() const
{
    return string();
}

std::string path::generic_string() const
{
    std::string text;
    path_to_string(m_components, text, m_absolute, POSIX_PATH);
    return text;
}

std::wstring path::wstring() const
{
    return CodeCvt::utf8_to_utf16(str());
}

std::wstring path::wstr() const
{
    return wstring();
}

std::wstring path::generic_wstring() const
{
    return CodeCvt::utf8_to_utf16(generic_string());
}

// Intended: the root, without components, is empty; the empty text, with one, is not.
bool path::empty() const
{
    return m_components.empty();
}

bool path::is_absolute() const
{
    return m_absolute;
}

std::size_t path::size() const
{
    return m_components.size();
}

// Intended: style and root remain.
void path::clear()
{
    m_components.clear();
}

path& path::append(const path& p)
{
    // Intended: an empty path takes the components of an absolute one, any other ignores it.
    if (!empty() && p.is_absolute())
        return *this;
    // Appending grows `p`, too, if it is this path.
    const std::size_t count = p.m_components.size();
    for (std::size_t i = 0; i < count; ++i)
        m_components.push_back(p.m_components[i]);
    return *this;
}

path& path::append(const char* text)
{
    return append(path(text));
}

path& path::append(const std::string& text)
{
    return append(path(text));
}

path path::parent_path() const
{
    path parent;
    parent.m_absolute = m_absolute;
    if (!empty())
        parent.m_components.assign(m_components.begin(), m_components.end() - 1);
    else if (!m_absolute)
        parent.m_components.emplace_back("..");
    return parent;
}

path& path::remove_filename()
{
    if (!empty())
        *this = parent_path();
    return *this;
}

path path::root_name() const
{
    return empty() ? path() : path(m_components.front());
}

path path::leaf_name() const
{
    return empty() ? path() : path(m_components.back());
}

path path::filename() const
{
    if (empty() || names_no_file(m_components.back()))
        return {};
    return {m_components.back()};
}

path path::extension() const
{
    const std::string name = filename().string();
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos ? path() : path(name.substr(dot));
}

path path::basename() const
{
    const std::string name = filename().string();
    // Intended: ".profile" has the base name path(""), which has one empty component.
    return {name.substr(0, name.rfind('.'))};
}

path& path::replace_extension(const path& ext)
{
    if (empty() || names_no_file(m_components.back()))
        return *this;
    std::string& name = m_components.back();
    const std::size_t dot = name.rfind('.');
    if (dot != std::string::npos)
        name.erase(dot);
    const std::string added = ext.generic_string();
    if (!added.empty() && added.front() != '.')
        name.push_back('.');
    name.append(added);
    return *this;
}

// Intended: each path keeps its style and root.
void path::swap(path& other)
{
    m_components.swap(other.m_components);
}

path path::make_absolute() const
{
    char resolved[PATH_MAX] = {};
    if (::realpath(str().c_str(), resolved) == nullptr) {
        throw std::runtime_error(std::string("Internal error in realpath(): ") +
                                 std::strerror(errno));
    }
    return {resolved};
}

// Intended: the root does not count.
int path::compare(const path& other) const
{
    if (m_components == other.m_components)
        return 0;
    return m_components < other.m_components ? -1 : 1;
}

gbk_path::gbk_path(const char* text)
    : gbk_path(std::string(text))
{
}

gbk_path::gbk_path(const std::string& text)
{
    set(CodeCvt::gbk_to_utf8(text), POSIX_PATH);
}

bool operator<(const path& a, const path& b)
{
    return a.compare(b) < 0;
}

std::string native_sep()
{
    return "/";
}

char native_sep_char()
{
    return '/';
}

std::wstring native_wsep()
{
    return L"/";
}

bool is_separator(char c)
{
    return c == '/' || c == '\\';
}

std::vector<std::string> tokenize(const std::string& text, const std::string& delimiters)
{
    // Intended: only the empty text gives an empty piece.
    if (text.empty())
        return {text};
    std::vector<std::string> pieces;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find_first_of(delimiters, start), text.size());
        std::string piece = text.substr(start, end - start);
        if (!piece.empty() && piece != ".")
            pieces.push_back(std::move(piece));
        start = end + 1;
    }
    return pieces;
}

void path_to_string(const std::vector<std::string>& components, std::string& out, bool absolute,
                    path::SYSPATHTYPE type)
{
    // Intended: without components, an absolute path has no leading separator either.
    if (components.empty())
        return;
    const bool unc = is_unc_marker(components.front());
    if (type == path::POSIX_PATH && absolute && !unc)
        out += '/';
    out += components.front();
    for (std::size_t i = 1; i < components.size(); ++i) {
        if (i > 1 || !unc)
            out += type == path::WINDOWS_PATH ? '\\' : '/';
        out += components[i];
    }
}

} // namespace myfs
