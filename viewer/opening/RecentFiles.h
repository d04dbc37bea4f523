#pragma once

#include <QObject>
#include <QStringList>

class QMenu;

namespace Corvane::Viewer {

/// The files, maps and addresses that were opened last, in a menu and in the settings. Never asks
/// whether a file is there: it may lie on a disk that does not answer. GUI thread only.
class RecentFiles : public QObject
{
    Q_OBJECT
public:
    explicit RecentFiles(QWidget* owner);

    /// A menu of the list, which follows it; the owner's.
    QMenu* getMenu() const;
    /// Puts the source first. One that gives access is not kept.
    void add(const QString& source);
    /// The source could not be opened: the user may want it off the list.
    void offerToRemove(const QString& source);
    void remove(const QString& source);
    /// The latest first.
    static QStringList list();

signals:
    void chosen(const QString& source);

private:
    void fillMenu();
    void store(const QStringList& sources);

    QMenu* menu;
};

} // namespace Corvane::Viewer
