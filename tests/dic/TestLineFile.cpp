// Lines of a file as the tokenizer gets them: character sets, blocks, the longest line.
// SPDX-License-Identifier: MIT
#include "dic/IniReader.h"

#include "Items.h"

#include <QTest>

class TestLineFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void characterSets_data();
    void characterSets() { compareItems(); }
    void everyByteOfWindows1252IsItsCharacter();
    void noBreakSpacesAtTheEndsOfAValueAreWhiteSpace();
    void characterSetIsThatOfTheWholeFile();               // one byte at the end decides how the first line is read
    void charactersOfSeveralBytesSurviveAtEveryPosition(); // wherever a block of the file may end
    void longestLineHas65536CharactersWithItsLineFeed();
    void longestLineMayEndWithCarriageReturnAndLineFeed();
    void lineFeedBehindTheLimitIsALineOfItsOwn();
    void restOfALongLineIsTheNextLine();
    void endlessLineIsReadInPieces();
    void endlessCommentGoesOnAsText(); // the rest of a long comment is a line, and no comment any more
    void lineLimitCountsCharactersNotBytes();
    void characterIsNotDividedByTheLimit();
};

void TestLineFile::characterSets_data()
{
    columns();
    const auto row = [](const char* name, const QByteArray& text, const QStringList& expected) {
        QTest::newRow(name) << text << expected;
    };
    row("UTF-8", "[a]\nk=\xC2\xB5m \xE2\x82\xAC \xF0\x9F\x98\x80\n", { QString::fromUtf8("1 a k=µm € 😀"), "-1" });
    row("byte order mark", "\xEF\xBB\xBF[a]\nk=\xC3\xA4\n", { QString::fromUtf8("1 a k=ä"), "-1" });
    row("byte order mark in a value",
        "\xEF\xBB\xBF[a]\nk=\xEF\xBB\xBF"
        "5\n",
        { QString("1 a k=") + QChar(0xFEFF) + '5', "-1" });
    row("two byte order marks", "\xEF\xBB\xBF\xEF\xBB\xBF[a]\nk=1\n", { "0 in line 1" });
    row("byte order mark only", "\xEF\xBB\xBF", { "-1" });
    row("Windows-1252", "[a]\nk=\xB5m \x80 \x9F\n", { QString::fromUtf8("1 a k=µm € Ÿ"), "-1" });
    row("Windows-1252 in names",
        "[Gr\xF6\xDF"
        "e]\n\xE4=1\n",
        { QString::fromUtf8("1 Größe ä=1"), "-1" });
    row("Windows-1252 only at the end", "[a]\nk=\xC3\xB6\nl=\xF6\n",
        { QString::fromUtf8("1 a k=Ã¶"), QString::fromUtf8("2 a l=ö"), "-1" });
    row("cut UTF-8 at the end", "[a]\nk=\xC3", { QString::fromUtf8("1 a k=Ã"), "-1" });
    row("cut UTF-8 before a line feed", "[a]\nk=\xE2\x82\nl=1\n", { QString::fromUtf8("1 a k=â‚"), "2 a l=1", "-1" });
    row("overlong UTF-8", "[a]\nk=\xC0\xAF\n", { QString::fromUtf8("1 a k=À¯"), "-1" });
    row("half of a pair in UTF-8", "[a]\nk=\xED\xA0\x80\n", { QString::fromUtf8("1 a k=í\u00A0€"), "-1" });
    row("beyond Unicode in UTF-8", "[a]\nk=\xF4\x90\x80\x80\n",
        { QString::fromUtf8("1 a k=ô") + QChar(0x90) + QString::fromUtf8("€€"), "-1" });
    row("stray continuation byte", "[a]\nk=\xBF\n", { QString::fromUtf8("1 a k=¿"), "-1" });
    row("byte order mark before Windows-1252", "\xEF\xBB\xBF[a]\nk=\xFC\n", { "0 in line 1" });
    row("UTF-16", bytes("\xFF\xFE[\0a\0]\0\n\0"), { "0 in line 1" });
}

void TestLineFile::everyByteOfWindows1252IsItsCharacter()
{
    // From 80h on; the five bytes without a character stay the control characters of Latin-1.
    QString characters = QString::fromUtf8("€\u0081‚ƒ„…†‡ˆ‰Š‹Œ\u008DŽ\u008F\u0090‘’“”•–—˜™š›œ\u009DžŸ");
    for (char16_t latin = 0xA0; latin <= 0xFF; ++latin)
        characters += QChar(latin);
    QCOMPARE(characters.size(), 128);
    for (int place = 0; place < characters.size(); ++place) {
        const QByteArray text = "[a]\nk=_" + QByteArray(1, static_cast<char>(0x80 + place)) + "_\n";
        QCOMPARE(items(text), (QStringList{ QString("1 a k=_%1_").arg(characters[place]), "-1" }));
    }
}

void TestLineFile::noBreakSpacesAtTheEndsOfAValueAreWhiteSpace()
{
    QCOMPARE(items("[a]\nk=\xC2\xA0v\xC2\xA0\n"), (QStringList{ "1 a k=v", "-1" }));
}

void TestLineFile::characterSetIsThatOfTheWholeFile()
{
    const QByteArray text = "[a]\nk=\xC3\xB6\n" + QByteArray(";\n").repeated(2000000);
    QCOMPARE(items(text), (QStringList{ QString::fromUtf8("1 a k=ö"), "-1" }));
    QCOMPARE(items(text + ";\xF6\n"), (QStringList{ QString::fromUtf8("1 a k=Ã¶"), "-1" }));
}

void TestLineFile::charactersOfSeveralBytesSurviveAtEveryPosition()
{
    for (int shift = 0; shift < 4; ++shift) {
        const QByteArray line = "k=" + QByteArray("\xF0\x9F\x98\x80\xE2\x82\xAC\xC3\xA4x").repeated(1000) + '\n';
        const QString item = " a k=" + QString::fromUtf8("😀€äx").repeated(1000);
        const QStringList read = items("[a]\n;" + QByteArray(shift, 'x') + '\n' + line.repeated(100));
        QCOMPARE(read.size(), 101);
        for (int number = 0; number < 100; ++number)
            QVERIFY2(read[number].mid(1) == item, qPrintable(QString("line %1").arg(number + 3)));
    }
}

void TestLineFile::longestLineHas65536CharactersWithItsLineFeed()
{
    const QByteArray value(65533, 'v');
    QCOMPARE(items("[a]\nk=" + value + "\n?\n"), (QStringList{ "1 a k=" + QString(value), "0 in line 3" }));
}

void TestLineFile::longestLineMayEndWithCarriageReturnAndLineFeed()
{
    const QByteArray value(65532, 'v');
    QCOMPARE(items("[a]\nk=" + value + "\r\n?\n"), (QStringList{ "1 a k=" + QString(value), "0 in line 3" }));
}

void TestLineFile::lineFeedBehindTheLimitIsALineOfItsOwn()
{
    const QByteArray value(65534, 'v');
    QCOMPARE(items("[a]\nk=" + value + "\n?\n"), (QStringList{ "1 a k=" + QString(value), "0 in line 4" }));
}

void TestLineFile::restOfALongLineIsTheNextLine()
{
    const QByteArray value(65534, 'v');
    QCOMPARE(items("[a]\nk=" + value + "l=2\n?\n"),
             (QStringList{ "1 a k=" + QString(value), "2 a l=2", "0 in line 4" }));
    QCOMPARE(items("[a]\nk=" + value + "v\n"), (QStringList{ "1 a k=" + QString(value), "0 in line 3" }));
}

void TestLineFile::endlessLineIsReadInPieces()
{
    const QByteArray line = QByteArray("k=").repeated(1000000); // 30.5 lines of 65536 characters
    const QStringList read = items("[a]\n" + line);
    QCOMPARE(read.size(), 32);
    QCOMPARE(read[30].size(), qsizetype(qstrlen("2 a k=") + 2000000 - 30 * 65536 - 2));
    QCOMPARE(read[31], QString("-1"));
    QCOMPARE(items("[a]\n" + QByteArray(10000000, 'k')), QStringList{ "0 in line 2" });
}

void TestLineFile::endlessCommentGoesOnAsText()
{
    QCOMPARE(items("[a]\n;" + QByteArray(65535, 'x') + "x\n"), QStringList{ "0 in line 3" });
    QCOMPARE(items("[a]\n;" + QByteArray(65535, 'x') + "k=1\n"), (QStringList{ "1 a k=1", "-1" }));
}

void TestLineFile::lineLimitCountsCharactersNotBytes()
{
    const QString value = QString::fromUtf8("ä").repeated(65533);
    QCOMPARE(items("[a]\nk=" + value.toUtf8() + "\n?\n"), (QStringList{ "1 a k=" + value, "0 in line 3" }));
    QCOMPARE(items("[a]\nk=" + value.toUtf8() + "xl=2\n"), (QStringList{ "1 a k=" + value + 'x', "2 a l=2", "-1" }));
}

void TestLineFile::characterIsNotDividedByTheLimit() // of two UTF-16 units the line has room for one
{
    const QByteArray value(65533, 'v');
    QCOMPARE(items("[a]\nk=" + value + "\xF0\x9F\x98\x80\n"),
             (QStringList{ "1 a k=" + QString(value), "0 in line 3" }));
    const QByteArray shorter(65532, 'v');
    QCOMPARE(items("[a]\nk=" + shorter + "\xF0\x9F\x98\x80l=2\n"),
             (QStringList{ "1 a k=" + QString(shorter) + QString::fromUtf8("😀"), "2 a l=2", "-1" }));
}

QTEST_APPLESS_MAIN(TestLineFile)
#include "TestLineFile.moc"
