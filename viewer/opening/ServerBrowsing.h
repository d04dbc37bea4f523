#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

class QAbstractButton;
class QWidget;

namespace Corvane::Gui {
class ZWTPBrowser;
}

namespace Corvane::Viewer {

/// Lets the user choose images of an image server, in one dialog beside the maps. Add, a double
/// click and Ok each choose the image that is shown there. GUI thread only.
class ServerBrowsing : public QObject
{
    Q_OBJECT
public:
    /// The dialog stands over the window, which also owns this.
    explicit ServerBrowsing(QWidget* window);

    /// Shows the dialog, or brings it to the front.
    void browse();

    /// What a layer opens of the URL of an image: in a streaming scheme, which leaves no doubt that an
    /// image server is meant, with "|user|password" behind it where both are given. A text that is no
    /// such URL stays as it is.
    static QString sourceOf(const QString& url, const QString& user, const QString& password);

signals:
    /// The source may hold credentials: it is for opening, not for showing or storing.
    void chosen(const QString& source);

private:
    void onUrlSelected(const QString& url);
    void onAccepted();

    QWidget* window; // not owned
    QPointer<Gui::ZWTPBrowser> browser;
    QString lastUrl;        // chosen in this dialog
    bool okPressed = false; // the last button, other than Close
};

} // namespace Corvane::Viewer
