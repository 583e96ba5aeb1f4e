// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

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
