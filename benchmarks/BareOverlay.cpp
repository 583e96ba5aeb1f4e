// SPDX-License-Identifier: MIT
#include "BareOverlay.h"

#include "QtVersions.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>

namespace
{

constexpr QColor kDim(0, 0, 0, 100);
constexpr int kHandlePx = 5;
constexpr int kLabelHeightPx = 28;
constexpr int kLabelWidthPx = 100;
constexpr int kLoupePx = 80;
constexpr QPoint kLoupeOffsetPx(6, 26);
constexpr int kPenPx = 2;

// What a selection with its handles and its label covers.
QRect occupied(const QRect& region)
{
    return region.adjusted(-kHandlePx, -kHandlePx, kHandlePx, kHandlePx) |
           QRect(region.topLeft() - QPoint(0, kLabelHeightPx),
                 QSize(kLabelWidthPx, kLabelHeightPx));
}

} // namespace

BareOverlay::BareOverlay(Kind kind)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
    , m_kind(kind)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setMouseTracking(true);
    const QSize size = QGuiApplication::primaryScreen()->size();
    m_bright = QGuiApplication::primaryScreen()
                   ->grabWindow(0, 0, 0, size.width(), size.height())
                   .toImage();
    m_dimmed = m_bright.copy();
    QPainter(&m_dimmed).fillRect(m_dimmed.rect(), kDim);
}

void BareOverlay::mousePressEvent(QMouseEvent* event)
{
    m_last = event->pos();
    if (m_drags == 0)
        m_region = QRect(m_last, m_last);
}

void BareOverlay::mouseReleaseEvent(QMouseEvent* /*event*/)
{
    ++m_drags;
}

void BareOverlay::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint p = event->pos();
    if (m_kind == Loupe) {
        const QRect old = m_loupe;
        m_loupe = QRect(p + kLoupeOffsetPx, QSize(kLoupePx, kLoupePx));
        update(old);
        update(m_loupe);
    } else if (event->buttons() & Qt::LeftButton) {
        if (m_kind == Moving && m_drags > 0)
            setRegion(m_region.translated(p - m_last));
        else if ((m_kind == Stroke || m_kind == WholeWindow) && m_drags > 0)
            drawTo(p);
        else
            setRegion(QRect(m_region.topLeft(), p));
        m_last = p;
    }
}

void BareOverlay::setRegion(const QRect& region)
{
    const QRect old = occupied(m_region);
    m_region = region;
    update(old | occupied(region));
}

void BareOverlay::drawTo(const QPoint& p)
{
    QPainter painter(&m_bright);
    painter.setPen(QPen(Qt::blue, kPenPx, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(m_last, p);
    if (m_kind == WholeWindow)
        update();
    else
        update(qtversions::normalized(QRect(m_last, p)).adjusted(-kPenPx, -kPenPx, kPenPx, kPenPx));
}

void BareOverlay::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const QRect& r : event->region() - m_region)
        painter.drawImage(r.topLeft(), m_dimmed, r);
    for (const QRect& r : event->region() & m_region)
        painter.drawImage(r.topLeft(), m_bright, r);
    if (!m_loupe.isNull())
        painter.drawImage(m_loupe.topLeft(), m_bright, m_loupe);
}
