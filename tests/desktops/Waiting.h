// SPDX-License-Identifier: MIT
#pragma once

#include <QtTest>

#include <functional>

// Waiting for what a desktop does in its own time.

/// So long a failing test waits. A desktop needs less than a second.
constexpr int kDesktopPatienceMs = 5000;

inline bool eventually(const std::function<bool()>& condition)
{
    return QTest::qWaitFor(condition, kDesktopPatienceMs);
}

/// What has failed once is not waited for again.
inline bool waitFor(const std::function<bool()>& condition)
{
    return QTest::currentTestFailed() ? condition() : eventually(condition);
}
