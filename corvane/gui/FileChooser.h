#pragma once

#include <corvane/core/Export.h>

#include <QFileDialog>
#include <QString>

namespace Corvane {

/// The open-file dialog with its own side bar and image filters. It remembers its size, its place
/// and the last filter. For host programs and plugins; GUI thread only.
class CORVANE_EXPORT FileChooser : public QFileDialog
{
    Q_OBJECT
public:
    /// directory, where it is given, wins over what the dialog remembers.
    explicit FileChooser(QWidget* parent = nullptr, const QString& caption = QString(),
                         const QString& directory = QString(), const QString& filter = QString(),
                         bool showPreview = false);
    ~FileChooser() override; ///< stores the dialog in the settings

    /// Asks for one existing file and blocks until the user has answered. file is where to start,
    /// it may be empty. The path; null when the user cancelled.
    static QString getOpenFileName(QWidget* parent, QString file);

private:
    void setSideBar();

    static bool m_bShowFilePreview; // of the dialog made last
    static QString m_sLastRasterFilter;
    // One for each further kind of file that is to have a dialog of its own.
    static QString m_sLastGenericFilter;
    static QString m_sLastScriptFilter;
    static QString m_sLastVectorFilter;
};

} // namespace Corvane
