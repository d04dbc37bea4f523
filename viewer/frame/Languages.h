#pragma once

#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QTranslator>

namespace Corvane::Viewer {

/// A language that the program speaks.
struct Language
{
    QString code;   ///< as in file names of translations: "de"
    QString name;   ///< in itself: "Deutsch"
    QString folder; ///< of its menus and tool bars: "german"
};

/// All of them, English first.
QList<Language> languages();
/// The code that the user chose; empty for that of the desktop.
QString chosenLanguage();
/// Takes effect with the next start.
void chooseLanguage(const QString& code);
/// What the program speaks in this run: the choice, else the desktop's language, else English.
Language spokenLanguage();

/// The translations into the spoken language, those of Qt's own texts among them; they hold for as
/// long as they are kept. Before the first window.
QList<QSharedPointer<QTranslator>> loadTranslations();

} // namespace Corvane::Viewer
