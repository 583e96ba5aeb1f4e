// SPDX-License-Identifier: MIT
#include "Holdings.h"

#include "ServerHoldings.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QWidget>
#include <malloc.h>
#include <unistd.h>

// Qt calls what stands here for every object that is made and deleted.
extern quintptr Q_CORE_EXPORT qtHookData[];

namespace
{

// Places in Qt's table, as its private header hooks_p.h numbers them.
constexpr int kAddObject = 3;
constexpr int kRemoveObject = 4;

long s_objects = 0;

void addObject(QObject* /*object*/)
{
    ++s_objects;
}

void removeObject(QObject* /*object*/)
{
    --s_objects;
}

qint64 residentBytes()
{
    QFile file("/proc/self/statm");
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

long openFiles()
{
    return QDir("/proc/self/fd")
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

void countTimersBelow(const QObject* object, long& timers)
{
    timers +=
        QAbstractEventDispatcher::instance()->registeredTimers(const_cast<QObject*>(object)).size();
    for (const QObject* child : object->children())
        countTimersBelow(child, timers);
}

// The timers of the application and of all windows, whatever they hang from.
long timers()
{
    long count = 0;
    countTimersBelow(QCoreApplication::instance(), count);
    for (const QWidget* widget : QApplication::topLevelWidgets())
        countTimersBelow(widget, count);
    return count;
}

} // namespace

void countObjects()
{
    qtHookData[kAddObject] = reinterpret_cast<quintptr>(&addObject);
    qtHookData[kRemoveObject] = reinterpret_cast<quintptr>(&removeObject);
}

Holdings Holdings::now()
{
    Holdings holdings;
    holdings.untrimmedBytes = ::residentBytes();
    // What is free but not given back to the system is not held.
    malloc_trim(0);
    holdings.residentBytes = ::residentBytes();
    holdings.counts["objects"] = s_objects;
    holdings.counts["widgets"] = QApplication::allWidgets().size();
    holdings.counts["timers"] = timers();
    holdings.counts["open files"] = openFiles();
    for (const auto& kind : serverHoldings())
        holdings.counts["X " + QString::fromStdString(kind.first)] = kind.second;
    return holdings;
}

QString Holdings::missing() const
{
    QString text;
    if (residentBytes <= 0)
        text += "memory: not told\n";
    for (const char* const kind :
         {"objects", "widgets", "open files", "X WINDOW", "X PIXMAP", "X pixmap bytes"}) {
        if (counts.value(kind) <= 0)
            text += QString("%1: not told\n").arg(kind);
    }
    return text;
}

QString Holdings::growthUntil(const Holdings& later) const
{
    QString text;
    for (auto it = later.counts.begin(); it != later.counts.end(); ++it) {
        const long before = counts.value(it.key());
        if (it.value() > before)
            text += QString("%1: %2 -> %3\n").arg(it.key()).arg(before).arg(it.value());
    }
    return text;
}

QString Holdings::text() const
{
    QString text = QString("memory %1 KiB, untrimmed %2 KiB")
                       .arg(residentBytes / 1024)
                       .arg(untrimmedBytes / 1024);
    for (auto it = counts.begin(); it != counts.end(); ++it)
        text += QString(", %1 %2").arg(it.key()).arg(it.value());
    return text;
}
