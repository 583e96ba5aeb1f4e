// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Files.h"
#include "Skip.h"
#include "StdText.h"
#include "myfs.h"

#include <cerrno>
#include <csignal>
#include <sys/file.h>
#include <sys/resource.h>
#include <type_traits>

using myfs::filestream;
using myfs::path;

namespace
{

constexpr unsigned int kReadOnly = 0x80000000U;
constexpr unsigned int kReadWrite = 0;
constexpr std::size_t kBeyondBuffersBytes = 1U << 20U;

std::string readAll(filestream& stream)
{
    std::string contents;
    char buffer[7];
    while (const std::size_t got = stream.read(buffer, sizeof buffer))
        contents.append(buffer, got);
    return contents;
}

long long positionOf(filestream& stream)
{
    long long position = -1;
    return stream.getpos(&position) ? position : -1;
}

bool hasFullDevice()
{
    struct stat status = {};
    return ::stat("/dev/full", &status) == 0 && S_ISCHR(status.st_mode);
}

/// One byte at a time between a test and its child.
class Pipe
{
public:
    Pipe()
    {
        if (::pipe(m_ends) != 0)
            qFatal("no pipe");
    }
    ~Pipe()
    {
        ::close(m_ends[0]);
        ::close(m_ends[1]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    bool tell() const { return ::write(m_ends[1], "x", 1) == 1; }
    bool await() const
    {
        char byte = 0;
        return ::read(m_ends[0], &byte, 1) == 1;
    }

private:
    int m_ends[2] = {-1, -1};
};

} // namespace

class tst_filestream : public BehaviourTest
{
    Q_OBJECT

private slots:
    void opening_data();
    void opening();
    void openingAgainKeepsTheFirstFile();
    void openingAgainAfterClosing();
    void cannotCreateWithoutADirectory();
    void closedStream();
    void ownsItsFile();
    void writingReplacesInPlace();
    void readingToTheEnd();
    void strangeNames();
    void positions();
    void positionsBeyond32Bits();
    void positionsThatTheSystemRefuses();
    void pipesHaveNoPositions();
    void fullDevice();
    void fileSizeLimit();
    void lockContention();
    void sharedLocks();
    void lockSerialisesWriters();
};

void tst_filestream::opening_data()
{
    QTest::addColumn<unsigned int>("mode");
    QTest::addColumn<bool>("writable");
    QTest::newRow("read only") << kReadOnly << false;
    QTest::newRow("zero") << 0U << true;
    QTest::newRow("write bit") << 0x40000000U << true;
    QTest::newRow("read and write bits") << 0xC0000000U << true;
    QTest::newRow("read bit and another") << (kReadOnly | 1U) << true;
    QTest::newRow("one") << 1U << true;
}

void tst_filestream::opening()
{
    QFETCH(unsigned int, mode);
    QFETCH(bool, writable);
    const Scratch scratch;
    const path missing(scratch.path("missing"));
    filestream stream;
    QVERIFY(!stream.open(missing, mode, false));
    QVERIFY(!stream.is_open());
    QVERIFY(!myfs::exists(missing));

    for (const bool create : {false, true}) {
        writeFile(scratch.path("present"), "old contents");
        QVERIFY(stream.open(path(scratch.path("present")), mode, create));
        QVERIFY(stream.is_open());
        QCOMPARE(positionOf(stream), 0LL);
        QCOMPARE(readAll(stream), std::string("old contents"));
        QVERIFY(stream.set_begin_pos());
        QCOMPARE(stream.write("new", 3), std::size_t(writable ? 3 : 0));
        stream.close();
        QCOMPARE(readFile(scratch.path("present")),
                 std::string(writable ? "new contents" : "old contents"));
    }

    QVERIFY(stream.open(missing, mode, true));
    QVERIFY(myfs::is_regular_file(missing));
    QCOMPARE(myfs::file_size(missing, false), 0LL);
    QCOMPARE(stream.write("new", 3), std::size_t(writable ? 3 : 0));
    stream.close();
    QCOMPARE(readFile(scratch.path("missing")), std::string(writable ? "new" : ""));
}

void tst_filestream::openingAgainKeepsTheFirstFile()
{
    const Scratch scratch;
    writeFile(scratch.path("first"), "first");
    writeFile(scratch.path("second"), "second");
    filestream stream;
    QVERIFY(stream.open(path(scratch.path("first")), kReadOnly, false));
    QVERIFY(stream.open(path(scratch.path("second")), kReadWrite, false));
    QVERIFY(stream.open(path(scratch.path("missing")), kReadWrite, true));
    QVERIFY(!myfs::exists(path(scratch.path("missing"))));
    QCOMPARE(readAll(stream), std::string("first"));
    QCOMPARE(stream.write("x", 1), std::size_t(0));
}

void tst_filestream::openingAgainAfterClosing()
{
    const Scratch scratch;
    writeFile(scratch.path("first"), "first");
    writeFile(scratch.path("second"), "second");
    filestream stream;
    QVERIFY(stream.open(path(scratch.path("first")), kReadOnly, false));
    stream.close();
    QVERIFY(stream.open(path(scratch.path("second")), kReadOnly, false));
    QCOMPARE(readAll(stream), std::string("second"));
}

void tst_filestream::cannotCreateWithoutADirectory()
{
    const Scratch scratch;
    filestream stream;
    QVERIFY(!stream.open(path(scratch.path("missing/file")), kReadWrite, true));
    QCOMPARE(errno, ENOENT);
    QVERIFY(!stream.is_open());
    QVERIFY(!stream.open(path("/"), kReadWrite, true));
}

void tst_filestream::closedStream()
{
    filestream stream;
    char buffer[4] = {};
    for (int round = 0; round < 2; ++round) {
        QVERIFY(!stream.is_open());
        QCOMPARE(stream.write("data", 4), std::size_t(0));
        QCOMPARE(stream.read(buffer, 4), std::size_t(0));
        QCOMPARE(stream.flush(), 0);
        QVERIFY(stream.eof());
        stream.close();
        stream.close();
        const Scratch scratch;
        QVERIFY(stream.open(path(scratch.path("file")), kReadWrite, true));
        QVERIFY(!stream.eof());
        stream.close();
    }
}

void tst_filestream::ownsItsFile()
{
    QVERIFY(!std::is_copy_constructible<filestream>::value);
    QVERIFY(!std::is_copy_assignable<filestream>::value);
    const Scratch scratch;
    const auto before = openFiles();
    {
        filestream stream;
        QVERIFY(stream.open(path(scratch.path("file")), kReadWrite, true));
        QCOMPARE(openFiles(), before + 1);
        QCOMPARE(stream.write("kept", 4), std::size_t(4));
    }
    QCOMPARE(openFiles(), before);
    QCOMPARE(readFile(scratch.path("file")), std::string("kept"));
}

void tst_filestream::writingReplacesInPlace()
{
    const Scratch scratch;
    writeFile(scratch.path("file"), "0123456789");
    filestream stream;
    QVERIFY(stream.open(path(scratch.path("file")), kReadWrite, true));
    QCOMPARE(stream.write("abc", 3), std::size_t(3));
    QCOMPARE(stream.flush(), 0);
    QCOMPARE(readFile(scratch.path("file")), std::string("abc3456789"));
    QVERIFY(stream.set_end_pos());
    QCOMPARE(stream.write(std::string("\0\xFF", 2).data(), 2), std::size_t(2));
    stream.close();
    QCOMPARE(readFile(scratch.path("file")), std::string("abc3456789\0\xFF", 12));
}

void tst_filestream::readingToTheEnd()
{
    const Scratch scratch;
    writeFile(scratch.path("file"), "12345");
    filestream stream;
    QVERIFY(stream.open(path(scratch.path("file")), kReadOnly, false));
    char buffer[8] = {};
    QCOMPARE(stream.read(buffer, 5), std::size_t(5));
    QVERIFY(!stream.eof());
    QCOMPARE(stream.read(buffer, 8), std::size_t(0));
    QVERIFY(stream.eof());
    QVERIFY(stream.set_begin_pos());
    QVERIFY(!stream.eof());
    QCOMPARE(stream.read(buffer, 8), std::size_t(5));
    QVERIFY(stream.eof());
}

void tst_filestream::strangeNames()
{
    const Scratch scratch;
    for (const char* name : {"\xE4\xB8\xAD\xE6\x96\x87", "\xFF\xFE"}) {
        filestream stream;
        QVERIFY(stream.open(path(scratch.path(name)), kReadWrite, true));
        QCOMPARE(stream.write("x", 1), std::size_t(1));
        stream.close();
        QCOMPARE(readFile(scratch.path(name)), std::string("x"));
    }
}

void tst_filestream::positions()
{
    const Scratch scratch;
    writeFile(scratch.path("file"), "0123456789");
    filestream stream;
    QVERIFY(stream.open(path(scratch.path("file")), kReadWrite, false));
    char byte = 0;
    QVERIFY(stream.setpos(7));
    QCOMPARE(positionOf(stream), 7LL);
    QCOMPARE(stream.read(&byte, 1), std::size_t(1));
    QCOMPARE(byte, '7');
    QCOMPARE(positionOf(stream), 8LL);
    QVERIFY(stream.set_begin_pos());
    QCOMPARE(positionOf(stream), 0LL);
    QVERIFY(stream.set_end_pos());
    QCOMPARE(positionOf(stream), 10LL);
    QVERIFY(stream.setpos(12));
    QCOMPARE(stream.write("x", 1), std::size_t(1));
    stream.close();
    QCOMPARE(readFile(scratch.path("file")), std::string("0123456789\0\0x", 13));
}

void tst_filestream::positionsBeyond32Bits()
{
    const Scratch scratch;
    constexpr long long far = (1LL << 32) + 3;
    filestream stream;
    QVERIFY(stream.open(path(scratch.path("file")), kReadWrite, true));
    QVERIFY(stream.setpos(far));
    QCOMPARE(positionOf(stream), far);
    QCOMPARE(stream.write("x", 1), std::size_t(1));
    QCOMPARE(positionOf(stream), far + 1);
    QVERIFY(stream.set_begin_pos());
    QVERIFY(stream.set_end_pos());
    QCOMPARE(positionOf(stream), far + 1);
    QCOMPARE(myfs::file_size(path(scratch.path("file")), false), far + 1);
}

void tst_filestream::positionsThatTheSystemRefuses()
{
    const Scratch scratch;
    filestream stream;
    QVERIFY(stream.open(path(scratch.path("file")), kReadWrite, true));
    QVERIFY(stream.setpos(3));
    QVERIFY(!stream.setpos(-5));
    QCOMPARE(positionOf(stream), 3LL);
}

void tst_filestream::pipesHaveNoPositions()
{
    const Scratch scratch;
    QCOMPARE(::mkfifo(scratch.path("fifo").c_str(), 0600), 0);
    filestream stream;
    QVERIFY(stream.open(path(scratch.path("fifo")), kReadWrite, false));
    long long position = 17;
    QVERIFY(!stream.getpos(&position));
    QCOMPARE(errno, ESPIPE);
    QCOMPARE(position, 17LL);
    QVERIFY(!stream.setpos(1));
    QVERIFY(!stream.set_begin_pos());
    QVERIFY(!stream.set_end_pos());
}

void tst_filestream::fullDevice()
{
    if (!hasFullDevice())
        SKIP_BECAUSE("the system has no device /dev/full");
    filestream stream;
    QVERIFY(stream.open(path("/dev/full"), kReadWrite, false));
    QCOMPARE(stream.write("x", 1), std::size_t(1));
    QVERIFY(stream.flush() != 0);
    QCOMPARE(errno, ENOSPC);
    stream.close();

    const std::string much(kBeyondBuffersBytes, 'x');
    QVERIFY(stream.open(path("/dev/full"), kReadWrite, false));
    QVERIFY(stream.write(much.data(), much.size()) < much.size());
    QCOMPARE(errno, ENOSPC);
    stream.close();
}

void tst_filestream::fileSizeLimit()
{
    const Scratch scratch;
    constexpr rlim_t limitBytes = 100000;
    const int failed = inChild([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {limitBytes, limitBytes};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return 3;
        filestream stream;
        if (!stream.open(path(scratch.path("file")), kReadWrite, true))
            return 2;
        const std::string much(kBeyondBuffersBytes, 'x');
        const bool whole = stream.write(much.data(), much.size()) == much.size();
        return whole || errno != EFBIG ? 1 : 0;
    });
    QCOMPARE(failed, 0);
    QCOMPARE(myfs::file_size(path(scratch.path("file")), false),
             static_cast<long long>(limitBytes));
}

// The child locks and unlocks when told to, and says when it has.
void tst_filestream::lockContention()
{
    const Scratch scratch;
    const Pipe done;
    const Pipe go;
    const path file(scratch.path("file"));
    writeFile(scratch.path("file"), "");
    const pid_t child = ::fork();
    if (child == 0) {
        filestream stream;
        bool ok = stream.open(file, kReadWrite, false) && stream.flock(LOCK_EX) == 0;
        ok = ok && done.tell() && go.await() && stream.flock(LOCK_UN) == 0 && done.tell();
        ok = ok && go.await() && stream.flock(LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        ok = ok && done.tell() && stream.flock(LOCK_EX) == 0;
        ::_exit(ok ? 0 : 1);
    }
    filestream stream;
    QVERIFY(stream.open(file, kReadOnly, false));
    QVERIFY(done.await());
    QCOMPARE(stream.flock(LOCK_EX | LOCK_NB), -1);
    QCOMPARE(errno, EWOULDBLOCK);
    QCOMPARE(stream.flock(LOCK_SH | LOCK_NB), -1);
    QVERIFY(go.tell());
    QVERIFY(done.await());
    QCOMPARE(stream.flock(LOCK_EX | LOCK_NB), 0);
    QVERIFY(go.tell());
    QVERIFY(done.await());
    // The child now waits, or will, for what closing gives up.
    stream.close();
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QVERIFY(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

void tst_filestream::sharedLocks()
{
    const Scratch scratch;
    const path file(scratch.path("file"));
    filestream first;
    QVERIFY(first.open(file, kReadOnly, true));
    QCOMPARE(first.flock(LOCK_SH), 0);
    const int failed = inChild([&] {
        filestream second;
        if (!second.open(file, kReadOnly, false) || second.flock(LOCK_SH | LOCK_NB) != 0)
            return 1;
        return second.flock(LOCK_EX | LOCK_NB) == 0 ? 2 : 0;
    });
    QCOMPARE(failed, 0);
}

namespace
{

constexpr int kIncrements = 500;

bool increment(const path& file)
{
    filestream stream;
    char digits[16] = {};
    if (!stream.open(file, kReadWrite, true) || stream.flock(LOCK_EX) != 0)
        return false;
    stream.read(digits, sizeof digits - 1);
    const std::string next = std::to_string(std::atoi(digits) + 1);
    return stream.set_begin_pos() && stream.write(next.data(), next.size()) == next.size();
}

bool incrementOften(const path& file)
{
    for (int i = 0; i < kIncrements; ++i) {
        if (!increment(file))
            return false;
    }
    return true;
}

} // namespace

// Two processes count in one file, each reading, adding and writing under the lock.
void tst_filestream::lockSerialisesWriters()
{
    const Scratch scratch;
    const path file(scratch.path("counter"));
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(incrementOften(file) ? 0 : 1);
    const bool ok = incrementOften(file);
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QVERIFY(ok);
    QVERIFY(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    QCOMPARE(readFile(scratch.path("counter")), std::to_string(2 * kIncrements));
}

QTEST_APPLESS_MAIN(tst_filestream)
#include "tst_filestream.moc"
