// The manual pages: what the programs have stands in them.
// SPDX-License-Identifier: MIT
#include "Patience.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

namespace
{

QString pageOf(const char* program)
{
    QFile file(QString(VELMORA_MANUAL_PAGES "/%1.1").arg(program));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// The text between the heading and the next one, without the marks of the typesetter.
QString sectionOf(const QString& page, const QString& heading)
{
    const QString text = page.section("\n.SH " + heading + '\n', 1).section("\n.SH ", 0, 0);
    return QString(text).replace("\\-", "-").remove(QRegularExpression(R"(\\f[BIPR])"));
}

QString simulatorHelp()
{
    QProcess process;
    process.start(VELMORA_SIM, { "--help" });
    return process.waitForFinished(patience) ? QString::fromUtf8(process.readAllStandardOutput()) : QString();
}

// The first captures of all matches.
QStringList allOf(const QString& text, const QString& pattern)
{
    QStringList found;
    const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
    for (const auto& match : expression.globalMatch(text))
        found << match.captured(1);
    return found;
}

} // namespace

class TestManualPages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFaultOfTheHelpIsInThePage();
    void everyOptionOfTheHelpIsInThePage();
    void bothPagesHaveExamples_data();
    void bothPagesHaveExamples();
    void bothPagesNameTheHandbook_data();
    void bothPagesNameTheHandbook();
    void browserHasNoOptionsOfItsOwn();
};

void TestManualPages::everyFaultOfTheHelpIsInThePage()
{
    const QString help = simulatorHelp().section("\nFaults", 1);
    const QStringList faults = allOf(help, "^  (\\w+) ");
    QVERIFY(faults.size() >= 22);
    QCOMPARE(allOf(sectionOf(pageOf("velmora-sim"), "FAULTS"), "^\\.TP\n\\.B[R]? (\\w+)"), faults);
    const QStringList groups = allOf(help, "^ (on .*):$");
    QVERIFY(!groups.isEmpty());
    QStringList headings = allOf(sectionOf(pageOf("velmora-sim"), "FAULTS"), "^\\.SS (.*)$");
    QCOMPARE(headings.replaceInStrings(QRegularExpression("^On"), "on"), groups);
}

void TestManualPages::everyOptionOfTheHelpIsInThePage()
{
    QStringList options = allOf(simulatorHelp().section("\nFaults", 0, 0), "^  (--?[a-z-]+)");
    QVERIFY(options.removeAll("--help-all") == 1); // those of the library; the program has no window
    QVERIFY(options.contains("--node") && options.contains("-v"));
    const QString text = sectionOf(pageOf("velmora-sim"), "OPTIONS");
    for (const QString& option : options)
        QVERIFY2(text.contains(QRegularExpression("\n\\.B.*(?<!-)" + option + "\\b")), qPrintable(option));
}

void TestManualPages::bothPagesHaveExamples_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("velmora") << "\nvelmora\n";
    QTest::newRow("velmora-sim") << "\nvelmora-sim --gateway ";
}

void TestManualPages::bothPagesHaveExamples()
{
    QFETCH(QString, command);
    QVERIFY(sectionOf(pageOf(QTest::currentDataTag()), "EXAMPLES").contains(command));
}

void TestManualPages::bothPagesNameTheHandbook_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("velmora") << "/usr/share/doc/velmora/docs/handbook\n";
    QTest::newRow("velmora-sim") << "/usr/share/doc/velmora/docs/handbook/training.md\n";
}

void TestManualPages::bothPagesNameTheHandbook()
{
    QFETCH(QString, path);
    QVERIFY(sectionOf(pageOf(QTest::currentDataTag()), "FILES").contains(path));
}

void TestManualPages::browserHasNoOptionsOfItsOwn()
{
    QVERIFY(sectionOf(pageOf("velmora"), "OPTIONS").contains("no options of its own and takes no file names"));
}

QTEST_APPLESS_MAIN(TestManualPages)
#include "TestManualPages.moc"
