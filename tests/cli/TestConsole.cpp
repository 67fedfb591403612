// Standard output and standard error, output files, and JSON for them.
// SPDX-License-Identifier: MIT
#include "console/Console.h"

#include "EndOf.h"
#include "Patience.h"
#include "console/JsonText.h"
#include "console/OutputFile.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

// A stream, closed at the end.
struct tStream {
    explicit tStream(const char* name) : file(std::fopen(name, "r+")) {}
    explicit tStream(FILE* opened) : file(opened) {}
    ~tStream()
    {
        if (file != nullptr)
            std::fclose(file);
    }
    QByteArray content() const
    {
        std::fflush(file);
        std::rewind(file);
        QByteArray text(4096, '\0');
        text.resize(static_cast<qsizetype>(std::fread(text.data(), 1, 4096, file)));
        return text;
    }
    FILE* file;
};

} // namespace

class TestConsole : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valuesAndMessagesAreKeptApart();
    void bothToOneFileKeepTheirOrder();
    void progressIsOnlyForATerminal();
    void fullDiskEndsTheCommand();
    void fullDiskIsNotForgottenAfterAMessage();
    void nobodyReadingIsNoError();
    void fileIsReplacedAsAWhole();
    void fileThatCannotBeWrittenStays();
    void pipeIsWrittenInto();
    void withoutANameTheOutputIsWritten();
    void jsonHasNoControlCharacters();
};

void TestConsole::valuesAndMessagesAreKeptApart()
{
    const tStream output(std::tmpfile());
    const tStream error(std::tmpfile());
    CConsole console(output.file, error.file);
    console.line("0x05 \u00E4");
    console.message("a warning");
    console.write("bytes");
    QCOMPARE(output.content(), "0x05 \xC3\xA4\nbytes");
    QCOMPARE(error.content(), "velmora-cli: a warning\n");
}

void TestConsole::bothToOneFileKeepTheirOrder()
{
    const tStream both(std::tmpfile());
    CConsole console(both.file, both.file);
    console.line("first");
    console.message("second");
    console.line("third");
    QCOMPARE(both.content(), "first\nvelmora-cli: second\nthird\n");
}

void TestConsole::progressIsOnlyForATerminal()
{
    const tStream output(std::tmpfile());
    const tStream error(std::tmpfile());
    CConsole(output.file, error.file).progress("1 of 2");
    QCOMPARE(error.content(), "");

    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    QVERIFY(terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0);
    {
        const tStream screen(ptsname(terminal));
        CConsole console(output.file, screen.file);
        console.progress("1 of 2");
        console.line("value");
        console.progress("2 of 2");
    }
    QByteArray text; // comes in pieces, and then an error, since the other end is closed
    char piece[100];
    for (ssize_t size = ::read(terminal, piece, sizeof piece); size > 0; size = ::read(terminal, piece, sizeof piece))
        text += QByteArray(piece, size);
    ::close(terminal);
    QCOMPARE(text, "\r\033[K1 of 2\r\033[K\r\033[K2 of 2\r\033[K");
}

void TestConsole::fullDiskEndsTheCommand()
{
    const tStream output("/dev/full");
    const tStream error(std::tmpfile());
    CConsole console(output.file, error.file);
    console.line("value");
    QCOMPARE(endOf([&] {
                 console.flush();
                 return 0;
             }),
             "2: cannot write the output: No space left on device");
    QCOMPARE(endOf([&] {
                 console.write(QByteArray(100000, 'x'));
                 return 0;
             }),
             "2: cannot write the output: No space left on device");
}

void TestConsole::fullDiskIsNotForgottenAfterAMessage()
{
    const tStream output("/dev/full");
    const tStream error(std::tmpfile());
    CConsole console(output.file, error.file);
    console.line("value");
    console.message("a warning");
    QCOMPARE(error.content(), "velmora-cli: a warning\n");
    QCOMPARE(endOf([&] {
                 console.flush();
                 return 0;
             }),
             "2: cannot write the output: No space left on device");
}

void TestConsole::nobodyReadingIsNoError()
{
    int ends[2];
    QCOMPARE(::pipe(ends), 0);
    ::close(ends[0]);
    const tStream output(::fdopen(ends[1], "w"));
    const tStream error(std::tmpfile());
    CConsole console(output.file, error.file);
    console.line("value");
    QVERIFY(!console.isClosed());
    QCOMPARE(endOf([&] {
                 console.flush();
                 console.write(QByteArray(100000, 'x'));
                 console.message("still at work");
                 console.flush();
                 return 0;
             }),
             "");
    QVERIFY(console.isClosed());
}

void TestConsole::fileIsReplacedAsAWhole()
{
    const QTemporaryDir folder;
    const QString name = folder.filePath("out");
    CConsole console;
    writeOutput(console, name, "a longer text");
    writeOutput(console, name, "short");
    QFile file(name);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), "short");
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList("out"));
}

void TestConsole::fileThatCannotBeWrittenStays()
{
    const QTemporaryDir folder;
    CConsole console;
    QVERIFY(endOf([&] {
                writeOutput(console, folder.filePath("none/out"), "x");
                return 0;
            }).startsWith("2: cannot write " + folder.filePath("none/out") + ": "));
    QVERIFY(endOf([&] {
                writeOutput(console, folder.path(), "x");
                return 0;
            }).startsWith("2: cannot write " + folder.path() + ": "));
    QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

void TestConsole::pipeIsWrittenInto()
{
    const QTemporaryDir folder;
    const QString name = folder.filePath("pipe");
    QCOMPARE(::mkfifo(name.toLocal8Bit().constData(), 0600), 0);
    const int reader = ::open(name.toLocal8Bit().constData(), O_RDONLY | O_NONBLOCK);
    CConsole console;
    writeOutput(console, name, "through a pipe");
    char text[100] = {};
    const ssize_t size = ::read(reader, text, sizeof text);
    ::close(reader);
    QCOMPARE(QByteArray(text, qMax<ssize_t>(size, 0)), "through a pipe");
    QVERIFY(!QFileInfo(name).isFile());
}

void TestConsole::withoutANameTheOutputIsWritten()
{
    const tStream output(std::tmpfile());
    const tStream error(std::tmpfile());
    CConsole console(output.file, error.file);
    writeOutput(console, QString(), "one ");
    writeOutput(console, "-", "two");
    QCOMPARE(output.content(), "one two");
}

void TestConsole::jsonHasNoControlCharacters()
{
    const QString text = QString("\u001B[0m\u007F\u0080\u009F\u00A0\u00E4\u20AC\n");
    const QJsonDocument document(QJsonArray{ text });
    const QByteArray json = jsonText(document);
    QCOMPARE(json, "[\n    \"\\u001b[0m\\u007f\\u0080\\u009f\u00A0\u00E4\u20AC\\n\"\n]\n");
    QCOMPARE(QJsonDocument::fromJson(json), document);
    QCOMPARE(jsonText(QJsonDocument(QJsonArray())), "[\n]\n");
}

QTEST_APPLESS_MAIN(TestConsole)
#include "TestConsole.moc"
