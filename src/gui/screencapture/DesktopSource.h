// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QObject>
#include <QString>

class NativeDesktop;
class PortalScreenshot;

/// Where the picture of all screens comes from: on X11 from the server, at once; in a Wayland
/// session, natively or through Xwayland, from the desktop's portal, which takes its time.
///
/// GUI thread only.
class DesktopSource : public QObject
{
    Q_OBJECT

public:
    explicit DesktopSource(QObject* parent = nullptr);
    ~DesktopSource() override;

    /// Takes the picture of `desktop`. On X11, taken() is emitted before this returns.
    void take(const NativeDesktop& desktop);

Q_SIGNALS:
    /// Emitted once. Where there is no picture, `image` is null and `failure` says why, for the
    /// user to read. The ratio of the portal's picture says how many of its pixels are in each
    /// coordinate of the desktop.
    void taken(const QImage& image, const QString& failure);

private:
    PortalScreenshot* m_portal = nullptr;
};
