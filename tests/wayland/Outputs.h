// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QRect>
#include <QString>
#include <QStringList>
#include <QVector>

#include <sys/types.h>

// The compositor as its own tools see and change it.

struct Output {
    QString name;
    /// In the compositor's coordinates, from the corner of all outputs.
    QRect place;
    qreal scale = 1;
};

/// Those that are switched on.
QVector<Output> outputs();

/// The size of all outputs together.
QSize sizeOfAll(const QVector<Output>& outputs);
qreal largestScale(const QVector<Output>& outputs);

/// What an output shows, pixel by pixel.
QImage pictureOf(const Output& output);

/// What all outputs show, in the pixels of the one with the largest scale.
QImage pictureOfAll();

/// Runs a command of the compositor's, which has to succeed.
void tellCompositor(const QString& command);

/// The process whose window has the keyboard; 0 where none has it.
qint64 processWithKeyboard();

/// A window of that title, from the corner of all outputs; empty where there is none.
QRect placeOf(const QString& title);

pid_t compositor();

/// The process that has a name on the session bus.
pid_t processOf(const QString& service);

constexpr char kPortal[] = "org.freedesktop.portal.Desktop";
/// What takes the pictures for the portal.
constexpr char kPortalBackend[] = "org.freedesktop.impl.portal.desktop.wlr";
