// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>

/// Runs a program, which has to succeed.
void run(const QString& program, const QStringList& words);

/// Real input through the X server.
void input(const QStringList& words);

/// The words that move the pointer there.
QStringList at(const QPoint& p);
