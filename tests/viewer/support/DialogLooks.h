#pragma once

#include <QObject>
#include <QStringList>

#include <functional>

class QDialog;
class QWidget;

namespace Corvane::Tests {

/// Looks at each dialog that comes up, whoever shows it and whether that blocks, page by page; then
/// closes it.
class DialogLooks : public QObject
{
public:
    using Check = std::function<QStringList(const QWidget& widget)>;

    explicit DialogLooks(Check check);

    QStringList complaints;
    QStringList seen;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void look(QDialog& dialog);
    void note(const QString& where, const QWidget& widget);

    Check check;
};

/// Triggers every command of the window but those that close something or fill the screen.
void triggerDialogs(QWidget& window);

} // namespace Corvane::Tests
