// SPDX-License-Identifier: MIT
#pragma once

#include "BehaviourTest.h"
#include "Files.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QUuid>

// A bus and a portal that give the answers that those of a desktop cannot be made to give. Captures
// with a real portal are tested elsewhere.

inline const char kPortalName[] = "org.freedesktop.portal.Desktop";

/// A session bus of the test's own, on which nothing is started by itself. Only one in a program:
/// the address is asked for once.
class PrivateBus
{
public:
    PrivateBus()
    {
        const std::string address = "unix:path=" + m_scratch.path("bus");
        qputenv("DBUS_SESSION_BUS_ADDRESS", address.c_str());
        writeFile(m_scratch.path("config"),
                  "<busconfig><listen>" + address + "</listen><servicedir>" + m_scratch.path() +
                      "</servicedir><policy context='default'><allow own='*'/>"
                      "<allow send_destination='*'/><allow receive_sender='*'/>"
                      "</policy></busconfig>");
    }
    ~PrivateBus() { stop(); }
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    /// Comes back once it can be connected to. It ends with the test, also where this crashes.
    void start()
    {
        const QString config = QString::fromStdString(m_scratch.path("config"));
        m_daemon.start("setpriv", {"--pdeathsig", "KILL", "dbus-daemon", "--nofork",
                                   "--print-address", "--config-file", config});
        if (!m_daemon.waitForReadyRead(kPatienceMs))
            qFatal("the session bus does not start");
    }
    void stop()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }
    /// Calls to a portal that is absent wait until the test starts it.
    void awaitPortal() const
    {
        writeFile(m_scratch.path("portal.service"),
                  std::string("[D-BUS Service]\nExec=/bin/true\nName=") + kPortalName + "\n");
    }
    void awaitNothing() const { std::filesystem::remove(m_scratch.path("portal.service")); }

private:
    Scratch m_scratch;
    QProcess m_daemon;
};

/// Stands in for the desktop's portal. It keeps what it is asked; the test answers.
class FakePortal : public QDBusVirtualObject
{
public:
    /// What was asked of the interface for screenshots, and the paths of the requests that were
    /// withdrawn.
    QVector<QDBusMessage> calls;
    QStringList withdrawn;
    bool takesScreenshots = true;

    /// Takes the place of another one.
    FakePortal()
        : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus,
                                              QUuid::createUuid().toString()))
    {
        m_bus.registerVirtualObject("/org/freedesktop/portal/desktop", this,
                                    QDBusConnection::SubPath);
        if (!m_bus.interface()->registerService(kPortalName,
                                                QDBusConnectionInterface::ReplaceExistingService,
                                                QDBusConnectionInterface::AllowReplacement))
            qFatal("the bus has another portal");
    }
    /// Leaves the bus.
    ~FakePortal() override { QDBusConnection::disconnectFromBus(m_bus.name()); }
    FakePortal(const FakePortal&) = delete;
    FakePortal& operator=(const FakePortal&) = delete;

    /// The request's path, which follows from the caller's name and from the token of the call.
    static QString requestPath(const QDBusMessage& call)
    {
        const auto options = qdbus_cast<QVariantMap>(call.arguments().value(1));
        return "/org/freedesktop/portal/desktop/request/" +
               call.service().mid(1).replace('.', '_') + '/' +
               options.value("handle_token").toString();
    }

    /// Comes back once the bus has no portal.
    void giveNameUp() { m_bus.interface()->unregisterService(kPortalName); }

    void reply(const QDBusMessage& call) { reply(call, QDBusObjectPath(requestPath(call))); }
    void reply(const QDBusMessage& call, const QVariant& value)
    {
        m_bus.send(call.createReply(value));
    }
    void replyWithError(const QDBusMessage& call, const QString& message)
    {
        m_bus.send(call.createErrorReply("org.freedesktop.portal.Error.Failed", message));
    }

    void respond(const QString& path, const QVariantList& arguments)
    {
        QDBusMessage response =
            QDBusMessage::createSignal(path, "org.freedesktop.portal.Request", "Response");
        response.setArguments(arguments);
        m_bus.send(response);
    }
    void respond(const QDBusMessage& call, uint code, const QVariantMap& results)
    {
        respond(requestPath(call), {code, results});
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& /*bus*/) override
    {
        if (message.member() == "Close") {
            withdrawn << message.path();
            m_bus.send(message.createReply());
        } else if (takesScreenshots && message.interface() == "org.freedesktop.portal.Screenshot") {
            calls << message;
        } else {
            return false;
        }
        return true;
    }
    QString introspect(const QString& /*path*/) const override { return {}; }

private:
    QDBusConnection m_bus;
};
