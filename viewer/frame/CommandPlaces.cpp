#include <viewer/frame/CommandPlaces.h>

#include <corvane/core/Application.h>
#include <corvane/gui/MainWindow.h>

#include <QAction>
#include <QDateTime>
#include <QDomDocument>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

namespace Corvane::Viewer {
namespace {

const char* const functionAttribute = "function";

QList<QAction*> ownActions(const Gui::MainWindow& window)
{
    return window.findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly);
}

QList<QToolBar*> toolBars(const Gui::MainWindow& window)
{
    return window.findChildren<QToolBar*>(QString(), Qt::FindDirectChildrenOnly);
}

/// The root of a file that the window has read already.
QDomElement readRoot(const QString& fileName, QDomDocument* document)
{
    QFile file(fileName);
    if (file.open(QIODevice::ReadOnly)) {
        document->setContent(&file);
    }
    return document->documentElement();
}

QString titleOf(const QWidget& widget)
{
    const auto* const menu = qobject_cast<const QMenu*>(&widget);
    return menu ? menu->title() : widget.windowTitle();
}

QList<QDomElement> childrenOf(const QDomElement& parent)
{
    QList<QDomElement> children;
    for (QDomElement child = parent.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
    {
        children << child;
    }
    return children;
}

} // namespace

CommandPlaces::CommandPlaces(Gui::MainWindow* newWindow) : window(newWindow)
{
    for (QAction* action : ownActions(*window)) {
        if (!action->objectName().isEmpty()) {
            offer(action->objectName(), {action});
        }
    }
}

void CommandPlaces::offer(const QString& function, const QList<QAction*>& actions)
{
    commands.insert(function, actions);
}

// The window makes one action for each element; they stand nowhere and are there to be asked.
bool CommandPlaces::readActions(QString fileName)
{
    const int before = ownActions(*window).size();
    if (!window->loadActions(fileName)) {
        return false;
    }
    QList<QAction*> made = ownActions(*window).mid(before);
    QDomDocument document;
    for (const QDomElement& child : childrenOf(readRoot(fileName, &document))) {
        if (child.tagName() == "action" && !made.isEmpty()) {
            const QAction* entry = made.takeFirst();
            for (QAction* command : commands.value(child.attribute(functionAttribute))) {
                takeLook(child, *entry, command);
            }
        }
    }
    return true;
}

bool CommandPlaces::buildMenus(QString fileName, QList<QMenu*>* menus)
{
    const int before = window->menuBar()->actions().size();
    if (!window->buildMenuBar(fileName, window->menuBar())) {
        return false;
    }
    QList<QAction*> made = window->menuBar()->actions().mid(before);
    QDomDocument document;
    for (const QDomElement& child : childrenOf(readRoot(fileName, &document))) {
        if (child.tagName() != "menu") {
            continue;
        }
        if (child.attribute("name") == "Window") {
            menus->append(nullptr);
        } else if (!made.isEmpty()) {
            menus->append(made.takeFirst()->menu());
            fillPlaces(child, menus->last());
        }
    }
    return true;
}

bool CommandPlaces::buildToolBars(QString fileName)
{
    const int before = toolBars(*window).size();
    if (!window->buildToolBars(fileName)) {
        return false;
    }
    QList<QToolBar*> made = toolBars(*window).mid(before);
    QDomDocument document;
    for (const QDomElement& child : childrenOf(readRoot(fileName, &document))) {
        if (child.tagName() == "toolbar" && !made.isEmpty()) {
            fillPlaces(child, made.takeFirst());
        }
    }
    return true;
}

/// The widget holds one entry for each child that is an action, a separator or a sub-menu.
void CommandPlaces::fillPlaces(const QDomElement& element, QWidget* widget)
{
    QList<QAction*> entries = widget->actions();
    const bool isMenu = qobject_cast<QMenu*>(widget) != nullptr;
    for (const QDomElement& child : childrenOf(element)) {
        if (entries.isEmpty()) {
            return;
        }
        if (child.tagName() == "action") {
            fillPlace(child, widget, entries.takeFirst());
        } else if (child.tagName() == "separator") {
            entries.removeFirst();
        } else if (child.tagName() == "menu" && isMenu) {
            QMenu* const subMenu = entries.takeFirst()->menu();
            subMenu->setParent(widget,
                               subMenu->windowFlags()); // made without one: nobody else deletes it
            fillPlaces(child, subMenu);
        }
    }
}

/// An entry that names no command would do nothing, and goes.
void CommandPlaces::fillPlace(const QDomElement& element, QWidget* widget, QAction* entry)
{
    const QString function = element.attribute(functionAttribute);
    if (!commands.contains(function)) {
        Application::logMessage(
            QString("left out of '%1': there is no command '%2'").arg(titleOf(*widget), function),
            Warning, QDateTime::currentDateTime());
    }
    for (QAction* command : commands.value(function)) {
        takeLook(element, *entry, command);
        widget->insertAction(entry, command);
    }
    widget->removeAction(entry);
    delete entry;
}

void CommandPlaces::takeLook(const QDomElement& element, const QAction& entry, QAction* command)
{
    if (!entry.text().isEmpty()) {
        command->setText(entry.text());
    }
    if (element.hasAttribute("icon")) {
        command->setIcon(entry.icon());
    }
    if (element.hasAttribute("tooltip")) {
        command->setToolTip(entry.toolTip());
    }
    if (element.hasAttribute("shortcut")) {
        command->setShortcut(entry.shortcut());
    }
}

} // namespace Corvane::Viewer
