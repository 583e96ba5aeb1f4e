// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Files.h"
#include "StdText.h"
#include "myfs.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <stdexcept>

using myfs::path;

namespace
{

constexpr std::size_t kBufferBytes = 1024;
constexpr std::size_t kLongNameBytes = 100;

/// A directory of the test's own under the name that the system resolves it to.
std::string realPath(const Scratch& scratch)
{
    return QFileInfo(QString::fromStdString(scratch.path())).canonicalFilePath().toStdString();
}

/// Directories below `base`, made, the last of which has a name of exactly that many bytes.
std::string deepDirectory(const std::string& base, std::size_t bytes)
{
    std::string name = base;
    while (name.size() < bytes) {
        const std::size_t left = bytes - name.size() - 1;
        // Half a name at a time, so that the last one is never left without a letter.
        name += "/" + std::string(left > kLongNameBytes ? kLongNameBytes / 2 : left, 'd');
        if (::mkdir(name.c_str(), 0700) != 0)
            qFatal("cannot make %s", name.c_str());
    }
    return name;
}

/// The probe's output, run from the path given.
std::string outputOf(const std::string& command)
{
    std::string output;
    char buffer[4096];
    std::FILE* pipe = ::popen(command.c_str(), "r");
    while (pipe) {
        const std::size_t got = std::fread(buffer, 1, sizeof buffer, pipe);
        if (got == 0)
            break;
        output.append(buffer, got);
    }
    if (!pipe || ::pclose(pipe) != 0)
        output += "(failed)";
    return output;
}

std::string sizeOf(const std::string& text)
{
    return std::to_string(path(text).size());
}

/// A copy of the probe whose own path has exactly that many bytes.
std::string probeOfLength(const std::string& base, std::size_t bytes)
{
    std::string probe = deepDirectory(base, bytes - std::strlen("/probe")) + "/probe";
    if (!QFile::copy(APP_PATH_PROBE, QString::fromStdString(probe)))
        qFatal("cannot copy the probe");
    return probe;
}

} // namespace

class tst_file_operations_places : public BehaviourTest
{
    Q_OBJECT

private slots:
    void workingDirectory();
    void workingDirectoryThatIsGoneThrows();
    void workingDirectoryOfALongName_data();
    void workingDirectoryOfALongName();
    void initialPathIsTheDirectoryOfTheFirstCall();
    void initialPathInTheRootIsOneEmptyComponent();
    void appPathIsPrintedOnce();
    void appPathFillsTheBuffer();
    void appPathTooLongIsEmptyAndAskedAgain();
    void setAppPathChangesTheDirectory();
};

void tst_file_operations_places::workingDirectory()
{
    const Scratch scratch;
    const WorkingDirectoryScope scope;
    myfs::current_path(path(scratch.path()));
    QCOMPARE(myfs::current_path().string(), realPath(scratch));
    QVERIFY(myfs::current_path().is_absolute());
    QCOMPARE(myfs::absolute(path("..")).string(), path(realPath(scratch)).parent_path().string());
    QCOMPARE(::chdir("/"), 0);
    QVERIFY(myfs::current_path().empty());
    QVERIFY(myfs::current_path().is_absolute());
}

void tst_file_operations_places::workingDirectoryThatIsGoneThrows()
{
    const Scratch scratch;
    QVERIFY(myfs::create_directory(path(scratch.path("gone"))));
    const WorkingDirectoryScope scope(scratch.path("gone"));
    QVERIFY(myfs::remove_directory(path(scratch.path("gone"))));
    try {
        static_cast<void>(myfs::current_path());
        QFAIL("nothing was thrown");
    } catch (const std::runtime_error& error) {
        const std::string expected = "Internal error in getcwd(): ";
        QCOMPARE(std::string(error.what()), expected + std::strerror(ENOENT));
    }
}

void tst_file_operations_places::workingDirectoryOfALongName_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<bool>("fits");
    QTest::newRow("fills the buffer") << int(kBufferBytes) - 1 << true;
    QTest::newRow("one byte too long") << int(kBufferBytes) << false;
    QTest::newRow("twice the buffer") << 2 * int(kBufferBytes) << false;
}

void tst_file_operations_places::workingDirectoryOfALongName()
{
    QFETCH(int, bytes);
    QFETCH(bool, fits);
    const Scratch scratch;
    const std::string name = deepDirectory(realPath(scratch), std::size_t(bytes));
    QCOMPARE(int(name.size()), bytes);
    const WorkingDirectoryScope scope(name);
    try {
        QCOMPARE(myfs::current_path().string(), name);
        QVERIFY(fits);
    } catch (const std::runtime_error& error) {
        QVERIFY(!fits);
        const std::string expected = "Internal error in getcwd(): ";
        QCOMPARE(std::string(error.what()), expected + std::strerror(ERANGE));
    }
}

void tst_file_operations_places::initialPathIsTheDirectoryOfTheFirstCall()
{
    const Scratch scratch;
    const std::string first = realPath(scratch);
    const int failed = inChild([&] {
        myfs::current_path(path(first));
        const path& initial = myfs::initial_path();
        if (initial.string() != first || !initial.is_absolute())
            return 1;
        myfs::current_path(path("/usr"));
        return myfs::initial_path().string() == first && &myfs::initial_path() == &initial ? 0 : 2;
    });
    QCOMPARE(failed, 0);
}

// The root's text is empty, and the cache is filled by assignment.
void tst_file_operations_places::initialPathInTheRootIsOneEmptyComponent()
{
    const int failed = inChild([] {
        if (::chdir("/") != 0)
            return 3;
        const path& initial = myfs::initial_path();
        if (initial.size() != 1 || initial.is_absolute() || !initial.string().empty())
            return 1;
        myfs::current_path(path("/usr"));
        return myfs::initial_path().string().empty() ? 0 : 2;
    });
    QCOMPARE(failed, 0);
}

void tst_file_operations_places::appPathIsPrintedOnce()
{
    const std::string probe = QFileInfo(QString(APP_PATH_PROBE)).canonicalFilePath().toStdString();
    const std::string line = probe + " size " + sizeOf(probe) + "\n";
    QCOMPARE(outputOf(probe + " print"), "executable path is " + probe + "\n" + line + line);
}

void tst_file_operations_places::appPathFillsTheBuffer()
{
    const Scratch scratch;
    const std::string probe = probeOfLength(realPath(scratch), kBufferBytes - 1);
    QCOMPARE(probe.size(), kBufferBytes - 1);
    const std::string line = probe + " size " + sizeOf(probe) + "\n";
    QCOMPARE(outputOf(probe + " print"), "executable path is " + probe + "\n" + line + line);
}

void tst_file_operations_places::appPathTooLongIsEmptyAndAskedAgain()
{
    const Scratch scratch;
    const std::string nowhere = " size 0\n";
    const std::string probe = probeOfLength(realPath(scratch), kBufferBytes);
    QCOMPARE(outputOf(probe + " print"), nowhere + nowhere);

    const std::string moved = realPath(scratch) + "/moved";
    QCOMPARE(outputOf(probe + " move " + probe + " " + moved), nowhere + "executable path is " +
                                                                   moved + "\n" + moved + " size " +
                                                                   sizeOf(moved) + "\n");
}

void tst_file_operations_places::setAppPathChangesTheDirectory()
{
    const std::string probe = QFileInfo(QString(APP_PATH_PROBE)).canonicalFilePath().toStdString();
    const std::string directory = path(probe).parent_path().string();
    QCOMPARE(outputOf("cd / && " + probe + " chdir"), "executable path is " + probe + "\n" +
                                                          directory + " size " + sizeOf(directory) +
                                                          "\n");
}

QTEST_APPLESS_MAIN(tst_file_operations_places)
#include "tst_file_operations_places.moc"
