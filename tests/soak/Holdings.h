// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>

/// What this process holds at a moment: bytes of memory, and how many of everything else.
struct Holdings {
    qint64 residentBytes = 0;
    QMap<QString, long> counts;

    static Holdings now();
    /// What `later` holds more of, one a line.
    QString growthUntil(const Holdings& later) const;
    QString text() const;
};

/// Begins to count the objects and timers of Qt; to be called before there is an application.
void countObjects();
