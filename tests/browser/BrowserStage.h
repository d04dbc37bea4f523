#pragma once

#include <corvane/browser/BrowserProtocol.h>
#include <corvane/browser/ZWTPBrowser.h>
#include <corvane/core/LogMessageHandler.h>
#include <tests/gui/DialogAnswers.h>
#include <tests/support/HttpTestServer.h>
#include <tests/support/MessageLines.h>

#include <QByteArray>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>

class QTreeWidget;
class QTreeWidgetItem;

namespace Corvane::Tests {

/// A discovery reply with this build and content of the root folder.
QByteArray discovery(const QByteArray& build, const QByteArray& content);
/// A dataset that offers both services.
QByteArray dataset(const QByteArray& name);
/// A reply that tells the names of services.
QByteArray serviceList(const QStringList& names);
/// Whatever mode the number stands for.
Gui::BrowserProtocol otherProtocol();
/// Whether it comes true within a minute of events.
bool comesTrue(const std::function<bool()>& condition);

/// The settings of the application, for the tests' eyes.
QSettings& settings();

/// A browser dialog with an image server on the loopback, which knows two paths until a test says
/// more: discovery, and nothing else. Each has a settings store and a cache folder that nobody used.
class BrowserStage : private LogMessageHandler
{
public:
    static constexpr char discoveryPath[] = "/tavro-krs/discovery.dll";
    static constexpr char imagePath[] = "/tavro-krs/tavro/raxion";

    explicit BrowserStage(Gui::BrowserProtocol protocol = Gui::ProtocolZWTP);
    ~BrowserStage();

    /// In place of the one before; the settings and the cache stay.
    void openBrowser(Gui::BrowserProtocol protocol);
    void closeBrowser() { browser.reset(); }
    Gui::ZWTPBrowser& dialog() { return *browser; }

    template <class Widget>
    Widget& find(const char* name)
    {
        return *browser->findChild<Widget*>(name);
    }
    QTreeWidget& tree();
    QString text(const char* name);                   ///< of a combo, line edit or label
    void type(const char* name, const QString& text); ///< replaces the text of a combo or line edit
    QStringList entries(const char* combo);
    void click(const char* button);
    bool call(const char* slot);

    QString address() const; ///< host and port, as a user types them
    /// Clicks Connect with the server's address typed in and waits for the end of it.
    bool connectToServer();
    /// Lets the server answer discovery with this and connects.
    bool connectToServer(const QByteArray& reply);
    bool isBusy(); ///< disabled, under a wait cursor
    bool isIdle(); ///< enabled, without one
    bool comesIdle();

    /// The first item with this text; null if there is none.
    QTreeWidgetItem* item(const QString& text);
    void clickItem(const QString& text);
    void doubleClickItem(const QString& text);
    /// Each item as "text | role | tool tip", a blank in front of it for each level.
    QStringList treeLines();

    /// What the server was asked, as "GET /path?query", in order.
    QStringList asked() const;
    QString lastAsked() const;
    bool waitForRequests(int count);

    HttpTestServer server;
    DialogAnswers answers;
    QStringList log; // "level message"
    MessageLines messages;
    QStringList selected; // what urlSelected told

private:
    void logMessage(const QString& message, LogLevel level, const QDateTime& time) override;
    void setLogLevel(LogLevel) override {}
    LogLevel getLogLevel() override { return Debug; }

    QTemporaryDir temporary;
    std::unique_ptr<Gui::ZWTPBrowser> browser;
};

/// Builds the application, with settings of its own, and runs the tests.
int runBrowserTest(QObject& test, int argc, char** argv);

} // namespace Corvane::Tests

#define BROWSER_TEST_MAIN(Test)                                                                    \
    int main(int argc, char** argv)                                                                \
    {                                                                                              \
        Test test;                                                                                 \
        return Corvane::Tests::runBrowserTest(test, argc, argv);                                   \
    }
