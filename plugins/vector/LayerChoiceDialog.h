#pragma once

#include <QDialog>
#include <QStringList>

class QListWidget;

namespace Corvane::Map {

/// Asks which layers of a source are to be added. GUI thread only.
class LayerChoiceDialog : public QDialog
{
    Q_OBJECT
public:
    /// source: its name for people. The first layer is chosen.
    LayerChoiceDialog(const QString& source, const QStringList& layers, QWidget* parent);

    /// In the order of the source; at least one once the dialog is accepted.
    QStringList getChosen() const;

private:
    QListWidget* list;
};

} // namespace Corvane::Map
