#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

// The man pages against the programs themselves: what --help lists, and the enum of the exit codes.
class ManPagesTest : public QObject
{
    Q_OBJECT
private slots:
    void theOptionsOfThePageAreThoseOfTheProgram_data() { addPrograms(); }
    void theOptionsOfThePageAreThoseOfTheProgram();
    void everyOptionIsExplained_data() { addPrograms(); }
    void everyOptionIsExplained();
    void theExitStatusesOfThePageAreThoseOfTheProgram_data() { addPrograms(); }
    void theExitStatusesOfThePageAreThoseOfTheProgram();
    void theLimitsOfTheHelpStandOnThePage_data() { addPrograms(); }
    void theLimitsOfTheHelpStandOnThePage();
    void whatEndsTheImageServerLateStandsOnThePage();
    void thePageNamesItsProgramAndTheVersion_data() { addPrograms(); }
    void thePageNamesItsProgramAndTheVersion();

private:
    static void addPrograms();
};

namespace {

struct Entry
{
    QString tag; // "-v, --version", "--snapshot FILE", "2"
    QString text;
};

QString contentOf(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// The words of a line in bold and the like, as they are printed: .BR \-v ", " \-\-version
QString printed(const QString& line)
{
    static const QRegularExpression word("\"([^\"]*)\"|([^\" ]+)");
    QString text;
    auto words = word.globalMatch(line.section(' ', 1));
    while (words.hasNext()) {
        const QRegularExpressionMatch match = words.next();
        text += match.captured(1) + match.captured(2);
    }
    return text.replace("\\-", "-");
}

/// The tagged paragraphs of a section.
QVector<Entry> entriesOf(const QString& page, const QString& section)
{
    QVector<Entry> entries;
    bool inSection = false;
    bool tagFollows = false;
    for (const QString& line : page.split('\n')) {
        if (line.startsWith(".SH ")) {
            inSection = line == ".SH " + section;
        } else if (inSection && line == ".TP") {
            tagFollows = true;
        } else if (inSection && tagFollows) {
            entries.append({printed(line), QString()});
            tagFollows = false;
        } else if (inSection && !entries.isEmpty()) {
            entries.last().text += line.startsWith('.') ? printed(line) : line;
        }
    }
    return entries;
}

QStringList tagsOf(const QVector<Entry>& entries)
{
    QStringList tags;
    for (const Entry& entry : entries) {
        tags << entry.tag;
    }
    tags.sort();
    return tags;
}

QString outputOf(const QString& program, const QString& option)
{
    QProcess process;
    process.start(program, {option});
    const bool ended =
        QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; }, 60000);
    if (!ended || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        return QString();
    }
    return QString::fromUtf8(process.readAllStandardOutput());
}

/// The options that the program's help lists, as a man page writes them.
QStringList optionsOf(const QString& help)
{
    static const QRegularExpression line("^  (-.*?)(?:  .*)?$",
                                         QRegularExpression::MultilineOption);
    QStringList options;
    auto lines = line.globalMatch(help);
    while (lines.hasNext()) {
        options << lines.next().captured(1).remove('<').remove('>').trimmed();
    }
    options.sort();
    return options;
}

/// The values of the enum ExitCode in a header.
QStringList exitCodesOf(const QString& header)
{
    static const QRegularExpression body("enum ExitCode[^{]*\\{([^}]*)\\}");
    static const QRegularExpression enumerator("^\\s*(\\w+)(?: = (\\d+))?,?\\s*(?:///<.*)?$");
    QStringList codes;
    for (const QString& line : body.match(header).captured(1).split('\n', Qt::SkipEmptyParts)) {
        const QRegularExpressionMatch match = enumerator.match(line);
        if (match.hasMatch()) {
            codes << (match.captured(2).isEmpty() ? match.captured(1) : match.captured(2));
        }
    }
    codes.sort();
    return codes;
}

QByteArray difference(const QString& what, const QStringList& program, const QStringList& page)
{
    QStringList lines;
    for (const QString& name : program) {
        if (!page.contains(name)) {
            lines << QString("the page lacks the %1 \"%2\"").arg(what, name);
        }
    }
    for (const QString& name : page) {
        if (!program.contains(name)) {
            lines << QString("the program has no %1 \"%2\"").arg(what, name);
        }
    }
    return lines.join("; ").toUtf8();
}

} // namespace

void ManPagesTest::addPrograms()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("header");
    const QString programs = PROGRAM_FOLDER;
    const QString pages = PAGE_FOLDER;
    const QString source = SOURCE_FOLDER;
    QTest::newRow("the viewer") << programs + "/corvane-viewer" << pages + "/corvane-viewer.1"
                                << source + "/viewer/batch/CommandLine.h";
    QTest::newRow("the image server")
        << programs + "/corvane-imageserver" << pages + "/corvane-imageserver.1"
        << source + "/server/ServerOptions.h";
    QTest::newRow("the plugin check")
        << programs + "/corvane-plugin-check" << pages + "/corvane-plugin-check.1"
        << source + "/pluginchecker/CheckOptions.h";
}

void ManPagesTest::theOptionsOfThePageAreThoseOfTheProgram()
{
    QFETCH(QString, program);
    QFETCH(QString, page);

    const QStringList options = optionsOf(outputOf(program, "--help"));
    QVERIFY(options.contains("-h, --help"));
    const QStringList tags = tagsOf(entriesOf(contentOf(page), "OPTIONS"));
    const QByteArray differences = difference("option", options, tags);
    QVERIFY2(differences.isEmpty(), differences.constData());
    QCOMPARE(tags, options); // each of them once
}

void ManPagesTest::everyOptionIsExplained()
{
    QFETCH(QString, page);

    const QVector<Entry> entries = entriesOf(contentOf(page), "OPTIONS");
    QVERIFY(!entries.isEmpty());
    for (const Entry& entry : entries) {
        QVERIFY2(entry.text.size() > 10, qPrintable(entry.tag));
    }
}

void ManPagesTest::theExitStatusesOfThePageAreThoseOfTheProgram()
{
    QFETCH(QString, page);
    QFETCH(QString, header);

    const QStringList codes = exitCodesOf(contentOf(header));
    QVERIFY(codes.contains("0"));
    const QStringList tags = tagsOf(entriesOf(contentOf(page), "EXIT STATUS"));
    const QByteArray differences = difference("exit code", codes, tags);
    QVERIFY2(differences.isEmpty(), differences.constData());
    QCOMPARE(tags, codes);
}

void ManPagesTest::theLimitsOfTheHelpStandOnThePage()
{
    QFETCH(QString, program);
    QFETCH(QString, page);

    static const QRegularExpression limit("\\b[0-9]+ [KMGT]?B\\b");
    const QString help = outputOf(program, "--help");
    QVERIFY(!help.isEmpty());
    const QString text = contentOf(page);
    auto limits = limit.globalMatch(help);
    while (limits.hasNext()) {
        const QString bytes = limits.next().captured();
        QVERIFY2(text.contains(bytes), qPrintable(bytes));
    }
}

void ManPagesTest::whatEndsTheImageServerLateStandsOnThePage()
{
    const QString help = outputOf(PROGRAM_FOLDER "/corvane-imageserver", "--help");
    QVERIFY(help.simplified().contains("3 when the address cannot be listened on, or no longer."));
    const QString page = contentOf(PAGE_FOLDER "/corvane-imageserver.1");
    for (const Entry& entry : entriesOf(page, "EXIT STATUS")) {
        const bool tells = entry.text.startsWith("The address cannot be listened on, or no longer");
        QCOMPARE(tells, entry.tag == "3");
    }
}

void ManPagesTest::thePageNamesItsProgramAndTheVersion()
{
    QFETCH(QString, program);
    QFETCH(QString, page);

    const QString name = program.section('/', -1);
    const QString text = contentOf(page).replace("\\-", "-");
    QVERIFY2(text.startsWith(".TH " + name.toUpper() + " 1 \""), qPrintable(text.left(80)));
    QVERIFY(text.contains("\n.SH NAME\n" + name + " - "));
    const QString heading = text.section('\n', 0, 0);
    QVERIFY2(heading.contains("\"Corvane " PROJECT_VERSION "\""), qPrintable(heading));
}

QTEST_GUILESS_MAIN(ManPagesTest)
#include "ManPagesTest.moc"
