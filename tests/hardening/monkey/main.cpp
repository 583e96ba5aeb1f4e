// SPDX-License-Identifier: MIT
// Lets the monkey play:
//   monkey [--events N] [--seed N|time]
// Prints what it did; when something is wrong, also the command that does it again.
#include "BehaviourTest.h"
#include "Monkey.h"

#include <QApplication>
#include <QDateTime>
#include <QSettings>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>
#include <csignal>
#include <cstdio>
#include <unistd.h>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/common_interface_defs.h>
#endif

namespace
{

constexpr int kDefaultEvents = 100000;
constexpr unsigned kHangSeconds = 60;

const char* s_program = nullptr;
quint32 s_seed = 0;
QStringList s_warnings;
int s_lastSeen = -1;

void printReplay()
{
    dprintf(STDERR_FILENO,
            "monkey: event %d; again: tools/with-display --size 640x480 -- %s --seed %u "
            "--events %d\n",
            Monkey::s_sent, s_program, s_seed, Monkey::s_sent + 1);
}

void onSignal(int signal)
{
    printReplay();
    std::signal(signal, SIG_DFL);
    raise(signal);
}

void onAlarm(int /*signal*/)
{
    if (s_lastSeen != Monkey::s_sent) {
        s_lastSeen = Monkey::s_sent;
        alarm(kHangSeconds);
        return;
    }
    std::fputs("monkey: hangs\n", stderr);
    std::abort();
}

void watchForTheEnd()
{
#ifdef __SANITIZE_ADDRESS__
    __sanitizer_set_death_callback(printReplay);
#else
    std::signal(SIGSEGV, onSignal);
#endif
    std::signal(SIGABRT, onSignal);
    std::signal(SIGALRM, onAlarm);
    alarm(kHangSeconds);
}

void keepWarning(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text)
{
    if (type == QtDebugMsg || type == QtInfoMsg || isKnownWarning(text))
        return;
    s_warnings << text;
    std::fprintf(stderr, "%s\n", qPrintable(text));
}

int usage()
{
    std::fprintf(stderr, "usage: monkey [--events N] [--seed N|time]\n");
    return 2;
}

quint32 seedOfNow()
{
    return quint32(QDateTime::currentMSecsSinceEpoch());
}

bool plays(quint32 seed, int events)
{
    s_seed = seed;
    std::printf("monkey: seed %u, %d events\n", seed, events);
    std::fflush(stdout);
    Monkey monkey(seed, events);
    monkey.play();
    std::printf("monkey: %d events, %d captures, %d results, %d save dialogs\n", Monkey::s_sent,
                monkey.captures(), monkey.deliveries(), monkey.dialogs());
    std::fflush(stdout);
    if (monkey.complaint().isEmpty() && s_warnings.isEmpty())
        return true;
    std::fprintf(stderr, "%s\nmonkey: %s\n", qPrintable(monkey.lastEvents().join('\n')),
                 qPrintable(monkey.complaint()));
    printReplay();
    return false;
}

} // namespace

bool hasWarned()
{
    return !s_warnings.isEmpty();
}

int main(int argc, char** argv)
{
    s_program = argv[0];
    qInstallMessageHandler(keepWarning);
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());

    int events = kDefaultEvents;
    quint32 seed = 1;
    const QStringList arguments = QApplication::arguments();
    for (int i = 1; i < arguments.size(); ++i) {
        if (arguments.at(i) == "--events")
            events = arguments.value(++i).toInt();
        else if (arguments.at(i) == "--seed" && arguments.value(i + 1) == "time")
            seed = seedOfNow(), ++i;
        else if (arguments.at(i) == "--seed")
            seed = arguments.value(++i).toUInt();
        else
            return usage();
    }
    watchForTheEnd();
    // Inside the event loop, where an application lives.
    QTimer::singleShot(0, &app, [=] { QCoreApplication::exit(plays(seed, events) ? 0 : 1); });
    return QApplication::exec();
}
