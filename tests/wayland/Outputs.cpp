// SPDX-License-Identifier: MIT
#include "Outputs.h"

#include "Input.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

namespace
{

QByteArray outputOf(const QString& program, const QStringList& words)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, words);
    process.waitForFinished();
    return process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray();
}

QJsonDocument answer(const QString& question)
{
    return QJsonDocument::fromJson(outputOf("swaymsg", {"-r", "-t", question}));
}

// The edges of a scaled output are half transparent in it, which a screen is not.
QImage picture(const QStringList& words)
{
    const QStringList uncompressed{"-l", "0"};
    return QImage::fromData(outputOf("grim", uncompressed + words + QStringList{"-"}), "png")
        .convertToFormat(QImage::Format_RGB32);
}

qint64 focused(const QJsonObject& node)
{
    if (node["focused"].toBool())
        return node["pid"].toInt();
    for (const char* kind : {"nodes", "floating_nodes"}) {
        for (const QJsonValue& child : node[QLatin1String(kind)].toArray()) {
            if (const qint64 pid = focused(child.toObject()))
                return pid;
        }
    }
    return 0;
}

} // namespace

QVector<Output> outputs()
{
    QVector<Output> outputs;
    QRect all;
    for (const QJsonValue& value : answer("get_outputs").array()) {
        const QJsonObject output = value.toObject();
        const QJsonObject r = output["rect"].toObject();
        const QRect place(r["x"].toInt(), r["y"].toInt(), r["width"].toInt(), r["height"].toInt());
        if (output["active"].toBool()) {
            outputs << Output{output["name"].toString(), place, output["scale"].toDouble()};
            all |= place;
        }
    }
    for (Output& output : outputs)
        output.place.translate(-all.topLeft());
    return outputs;
}

QSize sizeOfAll(const QVector<Output>& outputs)
{
    QRect all;
    for (const Output& output : outputs)
        all |= output.place;
    return all.size();
}

qreal largestScale(const QVector<Output>& outputs)
{
    qreal largest = 0;
    for (const Output& output : outputs)
        largest = qMax(largest, output.scale);
    return largest;
}

QImage pictureOf(const Output& output)
{
    return picture({"-o", output.name});
}

QImage pictureOfAll()
{
    return picture({});
}

void tellCompositor(const QString& command)
{
    run("swaymsg", {"-q", "--", command});
}

qint64 processWithKeyboard()
{
    return focused(answer("get_tree").object());
}

// It names its socket so: sway-ipc.USER.PROCESS.sock
pid_t compositor()
{
    return qEnvironmentVariable("SWAYSOCK").section('.', -2, -2).toInt();
}

// The one that takes the picture.
pid_t portal()
{
    const QDBusConnectionInterface* bus = QDBusConnection::sessionBus().interface();
    const uint process = bus->servicePid("org.freedesktop.impl.portal.desktop.wlr");
    return static_cast<pid_t>(process);
}
