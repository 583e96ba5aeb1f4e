// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Files.h"
#include "ScreenCaptureTool.h"
#include "StdText.h"

#include <QCoreApplication>
#include <QProcess>
#include <QScopedPointer>
#include <QSettings>
#include <QtTest>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <type_traits>

/// Scribble, rectangle, ellipse and arrow, as 0xAARRGGBB.
using Colors = QList<uint>;
Q_DECLARE_METATYPE(Colors)

static_assert(std::is_base_of<QObject, ScreenCaptureToolHelper>::value);
static_assert(!std::is_convertible<ScreenCaptureToolHelper*, QObject*>::value);

namespace
{

const char* const kClient = "--client";
constexpr uint kBlue = 0xff0000ff;
/// What memory holds when a test begins.
const Colors kBefore{1, 2, 3, 4};
const Colors kAllBlue{kBlue, kBlue, kBlue, kBlue};

/// A file with these numbers. Qt sorts entries by name.
std::string fileOf(const char* arrow, const char* ellipse, const char* rect, const char* scribble)
{
    return std::string("[pen_color]\narrowColor=") + arrow + "\nellipseColor=" + ellipse +
           "\nrectColor=" + rect + "\nscribbleColor=" + scribble + "\n";
}
const std::string kBlueFile = fileOf("4278190335", "4278190335", "4278190335", "4278190335");

Colors colorsNow()
{
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::penColor(colors);
    return {colors.scribbleColor.rgba(), colors.rectColor.rgba(), colors.ellipseColor.rgba(),
            colors.arrowColor.rgba()};
}

ScreenCaptureToolColors record(const Colors& colors, const QColor& text = QColor())
{
    return {QColor::fromRgba(colors.at(0)), QColor::fromRgba(colors.at(1)),
            QColor::fromRgba(colors.at(2)), QColor::fromRgba(colors.at(3)), text};
}

void setColors(const Colors& colors)
{
    ScreenCaptureTool::setPenColor(record(colors));
}

void initIn(const std::string& directory)
{
    ScreenCaptureTool::init(QString::fromStdString(directory));
}

/// `value` of an INI file after another entry has changed: beyond ASCII Qt 5 writes escapes, Qt 6
/// UTF-8.
std::string writtenBySettings(const std::string& value)
{
    const Scratch scratch;
    const std::string file = scratch.path("any.ini");
    writeFile(file, "[any]\na=" + value + "\nb=1\n");
    QSettings(QString::fromStdString(file), QSettings::IniFormat).setValue("any/b", 2);
    const std::string written = readFile(file);
    const std::string before = "[any]\na=";
    return written.substr(before.size(), written.find("\nb=2") - before.size());
}

/// What this program does as a process of its own: prints the colours as it finds them, and as it
/// leaves them, all blue. The settings are in `directory`, if any.
int runClient(const QStringList& directory)
{
    if (!directory.isEmpty())
        ScreenCaptureTool::init(directory.first());
    for (const Colors& colors : {colorsNow(), kAllBlue}) {
        setColors(colors);
        for (const uint color : colorsNow())
            std::printf("%x ", color);
    }
    return 0;
}

} // namespace

class tst_ScreenCaptureTool : public BehaviourTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void recordIsInvalidAtFirst();
    void helperHoldsTheDefaults();
    void colorsOutliveTheProcessInTheFileOnly();
    void fileIsIn_data();
    void fileIsIn();
    void fileIsRead_data();
    void fileIsRead();
    void colorsAreHandedOutFromMemory();
    void textColorIsNotHandedOut();
    void fourColorsAreWritten();
    void otherEntriesStay_data();
    void otherEntriesStay();
    void nothingIsMadeWithoutADirectory_data();
    void nothingIsMadeWithoutADirectory();

private:
    std::string directory() const { return m_scratch->path("settings"); }
    std::string file() const { return directory() + "/screencapture.ini"; }
    std::string runInAnEmptyDirectory(const QStringList& arguments) const;

    QScopedPointer<Scratch> m_scratch;
};

void tst_ScreenCaptureTool::init()
{
    BehaviourTest::init();
    m_scratch.reset(new Scratch);
    for (const char* name : {"settings", "before", "empty"})
        std::filesystem::create_directory(m_scratch->path(name));
    initIn(m_scratch->path("before"));
    setColors(kBefore);
}

void tst_ScreenCaptureTool::cleanup()
{
    m_scratch.reset();
    BehaviourTest::cleanup();
}

/// What this program prints as a client, to its error output as well.
std::string tst_ScreenCaptureTool::runInAnEmptyDirectory(const QStringList& arguments) const
{
    const QString empty = QString::fromStdString(m_scratch->path("empty"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", empty);
    environment.insert("XDG_CONFIG_HOME", empty);
    QProcess client;
    client.setProcessEnvironment(environment);
    client.setProcessChannelMode(QProcess::MergedChannels);
    client.setWorkingDirectory(empty);
    client.start(QCoreApplication::applicationFilePath(), QStringList(kClient) + arguments);
    client.waitForFinished(kPatienceMs);
    return client.readAll().toStdString();
}

void tst_ScreenCaptureTool::recordIsInvalidAtFirst()
{
    const ScreenCaptureToolColors colors;
    for (const QColor& color : {colors.scribbleColor, colors.rectColor, colors.ellipseColor,
                                colors.arrowColor, colors.textColor})
        QVERIFY(!color.isValid());
}

void tst_ScreenCaptureTool::helperHoldsTheDefaults()
{
    const ScreenCaptureToolHelper helper;
    const QColor red(251, 56, 56, 255);
    const QMap<QString, QColor> expected{{"scribbleColor", red},
                                         {"rectColor", red},
                                         {"ellipseColor", red},
                                         {"arrowColor", red},
                                         {"textColor", QColor(0, 0, 0, 255)}};
    QCOMPARE(helper.m_penColors, expected);
    QVERIFY(helper.m_iniPath.isEmpty());
}

// A file that is made and removed again, such as a lock, shows in the directory's time.
void tst_ScreenCaptureTool::colorsOutliveTheProcessInTheFileOnly()
{
    const std::filesystem::path empty = m_scratch->path("empty");
    const auto longAgo = std::filesystem::last_write_time(empty) - std::chrono::hours(1);
    std::filesystem::last_write_time(empty, longAgo);
    const QStringList settings(QString::fromStdString(directory()));
    const std::string red = "fffb3838 fffb3838 fffb3838 fffb3838 ";
    const std::string blue = "ff0000ff ff0000ff ff0000ff ff0000ff ";
    QCOMPARE(runInAnEmptyDirectory(settings), red + blue);
    QCOMPARE(runInAnEmptyDirectory(settings), blue + blue);
    QCOMPARE(runInAnEmptyDirectory({}), red + blue);
    QVERIFY(std::filesystem::is_empty(empty));
    QVERIFY(std::filesystem::last_write_time(empty) == longAgo);
}

void tst_ScreenCaptureTool::fileIsIn_data()
{
    QTest::addColumn<std::string>("named");
    QTest::addColumn<std::string>("directory");
    const auto row = [](const char* name, const char* named, const char* directory) {
        QTest::newRow(name) << std::string(named) << std::string(directory);
    };
    row("relative", "settings", "settings");
    row("working directory", ".", ".");
    row("backslashes separate", "settings\\more\\", "settings/more");
    row("beyond ASCII", "截图 ü", "截图 ü");
    row("characters of the format", "a=[%41];", "a=[%41];");
}

void tst_ScreenCaptureTool::fileIsIn()
{
    QFETCH(std::string, named);
    QFETCH(std::string, directory);
    const WorkingDirectoryScope scope(m_scratch->path());
    std::filesystem::create_directories(m_scratch->path(directory));
    const std::string written = m_scratch->path(directory + "/screencapture.ini");
    for (const std::string& name : {named, m_scratch->path(named)}) {
        initIn(name);
        setColors(kAllBlue);
        QCOMPARE(readFile(written), kBlueFile);
        writeFile(written, "[pen_color]\nrectColor=7\n");
        initIn(name);
        QCOMPARE(colorsNow(), Colors({kBlue, 7, kBlue, kBlue}));
        std::filesystem::remove(written);
    }
    QCOMPARE(readFile(m_scratch->path("before/screencapture.ini")), fileOf("4", "3", "2", "1"));
}

void tst_ScreenCaptureTool::fileIsRead_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<Colors>("colors");
    const auto row = [](const QByteArray& text, const Colors& colors) {
        QTest::newRow(text.simplified()) << text.toStdString() << colors;
    };
    const QByteArray group = "[pen_color]\n";
    row(group + "scribbleColor=4278190335\n", {kBlue, 2, 3, 4});
    row(group + "rectColor=4278190335\n", {1, kBlue, 3, 4});
    row(group + "ellipseColor=4278190335\n", {1, 2, kBlue, 4});
    row(group + "arrowColor=4278190335\n", {1, 2, 3, kBlue});
    row(group + "penColor=4278190335\nrectColor=7\n", {1, 7, 3, 4});
    row(group + "rectColor=\"4278190335\"\n", {1, kBlue, 3, 4});
    row(group + "rectColor=305419896\n", {1, 0x12345678, 3, 4});
    row(group + "rectColor=4294967295\n", {1, 0xffffffff, 3, 4});
    row(group + "rectColor=7\nx=@Variant(\\0\\0\\0\\xe\\0%\\x84\\xe2)\n", {1, 7, 3, 4});
    for (const char* noNumber :
         {"", "blue", "#ff0000ff", "0xff0000ff", "-1", "4294967296", "1, 2", "@Point(1 2)"})
        row(group + "rectColor=" + noNumber + "\n", {1, 0, 3, 4});
    for (const char* other :
         {"textColor=7\n", "rectcolor=7\n", "more\\rectColor=7\n", "rectColor\n", ""})
        row(group + other, kBefore);
    for (const char* noGroup : {"[pens]\nrectColor=7\n", "rectColor=7\n", "", "[pen_color\nred\n",
                                "<?xml version=\"1.0\"?>\n<pens/>\n"})
        row(noGroup, kBefore);
    QTest::newRow("null bytes") << std::string(4096, '\0') << kBefore;
}

void tst_ScreenCaptureTool::fileIsRead()
{
    QFETCH(std::string, text);
    QFETCH(Colors, colors);
    writeFile(file(), text);
    initIn(directory());
    QCOMPARE(colorsNow(), colors);
    QVERIFY(readFile(file()) == text);
}

void tst_ScreenCaptureTool::colorsAreHandedOutFromMemory()
{
    initIn(directory());
    QVERIFY(std::filesystem::is_empty(directory()));
    writeFile(file(), kBlueFile);
    QCOMPARE(colorsNow(), kBefore);
}

void tst_ScreenCaptureTool::textColorIsNotHandedOut()
{
    ScreenCaptureTool::setPenColor(record(kBefore, Qt::yellow));
    ScreenCaptureToolColors colors;
    colors.textColor = Qt::cyan;
    ScreenCaptureTool::penColor(colors);
    QCOMPARE(colors.textColor, QColor(Qt::cyan));
}

void tst_ScreenCaptureTool::fourColorsAreWritten()
{
    const Colors colors{0xfffb3838, kBlue, 0x12345678, 0};
    initIn(directory());
    ScreenCaptureTool::setPenColor(record(colors, Qt::yellow));
    QCOMPARE(colorsNow(), colors);
    QCOMPARE(readFile(file()), fileOf("0", "305419896", "4278190335", "4294654008"));
    // Invalid colours are black.
    const char* const black = "4278190080";
    ScreenCaptureTool::setPenColor(ScreenCaptureToolColors());
    QCOMPARE(readFile(file()), fileOf(black, black, black, black));
    std::filesystem::remove(file());
    QVERIFY(std::filesystem::is_empty(directory()));
}

void tst_ScreenCaptureTool::otherEntriesStay_data()
{
    QTest::addColumn<std::string>("value");
    for (const char* value : {"7", "cat, dog", R"(\x622a\x56fe)", "@@home", "@Point(1 2)",
                              R"(@ByteArray(\0\x1\x61))", R"(@Variant(\0\0\0\xe\0%\x84\xe2))"})
        QTest::newRow(value) << std::string(value);
}

// Another program has written them since the file was read.
void tst_ScreenCaptureTool::otherEntriesStay()
{
    QFETCH(std::string, value);
    const auto above = [](const std::string& a) {
        return "[Window]\na=" + a + "\n\n[pen_color]\na=" + a + "\n";
    };
    const auto below = [](const std::string& a) {
        return "textColor=3\nthePenColor=7\n\n[zoo]\na=" + a + "\n";
    };
    const std::string colors = kBlueFile.substr(kBlueFile.find('\n') + 1);
    initIn(directory());
    setColors(kBefore);
    writeFile(file(), above(value) + "scribbleColor=5\n" + below(value));
    ScreenCaptureTool::setPenColor(record(kAllBlue, Qt::yellow));
    const std::string written = writtenBySettings(value);
    QCOMPARE(readFile(file()), above(written) + colors + below(written));
}

void tst_ScreenCaptureTool::nothingIsMadeWithoutADirectory_data()
{
    QTest::addColumn<std::string>("name");
    QTest::newRow("missing directory") << std::string("empty/missing");
    QTest::newRow("plain file in its place") << std::string("before/screencapture.ini");
    QTest::newRow("directory in the file's place") << std::string("settings");
}

void tst_ScreenCaptureTool::nothingIsMadeWithoutADirectory()
{
    QFETCH(std::string, name);
    std::filesystem::create_directory(file());
    initIn(m_scratch->path(name));
    QCOMPARE(colorsNow(), kBefore);
    setColors(kAllBlue);
    QCOMPARE(colorsNow(), kAllBlue);
    QVERIFY(std::filesystem::is_empty(m_scratch->path("empty")));
    QVERIFY(std::filesystem::is_empty(file()));
    QCOMPARE(readFile(m_scratch->path("before/screencapture.ini")), fileOf("4", "3", "2", "1"));
}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == kClient)
        return runClient(arguments.mid(2));
    tst_ScreenCaptureTool test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_ScreenCaptureTool.moc"
