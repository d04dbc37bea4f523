#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QtTest>

namespace {

const QDir tree(QStringLiteral(SOURCE_FOLDER));

QString contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList pages()
{
    QStringList found = {tree.filePath("README.md"), tree.filePath("CONTRIBUTING.md"),
                         tree.filePath("CHANGELOG.md")};
    for (const QString& name : QDir(tree.filePath("docs")).entryList({"*.md"})) {
        found << tree.filePath("docs/" + name);
    }
    return found;
}

/// The anchor that a heading gets where pages are shown.
QString anchorOf(const QString& heading)
{
    QString anchor = heading.toLower().trimmed();
    anchor.remove(QRegularExpression("[^\\w\\- ]", QRegularExpression::UseUnicodePropertiesOption));
    return anchor.replace(' ', '-');
}

QStringList anchorsOf(const QString& page)
{
    QStringList anchors;
    static const QRegularExpression heading("^#+ +(.+)$", QRegularExpression::MultilineOption);
    auto headings = heading.globalMatch(contentOf(page));
    while (headings.hasNext()) {
        anchors << anchorOf(headings.next().captured(1));
    }
    return anchors;
}

} // namespace

/// The pages of the documentation against the tree that they tell of.
class PagesTest : public QObject
{
    Q_OBJECT
private slots:
    void linksLeadSomewhere();
    void codeIsThatOfTheExamples();
};

void PagesTest::linksLeadSomewhere()
{
    static const QRegularExpression link("\\]\\(([^)\\s]+)\\)");
    QStringList broken;
    int count = 0;
    for (const QString& page : pages()) {
        auto links = link.globalMatch(contentOf(page));
        while (links.hasNext()) {
            const QString target = links.next().captured(1);
            if (target.contains("://") || target.startsWith("mailto:")) {
                continue;
            }
            ++count;
            const QString file = target.section('#', 0, 0);
            const QString anchor = target.section('#', 1);
            const QString path =
                file.isEmpty() ? page : QFileInfo(page).dir().absoluteFilePath(file);
            const bool isThere =
                QFileInfo::exists(path) && (anchor.isEmpty() || anchorsOf(path).contains(anchor));
            if (!isThere) {
                broken << QFileInfo(page).fileName() + ": " + target;
            }
        }
    }
    QCOMPARE(broken, QStringList());
    QVERIFY(count > 10);
}

/// A block that begins with the name of a file is a part of it.
void PagesTest::codeIsThatOfTheExamples()
{
    static const QRegularExpression block("```\\w+\\n(?://|#) (examples/\\S+)\\n(.*?)\\n```",
                                          QRegularExpression::DotMatchesEverythingOption);
    auto blocks = block.globalMatch(contentOf(tree.filePath("docs/developer-guide.md")));
    int count = 0;
    while (blocks.hasNext()) {
        const QRegularExpressionMatch match = blocks.next();
        const QString file = contentOf(tree.filePath(match.captured(1)));
        QVERIFY2(file.contains(match.captured(2).trimmed()), qPrintable(match.captured(1)));
        ++count;
    }
    QVERIFY(count >= 4);
}

QTEST_GUILESS_MAIN(PagesTest)
#include "PagesTest.moc"
