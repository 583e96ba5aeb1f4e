// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Files.h"
#include "ScreenCaptureTool.h"
#include "StdText.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QScopedPointer>
#include <QtTest>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <type_traits>

/// Scribble, rectangle, ellipse and arrow, as 0xAARRGGBB.
using Colors = QList<uint>;
Q_DECLARE_METATYPE(Colors)

namespace
{

const char* const kClient = "--client";
constexpr uint kDefault = 0xfffb3838;
constexpr uint kBlue = 0xff0000ff;
constexpr uint kGreen = 0xff00ff00;
/// What memory holds when a test begins.
const Colors kBefore{1, 2, 3, 4};
const Colors kAllBlue{kBlue, kBlue, kBlue, kBlue};
/// A file with kAllBlue; Qt sorts entries by name.
const std::string kBlueFile = "[pen_color]\n"
                              "arrowColor=4278190335\n"
                              "ellipseColor=4278190335\n"
                              "rectColor=4278190335\n"
                              "scribbleColor=4278190335\n";

Colors colorsNow()
{
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::penColor(colors);
    return {colors.scribbleColor.rgba(), colors.rectColor.rgba(), colors.ellipseColor.rgba(),
            colors.arrowColor.rgba()};
}

void setColors(const Colors& colors, const QColor& text = QColor())
{
    ScreenCaptureTool::setPenColor({QColor::fromRgba(colors.at(0)), QColor::fromRgba(colors.at(1)),
                                    QColor::fromRgba(colors.at(2)), QColor::fromRgba(colors.at(3)),
                                    text});
}

void initIn(const std::string& directory)
{
    ScreenCaptureTool::init(QString::fromStdString(directory));
}

void print(const Colors& colors)
{
    std::printf("%x %x %x %x\n", colors.at(0), colors.at(1), colors.at(2), colors.at(3));
}

/// What this program does as a process of its own: with a directory it prints the colours of that
/// one's file, without any the colours before and after they are set to blue.
int runClient(const QStringList& directory)
{
    if (!directory.isEmpty())
        ScreenCaptureTool::init(directory.first());
    print(colorsNow());
    if (directory.isEmpty()) {
        setColors(kAllBlue);
        print(colorsNow());
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
    void helperIsAnObjectOnlyForItself();

    void withoutInitColorsLiveInMemory();
    void nextProcessReadsTheFile();
    void fileIsIn_data();
    void fileIsIn();

    void fileIsRead_data();
    void fileIsRead();
    void missingFileChangesNothing();
    void missingKeysKeepTheColorsOfAnEarlierInit();
    void colorsAreHandedOutFromMemory();
    void textColorIsNotHandedOut();

    void fourColorsAreWritten();
    void invalidColorsAreWrittenAsBlack();
    void otherEntriesStay_data();
    void otherEntriesStay();
    void entriesOfOtherWritersStay();
    void colorsAreWrittenToTheLastDirectory();

    void damagedFileKeepsTheColors_data();
    void damagedFileKeepsTheColors();
    void missingDirectoryIsNotMade();
    void directoryInTheFilesPlaceStays();
    void directoryBelowAPlainFile();

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
    QVERIFY(!colors.scribbleColor.isValid());
    QVERIFY(!colors.rectColor.isValid());
    QVERIFY(!colors.ellipseColor.isValid());
    QVERIFY(!colors.arrowColor.isValid());
    QVERIFY(!colors.textColor.isValid());
    QCOMPARE(sizeof(ScreenCaptureToolColors), 5 * sizeof(QColor));
    QVERIFY(&colors.scribbleColor < &colors.rectColor);
    QVERIFY(&colors.rectColor < &colors.ellipseColor);
    QVERIFY(&colors.ellipseColor < &colors.arrowColor);
    QVERIFY(&colors.arrowColor < &colors.textColor);
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

void tst_ScreenCaptureTool::helperIsAnObjectOnlyForItself()
{
    QVERIFY((std::is_base_of<QObject, ScreenCaptureToolHelper>::value));
    QVERIFY((!std::is_convertible<ScreenCaptureToolHelper*, QObject*>::value));
}

// A file that is made and removed again, such as a lock, shows in the directory's time.
void tst_ScreenCaptureTool::withoutInitColorsLiveInMemory()
{
    const std::filesystem::path empty = m_scratch->path("empty");
    const auto longAgo = std::filesystem::last_write_time(empty) - std::chrono::hours(1);
    std::filesystem::last_write_time(empty, longAgo);
    QCOMPARE(runInAnEmptyDirectory({}), std::string("fffb3838 fffb3838 fffb3838 fffb3838\n"
                                                    "ff0000ff ff0000ff ff0000ff ff0000ff\n"));
    QVERIFY(std::filesystem::is_empty(empty));
    QVERIFY(std::filesystem::last_write_time(empty) == longAgo);
}

void tst_ScreenCaptureTool::nextProcessReadsTheFile()
{
    const QString settings = QString::fromStdString(directory());
    QCOMPARE(runInAnEmptyDirectory({settings}),
             std::string("fffb3838 fffb3838 fffb3838 fffb3838\n"));
    initIn(directory());
    setColors({kBlue, kDefault, kDefault, 0x12345678});
    QCOMPARE(runInAnEmptyDirectory({settings}),
             std::string("ff0000ff fffb3838 fffb3838 12345678\n"));
}

void tst_ScreenCaptureTool::fileIsIn_data()
{
    QTest::addColumn<std::string>("named");
    QTest::addColumn<std::string>("directory");
    QTest::newRow("relative") << std::string("settings") << std::string("settings");
    QTest::newRow("working directory") << std::string(".") << std::string(".");
    QTest::newRow("below") << std::string("settings/more") << std::string("settings/more");
    QTest::newRow("slash at the end") << std::string("settings/") << std::string("settings");
    QTest::newRow("needless components")
        << std::string("settings//./more/.") << std::string("settings/more");
    QTest::newRow("parent") << std::string("settings/..") << std::string(".");
    QTest::newRow("backslashes separate")
        << std::string("settings\\more\\") << std::string("settings/more");
    QTest::newRow("beyond ASCII") << std::string("截图 ü") << std::string("截图 ü");
    QTest::newRow("characters of the format") << std::string("a=[%41];") << std::string("a=[%41];");
}

void tst_ScreenCaptureTool::fileIsIn()
{
    QFETCH(std::string, named);
    QFETCH(std::string, directory);
    const WorkingDirectoryScope scope(m_scratch->path());
    std::filesystem::create_directories(m_scratch->path(directory));
    const std::string written = m_scratch->path(directory + "/screencapture.ini");

    initIn(named);
    setColors(kAllBlue);
    QCOMPARE(readFile(written), kBlueFile);
    writeFile(written, "[pen_color]\nrectColor=7\n");
    initIn(named);
    QCOMPARE(colorsNow(), Colors({kBlue, 7, kBlue, kBlue}));

    std::filesystem::remove(written);
    initIn(m_scratch->path(named));
    setColors(kAllBlue);
    QCOMPARE(readFile(written), kBlueFile);
}

void tst_ScreenCaptureTool::fileIsRead_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<Colors>("colors");
    const auto group = [](const char* name, const char* lines, const Colors& colors) {
        QTest::newRow(name) << std::string("[pen_color]\n") + lines << colors;
    };
    group("scribbleColor", "scribbleColor=4278190335\n", {kBlue, 2, 3, 4});
    group("rectColor", "rectColor=4278190335\n", {1, kBlue, 3, 4});
    group("ellipseColor", "ellipseColor=4278190335\n", {1, 2, kBlue, 4});
    group("arrowColor", "arrowColor=4278190335\n", {1, 2, 3, kBlue});
    group("textColor", "textColor=4278190335\n", kBefore);
    group("unknown key", "penColor=4278190335\nrectColor=7\n", {1, 7, 3, 4});
    group("another case", "rectcolor=4278190335\n", kBefore);
    group("group within", "more\\rectColor=4278190335\n", kBefore);
    QTest::newRow("another group") << std::string("[pens]\nrectColor=7\n") << kBefore;
    QTest::newRow("no group") << std::string("rectColor=7\n") << kBefore;

    group("each byte in its place", "rectColor=305419896\n", {1, 0x12345678, 3, 4});
    group("all bits", "rectColor=4294967295\n", {1, 0xffffffff, 3, 4});
    group("quoted", "rectColor=\"4278190335\"\n", {1, kBlue, 3, 4});
    group("zero", "rectColor=0\n", {1, 0, 3, 4});
    group("empty", "rectColor=\n", {1, 0, 3, 4});
    group("word", "rectColor=blue\n", {1, 0, 3, 4});
    group("color name", "rectColor=#ff0000ff\n", {1, 0, 3, 4});
    group("hexadecimal", "rectColor=0xff0000ff\n", {1, 0, 3, 4});
    group("negative", "rectColor=-1\n", {1, 0, 3, 4});
    group("beyond 32 bits", "rectColor=4294967296\n", {1, 0, 3, 4});
    group("list", "rectColor=1, 2\n", {1, 0, 3, 4});
    group("point", "rectColor=@Point(1 2)\n", {1, 0, 3, 4});
    group("beside a serialised date", "rectColor=7\nx=@Variant(\\0\\0\\0\\xe\\0%\\x84\\xe2)\n",
          {1, 7, 3, 4});
}

void tst_ScreenCaptureTool::fileIsRead()
{
    QFETCH(std::string, text);
    QFETCH(Colors, colors);
    writeFile(file(), text);
    initIn(directory());
    QCOMPARE(colorsNow(), colors);
    QCOMPARE(readFile(file()), text);
}

void tst_ScreenCaptureTool::missingFileChangesNothing()
{
    initIn(directory());
    QCOMPARE(colorsNow(), kBefore);
    QVERIFY(std::filesystem::is_empty(directory()));
}

void tst_ScreenCaptureTool::missingKeysKeepTheColorsOfAnEarlierInit()
{
    writeFile(m_scratch->path("empty/screencapture.ini"), kBlueFile);
    writeFile(file(), "[pen_color]\nrectColor=4278255360\n");
    initIn(m_scratch->path("empty"));
    QCOMPARE(colorsNow(), kAllBlue);
    initIn(directory());
    QCOMPARE(colorsNow(), Colors({kBlue, kGreen, kBlue, kBlue}));
}

void tst_ScreenCaptureTool::colorsAreHandedOutFromMemory()
{
    writeFile(file(), kBlueFile);
    initIn(directory());
    writeFile(file(), "[pen_color]\nrectColor=7\n");
    QCOMPARE(colorsNow(), kAllBlue);
    initIn(directory());
    QCOMPARE(colorsNow(), Colors({kBlue, 7, kBlue, kBlue}));
}

void tst_ScreenCaptureTool::textColorIsNotHandedOut()
{
    writeFile(file(), "[pen_color]\ntextColor=4278255360\n");
    initIn(directory());
    setColors(kBefore, Qt::yellow);
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::penColor(colors);
    QVERIFY(!colors.textColor.isValid());
    colors.textColor = Qt::cyan;
    ScreenCaptureTool::penColor(colors);
    QCOMPARE(colors.textColor, QColor(Qt::cyan));
}

void tst_ScreenCaptureTool::fourColorsAreWritten()
{
    initIn(directory());
    setColors({kDefault, kBlue, 0x12345678, 0}, Qt::yellow);
    QCOMPARE(readFile(file()), std::string("[pen_color]\n"
                                           "arrowColor=0\n"
                                           "ellipseColor=305419896\n"
                                           "rectColor=4278190335\n"
                                           "scribbleColor=4294654008\n"));
    QCOMPARE(colorsNow(), Colors({kDefault, kBlue, 0x12345678, 0}));
    QCOMPARE(QDir(QString::fromStdString(directory()))
                 .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList("screencapture.ini"));
}

void tst_ScreenCaptureTool::invalidColorsAreWrittenAsBlack()
{
    initIn(directory());
    ScreenCaptureTool::setPenColor(ScreenCaptureToolColors());
    QCOMPARE(readFile(file()), std::string("[pen_color]\n"
                                           "arrowColor=4278190080\n"
                                           "ellipseColor=4278190080\n"
                                           "rectColor=4278190080\n"
                                           "scribbleColor=4278190080\n"));
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::penColor(colors);
    QVERIFY(!colors.rectColor.isValid());
}

void tst_ScreenCaptureTool::otherEntriesStay_data()
{
    QTest::addColumn<std::string>("value");
    QTest::newRow("number") << std::string("7");
    QTest::newRow("list") << std::string("cat, dog");
    QTest::newRow("beyond ASCII") << std::string(R"(\x622a\x56fe)");
    QTest::newRow("at sign") << std::string("@@home");
    QTest::newRow("point") << std::string("@Point(1 2)");
    QTest::newRow("bytes") << std::string(R"(@ByteArray(\0\x1\x61))");
    QTest::newRow("serialised date") << std::string(R"(@Variant(\0\0\0\xe\0%\x84\xe2))");
}

void tst_ScreenCaptureTool::otherEntriesStay()
{
    QFETCH(std::string, value);
    const std::string above = "[Window]\na=" + value + "\n\n[pen_color]\na=" + value + "\n";
    const std::string below = "textColor=3\nthePenColor=7\n\n[zoo]\na=" + value + "\n";
    writeFile(file(), above + "scribbleColor=5\n" + below);
    initIn(directory());
    QCOMPARE(colorsNow(), Colors({5, 2, 3, 4}));
    setColors(kAllBlue, Qt::yellow);
    QCOMPARE(readFile(file()), above +
                                   "arrowColor=4278190335\n"
                                   "ellipseColor=4278190335\n"
                                   "rectColor=4278190335\n"
                                   "scribbleColor=4278190335\n" +
                                   below);
}

void tst_ScreenCaptureTool::entriesOfOtherWritersStay()
{
    initIn(directory());
    setColors(kBefore);
    writeFile(file(), "[zoo]\nanimals=cat\n");
    setColors(kAllBlue);
    QCOMPARE(readFile(file()), kBlueFile + "\n[zoo]\nanimals=cat\n");
}

void tst_ScreenCaptureTool::colorsAreWrittenToTheLastDirectory()
{
    initIn(directory());
    initIn(m_scratch->path("empty"));
    setColors(kAllBlue);
    QVERIFY(std::filesystem::is_empty(directory()));
    QCOMPARE(readFile(m_scratch->path("empty/screencapture.ini")), kBlueFile);
}

void tst_ScreenCaptureTool::damagedFileKeepsTheColors_data()
{
    QTest::addColumn<std::string>("text");
    QTest::newRow("empty") << std::string();
    QTest::newRow("no settings") << std::string("<?xml version=\"1.0\"?>\n<pens/>\n");
    QTest::newRow("group without an end") << std::string("[pen_color\nred\n");
    QTest::newRow("group alone") << std::string("[pen_color]");
    QTest::newRow("key without a value") << std::string("[pen_color]\nrectColor\n");
    QTest::newRow("null bytes") << std::string(4096, '\0');
}

void tst_ScreenCaptureTool::damagedFileKeepsTheColors()
{
    QFETCH(std::string, text);
    writeFile(file(), text);
    initIn(directory());
    QCOMPARE(colorsNow(), kBefore);
    QVERIFY(readFile(file()) == text);
    setColors(kAllBlue);
    QCOMPARE(colorsNow(), kAllBlue);
}

void tst_ScreenCaptureTool::missingDirectoryIsNotMade()
{
    initIn(m_scratch->path("missing"));
    setColors(kAllBlue);
    QCOMPARE(colorsNow(), kAllBlue);
    QVERIFY(!std::filesystem::exists(m_scratch->path("missing")));
}

void tst_ScreenCaptureTool::directoryInTheFilesPlaceStays()
{
    std::filesystem::create_directory(file());
    initIn(directory());
    setColors(kAllBlue);
    QCOMPARE(colorsNow(), kAllBlue);
    QVERIFY(std::filesystem::is_directory(file()));
    QVERIFY(std::filesystem::is_empty(file()));
}

void tst_ScreenCaptureTool::directoryBelowAPlainFile()
{
    writeFile(file(), kBlueFile);
    initIn(file());
    QCOMPARE(colorsNow(), kBefore);
    setColors({5, 6, 7, 8});
    QCOMPARE(colorsNow(), Colors({5, 6, 7, 8}));
    QCOMPARE(readFile(file()), kBlueFile);
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
