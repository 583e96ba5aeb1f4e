// SPDX-License-Identifier: MIT
#include "ScreenCaptureWnd.h"

#include "MagnifierWidget.h"
#include "MosaicPixels.h"
#include "OverlayGeometry.h"
#include "ResizableRect.h"
#include "ScribbleArea.h"
#include "StyleSheets.h"

#include <QApplication>
#include <QCursor>
#include <QDesktopWidget>
#include <QDir>
#include <QFileDialog>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QShowEvent>

namespace
{

constexpr QColor kDim(0, 0, 0, 100);
constexpr int kMinRegionSidePx = 3;
constexpr qreal kGrabWindowBorderPx = 4.0;
constexpr QSize kGrabWindowInsetPx(4, 4);

// The mosaic works on 8 bits a channel, which not every display has.
QImage in8BitsAChannel(const QImage& image)
{
    return mosaic::holdsQRgb(image) ? image : image.convertToFormat(QImage::Format_RGB32);
}

} // namespace

ScreenCaptureWnd* ScreenCaptureWnd::s_screenCaptureWnd = nullptr;

ScreenCaptureWnd* ScreenCaptureWnd::screenCaptureWnd()
{
    if (!s_screenCaptureWnd)
        s_screenCaptureWnd = new ScreenCaptureWnd;
    return s_screenCaptureWnd;
}

ScreenCaptureWnd::ScreenCaptureWnd()
    : QDialog(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
{
    setObjectName(QStringLiteral("ScreenCaptureWnd"));
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_DeleteOnClose);
    setMouseTracking(true);
    // Keys come here, and not to a button of a hidden tool bar, until a visible widget has the
    // focus.
    setFocusPolicy(Qt::TabFocus);
    // Nobody else ends a capture in whose middle the application quits.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &ScreenCaptureWnd::reject);
    init();
}

ScreenCaptureWnd::~ScreenCaptureWnd()
{
    s_screenCaptureWnd = nullptr;
    // The dialog stands on the stack of save(), which closes it when it returns there.
    if (auto* dialog = findChild<QFileDialog*>()) {
        dialog->setParent(nullptr);
        dialog->reject();
    }
    delete m_desktopImage;
}

void ScreenCaptureWnd::init()
{
    // The icons of a static library are linked only where something asks for them.
    Q_INIT_RESOURCE(scribble);
    setCursor(QCursor(QPixmap(":/scribble/cursor.png"), 0, 0));
    grabDesktop();
    initCaptureRect();
    initMagnifier();
    connect(m_rectCapture, SIGNAL(rectChanged(const QRect&)), this,
            SLOT(onCaptureRectChanged(const QRect&)));
    m_grabWindowRect = makeGrabWholeWindowRect(QCursor::pos());
    initToolBars();
}

// The only grab of a capture: region, loupe and dimmed surround are all cut from this picture.
void ScreenCaptureWnd::grabDesktop()
{
    const QDesktopWidget* desktop = QApplication::desktop();
    const QSize size = desktop->geometry().size();
    QScreen* screen = QGuiApplication::primaryScreen();
    const QPixmap grabbed =
        screen ? screen->grabWindow(desktop->winId(), 0, 0, size.width(), size.height())
               : QPixmap();
    m_desktopImage = new QImage(in8BitsAChannel(grabbed.toImage()));
    dimDesktop();
}

// Dimmed once, so that painting only copies.
void ScreenCaptureWnd::dimDesktop()
{
    if (m_desktopImage->isNull())
        return;
    m_dimmedImage = m_desktopImage->copy();
    QPainter(&m_dimmedImage).fillRect(m_dimmedImage.rect(), kDim);
}

void ScreenCaptureWnd::initCaptureRect()
{
    m_rectCapture = new ResizableRect(this, QRect());
    m_rectCapture->setBorderSolidPaint(true);
    m_rectCapture->setColor(QColor(style::kAccentColor));
    m_rectCapture->setSizeInforVisible(true);
}

void ScreenCaptureWnd::initMagnifier()
{
    m_magnifier = new MagnifierWidget(this);
    m_magnifier->setStyleSheet(style::kTransparent);
    m_magnifier->setSize(overlay::kLoupeSidePx);
    m_magnifier->setCrossColor(QColor(style::kAccentColor));
    updateMagnifierAtCursor();
}

void ScreenCaptureWnd::connectTo(QObject* receiver, const char* member)
{
    if (m_receiver && m_member)
        disconnect(this, SIGNAL(captureFinished(QImage, bool)), m_receiver, m_member);
    m_receiver = receiver;
    m_member = member;
    if (m_receiver && m_member)
        connect(this, SIGNAL(captureFinished(QImage, bool)), m_receiver, m_member,
                Qt::QueuedConnection);
}

void ScreenCaptureWnd::showFullDesktop(bool full)
{
    if (full != m_fullDesktop) {
        if (full)
            m_normalGeometry = geometry();
        setGeometry(full ? QApplication::desktop()->geometry() : m_normalGeometry);
        m_fullDesktop = full;
    }
    show();
    activateWindow();
}

// A region without size has no pixels, but a copy of a null rectangle would be the whole desktop.
QImage ScreenCaptureWnd::captureImage() const
{
    const QRect region = m_rectCapture->rect();
    return m_rectCapture->isVisible() && !region.isNull() ? m_desktopImage->copy(region) : QImage();
}

// A canvas that was put away by a reset holds nothing of the region that stands now.
QImage ScreenCaptureWnd::scribbledImage() const
{
    if (m_state != StateAnnotating)
        return captureImage();
    m_scribbleArea->completeScribble();
    // What that committed leaves nothing to redo.
    updateRedoButton();
    return m_scribbleArea->image();
}

void ScreenCaptureWnd::reset()
{
    m_state = StateIdle;
    m_rectCapture->setEnabled(true);
    m_rectCapture->setVisible(false);
    putCanvasAway();
    m_mainToolBar->hide();
    if (m_checkedButton) {
        m_checkedButton->setChecked(false);
        m_checkedButton = nullptr;
    }
    m_btnRedo->setEnabled(false);
    updateMagnifierAtCursor();
    m_magnifier->show();
    m_grabWindowRect = makeGrabWholeWindowRect(QCursor::pos());
    update();
}

// The widget is kept for the next region; its drawing and history are not.
void ScreenCaptureWnd::putCanvasAway()
{
    if (!m_scribbleArea)
        return;
    m_scribbleArea->hide();
    m_scribbleArea->setImage(QImage());
    m_subToolBar->hide();
}

void ScreenCaptureWnd::undo()
{
    if (!m_scribbleArea) {
        if (m_state != StateIdle)
            reset();
    } else if (m_scribbleArea->canUndo()) {
        m_scribbleArea->undo();
        m_btnRedo->setEnabled(true);
    } else {
        reset();
    }
}

void ScreenCaptureWnd::redo()
{
    if (!m_scribbleArea)
        return;
    m_scribbleArea->redo();
    updateRedoButton();
}

// The host may end the capture while the dialog is open. The dialog is this window's child and
// stands on the stack, so the window does not delete itself before it has returned.
void ScreenCaptureWnd::save()
{
    if (m_ended || findChild<QFileDialog*>())
        return;
    const QPointer<ScreenCaptureWnd> alive(this);
    const bool deletesItself = testAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_DeleteOnClose, false);
    const QString name = askForFileName();
    if (!alive)
        return;
    setAttribute(Qt::WA_DeleteOnClose, deletesItself);
    if (m_ended && deletesItself)
        deleteLater();
    if (m_ended || name.isEmpty())
        return;
    scribbledImage().save(name);
    reset();
}

QString ScreenCaptureWnd::askForFileName()
{
    const QString suggested = QDir::currentPath() + QStringLiteral("/untitled");
    QString selected = tr("PNG (*.png)");
    return QFileDialog::getSaveFileName(this, tr("Save As"), suggested,
                                        tr("PNG (*.png);;JPEG (*.jpg;*.jpeg);;BMP (*.bmp)"),
                                        &selected);
}

void ScreenCaptureWnd::onBtnSend()
{
    accept();
}

// A window that is on its way out, hidden but not deleted yet, delivers nothing a second time.
bool ScreenCaptureWnd::beginEnd()
{
    if (auto* dialog = findChild<QFileDialog*>())
        dialog->reject();
    return !qExchange(m_ended, true);
}

void ScreenCaptureWnd::accept()
{
    if (beginEnd())
        deliver(scribbledImage(), true);
}

void ScreenCaptureWnd::reject()
{
    if (beginEnd())
        deliver(QImage(), false);
}

// A host that keeps the window and shows it again takes another capture with it.
void ScreenCaptureWnd::showEvent(QShowEvent* event)
{
    if (!event->spontaneous())
        m_ended = false;
    QDialog::showEvent(event);
}

// The dialog ends only what is visible, but who hides the window first waits for its result too.
void ScreenCaptureWnd::closeEvent(QCloseEvent* event)
{
    if (isVisible())
        QDialog::closeEvent(event);
    else
        reject();
}

// A host that connects directly may delete the window in its slot.
void ScreenCaptureWnd::deliver(const QImage& image, bool finished)
{
    const QPointer<ScreenCaptureWnd> alive(this);
    emit captureFinished(image, finished);
    if (!alive)
        return;
    if (finished)
        QDialog::accept();
    else
        QDialog::reject();
}

bool ScreenCaptureWnd::eventFilter(QObject* watched, QEvent* event)
{
    Q_ASSERT(event != NULL);
    const QPointer<ScreenCaptureWnd> alive(this);
    if (watched == m_scribbleArea) {
        if (event->type() == QEvent::MouseButtonDblClick)
            accept();
        else if (event->type() == QEvent::MouseButtonPress ||
                 event->type() == QEvent::MouseButtonRelease)
            updateRedoButtonLater();
    }
    // Where the host deleted the window, the canvas is gone too.
    return alive ? QDialog::eventFilter(watched, event) : true;
}

// The canvas knows what can be redone when it has handled the event.
void ScreenCaptureWnd::updateRedoButtonLater()
{
    QMetaObject::invokeMethod(
        this, [this] { updateRedoButton(); }, Qt::QueuedConnection);
}

void ScreenCaptureWnd::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (m_state == StateIdle) {
        startSelection(event->pos());
    } else if (m_state == StateSelected) {
        updateMagnifier(event->pos());
        m_magnifier->setVisible(draggedSection() >= ResizableRect::SECTION_LEFT);
    }
}

void ScreenCaptureWnd::startSelection(const QPoint& pos)
{
    m_pressPos = pos;
    m_state = StateSelecting;
    m_rectCapture->setRect(QRect(m_pressPos, QSize()));
}

void ScreenCaptureWnd::mouseMoveEvent(QMouseEvent* event)
{
    const bool leftHeld = event->buttons() & Qt::LeftButton;
    if (leftHeld && m_state == StateSelecting)
        dragSelection(event->pos());
    if (!leftHeld)
        updateGrabWindowRect(event->globalPos());
    if (m_magnifier->isVisible())
        updateMagnifier(event->pos());
}

// The rubber band shows from 3 pixels on, so that a mere click makes no visible region.
void ScreenCaptureWnd::dragSelection(const QPoint& pos)
{
    m_rectCapture->setRect(QRect(m_pressPos, pos).normalized());
    const QRect region = m_rectCapture->rect();
    if (qAbs(region.width()) < kMinRegionSidePx && qAbs(region.height()) < kMinRegionSidePx)
        return;
    m_rectCapture->setVisible(true);
    if (!m_grabWindowRect.isNull()) {
        m_grabWindowRect = QRect();
        update();
    }
}

void ScreenCaptureWnd::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        if (m_state == StateSelecting)
            endSelection();
        m_magnifier->hide();
    } else if (event->button() == Qt::RightButton) {
        releaseRightButton(event->pos());
    }
}

// Intended: the tool bar appears also when the drag was too short to make a visible region.
void ScreenCaptureWnd::endSelection()
{
    if (!m_grabWindowRect.isNull()) {
        m_rectCapture->setRect(m_grabWindowRect);
        m_rectCapture->setVisible(true);
        m_grabWindowRect = QRect();
    }
    m_state = StateSelected;
    m_mainToolBar->show();
    updateMainToolBarPos(0);
}

void ScreenCaptureWnd::releaseRightButton(const QPoint& pos)
{
    if (m_state == StateIdle)
        reject();
    else if (m_state != StateSelecting && !m_rectCapture->contains(pos))
        reset();
}

void ScreenCaptureWnd::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        accept();
}

void ScreenCaptureWnd::updateMagnifier(const QPoint& pos)
{
    const QPoint p = overlay::pointOfInterest(pos, draggedSection(), m_rectCapture->rect());
    m_magnifier->setOrigImage(m_desktopImage->copy(overlay::loupeSource(p)));
    m_magnifier->move(overlay::loupePos(pos, size()));
}

// The rectangle remembers its last press also when the region of that press is gone.
int ScreenCaptureWnd::draggedSection() const
{
    const bool regionStands = m_state == StateSelected && m_rectCapture->isVisible();
    return regionStands ? m_rectCapture->mousePressSection() : ResizableRect::SECTION_OUTSIDE;
}

void ScreenCaptureWnd::updateMagnifierAtCursor()
{
    updateMagnifier(mapFromGlobal(QCursor::pos()));
}

// Intended: the hook for picking the whole window under the cursor, which this window does not
// offer.
QRect ScreenCaptureWnd::makeGrabWholeWindowRect(const QPoint& /*globalPos*/)
{
    return {};
}

void ScreenCaptureWnd::updateGrabWindowRect(const QPoint& globalPos)
{
    const QRect r = makeGrabWholeWindowRect(globalPos);
    if (r == m_grabWindowRect)
        return;
    m_grabWindowRect = r;
    update();
}

void ScreenCaptureWnd::onCaptureRectChanged(const QRect& rect)
{
    Q_ASSERT(m_rectCapture != NULL);
    if (m_scribbleArea)
        m_scribbleArea->setGeometry(rect);
    updateMainToolBarPos(0);
}

void ScreenCaptureWnd::updateMainToolBarPos(int extraHeight)
{
    m_mainToolBar->move(
        overlay::mainToolBarPos(m_rectCapture->rect(), m_mainToolBar->size(), extraHeight, rect()));
}

// Rectangle by rectangle, because Qt clips each pixel of a line to a region of several.
void ScreenCaptureWnd::paintEvent(QPaintEvent* event)
{
    for (const QRect& changed : event->region())
        paintChanged(changed);
}

void ScreenCaptureWnd::paintChanged(const QRect& changed)
{
    QPainter painter(this);
    painter.setClipRect(changed);
    paintDesktop(painter, changed);
    if (m_rectCapture->isVisible())
        paintRegion(painter);
    else if (!m_grabWindowRect.isNull())
        paintGrabWindow(painter);
}

// What the region covers is left to it, so that each pixel is painted once.
void ScreenCaptureWnd::paintDesktop(QPainter& painter, const QRect& changed) const
{
    for (const QRect& area : QRegion(changed) - coveredByRegion())
        paintDimmed(painter, area);
}

QRect ScreenCaptureWnd::coveredByRegion() const
{
    const QRect region = m_rectCapture->rect();
    if (!m_rectCapture->isVisible() || region.isEmpty())
        return {};
    const QRect picture = isCanvasVisible()
                              ? QRect(region.topLeft(), m_scribbleArea->image().size())
                              : m_desktopImage->rect();
    return picture.contains(region & rect()) ? region : QRect();
}

bool ScreenCaptureWnd::isCanvasVisible() const
{
    return m_scribbleArea && m_scribbleArea->isVisible();
}

void ScreenCaptureWnd::paintDimmed(QPainter& painter, const QRect& area) const
{
    if (m_dimmedImage.devicePixelRatio() == 1 && m_dimmedImage.rect().contains(area)) {
        painter.drawImage(area.topLeft(), m_dimmedImage, area);
        return;
    }
    painter.save();
    painter.setClipRect(area);
    painter.drawImage(0, 0, *m_desktopImage);
    painter.fillRect(area, kDim);
    painter.restore();
}

void ScreenCaptureWnd::paintRegion(QPainter& painter)
{
    const QRect region = m_rectCapture->rect();
    if (isCanvasVisible())
        painter.drawImage(region.topLeft(), m_scribbleArea->image());
    else
        paintUndimmed(painter, region);
    m_rectCapture->render(painter);
}

// Draws from the picture itself; a copy is cut only where the window is larger than the picture.
void ScreenCaptureWnd::paintUndimmed(QPainter& painter, const QRect& region) const
{
    const QRect shown = region & rect();
    if (shown.isEmpty())
        return;
    if (m_desktopImage->rect().contains(shown))
        painter.drawImage(shown.topLeft(), *m_desktopImage, shown);
    else
        painter.drawImage(region.topLeft(), m_desktopImage->copy(region));
}

void ScreenCaptureWnd::paintGrabWindow(QPainter& painter)
{
    QRect g(QPoint(), m_grabWindowRect.size() - kGrabWindowInsetPx);
    g.moveCenter(m_grabWindowRect.center());
    g &= geometry();
    paintUndimmed(painter, g);
    painter.setPen(QPen(QBrush(m_rectCapture->getColor(), Qt::SolidPattern), kGrabWindowBorderPx,
                        Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    painter.drawRect(g);
}
