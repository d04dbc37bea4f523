#include <viewer/frame/Languages.h>

#include <corvane/core/Application.h>

#include <QLibraryInfo>
#include <QLocale>
#include <QSettings>

namespace Corvane::Viewer {
namespace {

const char* const languageKey = "Viewer/language";
const char* const english = "en";

} // namespace

QList<Language> languages()
{
    return {{english, "English", "english"}, {"de", "Deutsch", "german"}};
}

QString chosenLanguage()
{
    return Application::instance()->getSettings()->value(languageKey).toString();
}

void chooseLanguage(const QString& code)
{
    Application::instance()->getSettings()->setValue(languageKey, code);
}

Language spokenLanguage()
{
    const QString chosen = chosenLanguage();
    const QString wanted = chosen.isEmpty() ? QLocale::system().name().section('_', 0, 0) : chosen;
    for (const Language& language : languages()) {
        if (language.code == wanted) {
            return language;
        }
    }
    return languages().first();
}

// The texts in the sources are English, but for their plurals. Numbers and dates stay those of the
// desktop's country where its language is the one that is spoken.
QList<QSharedPointer<QTranslator>> loadTranslations()
{
    const QString code = spokenLanguage().code;
    const QLocale desktop = QLocale::system();
    const QLocale locale = desktop.name().startsWith(code) ? desktop : QLocale(code);
    QList<QSharedPointer<QTranslator>> translations;
    const auto ofQt = QSharedPointer<QTranslator>::create();
    if (ofQt->load("qtbase_" + code, QLibraryInfo::location(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(ofQt.get());
        translations << ofQt;
    }
    translations << Application::instance()->initializeTranslations(
        {"corvane", "corvane-viewer", "corvane-plugins"}, code);
    QLocale::setDefault(locale);
    return translations;
}

} // namespace Corvane::Viewer
