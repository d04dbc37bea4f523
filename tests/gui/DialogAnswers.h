#pragma once

#include <QList>
#include <QObject>
#include <QStringList>

#include <functional>

class QColor;
class QDialog;
class QMenu;
class QMessageBox;

namespace Corvane::Tests {

/// Answers dialogs and menus that block the test, one after the other, as a user would, from within
/// their own event loops. One that nobody expects is written down and closed, so that a test ends.
/// One at a time.
class DialogAnswers : public QObject
{
    Q_OBJECT
public:
    DialogAnswers();
    ~DialogAnswers() override;

    /// The next dialog is handed to answer, which has to close it.
    void expect(std::function<void(QDialog&)> answer);
    /// The next menu is handed to answer; it is closed afterwards.
    void expectMenu(std::function<void(QMenu&)> answer);
    /// The next dialog is a message box: its button with this text is clicked.
    void expectMessage(const QString& button = QStringLiteral("OK"));
    /// The next dialog chooses a colour: this one is taken, or the dialog cancelled if it is invalid.
    void expectColor(const QColor& color);

    /// What was shown, in order: message boxes as "critical Title: text [OK] on parentName", colour
    /// dialogs as "color #aarrggbb Title on parentName", menus as "menu", other dialogs as "dialog Title".
    QStringList shown;
    /// Whether everything that was expected has come.
    bool isDone() const { return dialogAnswers.isEmpty() && menuAnswers.isEmpty(); }

    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void answerDialog(QDialog* dialog);
    void answerMenu(QMenu* menu);

    QList<std::function<void(QDialog&)>> dialogAnswers;
    QList<std::function<void(QMenu&)>> menuAnswers;
};

} // namespace Corvane::Tests
