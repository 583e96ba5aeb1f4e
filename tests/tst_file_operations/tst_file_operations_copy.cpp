// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Files.h"
#include "Skip.h"
#include "StdText.h"
#include "myfs.h"

#include <QRandomGenerator>

#include <cerrno>
#include <csignal>
#include <sys/resource.h>

using myfs::path;

namespace
{

constexpr std::size_t kBufferBytes = 32768;
constexpr std::size_t kBigFileBytes = 64U << 20U;
constexpr int kErrnoBefore = EXDEV;

std::string noise(std::size_t bytes)
{
    std::string contents(bytes, '\0');
    QRandomGenerator random(quint32(bytes) + 1);
    for (char& byte : contents)
        byte = static_cast<char>(random.generate());
    return contents;
}

struct Result {
    bool ok;
    int error;
};

Result copied(const std::string& from, const std::string& to, bool failIfExists = false)
{
    std::error_code ec;
    errno = kErrnoBefore;
    const bool ok = myfs::copy_regular_file(path(from), path(to), failIfExists, ec);
    return {ok, ec.value()};
}

} // namespace

class tst_file_operations_copy : public BehaviourTest
{
    Q_OBJECT

private slots:
    void contents_data();
    void contents();
    void bigFileWithItsPermissions();
    void pipeIsReadToItsEnd();
    void fileWithoutASizeIsReadToItsEnd();
    void permissions_data();
    void permissions();
    void existingTargetIsOverwrittenAndKeepsItsPermissions();
    void timesAreNotCopied();
    void targetThroughALink();
    void missingSourceIsReportedInTheCodeAlone();
    void existingTargetIsReportedInTheCodeAlone();
    void unusableTargetIsReportedInTheCodeAlone();
    void directoryAsSourceFails();
    void copyOntoItselfEmptiesTheFile();
    void fullDeviceFails();
    void nothingFitsOnAFullDevice();
    void fileSizeLimitFails();
    void nothingStaysOpen();
};

void tst_file_operations_copy::contents_data()
{
    QTest::addColumn<quint64>("bytes");
    for (const std::size_t bytes : {std::size_t(0), std::size_t(1), kBufferBytes - 1, kBufferBytes,
                                    kBufferBytes + 1, 2 * kBufferBytes, 3 * kBufferBytes + 17})
        QTest::addRow("%zu bytes", bytes) << quint64(bytes);
}

void tst_file_operations_copy::contents()
{
    QFETCH(quint64, bytes);
    const Scratch scratch;
    const std::string all = noise(bytes);
    writeFile(scratch.path("from"), all);
    const Result result = copied(scratch.path("from"), scratch.path("to"), true);
    QVERIFY(result.ok);
    QCOMPARE(result.error, kErrnoBefore);
    QVERIFY(readFile(scratch.path("to")) == all);
    QVERIFY(myfs::copy_regular_file(path(scratch.path("from")), path(scratch.path("to")), false));
    QVERIFY(readFile(scratch.path("to")) == all);
}

void tst_file_operations_copy::bigFileWithItsPermissions()
{
    const Scratch scratch;
    const UmaskScope umask(0);
    const std::string all = noise(kBigFileBytes);
    writeFile(scratch.path("from"), all);
    QCOMPARE(::chmod(scratch.path("from").c_str(), 0751), 0);
    QVERIFY(copied(scratch.path("from"), scratch.path("to")).ok);
    QVERIFY(readFile(scratch.path("to")) == all);
    QCOMPARE(::permissions(scratch.path("to")), mode_t(0751));
}

// Neither has contents that the system could copy by itself.
void tst_file_operations_copy::pipeIsReadToItsEnd()
{
    const Scratch scratch;
    const std::string all = noise(3 * kBufferBytes + 17);
    QCOMPARE(::mkfifo(scratch.path("fifo").c_str(), 0600), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        writeFile(scratch.path("fifo"), all);
        ::_exit(0);
    }
    const Result result = copied(scratch.path("fifo"), scratch.path("to"), true);
    QCOMPARE(::waitpid(child, nullptr, 0), child);
    QVERIFY(result.ok);
    QCOMPARE(result.error, kErrnoBefore);
    QVERIFY(readFile(scratch.path("to")) == all);
    QVERIFY(myfs::is_regular_file(path(scratch.path("to"))));
}

void tst_file_operations_copy::fileWithoutASizeIsReadToItsEnd()
{
    const Scratch scratch;
    QVERIFY(copied("/proc/version", scratch.path("to")).ok);
    QVERIFY(!readFile("/proc/version").empty());
    QCOMPARE(readFile(scratch.path("to")), readFile("/proc/version"));
}

void tst_file_operations_copy::permissions_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("mask");
    QTest::addColumn<int>("result");
    QTest::newRow("all") << 0777 << 0 << 0777;
    QTest::newRow("read only") << 0444 << 0 << 0444;
    QTest::newRow("the mask counts") << 0777 << 0022 << 0755;
    QTest::newRow("mask of everything else") << 0666 << 0077 << 0600;
}

void tst_file_operations_copy::permissions()
{
    QFETCH(int, mode);
    QFETCH(int, mask);
    QFETCH(int, result);
    const Scratch scratch;
    writeFile(scratch.path("from"), "text");
    QCOMPARE(::chmod(scratch.path("from").c_str(), mode_t(mode)), 0);
    const UmaskScope umask{mode_t(mask)};
    QVERIFY(copied(scratch.path("from"), scratch.path("to")).ok);
    QCOMPARE(int(::permissions(scratch.path("to"))), result);
}

void tst_file_operations_copy::existingTargetIsOverwrittenAndKeepsItsPermissions()
{
    const Scratch scratch;
    writeFile(scratch.path("from"), "short");
    writeFile(scratch.path("to"), "much longer than that");
    QCOMPARE(::chmod(scratch.path("from").c_str(), 0755), 0);
    QCOMPARE(::chmod(scratch.path("to").c_str(), 0600), 0);
    QVERIFY(copied(scratch.path("from"), scratch.path("to")).ok);
    QCOMPARE(readFile(scratch.path("to")), std::string("short"));
    QCOMPARE(::permissions(scratch.path("to")), mode_t(0600));
}

void tst_file_operations_copy::timesAreNotCopied()
{
    const Scratch scratch;
    constexpr long long longAgo = 1000000000;
    writeFile(scratch.path("from"), "text");
    myfs::last_write_time(path(scratch.path("from")), longAgo);
    QVERIFY(copied(scratch.path("from"), scratch.path("to")).ok);
    QVERIFY(myfs::last_write_time(path(scratch.path("to"))) > longAgo);
}

void tst_file_operations_copy::targetThroughALink()
{
    const Scratch scratch;
    writeFile(scratch.path("from"), "text");
    QCOMPARE(::symlink("real", scratch.path("link").c_str()), 0);
    QVERIFY(copied(scratch.path("from"), scratch.path("link")).ok);
    QCOMPARE(readFile(scratch.path("real")), std::string("text"));
    QCOMPARE(copied(scratch.path("from"), scratch.path("link"), true).error, EEXIST);
}

void tst_file_operations_copy::missingSourceIsReportedInTheCodeAlone()
{
    const Scratch scratch;
    const Result result = copied(scratch.path("missing"), scratch.path("to"));
    QVERIFY(result.ok);
    QCOMPARE(result.error, ENOENT);
    QVERIFY(!myfs::exists(path(scratch.path("to"))));
    QVERIFY(myfs::copy_regular_file(path(scratch.path("missing")), path(scratch.path("to")), true));
}

void tst_file_operations_copy::existingTargetIsReportedInTheCodeAlone()
{
    const Scratch scratch;
    writeFile(scratch.path("from"), "new");
    writeFile(scratch.path("to"), "old");
    const Result result = copied(scratch.path("from"), scratch.path("to"), true);
    QVERIFY(result.ok);
    QCOMPARE(result.error, EEXIST);
    QCOMPARE(readFile(scratch.path("to")), std::string("old"));
}

void tst_file_operations_copy::unusableTargetIsReportedInTheCodeAlone()
{
    const Scratch scratch;
    writeFile(scratch.path("from"), "new");
    const Result missing = copied(scratch.path("from"), scratch.path("missing/to"));
    QVERIFY(missing.ok);
    QCOMPARE(missing.error, ENOENT);
    const Result directory = copied(scratch.path("from"), scratch.path());
    QVERIFY(directory.ok);
    QCOMPARE(directory.error, EISDIR);
    const Result below = copied(scratch.path("from"), scratch.path("from/to"));
    QVERIFY(below.ok);
    QCOMPARE(below.error, ENOTDIR);
}

void tst_file_operations_copy::directoryAsSourceFails()
{
    const Scratch scratch;
    const Result result = copied(scratch.path(), scratch.path("to"));
    QVERIFY(!result.ok);
    QCOMPARE(result.error, EISDIR);
}

void tst_file_operations_copy::copyOntoItselfEmptiesTheFile()
{
    const Scratch scratch;
    writeFile(scratch.path("file"), "text");
    QVERIFY(copied(scratch.path("file"), scratch.path("file")).ok);
    QCOMPARE(readFile(scratch.path("file")), std::string());
}

void tst_file_operations_copy::fullDeviceFails()
{
    struct stat status = {};
    if (::stat("/dev/full", &status) != 0 || !S_ISCHR(status.st_mode))
        SKIP_BECAUSE("the system has no device /dev/full");
    const Scratch scratch;
    for (const std::size_t bytes : {std::size_t(1), 3 * kBufferBytes}) {
        writeFile(scratch.path("from"), noise(bytes));
        const Result result = copied(scratch.path("from"), "/dev/full");
        QVERIFY(!result.ok);
        QCOMPARE(result.error, ENOSPC);
    }
}

void tst_file_operations_copy::nothingFitsOnAFullDevice()
{
    struct stat status = {};
    if (::stat("/dev/full", &status) != 0 || !S_ISCHR(status.st_mode))
        SKIP_BECAUSE("the system has no device /dev/full");
    const Scratch scratch;
    writeFile(scratch.path("from"), "");
    QVERIFY(copied(scratch.path("from"), "/dev/full").ok);
}

void tst_file_operations_copy::fileSizeLimitFails()
{
    const Scratch scratch;
    constexpr rlim_t limitBytes = kBufferBytes + 100;
    writeFile(scratch.path("from"), noise(3 * kBufferBytes));
    const int failed = inChild([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {limitBytes, limitBytes};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return 2;
        const Result result = copied(scratch.path("from"), scratch.path("to"));
        return !result.ok && result.error == EFBIG ? 0 : 1;
    });
    QCOMPARE(failed, 0);
    // What fitted was written in two goes.
    QVERIFY(readFile(scratch.path("to")) == noise(3 * kBufferBytes).substr(0, limitBytes));
}

void tst_file_operations_copy::nothingStaysOpen()
{
    const Scratch scratch;
    writeFile(scratch.path("file"), "text");
    const auto before = openFiles();
    copied(scratch.path("missing"), scratch.path("to"));
    copied(scratch.path("file"), scratch.path("missing/to"));
    copied(scratch.path("file"), scratch.path("file"), true);
    copied(scratch.path(), scratch.path("to"));
    copied(scratch.path("file"), scratch.path("to"));
    QCOMPARE(openFiles(), before);
}

QTEST_APPLESS_MAIN(tst_file_operations_copy)
#include "tst_file_operations_copy.moc"
