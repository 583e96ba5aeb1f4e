// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "Files.h"
#include "Io.h"
#include "Skip.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QTimer>

struct ScreenCaptureWndAccess {
    static void setDesktop(ScreenCaptureWnd* window, const QImage& desktop)
    {
        *window->m_desktopImage = desktop;
    }
};

namespace
{

constexpr QSize kDesktopSize(800, 600);
const QRect kRegion(QPoint(20, 20), QPoint(219, 169));
/// Some of a picture's file, not all of it.
constexpr rlim_t kSomeBytes = 100;

} // namespace

/// Pictures saved where there is no room for them: nothing is said, the window is back at its start
/// with the same desktop, and the next picture is saved.
class tst_faults_saving : public BehaviourTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void fileSizeLimit_data();
    void fileSizeLimit();
    void fullDisk();
    void vanishedDirectory();
    void directoryBelowAPlainFile();

private:
    void saveAs(const std::string& name);
    void selectAgainAndDeliver();

    QScopedPointer<CaptureProbe> m_capture;
    QImage m_desktop;
};

void tst_faults_saving::init()
{
    BehaviourTest::init();
    m_capture.reset(new CaptureProbe);
    m_capture->window()->showFullDesktop(true);
    m_desktop = QImage(kDesktopSize, QImage::Format_RGB32);
    m_desktop.fill(Qt::darkGreen);
    m_desktop.setPixel(kRegion.center(), 0xffffffffu);
    ScreenCaptureWndAccess::setDesktop(m_capture->window(), m_desktop);
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
}

void tst_faults_saving::cleanup()
{
    m_capture.reset();
    BehaviourTest::cleanup();
}

void tst_faults_saving::saveAs(const std::string& name)
{
    QTimer::singleShot(0, qApp, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        // The dialog itself would refuse some of these names.
        dialog->setFileMode(QFileDialog::AnyFile);
        dialog->findChild<QLineEdit*>()->setText(QString::fromStdString(name));
        static_cast<QDialog*>(dialog)->done(QDialog::Accepted);
    });
    m_capture->window()->save();
    QVERIFY(m_capture->window()->isVisible());
    QVERIFY(!m_capture->region()->isVisible());
}

void tst_faults_saving::selectAgainAndDeliver()
{
    Receiver receiver;
    m_capture->window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
    m_capture->window()->accept();
    deliver();
    QCOMPARE(receiver.count, 1);
    QVERIFY(receiver.image == m_desktop.copy(kRegion));
}

void tst_faults_saving::fileSizeLimit_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::newRow("PNG") << "png";
    QTest::newRow("JPEG") << "jpg";
    QTest::newRow("BMP") << "bmp";
}

void tst_faults_saving::fileSizeLimit()
{
    QFETCH(QString, suffix);
    const Scratch scratch;
    const std::string name = scratch.path("picture." + suffix.toStdString());
    {
        const FileSizeLimit limit(kSomeBytes);
        saveAs(name);
    }
    QVERIFY(readFile(name).size() <= kSomeBytes);
    // Selected once more it is saved.
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
    saveAs(name);
    QCOMPARE(QImage(QString::fromStdString(name)).size(), kRegion.size());
    QVERIFY(readFile(name).size() > kSomeBytes);
    selectAgainAndDeliver();
}

void tst_faults_saving::fullDisk()
{
    struct stat status = {};
    if (::stat("/dev/full", &status) != 0 || !S_ISCHR(status.st_mode))
        SKIP_BECAUSE("the system has no device /dev/full");
    const Scratch scratch;
    // Written through a link, so that nothing but the link can be removed.
    QCOMPARE(::symlink("/dev/full", scratch.path("picture.bmp").c_str()), 0);
    saveAs(scratch.path("picture.bmp"));
    QVERIFY(::stat("/dev/full", &status) == 0 && S_ISCHR(status.st_mode));
    selectAgainAndDeliver();
}

void tst_faults_saving::vanishedDirectory()
{
    std::string directory;
    {
        const Scratch scratch;
        directory = scratch.path();
    }
    saveAs(directory + "/picture.png");
    QVERIFY(!std::filesystem::exists(directory));
    selectAgainAndDeliver();
}

void tst_faults_saving::directoryBelowAPlainFile()
{
    const Scratch scratch;
    writeFile(scratch.path("file"), "text");
    saveAs(scratch.path("file") + "/picture.png");
    QCOMPARE(readFile(scratch.path("file")), std::string("text"));
    selectAgainAndDeliver();
}

QTEST_MAIN(tst_faults_saving)
#include "tst_faults_saving.moc"
