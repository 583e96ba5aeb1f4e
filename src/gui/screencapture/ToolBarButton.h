// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QPushButton>

/// A button of the main tool bar.
///
/// It keeps its picture: when the selection moves behind the tool bar, strips of the buttons have
/// to be painted at each move of the mouse, and copying them is much faster than having the style
/// draw them. To be put on white. GUI thread only.
class ToolBarButton : public QPushButton
{
public:
    using QPushButton::QPushButton;

protected:
    void paintEvent(QPaintEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    bool isPictureUsable(const QRegion& asked) const;
    void takePicture();

    QImage m_picture;
};
