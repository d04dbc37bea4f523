#pragma once

#include <corvane/browser/BrowserProtocol.h>
#include <corvane/core/Export.h>

#include <QAuthenticator>
#include <QByteArray>
#include <QDialog>
#include <QDomDocument>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <memory>

class QDomNode;
class QIcon;
class QNetworkAccessManager;
class QNetworkDiskCache;
class QNetworkReply;
class QSettings;
class QTreeWidgetItem;
class QUrlQuery;

namespace Ui {
class ZWTPBrowserClass;
}

namespace Corvane::Gui {

class TreeWalk;

/// Browses an image server for an image and gives its URL. Embedded it has a Close button only and
/// tells what was chosen by urlSelected; a caller that wants one URL uses getZwtpUrl.
/// Hosts and URLs are remembered in the application's settings, never with credentials.
/// GUI thread only. Without a time-out; it is disabled while it waits for the server.
class CORVANE_EXPORT ZWTPBrowser : public QDialog
{
    Q_OBJECT
public:
    /// Reads the settings; asks no server. The parent owns it.
    ZWTPBrowser(QWidget* parent, BrowserProtocol protocol);
    ~ZWTPBrowser() override; ///< stores the settings; requests under way end without a trace

    /// Shows the dialog modally. The URL that getUrl gives, or null if the user went away without one.
    static QString getZwtpUrl(QWidget* parent, BrowserProtocol protocol);

    /// The chosen URL in a streaming scheme, with "|user|password" behind it where both are filled
    /// in: whoever makes a layer of it has to split that off. Records it in the history.
    QString getUrl();
    /// The name that is filled in; empty without one.
    QString getUserName();
    /// The password that is filled in, as plain text; empty without one.
    QString getPassWord();

signals:
    /// An image was chosen with the Add button or a double click. The dialog may still be open.
    void urlSelected(const QString& url);

protected:
    /// Closes the dialog if the URL is one of this mode, and warns otherwise.
    void accept() override;

private slots:
    void serverConnect();
    void serverConnectKRS();
    void serverConnectOrivex();
    void serverInfo();
    void servicesInfo();
    void finishedServicesInfo();
    void finishedPreviewConnect();
    void finishedDsinfoConnect();
    void finishedKRSConnect();
    void finishedOrivexConnect();
    void finishedInfo();
    void krsAuthRequired(QNetworkReply* reply, QAuthenticator* authenticator);
    void onSelectItem(QTreeWidgetItem* item, int index);
    void onSelectItemAndClose(QTreeWidgetItem* item, int index);
    void onAddZWTPUrl();

private:
    QString stripUsernamePassword(QString url);
    void updateServerHistory(QUrl url);
    void updateZwtpUrlHistory(QUrl url);
    void processNode(QTreeWidgetItem* parent, QDomNode* node);
    QString getDatasetToolTip(QDomNode* node);
    bool setDatasetInfo(QByteArray& data);

    void showModeTexts();
    void makeConnections();
    void readSettings();
    void clearServices();
    void setSchemeOfMode(QUrl& url) const;
    QUrl serverUrl(const QString& path) const;
    void askDiscovery(const QUrlQuery& query, const QString& name, const QString& complaint,
                      void (ZWTPBrowser::*handler)());
    void waitFor(QNetworkReply* reply);
    /// The reply whose finished signal is being handled; null once its failure has been told.
    QNetworkReply* answeredReply();
    void endWait(QNetworkReply* reply);
    void endWaitWarning(QNetworkReply* reply, const QString& title, const QString& text);
    void makeTree(QNetworkReply* reply, const QDomDocument& answer);
    /// Takes root over.
    void showTree(QNetworkReply* reply, QTreeWidgetItem* root);
    void showInfo(QNetworkReply* reply, const QDomDocument& description);
    void showServices(QNetworkReply* reply, const QDomDocument& list);
    void readBuild(const QString& build);
    QTreeWidgetItem* newDataset(QDomNode* node, const QIcon& icon);
    bool isOffered(const QDomNode& dataset) const;
    void requestPreview(const QString& dataset);
    void requestDatasetInfo(const QString& dataset);

    Ui::ZWTPBrowserClass* ui;              // owned
    QNetworkAccessManager* networkManager; // owned
    QNetworkDiskCache* diskCache;          // of networkManager
    QDomDocument document;                 // the discovery reply while it is walked
    QSettings* settings;                   // of the application
    QStringList serverHistory;             // hosts, newest first
    QStringList zwtpUrlHistory;            // newest first, without credentials
    QStringList raxionUrlHistory;          // newest first, without credentials
    QAuthenticator authenticator;
    BrowserProtocol protocol;
    bool fromServiceCombo = false;     // the discovery under way was started by picking a service
    int serverBuild[4] = {0, 0, 0, 0}; // zeros unless the server told four numbers
    std::shared_ptr<TreeWalk> walk;    // of the last reply that held folders
};

} // namespace Corvane::Gui
