// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <functional>

/// Runs `action` in a child process and returns what its failed assertion said; empty when none
/// failed, and always empty in builds without assertions (see assertionsEnabled()).
QByteArray failedAssertion(const std::function<void()>& action);

constexpr bool assertionsEnabled()
{
#ifdef QT_NO_DEBUG
    return false;
#else
    return true;
#endif
}
