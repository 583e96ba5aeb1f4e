// SPDX-License-Identifier: MIT
#pragma once

#include "Skip.h"

#include <clocale>
#include <string>

/// Switches the locale for a scope, and back at its end.
class LocaleScope
{
public:
    explicit LocaleScope(const char* locale)
        : m_before(std::setlocale(LC_ALL, nullptr))
        , m_known(std::setlocale(LC_ALL, locale))
    {
    }
    ~LocaleScope() { std::setlocale(LC_ALL, m_before.c_str()); }
    LocaleScope(const LocaleScope&) = delete;
    LocaleScope& operator=(const LocaleScope&) = delete;

    bool isKnown() const { return m_known; }

private:
    std::string m_before;
    bool m_known;
};

inline bool hasChineseLocale()
{
    return LocaleScope("zh_CN.gb18030").isKnown();
}

/// For tests that need the GBK conversions.
#define SKIP_WITHOUT_CHINESE_LOCALE()                                                              \
    if (!hasChineseLocale())                                                                       \
    SKIP_BECAUSE("the system has no zh_CN.gb18030 locale; tools/install-packages chinese-locale "  \
                 "makes it")
