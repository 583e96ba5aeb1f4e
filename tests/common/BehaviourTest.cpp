// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"

#include <QGuiApplication>
#include <QMutex>
#include <QRegularExpression>
#include <QStringList>
#include <QStyleHints>
#include <QtTest>

namespace
{

struct KnownWarning {
    const char* pattern;
    const char* reason;
};

const KnownWarning kKnownWarnings[] = {
    {"^Could not parse stylesheet of object (MagnifierWidget|ScribbleArea|QTextEdit)",
     "the style sheet with the stray closing brace is kept as it stands"},
    {"^QStandardPaths: ", "the test machine may have no runtime directory"},
    {"^QXcbConnection: XCB error: 3 \\(BadWindow\\)",
     "a window that the test closed was asked after by Qt's own event handling"},
    {"^QXcbConnection: XCB error: 8 \\(BadMatch\\).*\\(SetInputFocus\\)",
     "without a window manager Qt gives the focus itself, also to a window that the server "
     "does not show"},
    {"^This plugin does not support propagateSizeHints\\(\\)",
     "Qt's offscreen platform says so for every window with a fixed size"},
    {"^QImage: out of memory, returning null image", "a test refuses the memory for it"},
    {"^Bogus message code 0$", "Qt's writer of JPEG files says so where the disk is full"},
    {"^Falling back to using screens root_visual", "a display of 16 bits has no other"},
    {"^This plugin does not support raise\\(\\)", "Qt's offscreen platform has no stacking order"},
};

QMutex s_mutex;
QStringList s_unexpected;
QtMessageHandler s_previous = nullptr;

void recordWarning(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type == QtWarningMsg || type == QtCriticalMsg) {
        if (isKnownWarning(message))
            return;
        QMutexLocker lock(&s_mutex);
        s_unexpected << message;
    }
    s_previous(type, context, message);
}

} // namespace

bool isKnownWarning(const QString& message)
{
    for (const KnownWarning& known : kKnownWarnings) {
        if (QRegularExpression(known.pattern).match(message).hasMatch())
            return true;
    }
    return false;
}

void BehaviourTest::init()
{
    // A text cursor that blinks between two looks at a widget differs in them.
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        QGuiApplication::styleHints()->setCursorFlashTime(0);
    s_unexpected.clear();
    s_previous = qInstallMessageHandler(recordWarning);
}

void BehaviourTest::cleanup()
{
    qInstallMessageHandler(s_previous);
    QVERIFY2(s_unexpected.isEmpty(), qPrintable("Qt warned: " + s_unexpected.join(" | ")));
}
