// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Files.h"
#include "ScreenCaptureTool.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <type_traits>
#include <utility>

// The facade's state belongs to the process. Each test therefore runs this program again as a
// client, with a script of words:
//   init DIRECTORY   text COLOR   set COLOR (all four)   pen NAME COLOR (one of them, as read)
//   repeat TIMES COLOR COLOR (sets both in turn)         print (all five)
namespace
{

const char* const kClient = "--client";
constexpr int kClientTimeoutMs = 120000;
/// Younger than this, a lock without a name in it may still get one.
constexpr int kLockSigningMs = 1000;
constexpr uint kRed = 4294654008U;
constexpr uint kBlue = 4278190335U;
constexpr uint kGreen = 4278255360U;

QByteArray numbers(const ScreenCaptureToolColors& colors)
{
    QByteArrayList list;
    for (const QColor& color : {colors.scribbleColor, colors.rectColor, colors.ellipseColor,
                                colors.arrowColor, colors.textColor})
        list << (color.isValid() ? QByteArray::number(color.rgba()) : QByteArray("invalid"));
    return list.join(' ') + '\n';
}

QByteArray allFour(uint color, const QByteArray& text = "invalid")
{
    const QByteArray c = QByteArray::number(color) + ' ';
    return c + c + c + c + text + '\n';
}

/// Qt sorts the names of new entries.
QByteArray fileWith(uint color)
{
    const QByteArray c = QByteArray::number(color) + '\n';
    return "[pen_color]\narrowColor=" + c + "ellipseColor=" + c + "rectColor=" + c +
           "scribbleColor=" + c;
}

class Client
{
public:
    explicit Client(QStringList words)
        : m_words(std::move(words))
    {
    }
    int run()
    {
        while (!m_words.isEmpty())
            runCommand(m_words.takeFirst());
        return 0;
    }

private:
    QColor takeColor() { return QColor::fromRgba(m_words.takeFirst().toUInt()); }

    void runCommand(const QString& command)
    {
        if (command == "init")
            ScreenCaptureTool::init(m_words.takeFirst());
        else if (command == "text")
            m_colors.textColor = takeColor();
        else if (command == "set")
            set(takeColor());
        else if (command == "pen")
            setOne(m_words.takeFirst());
        else if (command == "repeat")
            repeat(m_words.takeFirst().toInt());
        else if (command == "print")
            print();
        else
            qFatal("no such command");
    }
    void set(const QColor& color)
    {
        m_colors.scribbleColor = m_colors.rectColor = color;
        m_colors.ellipseColor = m_colors.arrowColor = color;
        ScreenCaptureTool::setPenColor(m_colors);
    }
    void setOne(const QString& name)
    {
        ScreenCaptureTool::penColor(m_colors);
        QColor& field = name == "scribble"  ? m_colors.scribbleColor
                        : name == "rect"    ? m_colors.rectColor
                        : name == "ellipse" ? m_colors.ellipseColor
                                            : m_colors.arrowColor;
        field = takeColor();
        ScreenCaptureTool::setPenColor(m_colors);
    }
    void repeat(int times)
    {
        const QColor one = takeColor();
        const QColor other = takeColor();
        for (int i = 0; i < times; ++i)
            set(i % 2 == 0 ? one : other);
    }
    void print()
    {
        ScreenCaptureTool::penColor(m_colors);
        std::fputs(numbers(m_colors).constData(), stdout);
        std::fflush(stdout);
    }

    QStringList m_words;
    ScreenCaptureToolColors m_colors;
};

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

    void penColorWithoutAFileIsTheDefault();
    void penColorLeavesTheTextColor();
    void fileIsReadByGroupAndKey_data();
    void fileIsReadByGroupAndKey();
    void valueIsRead_data();
    void valueIsRead();
    void missingKeysKeepWhatWasThere();
    void textColorOfTheFileIsNeitherGivenNorWritten();
    void penColorReadsMemoryOnly();
    void initReadsTheFileAnew();
    void initOfAnotherDirectoryWritesThere();
    void directoryIsNamedInUtf8();
    void directoryMayEndInASlash();

    void fileHasExactlyTheFourKeys();
    void eachPenIsWrittenUnderItsKey_data();
    void eachPenIsWrittenUnderItsKey();
    void transparencyIsKept();
    void invalidColorsAreWrittenAsBlack();
    void foreignEntriesSurvive();
    void textColorStaysInTheProcess();
    void colorsAreReadInTheNextProcess();
    void colorsAreWrittenAtOnce();
    void withoutInitNothingIsWritten();

    void uselessFileLeavesTheColors_data();
    void uselessFileLeavesTheColors();
    void uselessFileIsReplaced_data();
    void uselessFileIsReplaced();
    void fileWithASerialisedObjectIsLeftAlone_data();
    void fileWithASerialisedObjectIsLeftAlone();
    void escapesThatGiveNoObjectAreRead();
    void directoryInTheFilesPlaceStays();
    void unwritablePlaceKeepsTheColorsInMemory_data();
    void unwritablePlaceKeepsTheColorsInMemory();

    void unwritableFileKeepsTheColorsInMemory();
    void missingDirectoryIsNotMade();

    void processesWriteInTurn();
    void processesWriteAtTheSameTime();
    void killedWriterLeavesAFileThatLoads();
    void emptyLockOfAKilledWriterIsRemoved();
    void lockOfALiveWriterIsWaitedFor();

private:
    QString directory() const { return m_scratch->filePath("settings"); }
    QString file() const { return directory() + "/screencapture.ini"; }
    QString elsewhere() const { return m_scratch->filePath("elsewhere"); }
    QByteArray contents() const
    {
        return QByteArray::fromStdString(readFile(file().toStdString()));
    }
    void write(const QByteArray& text) const
    {
        writeFile(file().toStdString(), text.toStdString());
    }
    bool unsignedLockIsYoung() const
    {
        const QFileInfo lock(file() + ".lock");
        return lock.exists() && lock.size() == 0 &&
               lock.lastModified().msecsTo(QDateTime::currentDateTime()) <= kLockSigningMs;
    }
    void start(QProcess& process, const QStringList& words) const;
    QByteArray run(const QStringList& words) const;
    QByteArray runHere(const QStringList& words) const
    {
        return run(QStringList{"init", directory()} + words);
    }
    static void uselessFiles();

    QScopedPointer<QTemporaryDir> m_scratch;
};

void tst_ScreenCaptureTool::init()
{
    BehaviourTest::init();
    m_scratch.reset(new QTemporaryDir);
    QVERIFY(QDir().mkdir(directory()));
    QVERIFY(QDir().mkdir(elsewhere()));
}

void tst_ScreenCaptureTool::cleanup()
{
    m_scratch.reset();
    BehaviourTest::cleanup();
}

/// Starts a client that has neither a home nor a working directory in common with anything.
void tst_ScreenCaptureTool::start(QProcess& process, const QStringList& words) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", elsewhere());
    environment.insert("XDG_CONFIG_HOME", elsewhere());
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(elsewhere());
    process.start(QCoreApplication::applicationFilePath(), QStringList(kClient) + words);
}

/// What a client prints. It never says anything on its error output.
QByteArray tst_ScreenCaptureTool::run(const QStringList& words) const
{
    QProcess process;
    start(process, words);
    if (!process.waitForFinished(kClientTimeoutMs) || process.exitCode() != 0)
        return "failed: " + process.readAllStandardError();
    const QByteArray errors = process.readAllStandardError();
    return errors.isEmpty() ? process.readAllStandardOutput() : "said: " + errors;
}

void tst_ScreenCaptureTool::recordIsInvalidAtFirst()
{
    const ScreenCaptureToolColors colors;
    QCOMPARE(numbers(colors), QByteArray("invalid invalid invalid invalid invalid\n"));
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

void tst_ScreenCaptureTool::penColorWithoutAFileIsTheDefault()
{
    QCOMPARE(run({"print"}), allFour(kRed));
    QCOMPARE(runHere({"print"}), allFour(kRed));
    QVERIFY(QDir(directory()).isEmpty());
    QCOMPARE(QColor::fromRgba(kRed), QColor(251, 56, 56, 255));
}

void tst_ScreenCaptureTool::penColorLeavesTheTextColor()
{
    write("[pen_color]\ntextColor=4278255360\n");
    QCOMPARE(run({"text", "4278190335", "print", "init", directory(), "print"}),
             allFour(kRed, "4278190335") + allFour(kRed, "4278190335"));
}

void tst_ScreenCaptureTool::fileIsReadByGroupAndKey_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("printed");
    const QByteArray defaults = allFour(kRed);
    QTest::newRow("scribbleColor") << QByteArray("[pen_color]\nscribbleColor=4278190335\n")
                                   << QByteArray("4278190335 4294654008 4294654008 4294654008 "
                                                 "invalid\n");
    QTest::newRow("rectColor") << QByteArray("[pen_color]\nrectColor=4278190335\n")
                               << QByteArray("4294654008 4278190335 4294654008 4294654008 "
                                             "invalid\n");
    QTest::newRow("ellipseColor") << QByteArray("[pen_color]\nellipseColor=4278190335\n")
                                  << QByteArray("4294654008 4294654008 4278190335 4294654008 "
                                                "invalid\n");
    QTest::newRow("arrowColor") << QByteArray("[pen_color]\narrowColor=4278190335\n")
                                << QByteArray("4294654008 4294654008 4294654008 4278190335 "
                                              "invalid\n");
    QTest::newRow("another group") << QByteArray("[pens]\nrectColor=4278190335\n") << defaults;
    QTest::newRow("no group") << QByteArray("rectColor=4278190335\n") << defaults;
    QTest::newRow("a group within")
        << QByteArray("[pen_color]\nmore\\rectColor=4278190335\n") << defaults;
    QTest::newRow("another case") << QByteArray("[pen_color]\nrectcolor=4278190335\n") << defaults;
    QTest::newRow("unknown key") << QByteArray("[pen_color]\npenColor=4278190335\n") << defaults;
    QTest::newRow("textColor") << QByteArray("[pen_color]\ntextColor=4278190335\n") << defaults;
}

void tst_ScreenCaptureTool::fileIsReadByGroupAndKey()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, printed);
    write(text);
    QCOMPARE(runHere({"print"}), printed);
    QCOMPARE(contents(), text);
}

void tst_ScreenCaptureTool::valueIsRead_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<uint>("color");
    QTest::newRow("opaque blue") << QByteArray("4278190335") << kBlue;
    QTest::newRow("each byte in its place") << QByteArray("305419896") << 0x12345678U;
    QTest::newRow("all bits") << QByteArray("4294967295") << 0xffffffffU;
    QTest::newRow("zero") << QByteArray("0") << 0U;
    QTest::newRow("quoted") << QByteArray("\"4278190335\"") << kBlue;
    QTest::newRow("empty") << QByteArray("") << 0U;
    QTest::newRow("a word") << QByteArray("blue") << 0U;
    QTest::newRow("a colour's name") << QByteArray("#ff0000ff") << 0U;
    QTest::newRow("hexadecimal") << QByteArray("0xff0000ff") << 0U;
    QTest::newRow("negative") << QByteArray("-1") << 0U;
    QTest::newRow("beyond 32 bits") << QByteArray("4294967296") << 0U;
    QTest::newRow("a list") << QByteArray("1, 2") << 0U;
}

void tst_ScreenCaptureTool::valueIsRead()
{
    QFETCH(QByteArray, value);
    QFETCH(uint, color);
    write("[pen_color]\nellipseColor=" + value + "\n");
    const QByteArray red = QByteArray::number(kRed) + ' ';
    QCOMPARE(runHere({"print"}), red + red + QByteArray::number(color) + ' ' + red + "invalid\n");
}

void tst_ScreenCaptureTool::missingKeysKeepWhatWasThere()
{
    QCOMPARE(run({"set", "4278190335", "init", directory(), "print"}), allFour(kBlue, "invalid"));
    write("[pen_color]\nrectColor=4278255360\n");
    QCOMPARE(run({"set", "4278190335", "init", directory(), "print"}),
             QByteArray("4278190335 4278255360 4278190335 4278190335 invalid\n"));
}

void tst_ScreenCaptureTool::textColorOfTheFileIsNeitherGivenNorWritten()
{
    write("[pen_color]\ntextColor=4278255360\n");
    QCOMPARE(runHere({"text", "4278190335", "set", "4278190335", "print"}),
             allFour(kBlue, "4278190335"));
    QCOMPARE(QSettings(file(), QSettings::IniFormat).value("pen_color/textColor").toUInt(), kGreen);
}

void tst_ScreenCaptureTool::penColorReadsMemoryOnly()
{
    QCOMPARE(runHere({"set", "4278190335"}), QByteArray());
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::init(directory());
    QVERIFY(QFile::remove(file()));
    ScreenCaptureTool::penColor(colors);
    QCOMPARE(numbers(colors), allFour(kBlue));
    write(fileWith(kGreen));
    ScreenCaptureTool::penColor(colors);
    QCOMPARE(numbers(colors), allFour(kBlue));
    ScreenCaptureTool::init(directory());
    ScreenCaptureTool::penColor(colors);
    QCOMPARE(numbers(colors), allFour(kGreen));
}

void tst_ScreenCaptureTool::initReadsTheFileAnew()
{
    write(fileWith(kBlue));
    QVERIFY(QDir().mkdir(m_scratch->filePath("other")));
    writeFile(m_scratch->filePath("other/screencapture.ini").toStdString(),
              fileWith(kGreen).toStdString());
    QCOMPARE(runHere({"print", "init", m_scratch->filePath("other"), "print", "init", directory(),
                      "print", "init", directory(), "print"}),
             allFour(kBlue) + allFour(kGreen) + allFour(kBlue) + allFour(kBlue));
}

void tst_ScreenCaptureTool::initOfAnotherDirectoryWritesThere()
{
    QVERIFY(QDir().mkdir(m_scratch->filePath("other")));
    QCOMPARE(runHere({"init", m_scratch->filePath("other"), "set", "4278190335"}), QByteArray());
    QVERIFY(QDir(directory()).isEmpty());
    QCOMPARE(readFile(m_scratch->filePath("other/screencapture.ini").toStdString()),
             fileWith(kBlue).toStdString());
}

void tst_ScreenCaptureTool::directoryIsNamedInUtf8()
{
    const QString name = m_scratch->filePath(QString::fromUtf8("截图 ü"));
    QVERIFY(QDir().mkdir(name));
    QCOMPARE(run({"init", name, "set", "4278190335"}), QByteArray());
    QVERIFY(QFileInfo::exists(name + "/screencapture.ini"));
    QCOMPARE(run({"init", name, "print"}), allFour(kBlue));
}

void tst_ScreenCaptureTool::directoryMayEndInASlash()
{
    QCOMPARE(run({"init", directory() + "/", "set", "4278190335"}), QByteArray());
    QCOMPARE(contents(), fileWith(kBlue));
}

void tst_ScreenCaptureTool::fileHasExactlyTheFourKeys()
{
    QCOMPARE(runHere({"text", "4278190335", "set", "4294654008"}), QByteArray());
    QCOMPARE(contents(), QByteArray("[pen_color]\n"
                                    "arrowColor=4294654008\n"
                                    "ellipseColor=4294654008\n"
                                    "rectColor=4294654008\n"
                                    "scribbleColor=4294654008\n"));
    QCOMPARE(QDir(directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList("screencapture.ini"));
    QCOMPARE(runHere({"set", "1"}), QByteArray());
    QCOMPARE(contents(), fileWith(1));
}

void tst_ScreenCaptureTool::eachPenIsWrittenUnderItsKey_data()
{
    QTest::addColumn<QString>("pen");
    for (const char* pen : {"scribble", "rect", "ellipse", "arrow"})
        QTest::newRow(pen) << pen;
}

void tst_ScreenCaptureTool::eachPenIsWrittenUnderItsKey()
{
    QFETCH(QString, pen);
    QCOMPARE(runHere({"pen", pen, "4278190335"}), QByteArray());
    QByteArray expected = fileWith(kRed);
    const QByteArray key = pen.toLatin1() + "Color=";
    expected.replace(key + "4294654008", key + "4278190335");
    QCOMPARE(contents(), expected);
}

void tst_ScreenCaptureTool::transparencyIsKept()
{
    QCOMPARE(runHere({"set", "305419896"}), QByteArray());
    QCOMPARE(contents(), fileWith(0x12345678U));
    QCOMPARE(runHere({"print"}), allFour(0x12345678U));
}

void tst_ScreenCaptureTool::invalidColorsAreWrittenAsBlack()
{
    ScreenCaptureTool::init(directory());
    ScreenCaptureTool::setPenColor(ScreenCaptureToolColors());
    QCOMPARE(contents(), fileWith(0xff000000U));
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::penColor(colors);
    QVERIFY(!colors.rectColor.isValid());
}

void tst_ScreenCaptureTool::foreignEntriesSurvive()
{
    write("top=level\n[Window]\ngeometry=@ByteArray(abc)\n[pen_color]\npenColor=7\nrectColor=3\n"
          "[zoo]\nanimals=cat, dog\n");
    QCOMPARE(runHere({"set", "4278190335"}), QByteArray());
    const QSettings settings(file(), QSettings::IniFormat);
    QStringList keys = settings.allKeys();
    keys.sort();
    QCOMPARE(keys, QStringList({"Window/geometry", "pen_color/arrowColor", "pen_color/ellipseColor",
                                "pen_color/penColor", "pen_color/rectColor",
                                "pen_color/scribbleColor", "top", "zoo/animals"}));
    QCOMPARE(settings.value("top").toString(), QString("level"));
    QCOMPARE(settings.value("Window/geometry").toByteArray(), QByteArray("abc"));
    QCOMPARE(settings.value("pen_color/penColor").toString(), QString("7"));
    QCOMPARE(settings.value("zoo/animals").toStringList(), QStringList({"cat", "dog"}));
    QCOMPARE(runHere({"print"}), allFour(kBlue));
}

void tst_ScreenCaptureTool::textColorStaysInTheProcess()
{
    QCOMPARE(runHere({"text", "4278255360", "set", "4278190335"}), QByteArray());
    QVERIFY(!contents().contains("text"));
    QCOMPARE(runHere({"print"}), allFour(kBlue));
}

void tst_ScreenCaptureTool::colorsAreReadInTheNextProcess()
{
    QCOMPARE(runHere({"pen", "scribble", "4278190335"}), QByteArray());
    QCOMPARE(runHere({"print"}), QByteArray("4278190335 4294654008 4294654008 4294654008 "
                                            "invalid\n"));
}

void tst_ScreenCaptureTool::colorsAreWrittenAtOnce()
{
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::init(directory());
    for (const uint color : {kBlue, kGreen, kGreen}) {
        colors.scribbleColor = colors.rectColor = QColor::fromRgba(color);
        colors.ellipseColor = colors.arrowColor = QColor::fromRgba(color);
        QFile::remove(file());
        ScreenCaptureTool::setPenColor(colors);
        QCOMPARE(contents(), fileWith(color));
    }
}

void tst_ScreenCaptureTool::withoutInitNothingIsWritten()
{
    QCOMPARE(run({"set", "4278190335", "print"}), allFour(kBlue));
    QDirIterator everything(m_scratch->path(), QDir::Files | QDir::Hidden | QDir::System,
                            QDirIterator::Subdirectories);
    QVERIFY2(!everything.hasNext(), qPrintable(everything.next()));
    QVERIFY(QDir(elsewhere()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

void tst_ScreenCaptureTool::uselessFiles()
{
    QTest::addColumn<QByteArray>("text");
    QByteArray binary;
    for (int i = 0; i < 4096; ++i)
        binary += char((i * 167 + i / 256) % 256);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one line break") << QByteArray("\n");
    QTest::newRow("no INI file") << QByteArray("<?xml version=\"1.0\"?>\n<pens/>\n");
    QTest::newRow("group without an end") << QByteArray("[pen_color\nred\n=\n[]\n");
    QTest::newRow("group alone") << QByteArray("[pen_color]");
    QTest::newRow("key without a value") << QByteArray("[pen_color]\nrectColor\n");
    QTest::newRow("binary") << binary;
    QTest::newRow("null bytes") << QByteArray(4096, '\0');
    QTest::newRow("10 MiB of lines") << QByteArray("pen=7\n").repeated(10 * 1024 * 1024 / 6);
    QTest::newRow("10 MiB in one line") << QByteArray(10 * 1024 * 1024, 'x');
}

void tst_ScreenCaptureTool::uselessFileLeavesTheColors_data()
{
    uselessFiles();
}

void tst_ScreenCaptureTool::uselessFileLeavesTheColors()
{
    QFETCH(QByteArray, text);
    write(text);
    QCOMPARE(run({"set", "4278190335", "init", directory(), "print"}), allFour(kBlue));
    QVERIFY(contents() == text);
}

void tst_ScreenCaptureTool::uselessFileIsReplaced_data()
{
    uselessFiles();
}

void tst_ScreenCaptureTool::uselessFileIsReplaced()
{
    QFETCH(QByteArray, text);
    write(text);
    QCOMPARE(runHere({"set", "4278190335", "print"}), allFour(kBlue));
    QCOMPARE(runHere({"print"}), allFour(kBlue));
}

// A list of more than a thousand million values, "Colo" in numbers, for which Qt makes room before
// it reads them.
void tst_ScreenCaptureTool::fileWithASerialisedObjectIsLeftAlone_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("plain") << QByteArray("@Variant(\\0\\0\\0\\tcColo)");
    QTest::newRow("quoted") << QByteArray("\"@Variant(\\0\\0\\0\\tcColo)\"");
    QTest::newRow("quotes inside") << QByteArray("@Var\"iant(\\0\\0\\0\\tcColo)\"");
    QTest::newRow("hexadecimal escape") << QByteArray("\\x40Variant(\\0\\0\\0\\tcColo)");
    QTest::newRow("long hexadecimal escape") << QByteArray("\\x10040Variant(\\0\\0\\0\\tcColo)");
    QTest::newRow("octal escape") << QByteArray("@\\126ariant(\\0\\0\\0\\tcColo)");
    QTest::newRow("unknown escape") << QByteArray("@Vari\\zant(\\0\\0\\0\\tcColo)");
    QTest::newRow("over two lines") << QByteArray("@Vari\\\nant(\\0\\0\\0\\tcColo)");
    QTest::newRow("over two lines of another system")
        << QByteArray("@Vari\\\r\nant(\\0\\0\\0\\tcColo)");
    QTest::newRow("escaped null byte")
        << QByteArray("@Vari\\") + '\0' + QByteArray("ant(\\0\\0\\0\\tcColo)");
    QTest::newRow("in a list") << QByteArray("1, @Variant(\\0\\0\\0\\tcColo)");
}

void tst_ScreenCaptureTool::fileWithASerialisedObjectIsLeftAlone()
{
    QFETCH(QByteArray, value);
    write("[pen_color]\nfoo=" + value + "\nrectColor=7\n");
    const QByteArray before = contents();
    QCOMPARE(run({"set", "4278190335", "init", directory(), "print"}), allFour(kBlue));
    QCOMPARE(runHere({"init", directory(), "set", "4278190335", "print"}), allFour(kBlue));
    QCOMPARE(contents(), before);
}

// A text that only speaks of one is a value as any other.
void tst_ScreenCaptureTool::escapesThatGiveNoObjectAreRead()
{
    write("[pen_color]\nrectColor=\\x37\nfoo=Variant(\\x40, \\a\\\\@\\100\\n\nbar=\\");
    QCOMPARE(runHere({"print"}), QByteArray("4294654008 7 4294654008 4294654008 invalid\n"));
}

void tst_ScreenCaptureTool::directoryInTheFilesPlaceStays()
{
    QVERIFY(QDir().mkdir(file()));
    QCOMPARE(runHere({"print", "set", "4278190335", "print"}), allFour(kRed) + allFour(kBlue));
    QVERIFY(QFileInfo(file()).isDir());
    QVERIFY(QDir(file()).isEmpty());
}

void tst_ScreenCaptureTool::unwritablePlaceKeepsTheColorsInMemory_data()
{
    QTest::addColumn<QString>("place");
    QTest::newRow("below a plain file") << "plain";
    QTest::newRow("in a directory that takes no files") << "/proc/self";
}

void tst_ScreenCaptureTool::unwritablePlaceKeepsTheColorsInMemory()
{
    QFETCH(QString, place);
    if (place == "plain") {
        place = m_scratch->filePath(place);
        writeFile(place.toStdString(), "plain");
    }
    QCOMPARE(run({"init", place, "print", "set", "4278190335", "print"}),
             allFour(kRed) + allFour(kBlue));
}

// Nobody can write to this file, not even the superuser, whom mode bits do not stop.
void tst_ScreenCaptureTool::unwritableFileKeepsTheColorsInMemory()
{
    const QString system = "/proc/version";
    if (!QFileInfo::exists(system))
        QSKIP("the system has no file that the superuser cannot write", "");
    QVERIFY(QFile::link(system, file()));
    QCOMPARE(runHere({"print", "set", "4278190335", "print"}), allFour(kRed) + allFour(kBlue));
    QCOMPARE(QFileInfo(file()).symLinkTarget(), system);
}

void tst_ScreenCaptureTool::missingDirectoryIsNotMade()
{
    const QString missing = m_scratch->filePath("missing");
    QCOMPARE(run({"init", missing, "print"}), allFour(kRed));
    QVERIFY(!QFileInfo::exists(missing));
    QCOMPARE(run({"init", missing, "set", "4278190335", "print"}), allFour(kBlue));
    QVERIFY(!QFileInfo::exists(missing));
}

void tst_ScreenCaptureTool::processesWriteInTurn()
{
    for (int round = 0; round < 5; ++round) {
        for (const uint color : {kBlue, kGreen}) {
            QCOMPARE(runHere({"set", QString::number(color)}), QByteArray());
            QCOMPARE(runHere({"print"}), allFour(color));
        }
    }
    // One process goes on while the other writes between.
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::init(directory());
    ScreenCaptureTool::penColor(colors);
    QCOMPARE(numbers(colors), allFour(kGreen));
    QCOMPARE(runHere({"set", "4278190335"}), QByteArray());
    ScreenCaptureTool::init(directory());
    ScreenCaptureTool::penColor(colors);
    QCOMPARE(numbers(colors), allFour(kBlue));
}

void tst_ScreenCaptureTool::processesWriteAtTheSameTime()
{
    QProcess writers[2];
    uint color = 4000000000U;
    for (QProcess& writer : writers) {
        start(writer, {"init", directory(), "repeat", "20", QString::number(color),
                       QString::number(color + 1)});
        color += 2;
    }
    for (QProcess& writer : writers) {
        QVERIFY(writer.waitForFinished(kClientTimeoutMs));
        QCOMPARE(writer.exitCode(), 0);
        QCOMPARE(writer.readAllStandardError(), QByteArray());
    }
    QSet<QByteArray> allowed;
    for (uint last = 4000000001U; last < 4000000004U; last += 2)
        allowed << fileWith(last);
    QVERIFY2(allowed.contains(contents()), contents());
    QVERIFY(runHere({"print"}).startsWith("400000000"));
}

// Killed at ever later moments, so that some of them hit the middle of a write.
void tst_ScreenCaptureTool::killedWriterLeavesAFileThatLoads()
{
    write(fileWith(kBlue) + "\n[zoo]\nanimals=cat\n");
    for (int moment = 0; moment < 12; ++moment) {
        QProcess writer;
        start(writer,
              {"init", directory(), "print", "repeat", "100000000", "4278190335", "4278255360"});
        QVERIFY(writer.waitForReadyRead(kClientTimeoutMs));
        // By its time, since the contents turn back to what they were.
        const QDateTime before = QFileInfo(file()).lastModified();
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(file()).lastModified() != before, kClientTimeoutMs);
        ::usleep(useconds_t(moment) * 211);
        writer.kill();
        QVERIFY(writer.waitForFinished(kClientTimeoutMs));
        QCOMPARE(writer.exitStatus(), QProcess::CrashExit);
        const QByteArray found = runHere({"print"});
        QVERIFY2(found == allFour(kBlue) || found == allFour(kGreen), found);
        QVERIFY(contents().contains("animals=cat"));
        // A lock that it was just about to sign is taken for a live one's at first.
        QTRY_VERIFY(!unsignedLockIsYoung());
        // Then it does not stand in the way of the next one.
        QCOMPARE(runHere({"set", "4278190335"}), QByteArray());
        QCOMPARE(runHere({"print"}), allFour(kBlue));
    }
}

// Qt would wait for 30 seconds.
void tst_ScreenCaptureTool::emptyLockOfAKilledWriterIsRemoved()
{
    constexpr int kLongBeforeQtGivesUpMs = 20000;
    QFile lock(file() + ".lock");
    QVERIFY(lock.open(QIODevice::WriteOnly));
    QVERIFY(lock.setFileTime(QDateTime::currentDateTime().addMSecs(-2 * kLockSigningMs),
                             QFileDevice::FileModificationTime));
    QProcess writer;
    start(writer, {"init", directory(), "set", "4278190335"});
    QVERIFY(writer.waitForFinished(kLongBeforeQtGivesUpMs));
    QCOMPARE(runHere({"print"}), allFour(kBlue));
    QVERIFY(!lock.exists());
}

void tst_ScreenCaptureTool::lockOfALiveWriterIsWaitedFor()
{
    QLockFile lock(file() + ".lock");
    QVERIFY(lock.lock());
    QProcess writer;
    start(writer, {"init", directory(), "print", "set", "4278190335"});
    QVERIFY(writer.waitForReadyRead(kClientTimeoutMs));
    // It tries for as long as it lives; nothing else tells that it began to.
    QVERIFY(!writer.waitForFinished(300));
    QVERIFY(QFileInfo::exists(file() + ".lock"));
    lock.unlock();
    QVERIFY(writer.waitForFinished(kClientTimeoutMs));
    QCOMPARE(runHere({"print"}), allFour(kBlue));
}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == kClient)
        return Client(arguments.mid(2)).run();
    tst_ScreenCaptureTool test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_ScreenCaptureTool.moc"
