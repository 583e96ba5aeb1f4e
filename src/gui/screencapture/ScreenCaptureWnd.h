// SPDX-License-Identifier: MIT
#pragma once

#include "screencapture_export.h"

#include <QColor>
#include <QDialog>
#include <QImage>
#include <QPoint>
#include <QPointer>
#include <QRect>

class ColorWidget;
class MagnifierWidget;
class PenWidthWidget;
class QAbstractButton;
class QComboBox;
class QLabel;
class QPushButton;
class ResizableRect;
class ScribbleArea;
struct ScreenCaptureToolColors;

/// The one window through which an application takes a screenshot.
///
/// When it is built it photographs the whole virtual desktop once; from then on it shows that
/// frozen picture, dimmed, over every screen and lets the user drag out a region. The capture ends
/// with captureFinished(), after which the window hides and deletes itself; the next
/// screenCaptureWnd() photographs the desktop anew.
///
/// \code
/// ScreenCaptureWnd* capture = ScreenCaptureWnd::screenCaptureWnd();
/// capture->connectTo(this, SLOT(onCaptured(QImage,bool)));
/// capture->showFullDesktop(true);
/// \endcode
///
/// Coordinates are pixels of the window, which are those of the virtual desktop. The window deletes
/// itself: a host keeps no pointer to it across the end of a capture. A host that clears
/// Qt::WA_DeleteOnClose keeps the window instead, and takes another capture of the same picture by
/// showing it again. The window's end is never taken for that of the last window, with which Qt
/// ends an application. GUI thread only, with a QApplication; nothing is thrown, and a desktop that
/// cannot be grabbed gives a null picture.
class SCREENCAPTURE_EXPORT ScreenCaptureWnd : public QDialog
{
    Q_OBJECT

public:
    /// The window of the running capture; built, with a fresh grab of the desktop, when there is
    /// none. Until the window of a finished capture is deleted by the event loop, which is after
    /// the slot given to connectTo() ran, this still returns that window; ask for the next capture
    /// from a zero timer rather than from that slot.
    static ScreenCaptureWnd* screenCaptureWnd();

    ~ScreenCaptureWnd() override;

    /// Sends captureFinished(QImage,bool) to `member` of `receiver`, queued, instead of to the
    /// receiver given before. `member` is what SLOT() makes and must live as long as the capture.
    /// With a null receiver or member only the former receiver is disconnected. Neither is owned; a
    /// receiver that dies in the meantime is forgotten.
    void connectTo(QObject* receiver, const char* member);

    /// Covers the whole virtual desktop, or returns to the geometry from before; shows and
    /// activates the window in any case.
    void showFullDesktop(bool full);

    /// The region cut from the desktop picture; null while no region is visible.
    QImage captureImage() const;

    /// The picture that done, double-click and save deliver: the region with its annotations, after
    /// a text or shape still being edited was committed; null while no region is visible.
    QImage scribbledImage() const;

    /// Drops region and tool and starts over on the same desktop picture.
    void reset();

Q_SIGNALS:
    /// Emitted exactly once, at the end of a capture: the annotated region and true when the user
    /// finished (the image is null when there was no region), a null image and false when the user
    /// cancelled or the application quits. Hosts may connect to it directly as well: a slot then
    /// runs before the window is hidden, and is told when the application quits, which a queued one
    /// is not, because the event loop has ended.
    void captureFinished(QImage image, bool finished);

    /// Never emitted by the window, which stores colours itself; kept for hosts that connect to it.
    void penColorChanged(const QString& penName, const QColor& c);

public Q_SLOTS:
    /// Takes back the last edit; drops the region when there is none left.
    void undo();
    /// Puts the last edit that was taken back in again; nothing when there is none.
    void redo();
    /// Asks for a file name, writes the picture there (format by the suffix that the user typed)
    /// and starts over. A failed write is silent.
    void save();
    /// accept().
    void onBtnSend();
    /// Ends the capture with the picture.
    void accept() override;
    /// Cancels the capture.
    void reject() override;
    /// The region was moved or resized, in pixels of the window: canvas and tool bar follow.
    void onCaptureRectChanged(const QRect& rect);
    /// A tool button was clicked: the tool whose button is checked now is used.
    void onPaintTypeChanged();
    /// The size of text, a number of points; nothing while another tool is chosen. This and the
    /// three that follow are the settings of the chosen tool, for when one was chosen.
    void onFontSizeChanged(const QString& size);
    /// The width of the chosen tool, in pixels; of the mosaic 15 less than its brush has.
    void onPenWidthChanged(int width);
    /// The colour of the chosen tool, which is remembered at once.
    void onPenColorChanged(QColor c);
    /// The side of the blocks of the mosaic, in pixels.
    void onMosaicBlurChanged(int value);

protected:
    /// \cond
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    /// \endcond

private:
    enum CaptureState { StateIdle = 0, StateSelecting = 1, StateSelected = 2, StateAnnotating = 3 };

    /// One of the drawing tools, which ScreenCaptureWndToolBars.cpp lists.
    struct Tool;

    /// Tests put a tool in the user's hand through this.
    friend struct ScreenCaptureWndAccess;

    ScreenCaptureWnd();

    void init();
    void initToolBars();
    void initSubToolBar();
    QLabel* createSeparator();
    void initScribbleArea();

    bool beginEnd();
    void deliver(const QImage& image, bool finished);
    void putCanvasAway();
    void updateMagnifier(const QPoint& pos);
    int draggedSection() const;
    void updateMagnifierAtCursor();
    QRect makeGrabWholeWindowRect(const QPoint& globalPos);
    void updateGrabWindowRect(const QPoint& globalPos);
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

    QPointer<QObject> m_receiver;
    const char* m_member = nullptr;
    QImage* m_desktopImage = nullptr;
    QImage m_dimmedImage;
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
    QRect m_normalGeometry;
    bool m_ended = false;

    Q_DISABLE_COPY(ScreenCaptureWnd)
};
