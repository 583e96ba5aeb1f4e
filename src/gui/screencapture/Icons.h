// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QPixmap>
#include <QPushButton>
#include <QString>

/// The icons, sharp at any device pixel ratio. Without Qt::AA_UseHighDpiPixmaps, which is the
/// host's to set, Qt 5 takes the small ones for its buttons and enlarges them.
namespace icons
{

/// The file of an icon at its own size.
QString file(const QString& name);

/// An icon that covers as many physical pixels as `ratio` makes of its size.
QPixmap pixmap(const QString& name, qreal ratio);

/// An icon for a white bar. A style fades a disabled icon into the palette's window colour, which
/// may be dark.
QIcon paleWhileDisabled(const QString& name);

/// A button that paints its icon in physical pixels.
class Button : public QPushButton
{
public:
    using QPushButton::QPushButton;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace icons
