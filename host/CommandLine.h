// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

/// What the user asked for on the command line.
class CommandLine
{
    Q_DECLARE_TR_FUNCTIONS(CommandLine)

public:
    /// What to do; Help, Version and Wrong have their text in message().
    enum class Action { Window, Once, Help, Version, Wrong };

    /// `arguments` as main() got them, the program's name first. Needs a
    /// QCoreApplication, but no display.
    explicit CommandLine(const QStringList& arguments);

    Action action() const { return m_action; }
    QString message() const { return m_message; }
    /// The file to write; empty when none was asked for.
    QString output() const { return m_output; }
    bool toClipboard() const { return m_toClipboard; }
    int delayMs() const { return m_delayMs; }
    /// The settings directory; empty for the default one.
    QString settingsDir() const { return m_settingsDir; }

private:
    void parse(const QStringList& arguments);
    void wrong(const QString& message);

    Action m_action = Action::Window;
    QString m_message;
    QString m_output;
    bool m_toClipboard = false;
    int m_delayMs = 0;
    QString m_settingsDir;
};
