#include <viewer/frame/Languages.h>
#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QDir>
#include <QDockWidget>
#include <QDomDocument>
#include <QFile>
#include <QMenuBar>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Viewer;

namespace {

const QDir tree(QStringLiteral(SOURCE_FOLDER));

QString contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QDomElement rootOf(const QString& path)
{
    QDomDocument document;
    document.setContent(contentOf(path));
    return document.documentElement();
}

/// What stands in a file of the configuration, but for its texts: a line for each element.
QStringList skeletonOf(const QDomElement& element, int depth = 0)
{
    QStringList lines;
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
    {
        lines << QString(depth, ' ') + child.tagName() + ' ' + child.attribute("function") + ' ' +
                     child.attribute("icon") + ' ' + child.attribute("shortcut");
        lines << skeletonOf(child, depth + 1);
    }
    return lines;
}

/// The places of a text, sorted: "%1", "%n".
QStringList placesOf(const QString& text)
{
    QStringList places;
    auto matches = QRegularExpression("%(?:\\d+|n)").globalMatch(text);
    while (matches.hasNext()) {
        places << matches.next().captured();
    }
    places.removeDuplicates();
    places.sort();
    return places;
}

QStringList translationFiles()
{
    return QDir(tree.filePath("translations")).entryList({"*.ts"});
}

} // namespace

/// The program in other words than those of its sources.
class LanguagesTest : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void everyTextIsTranslated();
    void translationsKeepThePlacesOfNumbers();
    void menusAndToolBarsAreTheSameInAllLanguages_data();
    void menusAndToolBarsAreTheSameInAllLanguages();

    void theWindowSpeaksGerman();
    void pluralsAreRight_data();
    void pluralsAreRight();

private:
    static QSettings* settings() { return Application::instance()->getSettings(); }
};

void LanguagesTest::init()
{
    settings()->clear();
}

/// Nothing changes when the translations are brought up to date, and nothing is unfinished.
void LanguagesTest::everyTextIsTranslated()
{
    QTemporaryDir folder;
    for (const QString& name : translationFiles()) {
        QVERIFY(QFile::copy(tree.filePath("translations/" + name), folder.filePath(name)));
    }
    QProcess update;
    update.start(tree.filePath("scripts/translations.sh"), {folder.path()});
    QVERIFY(update.waitForFinished(-1));
    QCOMPARE(update.exitCode(), 0);
    for (const QString& name : translationFiles()) {
        const QString now = contentOf(folder.filePath(name));
        QVERIFY2(!now.contains("unfinished"), qPrintable(name + ": scripts/translations.sh"));
        QCOMPARE(now, contentOf(tree.filePath("translations/" + name)));
    }
}

void LanguagesTest::translationsKeepThePlacesOfNumbers()
{
    int count = 0;
    for (const QString& name : translationFiles()) {
        const QDomNodeList messages =
            rootOf(tree.filePath("translations/" + name)).elementsByTagName("message");
        for (int i = 0; i < messages.size(); ++i) {
            const QDomElement message = messages.at(i).toElement();
            const QString source = message.firstChildElement("source").text();
            const QDomElement translation = message.firstChildElement("translation");
            const QDomNodeList forms = translation.elementsByTagName("numerusform");
            for (int form = 0; form < forms.size(); ++form) {
                QCOMPARE(placesOf(forms.at(form).toElement().text()), placesOf(source));
            }
            if (forms.isEmpty()) {
                QCOMPARE(placesOf(translation.text()), placesOf(source));
            }
            ++count;
        }
    }
    QVERIFY(count > 500);
}

void LanguagesTest::menusAndToolBarsAreTheSameInAllLanguages_data()
{
    QTest::addColumn<QString>("file");
    for (const char* file : {"actions.xml", "menus.xml", "toolbars.xml"}) {
        QTest::newRow(file) << QString(file);
    }
}

void LanguagesTest::menusAndToolBarsAreTheSameInAllLanguages()
{
    QFETCH(QString, file);
    const QStringList english = skeletonOf(rootOf(tree.filePath("viewer/config/english/" + file)));
    QVERIFY(!english.isEmpty());
    for (const Language& language : languages()) {
        QCOMPARE(skeletonOf(rootOf(tree.filePath("viewer/config/" + language.folder + '/' + file))),
                 english);
    }
}

void LanguagesTest::theWindowSpeaksGerman()
{
    chooseLanguage("de");
    const auto translations = loadTranslations();
    QVERIFY(!translations.isEmpty());
    QCOMPARE(QLocale().language(), QLocale::German);
    const ViewerWindow window;
    QStringList menus;
    for (const QAction* menu : window.menuBar()->actions()) {
        menus << menu->text();
    }
    QCOMPARE(menus, QStringList(
                        {"&Datei", "&Bearbeiten", "&Ansicht", "&Werkzeuge", "&Fenster", "&Hilfe"}));
    QCOMPARE(window.findChild<QDockWidget*>("layersDock")->windowTitle(), QString("Ebenen"));
    QCOMPARE(window.findChild<QAction*>("actionQuit")->text(), QString("Bee&nden"));
    QCOMPARE(QCoreApplication::translate("QPlatformTheme", "Cancel"), QString("Abbrechen"));
}

void LanguagesTest::pluralsAreRight_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("text");
    QTest::newRow("one, English") << "en" << 1 << "Delete 1 Layer";
    QTest::newRow("many, English") << "en" << 3 << "Delete 3 Layers";
    QTest::newRow("one, German") << "de" << 1 << QString::fromUtf8("1 Ebene löschen");
    QTest::newRow("many, German") << "de" << 3 << QString::fromUtf8("3 Ebenen löschen");
}

void LanguagesTest::pluralsAreRight()
{
    QFETCH(QString, language);
    QFETCH(int, count);
    chooseLanguage(language);
    const auto translations = loadTranslations();
    QTEST(QCoreApplication::translate("LayerSteps", "Delete %n Layer(s)", nullptr, count), "text");
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Languages Test");
    LanguagesTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "LanguagesTest.moc"
