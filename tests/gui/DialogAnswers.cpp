#include "DialogAnswers.h"

#include <QAbstractButton>
#include <QApplication>
#include <QColorDialog>
#include <QEvent>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QtTest>

#include <utility>

namespace Corvane::Tests {
namespace {

QString placeOf(const QDialog& dialog)
{
    const QWidget* const parent = dialog.parentWidget();
    return parent ? QStringLiteral("on ") + parent->objectName() : QStringLiteral("without parent");
}

QString nameOf(QMessageBox::Icon icon)
{
    switch (icon) {
    case QMessageBox::Information:
        return QStringLiteral("information");
    case QMessageBox::Warning:
        return QStringLiteral("warning");
    case QMessageBox::Critical:
        return QStringLiteral("critical");
    case QMessageBox::Question:
        return QStringLiteral("question");
    case QMessageBox::NoIcon:
        break;
    }
    return QStringLiteral("plain");
}

QString plain(QString text)
{
    return text.remove(QLatin1Char('&'));
}

QString describe(QDialog& dialog)
{
    const QString place = placeOf(dialog);
    if (const auto* const box = qobject_cast<QMessageBox*>(&dialog)) {
        QStringList buttons;
        for (const QAbstractButton* button : box->buttons()) {
            buttons << plain(button->text());
        }
        return QStringLiteral("%1 %2: %3 [%4] %5")
            .arg(nameOf(box->icon()), box->windowTitle(), box->text(),
                 buttons.join(QLatin1String(", ")), place);
    }
    if (const auto* const colors = qobject_cast<QColorDialog*>(&dialog)) {
        return QStringLiteral("color %1 %2 %3")
            .arg(colors->currentColor().name(QColor::HexArgb), dialog.windowTitle(), place);
    }
    return QStringLiteral("dialog ") + dialog.windowTitle();
}

} // namespace

DialogAnswers::DialogAnswers()
{
    qApp->installEventFilter(this);
}

DialogAnswers::~DialogAnswers()
{
    qApp->removeEventFilter(this);
}

void DialogAnswers::expect(std::function<void(QDialog&)> answer)
{
    dialogAnswers << std::move(answer);
}

void DialogAnswers::expectMenu(std::function<void(QMenu&)> answer)
{
    menuAnswers << std::move(answer);
}

void DialogAnswers::expectMessage(const QString& button)
{
    expect([button](QDialog& dialog) {
        if (const auto* const box = qobject_cast<QMessageBox*>(&dialog)) {
            for (QAbstractButton* candidate : box->buttons()) {
                if (plain(candidate->text()) == button) {
                    QTest::mouseClick(candidate, Qt::LeftButton);
                    return;
                }
            }
        }
        dialog.reject();
    });
}

void DialogAnswers::expectColor(const QColor& color)
{
    expect([color](QDialog& dialog) {
        auto* const colors = qobject_cast<QColorDialog*>(&dialog);
        if (colors && color.isValid()) {
            colors->setCurrentColor(color);
            colors->accept();
        } else {
            dialog.reject();
        }
    });
}

// The answer comes later, when the dialog's own event loop runs.
bool DialogAnswers::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Show) {
        if (auto* const dialog = qobject_cast<QDialog*>(object)) {
            if (dialog->isModal()) {
                const QPointer<QDialog> shownDialog(dialog);
                QMetaObject::invokeMethod(
                    this,
                    [this, shownDialog] {
                        if (shownDialog) {
                            answerDialog(shownDialog);
                        }
                    },
                    Qt::QueuedConnection);
            }
        } else if (auto* const menu = qobject_cast<QMenu*>(object)) {
            const QPointer<QMenu> shownMenu(menu);
            QMetaObject::invokeMethod(
                this,
                [this, shownMenu] {
                    if (shownMenu) {
                        answerMenu(shownMenu);
                    }
                },
                Qt::QueuedConnection);
        }
    }
    return QObject::eventFilter(object, event);
}

void DialogAnswers::answerDialog(QDialog* dialog)
{
    shown << describe(*dialog);
    if (dialogAnswers.isEmpty()) {
        dialog->reject();
    } else {
        dialogAnswers.takeFirst()(*dialog);
    }
}

void DialogAnswers::answerMenu(QMenu* menu)
{
    shown << QStringLiteral("menu");
    const QPointer<QMenu> guard(menu);
    if (!menuAnswers.isEmpty()) {
        menuAnswers.takeFirst()(*menu);
    }
    if (guard) {
        guard->close();
    }
}

} // namespace Corvane::Tests
