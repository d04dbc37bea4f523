#pragma once

#include <QDialog>

class QComboBox;
class QDialogButtonBox;
class QLabel;

namespace Corvane::Viewer {

/// Asks for an address to open: of an image, tiles or a map on a server. Proposes those that were
/// opened before, which are kept without user names and keys. GUI thread only.
class OpenAddressDialog : public QDialog
{
    Q_OBJECT
public:
    /// Deletes itself when it is closed.
    explicit OpenAddressDialog(QWidget* parent);

    void accept() override;

signals:
    void chosen(const QString& address);

private:
    QString address() const;
    void look();
    void keep(const QString& chosenAddress) const;

    QComboBox* edit;
    QLabel* hint;
    QDialogButtonBox* buttons;
};

} // namespace Corvane::Viewer
