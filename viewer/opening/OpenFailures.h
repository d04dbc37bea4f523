#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>

class QMessageBox;

namespace Corvane::Viewer {

/// Tells the user which sources could not be opened: one box that lists them all, and that grows
/// while it is open. Does not wait for the answer. GUI thread only.
class OpenFailures : public QObject
{
    Q_OBJECT
public:
    /// The box stands over parent.
    explicit OpenFailures(QWidget* parent);

    void add(const QString& source, const QString& reason);

private:
    void showBox();

    QWidget* window; // not owned
    QStringList lines;
    QPointer<QMessageBox> box;
    bool isGathering = false;
};

} // namespace Corvane::Viewer
