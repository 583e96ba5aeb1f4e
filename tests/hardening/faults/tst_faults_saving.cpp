// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "Files.h"
#include "Io.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QRandomGenerator>
#include <QTimer>
#include <cerrno>
#include <functional>

namespace
{

constexpr QSize kDesktopSize(800, 600);
const QRect kRegion(QPoint(20, 20), QPoint(219, 169));
/// Some of a picture's file, not all of it.
constexpr rlim_t kSomeBytes = 100;
/// Fewer than Qt writes at once.
constexpr std::size_t kShortBytes = 1000;
const char* const kSuffixes[] = {"png", "jpg", "bmp"};

/// Noise, so that its file is written in more than one piece.
QImage desktopPicture()
{
    QImage picture(kDesktopSize, QImage::Format_RGB32);
    QRandomGenerator random(17);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixel(x, y, 0xff000000u | random.generate());
    }
    return picture;
}

QImage read(const std::string& name)
{
    return QImage(QString::fromStdString(name)).convertToFormat(QImage::Format_RGB32);
}

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
    void fileThatCannotBeOpened_data();
    void fileThatCannotBeOpened();
    void failedWrite_data();
    void failedWrite();
    void writesCutShort_data();
    void writesCutShort();
    void vanishedDirectory();
    void directoryBelowAPlainFile();

private:
    /// Calls `onceNamed` when the dialog is gone with all that it writes itself.
    void saveAs(
        const std::string& name, const std::function<void()>& onceNamed = [] {});
    void selectAgainAndSave(const std::string& name);
    void selectAgainAndDeliver();

    QScopedPointer<CaptureProbe> m_capture;
    QImage m_desktop;
};

void tst_faults_saving::init()
{
    BehaviourTest::init();
    m_capture.reset(new CaptureProbe);
    m_capture->window()->showFullDesktop(true);
    m_desktop = desktopPicture();
    ScreenCaptureWndAccess::setDesktop(m_capture->window(), m_desktop);
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
}

void tst_faults_saving::cleanup()
{
    m_capture.reset();
    BehaviourTest::cleanup();
}

void tst_faults_saving::saveAs(const std::string& name, const std::function<void()>& onceNamed)
{
    QTimer::singleShot(0, qApp, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        // The dialog itself would refuse some of these names.
        dialog->setFileMode(QFileDialog::AnyFile);
        dialog->findChild<QLineEdit*>()->setText(QString::fromStdString(name));
        connect(dialog, &QObject::destroyed, qApp, onceNamed);
        static_cast<QDialog*>(dialog)->done(QDialog::Accepted);
    });
    m_capture->window()->save();
    QVERIFY(m_capture->window()->isVisible());
    QVERIFY(!m_capture->region()->isVisible());
    QVERIFY(!QApplication::activeModalWidget());
}

void tst_faults_saving::selectAgainAndSave(const std::string& name)
{
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
    saveAs(name);
    QCOMPARE(read(name).size(), kRegion.size());
    if (!QString::fromStdString(name).endsWith("jpg"))
        QVERIFY(read(name) == m_desktop.copy(kRegion));
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
    for (const char* suffix : kSuffixes)
        QTest::newRow(suffix) << suffix;
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
    selectAgainAndSave(name);
    selectAgainAndDeliver();
}

void tst_faults_saving::fileThatCannotBeOpened_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("read-only file system") << EROFS;
    QTest::newRow("no permission") << EACCES;
}

void tst_faults_saving::fileThatCannotBeOpened()
{
    QFETCH(int, error);
    const Scratch scratch;
    const std::string name = scratch.path("picture.png");
    writeFile(name, "before");
    QScopedPointer<IoFaults> faults;
    saveAs(name, [&] {
        faults.reset(new IoFaults);
        faults->openForWritingError = error;
    });
    QVERIFY(faults);
    QVERIFY(faults->failed.opens > 0);
    faults.reset();
    QCOMPARE(readFile(name), std::string("before"));
    selectAgainAndSave(name);
    selectAgainAndDeliver();
}

void tst_faults_saving::failedWrite_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<int>("writesBefore");
    QTest::addColumn<int>("error");
    for (const char* suffix : kSuffixes) {
        QTest::addRow("%s, disk full at once", suffix) << suffix << 0 << ENOSPC;
        QTest::addRow("%s, disk full at the third write", suffix) << suffix << 2 << ENOSPC;
        QTest::addRow("%s, input and output", suffix) << suffix << 0 << EIO;
        QTest::addRow("%s, input and output at the second write", suffix) << suffix << 1 << EIO;
    }
}

void tst_faults_saving::failedWrite()
{
    QFETCH(QString, suffix);
    QFETCH(int, writesBefore);
    QFETCH(int, error);
    const Scratch scratch;
    const std::string name = scratch.path("picture." + suffix.toStdString());
    QScopedPointer<IoFaults> faults;
    saveAs(name, [&] {
        faults.reset(new IoFaults);
        faults->error = error;
        faults->writesBeforeError = writesBefore;
        faults->mostBytes = kShortBytes;
    });
    QVERIFY(faults);
    QVERIFY(faults->failed.writes > 0);
    faults.reset();
    QVERIFY(readFile(name).size() <= std::size_t(writesBefore) * kShortBytes);
    selectAgainAndSave(name);
    selectAgainAndDeliver();
}

void tst_faults_saving::writesCutShort_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<int>("mostBytes");
    QTest::addColumn<int>("interruptions");
    for (const char* suffix : kSuffixes) {
        QTest::addRow("%s, short", suffix) << suffix << int(kShortBytes) << 0;
        QTest::addRow("%s, interrupted", suffix) << suffix << INT_MAX << 3;
        QTest::addRow("%s, both", suffix) << suffix << int(kShortBytes) << 3;
    }
}

void tst_faults_saving::writesCutShort()
{
    QFETCH(QString, suffix);
    QFETCH(int, mostBytes);
    QFETCH(int, interruptions);
    const Scratch scratch;
    const std::string name = scratch.path("picture." + suffix.toStdString());
    const std::string undisturbed = scratch.path("undisturbed." + suffix.toStdString());
    QScopedPointer<IoFaults> faults;
    saveAs(name, [&] {
        faults.reset(new IoFaults);
        faults->mostBytes = std::size_t(mostBytes);
        faults->error = EINTR;
        faults->writesBeforeError = 1;
        faults->mostErrors = interruptions;
    });
    QVERIFY(faults);
    QCOMPARE(faults->failed.writes, interruptions);
    QCOMPARE(faults->shortened.writes > 0, mostBytes < INT_MAX);
    faults.reset();
    selectAgainAndSave(undisturbed);
    QVERIFY(readFile(name) == readFile(undisturbed));
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
