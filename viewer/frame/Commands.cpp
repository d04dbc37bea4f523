#include <viewer/frame/Commands.h>

#include <QAction>
#include <QWidget>

namespace Corvane::Viewer {

QAction* addCommand(QWidget* window, const QString& name, const std::function<void()>& effect)
{
    auto* const command = new QAction(window);
    command->setObjectName(name);
    QObject::connect(command, &QAction::triggered, command, effect);
    return command;
}

QAction* addSwitch(QWidget* window, const QString& name, const std::function<void(bool)>& effect)
{
    auto* const command = new QAction(window);
    command->setObjectName(name);
    command->setCheckable(true);
    QObject::connect(command, &QAction::triggered, command, effect);
    return command;
}

} // namespace Corvane::Viewer
