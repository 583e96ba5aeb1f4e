// SPDX-License-Identifier: MIT
#include "ScreenCaptureWnd.h"

#include "DesktopPicture.h"
#include "DesktopSource.h"
#include "Icons.h"
#include "MagnifierWidget.h"
#include "MosaicPixels.h"
#include "NativeDesktop.h"
#include "OutputViews.h"
#include "OverlayGeometry.h"
#include "OverlayKeeper.h"
#include "OverlayPainting.h"
#include "PixelGrid.h"
#include "QtVersions.h"
#include "ResizableRect.h"
#include "ScribbleArea.h"
#include "StyleSheets.h"

#include <QApplication>
#include <QCursor>
#include <QDir>
#include <QFileDialog>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QScopeGuard>
#include <QScreen>
#include <QShowEvent>
#include <QStyle>
#include <QTimer>
#include <QWindow>

namespace
{

// A smaller rubber band stays hidden, so that a mere click makes no visible region.
constexpr int kRubberBandShowsFromPx = 3;

// The mosaic works on 8 bits per channel, which not every display has.
QImage in8BitsPerChannel(const QImage& image, QImage::Format format = QImage::Format_RGB32)
{
    return mosaic::holdsQRgb(image) ? image : image.convertToFormat(format);
}

ResizableRect* createCaptureRect(QWidget* window)
{
    auto* rect = new ResizableRect(window, QRect());
    rect->setBorderSolidPaint(true);
    rect->setColor(QColor(style::kAccentColor));
    rect->setSizeInforVisible(true);
    return rect;
}

MagnifierWidget* createMagnifier(QWidget* window)
{
    auto* magnifier = new MagnifierWidget(window);
    magnifier->setStyleSheet(style::kTransparent);
    magnifier->setSize(overlay::kLoupeSidePx);
    magnifier->setCrossColor(QColor(style::kAccentColor));
    return magnifier;
}

// A dialog of the platform's may be another program's window, which would open below the overlay.
QString askForFileName(QWidget* parent)
{
    const bool wasPlatforms = !QCoreApplication::testAttribute(Qt::AA_DontUseNativeDialogs);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const auto restore = qScopeGuard(
        [=] { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs, !wasPlatforms); });
    const QString suggested = QDir::currentPath() + QStringLiteral("/untitled");
    QString selected = ScreenCaptureWnd::tr("PNG (*.png)");
    return QFileDialog::getSaveFileName(
        parent, ScreenCaptureWnd::tr("Save As"), suggested,
        ScreenCaptureWnd::tr("PNG (*.png);;JPEG (*.jpg;*.jpeg);;BMP (*.bmp)"), &selected);
}

} // namespace

ScreenCaptureWnd* ScreenCaptureWnd::s_screenCaptureWnd = nullptr;
QString ScreenCaptureWnd::s_failure;

ScreenCaptureWnd* ScreenCaptureWnd::screenCaptureWnd()
{
    if (!s_screenCaptureWnd)
        s_screenCaptureWnd = new ScreenCaptureWnd(nullptr);
    return s_screenCaptureWnd;
}

ScreenCaptureWnd* ScreenCaptureWnd::captureOf(const QImage& picture)
{
    if (!s_screenCaptureWnd)
        s_screenCaptureWnd = new ScreenCaptureWnd(&picture);
    return s_screenCaptureWnd;
}

QString ScreenCaptureWnd::failure()
{
    return s_failure;
}

ScreenCaptureWnd::ScreenCaptureWnd(const QImage* given)
    : QDialog(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
{
    setObjectName(QStringLiteral("ScreenCaptureWnd"));
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_DeleteOnClose);
    setMouseTracking(true);
    // Until a visible widget has the focus, keys come here and not to a button of a hidden tool
    // bar.
    setFocusPolicy(Qt::TabFocus);
    // Nothing else ends the capture when the application quits during it.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &ScreenCaptureWnd::reject);
    connect(qApp, &QGuiApplication::screenAdded, this, &ScreenCaptureWnd::cancelIfShown);
    connect(qApp, &QGuiApplication::screenRemoved, this, &ScreenCaptureWnd::cancelIfShown);
    for (const QScreen* screen : QGuiApplication::screens())
        connect(screen, &QScreen::geometryChanged, this, &ScreenCaptureWnd::cancelIfShown);
    init(given);
}

ScreenCaptureWnd::~ScreenCaptureWnd()
{
    s_screenCaptureWnd = nullptr;
    if (m_views)
        m_views->letGo();
    // The dialog stands on the stack of save(), so it must not be deleted as a child.
    if (auto* dialog = findChild<QFileDialog*>()) {
        dialog->setParent(nullptr);
        dialog->reject();
    }
    delete m_keeper;
    delete m_nativeDesktop;
    delete m_desktopImage;
}

void ScreenCaptureWnd::init(const QImage* given)
{
    // In a static library, the linker drops the icons unless something refers to them.
    Q_INIT_RESOURCE(scribble);
    setCursor(QCursor(icons::pixmap("cursor", devicePixelRatioF()), 0, 0));
    m_nativeDesktop = new NativeDesktop;
    m_desktopImage = new QImage;
    m_rectCapture = createCaptureRect(this);
    m_magnifier = createMagnifier(this);
    s_failure.clear();
    if (given)
        takeGiven(*given);
    else
        takeDesktop();
    connect(m_rectCapture, SIGNAL(rectChanged(const QRect&)), this,
            SLOT(onCaptureRectChanged(const QRect&)));
    m_grabWindowRect = makeGrabWholeWindowRect(QCursor::pos());
    initToolBars();
}

// The only picture of a capture: region, loupe and dimmed surround are all cut from it.
void ScreenCaptureWnd::takeDesktop()
{
    m_source = new DesktopSource(this);
    connect(m_source, &DesktopSource::taken, this, &ScreenCaptureWnd::onDesktopTaken);
    m_source->take(*m_nativeDesktop);
}

// What a screen shows has no alpha; what a host hands in may have one.
void ScreenCaptureWnd::takeGiven(const QImage& picture)
{
    if (picture.isNull()) {
        setProperty(pixels::kPictureRatio, 1);
        usePicture(picture, tr("There is no picture."));
        return;
    }
    const QSizeF size = QSizeF(picture.size()) / picture.devicePixelRatio();
    const QRect room = overlay::roomFor(size, m_nativeDesktop->coveringGeometry().size(),
                                        m_nativeDesktop->primaryScreen());
    const qreal tooLarge =
        qMax(1.0, qMax(size.width() / room.width(), size.height() / room.height()));
    const QSizeF shown = size / tooLarge;
    m_givenRect = QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter,
                                      {qCeil(shown.width()), qCeil(shown.height())}, room);
    setProperty(pixels::kPictureRatio, picture.devicePixelRatio() * tooLarge);
    usePicture(in8BitsPerChannel(picture, picture.hasAlphaChannel() ? QImage::Format_ARGB32
                                                                    : QImage::Format_RGB32),
               QString());
}

void ScreenCaptureWnd::onDesktopTaken(const QImage& picture, const QString& failure)
{
    qExchange(m_source, nullptr)->deleteLater();
    // The portal gives all pixels of the densest screen, on X11 too.
    if (m_nativeDesktop->isWayland())
        setProperty(pixels::kPictureRatio, picture.devicePixelRatio());
    usePicture(picture, failure);
    if (m_shown)
        showFullDesktop(*qExchange(m_shown, std::nullopt));
}

void ScreenCaptureWnd::usePicture(const QImage& picture, const QString& failure)
{
    s_failure = failure;
    *m_desktopImage = in8BitsPerChannel(picture);
    m_desktopImage->setDevicePixelRatio(1);
    m_dimmedImage = overlay::dimmed(*m_desktopImage);
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
    if (m_source) {
        m_shown = full;
        return;
    }
    // Intended: on X11 a desktop that cannot be grabbed is an empty surface.
    if (m_desktopImage->isNull() && property(pixels::kPictureRatio).isValid()) {
        m_ended = false;
        QTimer::singleShot(0, this, &ScreenCaptureWnd::reject);
        return;
    }
    if (full != m_fullDesktop) {
        if (full) {
            m_normalGeometry = geometry();
            m_wasUnmanaged = windowFlags() & Qt::X11BypassWindowManagerHint;
            // A window manager may keep hold of a window that it has managed until now.
            destroy();
        }
        // No window manager lets a window that it manages cover panels and every screen.
        setWindowFlag(Qt::X11BypassWindowManagerHint, full || m_wasUnmanaged);
        if (m_views)
            qExchange(m_views, nullptr)->letGo();
        if (full && m_nativeDesktop->isWayland() && !m_nativeDesktop->root())
            m_views = new OutputViews(this);
        else
            setGeometry(full ? m_nativeDesktop->coveringGeometry() : m_normalGeometry);
        m_rectCapture->setLimits(full ? m_givenRect : QRect());
        m_fullDesktop = full;
    }
    show();
    if (!m_views)
        activateWindow();
}

// Nothing is shown while the picture is awaited.
void ScreenCaptureWnd::setVisible(bool visible)
{
    if (!m_source)
        QDialog::setVisible(visible);
    else if (!visible)
        m_shown.reset();
    else if (!m_shown)
        m_shown = false;
}

// The picture shows screens that are no longer where they were.
void ScreenCaptureWnd::cancelIfShown()
{
    if (!isVisible())
        return;
    s_failure = tr("The screens have changed.");
    reject();
}

QImage ScreenCaptureWnd::captureImage() const
{
    return m_rectCapture->isVisible() ? desktopPicture().copy(m_rectCapture->rect()) : QImage();
}

// A window manager may have put the window elsewhere than asked.
DesktopPicture ScreenCaptureWnd::desktopPicture() const
{
    const qreal ratio = pixels::ratioOf(*this);
    // How many pixels of the picture are in each of the X server's.
    const qreal density = ratio / devicePixelRatioF();
    const QPointF pos = m_views ? QPoint() : m_nativeDesktop->posOf(*this);
    return {*m_desktopImage, m_dimmedImage,
            (pos * density).toPoint() - pixels::nearest(m_givenRect, ratio).topLeft(), ratio};
}

// After a reset the canvas holds nothing of the region that stands now.
QImage ScreenCaptureWnd::scribbledImage() const
{
    if (m_state != StateAnnotating)
        return captureImage();
    m_scribbleArea->completeScribble();
    // Committing a pending shape adds a history entry, which discards everything that could be
    // redone.
    updateRedoButton();
    return m_scribbleArea->image();
}

void ScreenCaptureWnd::reset()
{
    m_state = StateIdle;
    m_rectCapture->setEnabled(true);
    m_rectCapture->setVisible(false);
    hideCanvas();
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

// Keeps the widget for the next region, but neither its drawing nor its history.
void ScreenCaptureWnd::hideCanvas()
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

// The host may end the capture while the dialog is open. The dialog is a child of the window and
// stands on the stack, so the window does not delete itself before the dialog has returned.
void ScreenCaptureWnd::save()
{
    if (m_ended || findChild<QFileDialog*>())
        return;
    const QPointer<ScreenCaptureWnd> alive(this);
    const bool deletesItself = testAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_DeleteOnClose, false);
    const QString name = askForFileName(this);
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

void ScreenCaptureWnd::onBtnSend()
{
    accept();
}

// False where the capture had ended before: a hidden window that is not deleted yet delivers no
// second result.
bool ScreenCaptureWnd::markEnded()
{
    if (auto* dialog = findChild<QFileDialog*>())
        dialog->reject();
    m_shown.reset();
    return !qExchange(m_ended, true);
}

void ScreenCaptureWnd::accept()
{
    if (markEnded())
        deliverAndHide(scribbledImage(), true);
}

void ScreenCaptureWnd::reject()
{
    if (markEnded())
        deliverAndHide(QImage(), false);
}

// What the window shows depends on where it stands, and on the ratio there.
void ScreenCaptureWnd::followPlace()
{
    update();
    updateMagnifierAtCursor();
}

void ScreenCaptureWnd::moveEvent(QMoveEvent* event)
{
    followPlace();
    QDialog::moveEvent(event);
}

// A host that keeps the window takes another capture by showing it again.
void ScreenCaptureWnd::showEvent(QShowEvent* event)
{
    if (!event->spontaneous()) {
        m_ended = false;
        if (!m_desktopImage->isNull())
            s_failure.clear();
        if (m_views)
            m_views->show();
        else if (m_fullDesktop)
            m_keeper = new OverlayKeeper(windowHandle(), *m_nativeDesktop);
        connect(windowHandle(), &QWindow::screenChanged, this, &ScreenCaptureWnd::followPlace,
                Qt::UniqueConnection);
    }
    QDialog::showEvent(event);
}

void ScreenCaptureWnd::hideEvent(QHideEvent* event)
{
    if (!event->spontaneous()) {
        delete qExchange(m_keeper, nullptr);
        if (m_views)
            m_views->hide();
    }
    QDialog::hideEvent(event);
}

// QDialog::closeEvent() rejects only a visible dialog. A host that hid the window before closing it
// still expects a result.
void ScreenCaptureWnd::closeEvent(QCloseEvent* event)
{
    if (isVisible())
        QDialog::closeEvent(event);
    else
        reject();
}

// A host that is connected directly may delete the window in its slot.
void ScreenCaptureWnd::deliverAndHide(const QImage& image, bool finished)
{
    if (m_views && m_views->handsOn()) {
        QTimer::singleShot(0, this, [=] { deliverAndHide(image, finished); });
        return;
    }
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
    // If the host deleted the window, the canvas is gone too.
    return alive ? QDialog::eventFilter(watched, event) : true;
}

// Queued, because the canvas knows what can be redone only after it has handled the event.
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
        startSelection(pixels::coordinatesUnder(*event, *this));
    } else if (m_state == StateSelected) {
        updateMagnifier(qtversions::posInWindow(*event));
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
        dragSelection(pixels::coordinatesUnder(*event, *this));
    if (!leftHeld)
        updateGrabWindowRect(qtversions::posOnDesktop(*event).toPoint());
    if (m_magnifier->isVisible())
        updateMagnifier(qtversions::posInWindow(*event));
}

void ScreenCaptureWnd::dragSelection(const QPoint& pos)
{
    m_rectCapture->setRect(qtversions::normalized(QRect(m_pressPos, pos)));
    const QRect region = m_rectCapture->rect();
    if (region.width() < kRubberBandShowsFromPx && region.height() < kRubberBandShowsFromPx)
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
        releaseRightButton(pixels::coordinatesUnder(*event, *this));
    }
}

// Intended: the tool bar appears even if the drag was too short to make a visible region.
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

void ScreenCaptureWnd::updateMagnifier(const QPointF& pos)
{
    const DesktopPicture desktop = desktopPicture();
    const QPoint p = overlay::pointOfInterest(desktop.pixelAt(pos), draggedSection(),
                                              desktop.pixels(m_rectCapture->rect()));
    m_magnifier->setOrigImage(m_desktopImage->copy(overlay::loupeSource(p)));
    m_magnifier->move(overlay::loupePos(pos.toPoint(), size()));
}

// The rectangle remembers its last press even after the region of that press is gone.
int ScreenCaptureWnd::draggedSection() const
{
    const bool regionStands = m_state == StateSelected && m_rectCapture->isVisible();
    return regionStands ? m_rectCapture->mousePressSection() : ResizableRect::SECTION_OUTSIDE;
}

void ScreenCaptureWnd::updateMagnifierAtCursor()
{
    if (m_views)
        updateMagnifier(OutputViews::cursorPos());
    else
        updateMagnifier(QPointF(m_nativeDesktop->pointerPos() - m_nativeDesktop->posOf(*this)) /
                        devicePixelRatioF());
}

// Intended: a hook for picking the window under the cursor, which never finds one.
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

// What the window covers of the screen on which `p` is, or of the nearest to it.
QRect ScreenCaptureWnd::screenAt(const QPoint& p) const
{
    const QList<QScreen*> screens = QGuiApplication::screens();
    // A drag asks at every move.
    if (screens.size() < 2)
        return rect();
    if (m_views)
        return overlay::nearestScreen(p, OutputViews::outputs());
    const DesktopPicture desktop{{}, {}, m_nativeDesktop->posOf(*this), devicePixelRatioF()};
    QVector<QRect> areas;
    for (const QScreen* screen : screens) {
        const QRect covered = desktop.windowRect(NativeDesktop::pixelsOf(*screen)) & rect();
        if (!covered.isEmpty())
            areas << covered;
    }
    return areas.size() < 2 ? rect() : overlay::nearestScreen(p, areas);
}

// With several screens, the region's corner may be where none is.
void ScreenCaptureWnd::updateMainToolBarPos(int extraHeight)
{
    const QRect region = m_rectCapture->rect();
    const QRect screen = screenAt(region.bottomRight());
    const QSize bar = m_mainToolBar->size();
    QPoint pos = overlay::mainToolBarPos(region, bar, extraHeight, screen);
    if (screen != rect())
        pos = overlay::posWithin(screen, QRect(pos, bar + QSize(0, extraHeight)));
    m_mainToolBar->move(pos);
}

// Paints the rectangles one by one, because in a region of several Qt clips each pixel of a line.
void ScreenCaptureWnd::paintEvent(QPaintEvent* event)
{
    const bool regionStands = m_rectCapture->isVisible();
    overlay::Scene scene{desktopPicture(), rect(), QRect(), {}};
    if (regionStands)
        scene.region = m_rectCapture->rect();
    if (regionStands && m_scribbleArea && m_scribbleArea->isVisible())
        scene.canvas = m_scribbleArea->image();

    for (const QRect& changed : event->region()) {
        QPainter painter(this);
        // Qt leaves a painter unscaled below a ratio of 1.
        painter.scale(qMin(devicePixelRatioF(), 1.0), qMin(devicePixelRatioF(), 1.0));
        painter.setClipRect(changed);
        overlay::paintSurround(painter, scene, changed);
        overlay::paintRegion(painter, scene);
        if (regionStands)
            m_rectCapture->render(painter, scene.desktop.cut(scene.region).size());
        else if (!m_grabWindowRect.isNull())
            overlay::paintHighlight(painter, scene,
                                    overlay::highlightFrame(m_grabWindowRect, geometry()),
                                    m_rectCapture->getColor());
    }
}
