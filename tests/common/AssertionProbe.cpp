// SPDX-License-Identifier: MIT
#include "AssertionProbe.h"

#include <QString>
#include <QtGlobal>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

int s_reportFd = -1;

void reportAndLeave(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message)
{
    if (type != QtFatalMsg)
        return;
    const QByteArray text = message.toUtf8();
    if (write(s_reportFd, text.constData(), size_t(text.size())) < 0)
        _exit(2);
    _exit(1);
}

} // namespace

QByteArray failedAssertion(const std::function<void()>& action)
{
    int ends[2];
    if (pipe(ends) != 0)
        return "no pipe";
    const pid_t child = fork();
    if (child == 0) {
        s_reportFd = ends[1];
        qInstallMessageHandler(reportAndLeave);
        action();
        _exit(0);
    }
    close(ends[1]);
    QByteArray message;
    char chunk[512];
    for (ssize_t n = read(ends[0], chunk, sizeof chunk); n > 0;
         n = read(ends[0], chunk, sizeof chunk))
        message.append(chunk, int(n));
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return message;
}
