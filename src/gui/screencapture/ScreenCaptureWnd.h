// SPDX-License-Identifier: MIT
#pragma once

#include "screencapture_export.h"

#include <QColor>
#include <QDialog>
#include <QImage>
#include <QPoint>
#include <QPointer>
#include <QRect>

#include <optional>

class ColorWidget;
class MagnifierWidget;
class DesktopSource;
class NativeDesktop;
class OutputViews;
class OverlayKeeper;
class PenWidthWidget;
class QAbstractButton;
class QComboBox;
class QLabel;
class QPushButton;
class ResizableRect;
class ScribbleArea;
struct DesktopPicture;
struct ScreenCaptureToolColors;

/// The one window through which an application takes a screenshot.
///
/// The constructor photographs the whole virtual desktop once; in a Wayland session it asks the
/// desktop's portal for the picture, which may take its time. The window shows that frozen picture,
/// dimmed, over every screen and lets the user drag out a region. The capture ends with
/// captureFinished(), after which the window hides and deletes itself; the next call of
/// screenCaptureWnd() photographs the desktop anew.
///
/// \code
/// ScreenCaptureWnd* capture = ScreenCaptureWnd::screenCaptureWnd();
/// capture->connectTo(this, SLOT(onCaptured(QImage,bool)));
/// capture->showFullDesktop(true);
/// \endcode
///
/// Coordinates are those of the window. On a screen with a device pixel ratio each is that many
/// physical pixels wide and high; the pictures have all of these pixels, and the ratio set
/// (QImage::devicePixelRatio()). The window deletes itself: a host keeps no pointer to it across
/// the end of a capture. A host that clears Qt::WA_DeleteOnClose keeps the window instead, and
/// takes another capture of the same picture by showing it again. Closing the window never counts
/// as closing the last window, on which Qt quits the application. GUI thread only, with a
/// QApplication. Nothing is thrown. A desktop that cannot be grabbed gives a null picture, and
/// failure() says why; in a Wayland session it ends the capture.
class SCREENCAPTURE_EXPORT ScreenCaptureWnd : public QDialog
{
    Q_OBJECT

public:
    /// Returns the window of the running capture, and creates it, with a fresh grab of the desktop,
    /// if there is none. The event loop deletes the window of a finished capture after the slot
    /// given to connectTo() has run; until then this function returns that window. Ask for the next
    /// capture from a zero timer rather than from that slot.
    static ScreenCaptureWnd* screenCaptureWnd();

    /// The same for a picture that the host has already. One of the desktop's size covers it; any
    /// other stands in the middle of the primary screen, smaller where it is too large, and a
    /// region ends where it does. A null picture ends the capture.
    static ScreenCaptureWnd* captureOf(const QImage& picture);

    /// Returns why the last capture ended without the user, or had no picture of the desktop, for
    /// the user to read; empty otherwise.
    static QString failure();

    ~ScreenCaptureWnd() override;

    /// \cond
    void setVisible(bool visible) override;
    /// \endcond

    /// Connects captureFinished(QImage,bool) to `member` of `receiver`, queued, and disconnects the
    /// receiver given before. `member` is the result of SLOT() and must live as long as the
    /// capture. A null receiver or member only disconnects. Neither is owned; a receiver that is
    /// destroyed in the meantime is forgotten.
    void connectTo(QObject* receiver, const char* member);

    /// Covers the whole virtual desktop, or restores geometry and window flags from before. Shows
    /// and activates the window in either case. No window manager manages a window that covers the
    /// desktop (Qt::X11BypassWindowManagerHint). While the picture is awaited nothing is shown: the
    /// call takes effect when it is there.
    void showFullDesktop(bool full);

    /// Returns the region, cut from the desktop picture; null while no region is visible.
    QImage captureImage() const;

    /// Returns the picture that done, double-click and save deliver: the region with its
    /// annotations; null while no region is visible. Commits a text or shape that is being edited.
    QImage scribbledImage() const;

    /// Drops region and tool and starts over on the same desktop picture.
    void reset();

Q_SIGNALS:
    /// Emitted exactly once, at the end of a capture. When the user finishes, `image` is the
    /// annotated region, null if there is none, and `finished` is true. When the user cancels or
    /// the application quits, `image` is null and `finished` is false. A slot that is connected
    /// directly runs before the window is hidden, also when the application quits; a queued one
    /// does not run then, because the event loop has ended.
    void captureFinished(QImage image, bool finished);

    /// Never emitted: the window stores colours itself. Kept for hosts that connect to it.
    void penColorChanged(const QString& penName, const QColor& c);

public Q_SLOTS:
    /// Undoes the last edit; drops the region when there is no edit left.
    void undo();
    /// Redoes the last edit that was undone, if any.
    void redo();
    /// Asks for a file name, writes the picture in the format of its suffix and starts over. A
    /// failed write is silent.
    void save();
    /// The same as accept().
    void onBtnSend();
    /// Ends the capture with the picture.
    void accept() override;
    /// Cancels the capture.
    void reject() override;
    /// Lets canvas and tool bar follow the region, which has been moved or resized to `rect`, in
    /// window coordinates.
    void onCaptureRectChanged(const QRect& rect);
    /// Uses the tool whose button is checked, after a tool button was clicked.
    void onPaintTypeChanged();
    /// Sets the size of text, a number of points, if the text tool is chosen. Like the three slots
    /// that follow, this is for after a tool has been chosen.
    void onFontSizeChanged(const QString& size);
    /// Sets the width of the chosen tool in pixels. The brush of the mosaic is 15 pixels wider.
    void onPenWidthChanged(int width);
    /// Sets the colour of the chosen tool and stores it at once.
    void onPenColorChanged(QColor c);
    /// Sets the side of the mosaic's blocks in pixels.
    void onMosaicBlurChanged(int value);

protected:
    /// \cond
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    /// \endcond

private:
    enum CaptureState { StateIdle = 0, StateSelecting = 1, StateSelected = 2, StateAnnotating = 3 };

    /// One of the drawing tools, which ScreenCaptureWndToolBars.cpp lists.
    struct Tool;

    /// Tests see the private side through this.
    friend struct ScreenCaptureWndAccess;

    explicit ScreenCaptureWnd(const QImage* given);

    void init(const QImage* given);
    void takeDesktop();
    void takeGiven(const QImage& picture);
    void onDesktopTaken(const QImage& picture, const QString& failure);
    void usePicture(const QImage& picture, const QString& failure);
    void initToolBars();
    void initSubToolBar();
    void initScribbleArea();

    bool markEnded();
    void deliverAndHide(const QImage& image, bool finished);
    void hideCanvas();
    DesktopPicture desktopPicture() const;
    void cancelIfShown();
    void followPlace();
    void updateMagnifier(const QPointF& pos);
    int draggedSection() const;
    void updateMagnifierAtCursor();
    QRect makeGrabWholeWindowRect(const QPoint& globalPos);
    void updateGrabWindowRect(const QPoint& globalPos);
    QRect screenAt(const QPoint& p) const;
    void updateMainToolBarPos(int extraHeight);
    void updateSubToolBarPos();

    void beginAnnotating();
    void applyCheckedTool();
    void updateRedoButton() const;
    void updateRedoButtonLater();
    void showSubToolBarForPen();
    void showSubToolBarForText();
    void showSubToolBarForMosaic();
    void setScribbleAreaToolColor(const ScreenCaptureToolColors& colors);

    void startSelection(const QPoint& pos);
    void dragSelection(const QPoint& pos);
    void endSelection();
    void releaseRightButton(const QPoint& pos);

    static ScreenCaptureWnd* s_screenCaptureWnd;
    static QString s_failure;

    QPointer<QObject> m_receiver;
    const char* m_member = nullptr;
    QImage* m_desktopImage = nullptr;
    QImage m_dimmedImage;
    /// Where a picture that the host has handed in stands; null without one.
    QRect m_givenRect;
    NativeDesktop* m_nativeDesktop = nullptr;
    ResizableRect* m_rectCapture = nullptr;
    int m_state = StateIdle;
    QPoint m_pressPos;
    ScribbleArea* m_scribbleArea = nullptr;
    bool m_textColorChosen = false;
    QWidget* m_mainToolBar = nullptr;
    QPushButton* m_btnScribble = nullptr;
    QPushButton* m_btnText = nullptr;
    QPushButton* m_btnRect = nullptr;
    QPushButton* m_btnEllipse = nullptr;
    QAbstractButton* m_checkedButton = nullptr;
    QPushButton* m_btnRedo = nullptr;
    QPushButton* m_btnArrow = nullptr;
    QPushButton* m_btnMosaic = nullptr;
    QWidget* m_subToolBar = nullptr;
    QLabel* m_fontSizeLabel = nullptr;
    QComboBox* m_fontSizeBox = nullptr;
    PenWidthWidget* m_penWidthWidget = nullptr;
    ColorWidget* m_colorWidget = nullptr;
    QWidget* m_mosaicPanel = nullptr;
    QRect m_grabWindowRect;
    MagnifierWidget* m_magnifier = nullptr;
    bool m_fullDesktop = false;
    OverlayKeeper* m_keeper = nullptr;
    OutputViews* m_views = nullptr;
    DesktopSource* m_source = nullptr;
    /// What showFullDesktop() is to do when the picture that is awaited is there.
    std::optional<bool> m_shown;
    QRect m_normalGeometry;
    bool m_wasUnmanaged = false;
    bool m_ended = false;

    Q_DISABLE_COPY(ScreenCaptureWnd)
};
