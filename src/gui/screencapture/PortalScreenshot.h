// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDateTime>
#include <QImage>
#include <QObject>
#include <QString>

class QDBusMessage;
class QDBusPendingCallWatcher;

/// A picture of all screens from the desktop's portal (org.freedesktop.portal.Screenshot on the
/// session bus): in a Wayland session no program can grab the screens itself.
///
/// The desktop may ask the user for permission first, and waits for the answer as long as the user
/// likes. A portal that is absent, refuses or goes away is told as a failure. GUI thread only.
class PortalScreenshot : public QObject
{
    Q_OBJECT

public:
    explicit PortalScreenshot(QObject* parent = nullptr);

    /// Asks for the picture; once for each object.
    void request();

    /// Withdraws the request where it has not been answered, and deletes the object later: an
    /// answer may be on its way, and its file has to be removed.
    void withdraw();

Q_SIGNALS:
    /// Emitted once, after request() has returned. Where there is no picture, `image` is null and
    /// `failure` says why, for the user to read.
    void finished(const QImage& image, const QString& failure);

private Q_SLOTS:
    void onResponse(const QDBusMessage& response);
    void onGone();

private:
    void onReply(QDBusPendingCallWatcher* call);
    void listenTo(const QString& requestPath);
    void fail(const QString& failure);
    void finish(const QImage& image, const QString& failure);

    QDBusConnection m_bus;
    QString m_requestPath;
    QDateTime m_requestTime;
    bool m_finished = false;

    Q_DISABLE_COPY(PortalScreenshot)
};
