#pragma once

#include <QDialog>
#include <QList>

class QListWidget;
class QStackedWidget;

namespace Corvane::Viewer {

/// The preferences: one page beside the other, named by their window titles. What a page shows
/// reaches its slot "apply" by Ok and Apply. GUI thread only.
class PreferencesDialog : public QDialog
{
    Q_OBJECT
public:
    /// Owns the pages.
    explicit PreferencesDialog(const QList<QWidget*>& pages, QWidget* parent = nullptr);

    void accept() override;

private:
    void addPage(QWidget* page);
    void apply();

    QListWidget* list;
    QStackedWidget* stack;
    QList<QWidget*> pages;
};

} // namespace Corvane::Viewer
