#include <viewer/frame/CommandKeys.h>

#include <corvane/core/Application.h>

#include <QAction>
#include <QSettings>
#include <QWidget>

#include <algorithm>

namespace Corvane::Viewer {
namespace {

QString keyOf(const QAction* command)
{
    return "Viewer/Shortcuts/" + command->objectName();
}

QStringList textsOf(const QList<QKeySequence>& keys)
{
    QStringList texts;
    for (const QKeySequence& key : keys) {
        texts << key.toString(QKeySequence::PortableText);
    }
    return texts;
}

QList<QKeySequence> keysOf(const QStringList& texts)
{
    QList<QKeySequence> keys;
    for (const QString& text : texts) {
        const QKeySequence key(text, QKeySequence::PortableText);
        if (!key.isEmpty()) {
            keys << key;
        }
    }
    return keys;
}

} // namespace

CommandKeys::CommandKeys(QWidget* newWindow) : QObject(newWindow), window(newWindow) {}

void CommandKeys::takeOver()
{
    const QSettings* settings = Application::instance()->getSettings();
    for (QAction* command : getCommands()) {
        usual.insert(command, command->shortcuts());
        if (settings->contains(keyOf(command))) {
            command->setShortcuts(keysOf(settings->value(keyOf(command)).toStringList()));
        }
    }
}

QList<QAction*> CommandKeys::getCommands() const
{
    QList<QAction*> commands;
    for (QAction* action : window->findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!action->objectName().isEmpty() && !action->text().isEmpty()) {
            commands << action;
        }
    }
    std::stable_sort(commands.begin(), commands.end(),
                     [](const QAction* one, const QAction* other) {
                         return QString::localeAwareCompare(nameOf(one), nameOf(other)) < 0;
                     });
    return commands;
}

QList<QKeySequence> CommandKeys::usualKeysOf(const QAction* command) const
{
    return usual.value(command);
}

void CommandKeys::setKeys(QAction* command, const QList<QKeySequence>& keys)
{
    command->setShortcuts(keys);
    QSettings* settings = Application::instance()->getSettings();
    if (keys == usualKeysOf(command)) {
        settings->remove(keyOf(command));
    } else {
        settings->setValue(keyOf(command), textsOf(keys));
    }
}

QString CommandKeys::nameOf(const QAction* command)
{
    QString name = command->text();
    name.replace("&&", "\n"); // an ampersand that is meant
    name.remove('&').replace('\n', '&');
    while (name.endsWith('.') || name.endsWith(QChar(0x2026))) {
        name.chop(1);
    }
    return name;
}

} // namespace Corvane::Viewer
