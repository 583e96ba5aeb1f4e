// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QtTest>
#include <functional>

/// Runs `action` in a child process and returns what its failed assertion said; empty when none
/// failed.
QByteArray failedAssertion(const std::function<void()>& action);

/// Leaves a test that is about assertions in builds that have none.
#ifdef QT_NO_DEBUG
// The second argument is not used: clang wants one for QSKIP's "...".
#define SKIP_WITHOUT_ASSERTIONS() QSKIP("built without assertions", "")
#else
#define SKIP_WITHOUT_ASSERTIONS() static_cast<void>(0)
#endif
