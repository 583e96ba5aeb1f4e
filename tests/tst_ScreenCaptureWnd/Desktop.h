// SPDX-License-Identifier: MIT
#pragma once

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QScreen>
#include <QWidget>

inline QRect screenRect()
{
    return {QPoint(), QGuiApplication::primaryScreen()->size()};
}

/// What is on the screen now.
inline QImage screenshot()
{
    const QRect all = screenRect();
    return QGuiApplication::primaryScreen()
        ->grabWindow(0, 0, 0, all.width(), all.height())
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

/// Noise, so that a picture which is off by one pixel anywhere differs.
inline QImage noise(const QSize& size, quint32 seed)
{
    QImage image(size, QImage::Format_RGB32);
    QRandomGenerator random(seed);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, 0xff000000u | random.generate());
    }
    return image;
}

/// A desktop with a known picture on it, outside the window manager's reach.
class Desktop : public QWidget
{
public:
    explicit Desktop(quint32 seed)
        : QWidget(nullptr, Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint)
        , m_picture(noise(screenRect().size() * devicePixelRatio(), seed))
    {
        m_picture.setDevicePixelRatio(devicePixelRatioF());
        setAttribute(Qt::WA_OpaquePaintEvent);
        setGeometry(screenRect());
        show();
        lower();
    }
    const QImage& picture() const { return m_picture; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override { QPainter(this).drawImage(0, 0, m_picture); }

private:
    QImage m_picture;
};

/// What the overlay makes of a desktop on which nothing is selected.
inline QImage dimmed(QImage picture)
{
    picture.setDevicePixelRatio(1);
    QPainter(&picture).fillRect(picture.rect(), QColor(0, 0, 0, 100));
    return picture;
}

inline QImage without(QImage image, const QRect& area)
{
    QPainter(&image).fillRect(area, Qt::black);
    return image;
}
