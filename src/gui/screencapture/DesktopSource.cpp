// SPDX-License-Identifier: MIT
#include "DesktopSource.h"

#include "NativeDesktop.h"
#include "PortalScreenshot.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>

namespace
{

// The physical pixels of all screens: on X11 these are one space, whatever the ratio of each.
QImage grabbed(const NativeDesktop& desktop)
{
    QScreen* screen = QGuiApplication::primaryScreen();
    const QSize size = desktop.root() ? QSize(-1, -1) : screen->virtualSize();
    return screen->grabWindow(desktop.root(), 0, 0, size.width(), size.height()).toImage();
}

} // namespace

DesktopSource::DesktopSource(QObject* parent)
    : QObject(parent)
{
}

void DesktopSource::take(const NativeDesktop& desktop)
{
    if (desktop.isWayland()) {
        auto* portal = new PortalScreenshot(this);
        connect(portal, &PortalScreenshot::finished, this, &DesktopSource::taken);
        portal->request();
        return;
    }
    const QImage image = grabbed(desktop);
    emit taken(image, image.isNull() ? tr("The screens cannot be grabbed.") : QString());
}
