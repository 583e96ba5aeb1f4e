// SPDX-License-Identifier: MIT
#include "PortalScreenshot.h"

#include "QtVersions.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QScopeGuard>
#include <QTimer>
#include <QUrl>
#include <QUuid>

#include <limits>

namespace
{

constexpr char kService[] = "org.freedesktop.portal.Desktop";
constexpr char kDesktopPath[] = "/org/freedesktop/portal/desktop";
constexpr char kScreenshot[] = "org.freedesktop.portal.Screenshot";
constexpr char kRequest[] = "org.freedesktop.portal.Request";

/// What a response of the portal says.
enum Response : uint { Granted = 0, RefusedByUser = 1 };

// Far more than all screens of a desktop: 1 GiB in memory.
constexpr qint64 kLargestPictureBytes = qint64(1) << 30;
constexpr int kBytesPerPixel = 4;

// Qt's own connection would stay lost with a bus that has been started anew. This one stays open as
// well: Qt deletes a call twice where it closes a connection before the reply.
QDBusConnection sessionBus()
{
    const QString name = QStringLiteral("screencapture");
    if (QDBusConnection(name).isConnected())
        return QDBusConnection(name);
    QDBusConnection::disconnectFromBus(name);
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
}

// The portal makes the request's path of the caller's name and of the token, so that its signal can
// be listened to before the request is made.
QString requestPathFor(const QDBusConnection& bus, const QString& token)
{
    const QString sender = bus.baseService().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'));
    return QLatin1String(kDesktopPath) + QLatin1String("/request/") + sender + QLatin1Char('/') +
           token;
}

bool isReadable(const QSize& size)
{
    return size.isValid() &&
           qint64(size.width()) * size.height() <= kLargestPictureBytes / kBytesPerPixel;
}

// The portal leaves the file to the one that asked for it; an older one is somebody's. At the edges
// of scaled outputs a picture may be half transparent, which no screen is.
QImage readAndRemove(const QString& fileName, const QDateTime& requestTime)
{
    // File systems round times.
    constexpr int kRoundingSeconds = 2;
    const QFileInfo file(fileName);
    if (!file.isFile())
        return {};
    const bool isNew = file.lastModified() >= requestTime.addSecs(-kRoundingSeconds);
    const auto remove = qScopeGuard([&] {
        if (isNew)
            QFile::remove(fileName);
    });
    QImageReader reader(fileName);
    if (!isReadable(reader.size()))
        return {};
    return qtversions::readOfAnySize(reader).convertToFormat(QImage::Format_RGB32);
}

} // namespace

PortalScreenshot::PortalScreenshot(QObject* parent)
    : QObject(parent)
    , m_bus(sessionBus())
{
}

// The answer to this comes after every one that the portal has sent before.
void PortalScreenshot::withdraw()
{
    if (m_finished || m_requestPath.isEmpty())
        return deleteLater();
    const QDBusMessage close = QDBusMessage::createMethodCall(
        QLatin1String(kService), m_requestPath, QLatin1String(kRequest), QStringLiteral("Close"));
    auto* closing = new QDBusPendingCallWatcher(m_bus.asyncCall(close), this);
    connect(closing, &QDBusPendingCallWatcher::finished, this, &QObject::deleteLater);
}

void PortalScreenshot::request()
{
    if (!m_bus.isConnected()) {
        QTimer::singleShot(0, this, [this] { fail(tr("There is no session bus.")); });
        return;
    }
    auto* watcher = new QDBusServiceWatcher(QLatin1String(kService), m_bus,
                                            QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString& /*service*/, const QString& oldOwner) {
                if (!oldOwner.isEmpty())
                    onGone();
            });
    m_bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                  QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                  this, SLOT(onGone()));
    const QString token =
        QLatin1String("screencapture_") + QUuid::createUuid().toString(QUuid::Id128);
    listenTo(requestPathFor(m_bus, token));

    QDBusMessage call =
        QDBusMessage::createMethodCall(QLatin1String(kService), QLatin1String(kDesktopPath),
                                       QLatin1String(kScreenshot), QStringLiteral("Screenshot"));
    m_requestTime = QDateTime::currentDateTime();
    call << QString()
         << QVariantMap{{QStringLiteral("handle_token"), token},
                        {QStringLiteral("interactive"), false}};
    // The desktop may ask the user before it answers.
    constexpr int kNoTimeout = std::numeric_limits<int>::max();
    auto* pending = new QDBusPendingCallWatcher(m_bus.asyncCall(call, kNoTimeout), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, &PortalScreenshot::onReply);
}

// Old portals choose another path.
void PortalScreenshot::onReply(QDBusPendingCallWatcher* call)
{
    const QDBusPendingReply<QDBusObjectPath> reply = *call;
    call->deleteLater();
    if (reply.isError())
        fail(tr("The desktop's portal takes no screenshots: %1")
                 .arg(reply.error().message().simplified()));
    else
        listenTo(reply.value().path());
}

void PortalScreenshot::listenTo(const QString& requestPath)
{
    if (requestPath == m_requestPath)
        return;
    m_requestPath = requestPath;
    m_bus.connect(QLatin1String(kService), requestPath, QLatin1String(kRequest),
                  QStringLiteral("Response"), this, SLOT(onResponse(QDBusMessage)));
}

void PortalScreenshot::onResponse(const QDBusMessage& response)
{
    if (response.signature() != QLatin1String("ua{sv}"))
        return fail(tr("The desktop's portal gave no picture."));
    const QVariantList answer = response.arguments();
    const uint code = answer.first().toUInt();
    const auto results = qdbus_cast<QVariantMap>(answer.last());
    const QString fileName = QUrl(results.value(QStringLiteral("uri")).toString()).toLocalFile();
    const QImage image = fileName.isEmpty() ? QImage() : readAndRemove(fileName, m_requestTime);
    if (code == RefusedByUser)
        fail(tr("The screenshot was not permitted."));
    else if (code != Granted)
        fail(tr("The desktop's portal could not take the screenshot."));
    else if (image.isNull())
        fail(tr("The desktop's portal gave no picture."));
    else
        finish(image, QString());
}

void PortalScreenshot::onGone()
{
    fail(tr("The desktop's portal has gone away."));
}

void PortalScreenshot::fail(const QString& failure)
{
    finish(QImage(), failure);
}

void PortalScreenshot::finish(const QImage& image, const QString& failure)
{
    if (!qExchange(m_finished, true))
        emit finished(image, failure);
}
