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

/// The node of the tree whose member has that value; empty where there is none.
QJsonObject nodeWith(const QString& member, const QJsonValue& value, const QJsonObject& tree)
{
    if (tree[member] == value)
        return tree;
    for (const char* kind : {"nodes", "floating_nodes"}) {
        for (const QJsonValue& child : tree[QLatin1String(kind)].toArray()) {
            const QJsonObject found = nodeWith(member, value, child.toObject());
            if (!found.isEmpty())
                return found;
        }
    }
    return {};
}

QRect place(const QJsonValue& value)
{
    const QJsonObject r = value.toObject();
    return {r["x"].toInt(), r["y"].toInt(), r["width"].toInt(), r["height"].toInt()};
}

} // namespace

QVector<Output> outputs()
{
    QVector<Output> outputs;
    QRect all;
    for (const QJsonValue& value : answer("get_outputs").array()) {
        const QJsonObject output = value.toObject();
        if (!output["active"].toBool())
            continue;
        outputs << Output{output["name"].toString(), place(output["rect"]),
                          output["scale"].toDouble()};
        all |= outputs.last().place;
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
    return nodeWith("focused", true, answer("get_tree").object())["pid"].toInt();
}

QRect placeOf(const QString& title)
{
    const QJsonObject all = answer("get_tree").object();
    return place(nodeWith("name", title, all)["rect"]).translated(-place(all["rect"]).topLeft());
}

// It names its socket so: sway-ipc.USER.PROCESS.sock
pid_t compositor()
{
    return qEnvironmentVariable("SWAYSOCK").section('.', -2, -2).toInt();
}

pid_t processOf(const QString& service)
{
    const uint process = QDBusConnection::sessionBus().interface()->servicePid(service);
    return static_cast<pid_t>(process);
}
