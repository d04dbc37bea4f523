#include "DialogLooks.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QListWidget>
#include <QPointer>
#include <QTabWidget>
#include <QTimer>

#include <utility>

namespace Corvane::Tests {

DialogLooks::DialogLooks(Check newCheck) : check(std::move(newCheck))
{
    qApp->installEventFilter(this);
}

bool DialogLooks::eventFilter(QObject* object, QEvent* event)
{
    auto* const dialog = qobject_cast<QDialog*>(object);
    if (dialog && event->type() == QEvent::Show) {
        const QPointer<QDialog> shown(dialog);
        QTimer::singleShot(0, this, [this, shown] {
            if (shown) {
                look(*shown);
                shown->close();
            }
        });
    }
    return false;
}

// Qt's own dialogs are in its own words.
void DialogLooks::look(QDialog& dialog)
{
    const QString name =
        QString("%1 %2").arg(dialog.metaObject()->className(), dialog.objectName());
    seen << name;
    if (QByteArray(dialog.metaObject()->className()).startsWith('Q') &&
        !dialog.inherits("QMessageBox") && !dialog.inherits("QProgressDialog"))
    {
        return;
    }
    QCoreApplication::sendPostedEvents(); // lays out
    note(name, dialog);
    for (QTabWidget* tabs : dialog.findChildren<QTabWidget*>()) {
        for (int i = 0; i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            QCoreApplication::sendPostedEvents();
            note(name + " tab " + QString::number(i), dialog);
        }
    }
    for (QListWidget* list : dialog.findChildren<QListWidget*>("pagesListWidget")) {
        for (int i = 0; i < list->count(); ++i) {
            list->setCurrentRow(i);
            QCoreApplication::sendPostedEvents();
            note(name + " page " + QString::number(i), dialog);
        }
    }
}

void DialogLooks::note(const QString& where, const QWidget& widget)
{
    for (const QString& complaint : check(widget)) {
        complaints << where + ": " + complaint;
    }
}

void triggerDialogs(QWidget& window)
{
    const QStringList leaving = {"actionQuit", "actionClose", "actionCloseAll",
                                 "actionFullScreenMap", "actionFullScreen"};
    for (QAction* command : window.findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!command->objectName().isEmpty() && command->isEnabled() && !command->menu() &&
            !leaving.contains(command->objectName()))
        {
            command->trigger();
            QCoreApplication::processEvents();
        }
    }
}

} // namespace Corvane::Tests
