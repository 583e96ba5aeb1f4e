// SPDX-License-Identifier: MIT
#pragma once

/// Whether `call` throws an Exception. The macros of Qt 5 and Qt 6 for it have nothing in common.
template <typename Exception, typename Call>
bool throws(Call call)
{
    try {
        call();
    } catch (const Exception&) {
        return true;
    }
    return false;
}
