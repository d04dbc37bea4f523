#pragma once

#include <corvane/core/Export.h>

#include <QDialog>
#include <QString>
#include <QStringList>

namespace Ui {
class KRSServerInfoClass;
}

namespace Corvane::Gui {

/// Shows what an image server says about itself; nothing in it can be edited. A text that is not set
/// stays empty. GUI thread only.
class CORVANE_EXPORT KRSServerInfo : public QDialog
{
    Q_OBJECT
public:
    /// All texts are empty. The parent owns it; it may be null.
    explicit KRSServerInfo(QWidget* parent);
    ~KRSServerInfo() override;

    /// The host that was asked.
    void setHostname(QString text);
    /// What the server calls itself.
    void setTitle(QString text);
    /// The version of its program.
    void setBuild(QString text);
    /// Lists are shown in one line, with commas between.
    void setKeyWords(QStringList texts);
    /// Other names of the server, in one line.
    void setServerAliases(QStringList texts);
    /// Where to read more.
    void setOnlineResource(QString text);
    /// The picture formats that it sends, in one line.
    void setFormats(QStringList texts);
    /// Plain or rich text.
    void setAbstract(QString text);
    /// Whom to ask.
    void setContactInfo(QString text);

private:
    Ui::KRSServerInfoClass* ui; // owned
};

} // namespace Corvane::Gui
