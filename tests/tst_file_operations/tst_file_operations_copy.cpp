// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Files.h"
#include "Skip.h"
#include "StdText.h"
#include "myfs.h"

#include <QRandomGenerator>

#include <cerrno>

namespace
{

constexpr std::size_t kBufferBytes = 32768;
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
    const bool ok = myfs::copy_regular_file(from, to, failIfExists, ec);
    return {ok, ec.value()};
}

} // namespace

class tst_file_operations_copy : public BehaviourTest
{
    Q_OBJECT

private slots:
    void contents_data();
    void contents();
    void pipeIsReadToItsEnd();
    void fileWithoutASizeIsReadToItsEnd();
    void permissions_data();
    void permissions();
    void existingTargetIsOverwrittenAndKeepsItsPermissions();
    void timesAreNotCopied();
    void targetThroughALink();
    void failures_data();
    void failures();
    void copyOntoItselfEmptiesTheFile();
    void sourceMayBeTheStandardInput();
    void fullDeviceFails();
};

void tst_file_operations_copy::contents_data()
{
    QTest::addColumn<quint64>("bytes");
    for (const std::size_t bytes : {std::size_t(0), std::size_t(1), kBufferBytes - 1, kBufferBytes,
                                    kBufferBytes + 1, 2 * kBufferBytes, 300 * kBufferBytes + 17})
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
}

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
    QVERIFY(myfs::is_regular_file(scratch.path("to")));
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
    QVERIFY(myfs::copy_regular_file(scratch.path("from"), scratch.path("to"), false));
    QCOMPARE(readFile(scratch.path("to")), std::string("short"));
    QCOMPARE(::permissions(scratch.path("to")), mode_t(0600));
}

void tst_file_operations_copy::timesAreNotCopied()
{
    const Scratch scratch;
    constexpr long long longAgo = 1000000000;
    writeFile(scratch.path("from"), "text");
    myfs::last_write_time(scratch.path("from"), longAgo);
    QVERIFY(copied(scratch.path("from"), scratch.path("to")).ok);
    QVERIFY(myfs::last_write_time(scratch.path("to")) > longAgo);
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

void tst_file_operations_copy::failures_data()
{
    QTest::addColumn<std::string>("from");
    QTest::addColumn<std::string>("to");
    QTest::addColumn<bool>("failIfExists");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<int>("error");
    const auto row = [](const char* name, const char* from, const char* to, bool failIfExists,
                        bool ok, int error) {
        QTest::newRow(name) << std::string(from) << std::string(to) << failIfExists << ok << error;
    };
    // Intended: what cannot be opened counts as copied, and only the code tells.
    row("missing source", "missing", "new", false, true, ENOENT);
    row("existing target", "file", "old", true, true, EEXIST);
    row("missing directory of the target", "file", "missing/new", false, true, ENOENT);
    row("directory as target", "file", ".", false, true, EISDIR);
    row("target below a file", "file", "file/new", false, true, ENOTDIR);
    row("directory as source", ".", "new", false, false, EISDIR);
}

void tst_file_operations_copy::failures()
{
    QFETCH(std::string, from);
    QFETCH(std::string, to);
    QFETCH(bool, failIfExists);
    QFETCH(bool, ok);
    QFETCH(int, error);
    const Scratch scratch;
    writeFile(scratch.path("file"), "text");
    writeFile(scratch.path("old"), "old text");
    const auto open = openFiles();
    const Result result = copied(scratch.path(from), scratch.path(to), failIfExists);
    QCOMPARE(result.ok, ok);
    QCOMPARE(result.error, error);
    QCOMPARE(openFiles(), open);
    QCOMPARE(readFile(scratch.path("file")), std::string("text"));
    QCOMPARE(readFile(scratch.path("old")), std::string("old text"));
    QCOMPARE(myfs::exists(scratch.path("new")), from == ".");
}

void tst_file_operations_copy::copyOntoItselfEmptiesTheFile()
{
    const Scratch scratch;
    writeFile(scratch.path("file"), "text");
    const auto open = openFiles();
    QVERIFY(copied(scratch.path("file"), scratch.path("file")).ok);
    QCOMPARE(openFiles(), open);
    QCOMPARE(readFile(scratch.path("file")), std::string());
}

// A program without a standard input opens its files in the place of it.
void tst_file_operations_copy::sourceMayBeTheStandardInput()
{
    const Scratch scratch;
    writeFile(scratch.path("from"), "text");
    const int failed = inChild([&] {
        ::close(STDIN_FILENO);
        return copied(scratch.path("from"), scratch.path("to")).ok ? 0 : 1;
    });
    QCOMPARE(failed, 0);
    QCOMPARE(readFile(scratch.path("to")), std::string("text"));
}

void tst_file_operations_copy::fullDeviceFails()
{
    if (!hasFullDevice())
        SKIP_BECAUSE("the system has no device /dev/full");
    const Scratch scratch;
    for (const std::size_t bytes : {std::size_t(1), 3 * kBufferBytes}) {
        writeFile(scratch.path("from"), noise(bytes));
        const Result result = copied(scratch.path("from"), "/dev/full");
        QVERIFY(!result.ok);
        QCOMPARE(result.error, ENOSPC);
    }
}

QTEST_APPLESS_MAIN(tst_file_operations_copy)
#include "tst_file_operations_copy.moc"
