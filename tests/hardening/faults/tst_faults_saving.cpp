// SPDX-License-Identifier: MIT
#include "Access.h"
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "Files.h"
#include "Io.h"
#include "Pictures.h"

#include <QFileDialog>
#include <QLineEdit>
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
    void failedCall_data();
    void failedCall();
    void writesCutShort_data();
    void writesCutShort();
    void directoryThatIsNone_data();
    void directoryThatIsNone();

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
    // So much noise that its file is written in more than one piece.
    m_desktop = noise(kDesktopSize);
    ScreenCaptureWndAccess::setDesktop(m_capture->window(), m_desktop);
    m_capture->drag(kRegion);
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
    m_capture->drag(kRegion);
    saveAs(name);
    const QImage saved(QString::fromStdString(name));
    QCOMPARE(saved.size(), kRegion.size());
    if (!QString::fromStdString(name).endsWith("jpg"))
        QVERIFY(saved.convertToFormat(QImage::Format_RGB32) == m_desktop.copy(kRegion));
}

void tst_faults_saving::selectAgainAndDeliver()
{
    Receiver receiver;
    m_capture->window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    m_capture->drag(kRegion);
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

void tst_faults_saving::failedCall_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<int>("openError");
    QTest::addColumn<int>("writeError");
    QTest::addColumn<int>("writesBefore");
    QTest::newRow("read-only file system") << "png" << EROFS << 0 << 0;
    QTest::newRow("no permission") << "png" << EACCES << 0 << 0;
    for (const char* suffix : kSuffixes) {
        QTest::addRow("%s, disk full at once", suffix) << suffix << 0 << ENOSPC << 0;
        QTest::addRow("%s, disk full at the third write", suffix) << suffix << 0 << ENOSPC << 2;
        QTest::addRow("%s, input and output", suffix) << suffix << 0 << EIO << 0;
        QTest::addRow("%s, input and output at the second write", suffix)
            << suffix << 0 << EIO << 1;
    }
}

void tst_faults_saving::failedCall()
{
    QFETCH(QString, suffix);
    QFETCH(int, openError);
    QFETCH(int, writeError);
    QFETCH(int, writesBefore);
    const Scratch scratch;
    const std::string name = scratch.path("picture." + suffix.toStdString());
    writeFile(name, "before");
    QScopedPointer<IoFaults> faults;
    saveAs(name, [&] {
        faults.reset(new IoFaults);
        faults->openForWritingError = openError;
        faults->error = writeError;
        faults->writesBeforeError = writesBefore;
        faults->mostBytes = kShortBytes;
    });
    QVERIFY(faults);
    QVERIFY((openError != 0 ? faults->failed.opens : faults->failed.writes) > 0);
    faults.reset();
    if (openError != 0)
        QCOMPARE(readFile(name), std::string("before"));
    else
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

void tst_faults_saving::directoryThatIsNone_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("gone") << "gone";
    QTest::newRow("a plain file") << "file";
}

void tst_faults_saving::directoryThatIsNone()
{
    QFETCH(QString, name);
    const Scratch scratch;
    writeFile(scratch.path("file"), "text");
    saveAs(scratch.path(name.toStdString()) + "/picture.png");
    QVERIFY(!std::filesystem::exists(scratch.path("gone")));
    QCOMPARE(readFile(scratch.path("file")), std::string("text"));
    selectAgainAndDeliver();
}

QTEST_MAIN(tst_faults_saving)
#include "tst_faults_saving.moc"
