// The manual page of velmora-cli and its page in the handbook: their examples do what stands there, and the manual page
// has the commands and options of the program.
// SPDX-License-Identifier: MIT
#include "SimulatorProcess.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace
{

const char page[] = VELMORA_MANUAL_PAGES "/velmora-cli.1";
const char handbookPage[] = VELMORA_HANDBOOK "/commands.md";
const char prompt[] = "$ ";
const char startsSimulator[] = "velmora-sim --gateway 60000 --node 5=velmora-demo.eds --node 6=velmora-demo.eds &";

// A command as the page shows it, with what follows it there. Without a prompt no output is shown.
struct tExample {
    QString command;
    QString output;
    bool showsOutput;
};

QString contentsOf(const char* path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// The manual page as it is typed: joined lines, without the marks of the typesetter.
QString plainPage()
{
    QString text = contentsOf(page);
    text.remove("\\\n").replace("\\-", "-").replace("\\(aq", "'").replace("\\(ha", "^").replace("\\~", " ");
    return text.remove(QRegularExpression(R"(\\f[BIPR])"));
}

// The lines between the two marks, each time that they are there.
QList<QStringList> blocksOf(const QString& text, const QString& begin, const QString& end)
{
    const QRegularExpression block('^' + begin + "\n(.*?)^" + end + '$',
                                   QRegularExpression::MultilineOption |
                                       QRegularExpression::DotMatchesEverythingOption);
    QList<QStringList> blocks;
    for (const auto& match : block.globalMatch(text))
        blocks << match.captured(1).split('\n', Qt::SkipEmptyParts);
    return blocks;
}

QList<tExample> examplesOf(const QStringList& lines)
{
    QList<tExample> examples;
    const bool prompted = lines.first().startsWith(prompt);
    for (const QString& line : lines)
        if (!prompted)
            examples << tExample{ line, QString(), false };
        else if (line.startsWith(prompt))
            examples << tExample{ line.mid(2), QString(), true };
        else
            examples.last().output += line + '\n';
    return examples;
}

// The text from the heading of a sub-command, or of a section, to the next heading.
QString sectionOf(const QString& heading)
{
    static const QRegularExpression nextHeading("^\\.S[HS] ", QRegularExpression::MultilineOption);
    const QString text = plainPage().section(QRegularExpression("\n\\.S[HS] " + heading + "(?= |\n)"), 1);
    return text.left(text.indexOf(nextHeading));
}

QStringList allOf(const QString& text, const QString& pattern)
{
    QStringList found;
    const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
    for (const auto& match : expression.globalMatch(text))
        found << match.captured(1);
    return found;
}

// The options that a help describes, with two hyphens.
QStringList optionsOf(const QString& help)
{
    return allOf(help.section("\nOptions:\n", 1).section("\n\n", 0, 0), "^  (?:-\\w,)?(--[a-z-]+)");
}

// The options that a section of the page describes.
QStringList describedOptions(const QString& section)
{
    QStringList options;
    for (const QString& tag : allOf(section, "\\.TP\n\\.B[A-Z]* ?(.*)$"))
        options += allOf(tag, "(?<!-)(--[a-z-]+)");
    return options;
}

// Times differ from run to run.
QString comparable(QString output)
{
    static const QRegularExpression time("\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z");
    return output.replace(time, "TIME");
}

// A shell in a folder of its own, with the program. `interface` stands for those of the page.
class CShell
{
public:
    explicit CShell(QString interface = QString()) : m_interface(std::move(interface))
    {
        const QDir folder(m_folder.path());
        if (!folder.mkdir("bin") || !folder.mkdir("work") || !QFile::link(VELMORA_CLI, m_folder.filePath(program)))
            qFatal("no folder");
    }

    // What each command prints, to both streams, up to the first one that ends the shell.
    QStringList run(const QStringList& commands)
    {
        QString script = "exec 2>&1\n";
        for (const QString& command : commands)
            script += withoutHardware(command) + "\nstatus=$?; printf '\\036%s\\036' $status; (exit $status)\n";
        QProcess shell;
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert("PATH", m_folder.filePath("bin") + ':' + variables.value("PATH"));
        shell.setProcessEnvironment(variables);
        shell.setWorkingDirectory(m_folder.filePath("work"));
        shell.start("bash", { "-c", script });
        shell.waitForFinished(patience);
        const QStringList parts = QString::fromUtf8(shell.readAllStandardOutput()).split('\x1E');
        QStringList outputs;
        statuses.clear();
        for (qsizetype place = 0; place + 1 < parts.size(); place += 2) {
            outputs << parts[place];
            statuses << parts[place + 1].toInt();
        }
        return outputs;
    }

    QString outputOf(const QString& command) { return run({ command }).join(QString()); }

    QList<int> statuses; // of the commands that were run

private:
    QString withoutHardware(QString command) const
    {
        static const QRegularExpression interface("-i (localhost:60000|can0)\\b");
        if (command == startsSimulator)
            return ":";
        return command.replace("/usr/share/velmora", VELMORA_SHARE).replace(interface, "-i " + m_interface);
    }

    static constexpr char program[] = "bin/velmora-cli";
    QTemporaryDir m_folder;
    const QString m_interface;
};

QString helpOf(const QString& command)
{
    return CShell().outputOf("velmora-cli " + command + " --help");
}

// The sub-commands that the program has.
QStringList commandNames()
{
    return allOf(helpOf("").section("\nSubcommands:\n", 1), "^  ([a-z]+) ");
}

// The simulator that the page starts.
const QStringList secondNode = { "--node", "6=" VELMORA_SHARE "/velmora-demo.eds" };

} // namespace

class TestCommandLinePage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void examplesPrintWhatThePageShows_data();
    void examplesPrintWhatThePageShows();
    void commandsOfThePageAreThoseOfTheProgram();
    void optionsOfThePageAreThoseOfTheHelp_data() { addCommands(); }
    void optionsOfThePageAreThoseOfTheHelp();
    void helpHasExamplesThatRun_data() { addCommands(); }
    void helpHasExamplesThatRun();
    void everyDataTypeIsInThePage();

private:
    static void addCommands()
    {
        QTest::addColumn<QString>("command");
        for (const QString& command : commandNames())
            QTest::newRow(qPrintable(command)) << command;
    }
};

void TestCommandLinePage::examplesPrintWhatThePageShows_data()
{
    QTest::addColumn<QList<QStringList>>("blocks");
    QTest::newRow("manual page") << blocksOf(plainPage(), "\\.EX", "\\.EE");
    QTest::newRow("handbook") << blocksOf(contentsOf(handbookPage), "```", "```");
}

void TestCommandLinePage::examplesPrintWhatThePageShows()
{
    QFETCH(QList<QStringList>, blocks);
    const CSimulatorProcess simulator(secondNode, CSimulatorProcess::silent);
    QVERIFY2(simulator.port() != 0, simulator.log());
    QList<tExample> examples;
    for (const QStringList& block : blocks)
        examples += examplesOf(block);
    QStringList commands;
    for (const tExample& example : examples)
        commands << example.command;
    QVERIFY(commands.contains(startsSimulator) && commands.size() > 15);
    CShell shell(simulator.interface());
    const QStringList outputs = shell.run(commands);
    QCOMPARE(outputs.size(), commands.size());
    for (qsizetype place = 0; place < commands.size(); ++place) {
        if (examples[place].showsOutput)
            QCOMPARE(commands[place] + '\n' + comparable(outputs[place]),
                     commands[place] + '\n' + comparable(examples[place].output));
        else
            QVERIFY2(shell.statuses[place] <= 1, qPrintable(commands[place] + '\n' + outputs[place]));
    }
}

void TestCommandLinePage::commandsOfThePageAreThoseOfTheProgram()
{
    QStringList described = allOf(plainPage().section("\n.SH COMMANDS\n", 1).section("\n.SH ", 0, 0), "^\\.SS (\\S+)");
    QStringList present = commandNames();
    QVERIFY(present.contains("read"));
    described.sort();
    present.sort();
    QCOMPARE(described, present);
}

void TestCommandLinePage::optionsOfThePageAreThoseOfTheHelp()
{
    QFETCH(QString, command);
    QStringList options = optionsOf(helpOf(command));
    QVERIFY(options.removeAll("--help") == 1);
    QStringList described = describedOptions(sectionOf(command));
    if (options.contains("--interface"))
        described += describedOptions(sectionOf("NETWORK OPTIONS"));
    if (!options.contains("--node"))
        described.removeAll("--node");
    options.sort();
    described.sort();
    QCOMPARE(described, options);
}

void TestCommandLinePage::helpHasExamplesThatRun()
{
    QFETCH(QString, command);
    const QStringList examples = allOf(helpOf(command), "^  (velmora-cli " + command + " .*)$");
    QVERIFY(!examples.isEmpty());
    const CSimulatorProcess simulator(secondNode, CSimulatorProcess::silent);
    QVERIFY2(simulator.port() != 0, simulator.log());
    CShell shell(simulator.interface());
    // The gateway keeps the time-out: a scan waits for 125 nodes.
    shell.run({ "velmora-cli read -i can0 -n 5 --timeout 20 1017", "cp /usr/share/velmora/velmora-demo.eds .",
                "for sheet in device.eds device-1.0.eds device-1.1.eds; do cp velmora-demo.eds $sheet; done",
                "velmora-cli dump -i can0 -n 5 -s velmora-demo.eds -o node5.dcf",
                "velmora-cli dump -i can0 -n 6 -s velmora-demo.eds -o node6.dcf" });
    QCOMPARE(shell.statuses, QList<int>({ 0, 0, 0, 0, 0 }));
    for (const QString& example : examples) {
        const QString output = shell.outputOf(example);
        QVERIFY2(shell.statuses == QList<int>{ 0 }, qPrintable(example + '\n' + output));
    }
}

void TestCommandLinePage::everyDataTypeIsInThePage()
{
    const QStringList words = helpOf("write").section("data type of the values: ", 1).section('\n', 0, 0).split(", ");
    QVERIFY(words.contains("u16") && words.size() > 20);
    const QString text = plainPage().section("\n.TP\nA data type\n", 1).section("\n.TP\n", 0, 0);
    for (const QString& word : words)
        QVERIFY2(text.contains(QRegularExpression("\\b" + word + "\\b")), qPrintable(word));
}

QTEST_GUILESS_MAIN(TestCommandLinePage)
#include "TestCommandLinePage.moc"
