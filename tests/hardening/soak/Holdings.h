// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>

/// What this process holds at a moment: bytes of memory, and how many of everything else.
struct Holdings {
    /// With what was freed but not given back to the system.
    qint64 untrimmedBytes = 0;
    qint64 residentBytes = 0;
    QMap<QString, long> counts;

    static Holdings now();
    /// What could not be told, one a line: what is not known does not grow.
    QString missing() const;
    /// What `later` holds more of, one a line.
    QString growthUntil(const Holdings& later) const;
    QString text() const;
};

/// Begins to count the objects and timers of Qt; to be called before there is an application.
void countObjects();
