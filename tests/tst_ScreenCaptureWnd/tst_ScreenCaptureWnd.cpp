// SPDX-License-Identifier: MIT
#include "AssertionProbe.h"
#include "CaptureProbe.h"
#include "Pictures.h"

#include <QDir>
#include <QImageReader>
#include <QMetaMethod>
#include <QTemporaryDir>

namespace
{

const QRect kRegion(QPoint(100, 120), QPoint(299, 219));
const char* const kSlot = SLOT(onCaptured(QImage, bool));

} // namespace

/// The public interface: how a capture begins, to whom its result goes, and what is saved. Endings
/// have a program of their own.
class tst_ScreenCaptureWnd : public CaptureTest
{
    Q_OBJECT

private slots:
    void metaObjectKeepsSignalsAndSlotsInOrder();
    void windowIsFramelessOnTopAndDeletesItself();
    void nothingIsSelectedAtFirst();
    void theSameWindowServesOneCapture();
    void fullDesktopSavesAndRestoresTheGeometry();
    void fullDesktopIsNotManaged();
    void flagOfTheHostOutlastsTheFullDesktop();
    void fullDesktopShowsTheWindowWhateverChanged();
    void failedGrabGivesNullPictures();

    void onlyTheLastReceiverGetsTheResult();
    void nullReceiverOnlyDisconnects_data();
    void nullReceiverOnlyDisconnects();
    void receiverThatDiedIsForgotten();

    void saveDialogSuggestsAPngInTheWorkingDirectory();
    void saveDialogIsQtsOwn();
    void saveWritesTheRegion_data();
    void saveWritesTheRegion();
    void saveCancelledLeavesEverything();
    void eventFilterRequiresAnEvent();
};

void tst_ScreenCaptureWnd::metaObjectKeepsSignalsAndSlotsInOrder()
{
    const char* const signatures[] = {"captureFinished(QImage,bool)",
                                      "penColorChanged(QString,QColor)",
                                      "undo()",
                                      "redo()",
                                      "save()",
                                      "onBtnSend()",
                                      "accept()",
                                      "reject()",
                                      "onCaptureRectChanged(QRect)",
                                      "onPaintTypeChanged()",
                                      "onFontSizeChanged(QString)",
                                      "onPenWidthChanged(int)",
                                      "onPenColorChanged(QColor)",
                                      "onMosaicBlurChanged(int)"};
    constexpr int kSignals = 2;
    const QMetaObject& meta = ScreenCaptureWnd::staticMetaObject;
    QCOMPARE(meta.className(), "ScreenCaptureWnd");
    int index = 0;
    for (const char* signature : signatures) {
        const QMetaMethod method = meta.method(meta.methodOffset() + index);
        QCOMPARE(method.methodSignature(), QByteArray(signature));
        QCOMPARE(method.methodType(), index < kSignals ? QMetaMethod::Signal : QMetaMethod::Slot);
        ++index;
    }
}

void tst_ScreenCaptureWnd::windowIsFramelessOnTopAndDeletesItself()
{
    m_capture.reset();
    m_capture.reset(new CaptureProbe);
    QVERIFY(!window()->isVisible());
    QCOMPARE(window()->objectName(), QString("ScreenCaptureWnd"));
    QVERIFY(!window()->parentWidget());
    const Qt::WindowFlags wanted = Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
    QCOMPARE(window()->windowFlags() & wanted, wanted);
    QCOMPARE(window()->windowType(), Qt::Tool);
    QVERIFY(window()->testAttribute(Qt::WA_TranslucentBackground));
    QVERIFY(window()->testAttribute(Qt::WA_DeleteOnClose));
    QVERIFY(window()->hasMouseTracking());
    QCOMPARE(window()->cursor().shape(), Qt::BitmapCursor);
    QCOMPARE(window()->cursor().hotSpot(), QPoint(0, 0));
    QCOMPARE(window()->cursor().pixmap().size(), QSize(14, 21));
}

void tst_ScreenCaptureWnd::nothingIsSelectedAtFirst()
{
    ResizableRect* region = m_capture->region();
    QCOMPARE(region->parent(), window());
    QVERIFY(!region->isVisible());
    QVERIFY(region->rect().isNull());
    QCOMPARE(region->getColor(), QColor("#00aacc"));
    QVERIFY(region->isSizeInforVisible());

    const MagnifierWidget* loupe = m_capture->loupe();
    QVERIFY(loupe->isVisible());
    QCOMPARE(loupe->size(), QSize(80, 80));
    // Intended: with a closing brace that opens nowhere.
    QCOMPARE(loupe->styleSheet(),
             QString("background:rgba(0,0,0,0%); border-width:0; border-style:outset}"));
}

void tst_ScreenCaptureWnd::theSameWindowServesOneCapture()
{
    QCOMPARE(ScreenCaptureWnd::screenCaptureWnd(), window());
    m_capture->drag(kRegion);
    window()->reject();
    deliver();
    QVERIFY(m_capture->isGone());
    restart();
    QVERIFY(!m_capture->region()->isVisible());
}

void tst_ScreenCaptureWnd::fullDesktopSavesAndRestoresTheGeometry()
{
    window()->showFullDesktop(false);
    const QRect normal(10, 20, 300, 200);
    window()->setGeometry(normal);
    window()->showFullDesktop(true);
    QCOMPARE(window()->geometry(), QGuiApplication::primaryScreen()->virtualGeometry());
    window()->setGeometry(5, 5, 50, 50);
    window()->showFullDesktop(true);
    QCOMPARE(window()->geometry(), QRect(5, 5, 50, 50));
    window()->showFullDesktop(false);
    QCOMPARE(window()->geometry(), normal);
    window()->showFullDesktop(true);
    QCOMPARE(window()->geometry(), QGuiApplication::primaryScreen()->virtualGeometry());
}

void tst_ScreenCaptureWnd::fullDesktopIsNotManaged()
{
    m_capture.reset();
    m_capture.reset(new CaptureProbe);
    const Qt::WindowFlags flags = window()->windowFlags();
    window()->setAttribute(Qt::WA_DeleteOnClose, false);
    for (const bool full : {false, true, true, false, true}) {
        window()->showFullDesktop(full);
        const Qt::WindowFlags added = full ? Qt::X11BypassWindowManagerHint : Qt::WindowFlags();
        QCOMPARE(window()->windowFlags(), flags | added);
        QCOMPARE(window()->windowHandle()->flags() & Qt::X11BypassWindowManagerHint, added);
    }
    window()->reject();
    QCOMPARE(window()->windowFlags(), flags | Qt::X11BypassWindowManagerHint);
    window()->showFullDesktop(true);
    QCOMPARE(window()->windowFlags(), flags | Qt::X11BypassWindowManagerHint);
    window()->showFullDesktop(false);
    QCOMPARE(window()->windowFlags(), flags);
}

void tst_ScreenCaptureWnd::flagOfTheHostOutlastsTheFullDesktop()
{
    window()->showFullDesktop(false);
    window()->setWindowFlag(Qt::X11BypassWindowManagerHint);
    const Qt::WindowFlags flags = window()->windowFlags();
    for (const bool full : {true, true, false, false}) {
        window()->showFullDesktop(full);
        QCOMPARE(window()->windowFlags(), flags);
    }
}

void tst_ScreenCaptureWnd::fullDesktopShowsTheWindowWhateverChanged()
{
    for (const bool full : {true, false, false}) {
        QWidget other;
        other.show();
        other.activateWindow();
        QTRY_VERIFY(other.isActiveWindow());
        window()->hide();
        window()->showFullDesktop(full);
        QVERIFY(window()->isVisible());
        QTRY_VERIFY(window()->isActiveWindow());
    }
}

void tst_ScreenCaptureWnd::failedGrabGivesNullPictures()
{
    // The grab of the offscreen platform fails in Qt 5 only.
    ScreenCaptureWndAccess::setDesktop(window(), QImage());
    m_capture->drag(kRegion);
    QVERIFY(m_capture->region()->isVisible());
    QVERIFY(window()->captureImage().isNull());
    QVERIFY(window()->scribbledImage().isNull());
    // An empty surface, dimmed, where neither region nor loupe is painted.
    const QImage shown = window()->grab().toImage().convertToFormat(QImage::Format_ARGB32);
    QCOMPARE(shown.pixelColor(500, 400), QColor(0, 0, 0, 100));
}

void tst_ScreenCaptureWnd::onlyTheLastReceiverGetsTheResult()
{
    Receiver second;
    window()->connectTo(&second, SLOT(deleteLater()));
    window()->connectTo(&second, kSlot);
    window()->connectTo(&second, kSlot);
    window()->reject();
    deliver();
    QCOMPARE(m_receiver->count, 0);
    QCOMPARE(second.count, 1);
}

void tst_ScreenCaptureWnd::nullReceiverOnlyDisconnects_data()
{
    QTest::addColumn<bool>("nullReceiver");
    QTest::addColumn<bool>("nullMember");
    QTest::newRow("receiver") << true << false;
    QTest::newRow("member") << false << true;
    QTest::newRow("both") << true << true;
}

void tst_ScreenCaptureWnd::nullReceiverOnlyDisconnects()
{
    QFETCH(bool, nullReceiver);
    QFETCH(bool, nullMember);
    window()->connectTo(nullReceiver ? nullptr : m_receiver.get(), nullMember ? nullptr : kSlot);
    window()->reject();
    deliver();
    QCOMPARE(m_receiver->count, 0);
}

void tst_ScreenCaptureWnd::receiverThatDiedIsForgotten()
{
    Receiver second;
    m_receiver.reset();
    window()->connectTo(&second, kSlot);
    {
        Receiver third;
        window()->connectTo(&third, kSlot);
        window()->reject();
    }
    deliver();
    QCOMPARE(second.count, 0);
    QVERIFY(m_capture->isGone());
}

void tst_ScreenCaptureWnd::saveDialogSuggestsAPngInTheWorkingDirectory()
{
    bool asked = false;
    whileSaving([&asked](QFileDialog& dialog) {
        asked = true;
        QCOMPARE(dialog.windowTitle(), QString("Save As"));
        QCOMPARE(dialog.selectedFiles().value(0), QDir::currentPath() + "/untitled");
        QCOMPARE(dialog.nameFilters(),
                 QStringList({"PNG (*.png)", "JPEG (*.jpg;*.jpeg)", "BMP (*.bmp)"}));
        QCOMPARE(dialog.selectedNameFilter(), QString("PNG (*.png)"));
        dialog.reject();
    });
    window()->save();
    QVERIFY(asked);
}

// Other dialogs of the host's are as it wants them.
void tst_ScreenCaptureWnd::saveDialogIsQtsOwn()
{
    for (const bool hosts : {false, true}) {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs, hosts);
        bool inside = false;
        whileSaving([&inside](QFileDialog& dialog) {
            inside = QCoreApplication::testAttribute(Qt::AA_DontUseNativeDialogs);
            dialog.reject();
        });
        window()->save();
        QVERIFY(inside);
        QCOMPARE(QCoreApplication::testAttribute(Qt::AA_DontUseNativeDialogs), hosts);
    }
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs, false);
}

void tst_ScreenCaptureWnd::saveWritesTheRegion_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("format");
    QTest::newRow("PNG") << "a.png" << QByteArray("png");
    QTest::newRow("JPEG") << "a.jpg" << QByteArray("jpeg");
    QTest::newRow("BMP") << "a.bmp" << QByteArray("bmp");
    QTest::newRow("no suffix writes nothing") << "a" << QByteArray();
    QTest::newRow("no directory, silently") << "none/of/these.png" << QByteArray();
}

// The window stays for another region.
void tst_ScreenCaptureWnd::saveWritesTheRegion()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, format);
    const QTemporaryDir directory;
    const QImage desktop = places(window()->size());
    ScreenCaptureWndAccess::setDesktop(window(), desktop);
    m_capture->drag(kRegion);
    m_capture->saveAs(directory.filePath(name));
    QCOMPARE(QImageReader::imageFormat(directory.filePath(name)), format);
    QCOMPARE(QFile::exists(directory.filePath(name)), !format.isEmpty());
    if (format == "png" || format == "bmp")
        QCOMPARE(QImage(directory.filePath(name)).convertToFormat(QImage::Format_RGB32),
                 desktop.copy(kRegion));
    deliver();
    QCOMPARE(m_receiver->count, 0);
    QVERIFY(window()->isVisible());
    QVERIFY(!m_capture->region()->isVisible());
}

void tst_ScreenCaptureWnd::saveCancelledLeavesEverything()
{
    m_capture->annotate(kRegion, Rectangle);
    m_capture->saveAs(QString());
    QCOMPARE(m_capture->region()->rect(), kRegion);
    QVERIFY(m_capture->region()->isVisible());
    QVERIFY(m_capture->canvas()->isVisible());
    QVERIFY(m_capture->mainBar()->isVisible());
    QVERIFY(m_capture->loupe()->isHidden());
    QCOMPARE(m_capture->checkedTools(), Tools{Rectangle});
}

void tst_ScreenCaptureWnd::eventFilterRequiresAnEvent()
{
    SKIP_WITHOUT_ASSERTIONS();
    QObject* filter = window();
    QVERIFY(
        failedAssertion([&] { filter->eventFilter(filter, nullptr); }).contains("event != NULL"));
}

QTEST_MAIN(tst_ScreenCaptureWnd)
#include "tst_ScreenCaptureWnd.moc"
