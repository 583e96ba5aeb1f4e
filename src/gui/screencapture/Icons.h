// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QPixmap>
#include <QPushButton>
#include <QString>

/// The icons, sharp at any device pixel ratio.
namespace icons
{

/// An icon that covers as many physical pixels as `ratio` makes of its size.
QPixmap pixmap(const QString& name, qreal ratio);

/// An icon for a white bar, in its own size and in that of the densest screen. A style fades a
/// disabled icon into the palette's window colour, which may be dark.
QIcon icon(const QString& name);

/// A button that paints its icon in physical pixels, whatever attributes the host has set.
class Button : public QPushButton
{
public:
    using QPushButton::QPushButton;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace icons
