// The page of errors in the handbook: its tables have the codes and texts of the program, all of them.
// SPDX-License-Identifier: MIT
#include "access/ErrorTexts.h"
#include "base/CANopenErrors.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>

namespace
{

QString contentsOf(const char* path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

struct tRow {
    QString code;
    QString text;
    QString meaning;
    QString advice;
};

// The rows of the table below the heading of the page.
QList<tRow> rowsBelow(const QString& heading)
{
    const QString section = contentsOf(VELMORA_ERRORS_PAGE).section("\n## " + heading + '\n', 1).section("\n## ", 0, 0);
    static const QRegularExpression row(R"(^\| (-?\d+|0x[0-9A-F]{8}) \| (.*) \| (.*) \| (.*) \|$)",
                                        QRegularExpression::MultilineOption);
    QList<tRow> rows;
    for (const auto& match : row.globalMatch(section))
        rows << tRow{ match.captured(1), match.captured(2), match.captured(3), match.captured(4) };
    return rows;
}

// The abort codes of the header: too many numbers to ask the program for each.
QStringList abortCodes()
{
    static const QRegularExpression constant(R"(\bABORT_\w+ = (0x[0-9A-F]{8});)");
    QStringList codes;
    for (const auto& match : constant.globalMatch(contentsOf(VELMORA_ERROR_CODES)))
        codes << match.captured(1);
    return codes;
}

} // namespace

class TestErrorsPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyErrorHasARowWithItsText();
    void everyAbortCodeHasARowWithItsText();
    void codesWithoutATextAreExplained();
    void everyBoxWithoutANumberHasARow();
};

void TestErrorsPage::everyErrorHasARowWithItsText()
{
    QMap<int, QString> known;
    const QString unknown = errorTexts::ofError(-32768);
    for (int error = -32767; error <= 32767; ++error)
        if (errorTexts::ofError(error) != unknown)
            known[error] = errorTexts::ofError(error);
    QVERIFY(known.contains(ERR_TIMEOUT));
    QMap<int, QString> shown;
    for (const tRow& row : rowsBelow("Errors")) {
        QVERIFY2(!shown.contains(row.code.toInt()), qPrintable(row.code));
        QVERIFY2(!row.meaning.isEmpty() && !row.advice.isEmpty(), qPrintable(row.code));
        shown[row.code.toInt()] = row.text;
    }
    QCOMPARE(shown, known);
}

void TestErrorsPage::everyAbortCodeHasARowWithItsText()
{
    const QStringList known = abortCodes();
    QVERIFY(known.contains("0x06010002"));
    QStringList shown;
    for (const tRow& row : rowsBelow("Abort codes")) {
        shown << row.code;
        QCOMPARE(row.text, QString(errorTexts::ofAbort(row.code.toUInt(nullptr, 16))));
        QVERIFY2(!row.meaning.isEmpty() && !row.advice.isEmpty(), qPrintable(row.code));
    }
    QCOMPARE(shown, known);
}

void TestErrorsPage::codesWithoutATextAreExplained()
{
    const QString page = contentsOf(VELMORA_ERRORS_PAGE);
    QVERIFY(page.contains(errorTexts::ofError(-10000)));
    for (const char* code : { "-10000", "-20000", "-793" })
        QVERIFY2(page.contains(QString("\n| %1 | ").arg(code)), code);
}

// The page names what a box says up to its first blank line, and shows "..." in place of a name.
void TestErrorsPage::everyBoxWithoutANumberHasARow()
{
    QString sources;
    const QDir folder(VELMORA_SOURCES);
    for (const QString& name : folder.entryList({ "*.cpp" }))
        sources += contentsOf(qPrintable(folder.filePath(name)));
    QStringList shown;
    static const QRegularExpression row(R"(^\| ([A-Z][^|]*[.!d]) \| [^|]+ \| [^|]+ \|$)",
                                        QRegularExpression::MultilineOption);
    const QString page = contentsOf(VELMORA_ERRORS_PAGE);
    for (const auto& match : row.globalMatch(page.section("\n## Boxes without a number\n", 1)))
        shown << match.captured(1).replace("...", "%1");
    QVERIFY(std::ranges::is_sorted(shown));
    for (const QString& text : shown)
        QVERIFY2(sources.contains('"' + text), qPrintable(text));
    // Boxes with a blank line, but without anything filled in; then what remains.
    static const QRegularExpression box(R"lit("([^"%]+)\\n\\n)lit");
    QStringList known = { "Sorry, not realized yet!", "File %1 could not be loaded",
                          "Error ?: Properties could not be retrieved!" };
    for (const auto& match : box.globalMatch(sources))
        known << match.captured(1);
    QVERIFY(known.size() >= 10);
    for (const QString& text : known)
        QVERIFY2(shown.contains(text), qPrintable(text));
}

QTEST_APPLESS_MAIN(TestErrorsPage)
#include "TestErrorsPage.moc"
