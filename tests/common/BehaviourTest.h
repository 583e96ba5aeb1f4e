// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QtTest>

// A busy machine needs longer than the five seconds of Qt Test, and only a failing test waits for
// it.
constexpr int kPatienceMs = 30000;
#undef QTRY_COMPARE
#define QTRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT((actual), (expected), kPatienceMs)
#undef QTRY_VERIFY
#define QTRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT((condition), kPatienceMs)

/// Whether a warning of Qt's is one of those that are named in BehaviourTest.cpp with their reason.
bool isKnownWarning(const QString& message);

/// Base of every test class: a test during which Qt prints a warning fails, save for the warnings
/// named in BehaviourTest.cpp with their reason.
class BehaviourTest : public QObject
{
    Q_OBJECT

protected slots:
    void init();
    void cleanup();
};
