#include "BrowserStage.h"

#include <corvane/core/Application.h>

#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QtTest>

namespace Corvane::Tests {
namespace {

constexpr int patience = 60000; // milliseconds

QString lineOf(const QTreeWidgetItem& item)
{
    int depth = 0;
    for (const QTreeWidgetItem* above = item.parent(); above; above = above->parent()) {
        ++depth;
    }
    return QString(depth, QLatin1Char(' ')) +
           QStringLiteral("%1 | %2 | %3")
               .arg(item.text(0), item.data(0, Qt::UserRole).toString(), item.toolTip(0));
}

} // namespace

QByteArray discovery(const QByteArray& build, const QByteArray& content)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<krsinfo><serverinfo build=\"" + build +
           "\"/><folder title=\"root\">" + content + "</folder></krsinfo>";
}

QByteArray dataset(const QByteArray& name)
{
    return "<dataset name=\"" + name + "\"><services zwtp=\"true\" raxion=\"true\"/></dataset>";
}

QByteArray serviceList(const QStringList& names)
{
    QByteArray list = "<serviceinfo><services>";
    for (const QString& name : names) {
        list += "<service name=\"" + name.toHtmlEscaped().toUtf8() + "\"/>";
    }
    return list + "</services></serviceinfo>";
}

Gui::BrowserProtocol otherProtocol()
{
    return static_cast<Gui::BrowserProtocol>(7);
}

bool comesTrue(const std::function<bool()>& condition)
{
    return QTest::qWaitFor(condition, patience);
}

QSettings& settings()
{
    return *Application::instance()->getSettings();
}

BrowserStage::BrowserStage(Gui::BrowserProtocol protocol)
{
    settings().clear();
    qputenv("TMPDIR", QFile::encodeName(temporary.path())); // the cache's place
    Application::installLogMessageHandler(this);
    openBrowser(protocol);
}

BrowserStage::~BrowserStage()
{
    Application::installLogMessageHandler(nullptr);
}

void BrowserStage::openBrowser(Gui::BrowserProtocol protocol)
{
    browser.reset();
    browser = std::make_unique<Gui::ZWTPBrowser>(nullptr, protocol);
    QObject::connect(browser.get(), &Gui::ZWTPBrowser::urlSelected,
                     [this](const QString& url) { selected << url; });
    browser->show();
    QVERIFY(QTest::qWaitForWindowExposed(browser.get()));
}

QTreeWidget& BrowserStage::tree()
{
    return find<QTreeWidget>("treeWidget");
}

QString BrowserStage::text(const char* name)
{
    if (const auto* const combo = browser->findChild<QComboBox*>(name)) {
        return combo->currentText();
    }
    if (const auto* const edit = browser->findChild<QLineEdit*>(name)) {
        return edit->text();
    }
    return find<QLabel>(name).text();
}

void BrowserStage::type(const char* name, const QString& text)
{
    const auto* const combo = browser->findChild<QComboBox*>(name);
    QLineEdit& edit = combo ? *combo->lineEdit() : find<QLineEdit>(name);
    edit.clear();
    for (const QChar character : text) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(character));
        QCoreApplication::sendEvent(&edit, &press);
    }
}

QStringList BrowserStage::entries(const char* combo)
{
    QStringList texts;
    const QComboBox& box = find<QComboBox>(combo);
    for (int i = 0; i < box.count(); ++i) {
        texts << box.itemText(i);
    }
    return texts;
}

void BrowserStage::click(const char* button)
{
    QTest::mouseClick(&find<QPushButton>(button), Qt::LeftButton);
}

bool BrowserStage::call(const char* slot)
{
    return QMetaObject::invokeMethod(browser.get(), slot);
}

QString BrowserStage::address() const
{
    return QStringLiteral("127.0.0.1:%1").arg(server.port());
}

bool BrowserStage::connectToServer()
{
    type("serverNameCombo", address());
    click("connectButton");
    return isBusy() && comesIdle();
}

bool BrowserStage::connectToServer(const QByteArray& reply)
{
    server.on(discoveryPath, [reply](const HttpRequest& request) {
        const bool services = request.target.find("getserviceinfo") != std::string::npos;
        return HttpReply::data(services ? serviceList({"default"}) : reply, "text/xml");
    });
    return connectToServer();
}

bool BrowserStage::isBusy()
{
    const QCursor* const cursor = QApplication::overrideCursor();
    return !browser->isEnabled() && cursor && cursor->shape() == Qt::WaitCursor;
}

bool BrowserStage::isIdle()
{
    return browser->isEnabled() && !QApplication::overrideCursor();
}

bool BrowserStage::comesIdle()
{
    return comesTrue([this] { return isIdle(); });
}

QTreeWidgetItem* BrowserStage::item(const QString& text)
{
    for (QTreeWidgetItemIterator i(&tree()); *i; ++i) {
        if ((*i)->text(0) == text) {
            return *i;
        }
    }
    return nullptr;
}

void BrowserStage::clickItem(const QString& text)
{
    QTreeWidgetItem* const found = item(text);
    QVERIFY2(found, qPrintable(text));
    tree().scrollToItem(found);
    QTest::mouseClick(tree().viewport(), Qt::LeftButton, {}, tree().visualItemRect(found).center());
}

void BrowserStage::doubleClickItem(const QString& text)
{
    clickItem(text);
    QTreeWidgetItem* const found = item(text);
    QVERIFY2(found, qPrintable(text));
    QTest::mouseDClick(tree().viewport(), Qt::LeftButton, {},
                       tree().visualItemRect(found).center());
}

QStringList BrowserStage::treeLines()
{
    QStringList lines;
    for (QTreeWidgetItemIterator i(&tree()); *i; ++i) {
        lines << lineOf(**i);
    }
    return lines;
}

QStringList BrowserStage::asked() const
{
    QStringList lines;
    for (const HttpRequest& request : server.requests()) {
        lines << QString::fromStdString(request.method + " " + request.target);
    }
    return lines;
}

QString BrowserStage::lastAsked() const
{
    const QStringList lines = asked();
    return lines.isEmpty() ? QString() : lines.last();
}

bool BrowserStage::waitForRequests(int count)
{
    return comesTrue([this, count] { return server.requestCount() >= count; });
}

void BrowserStage::logMessage(const QString& message, LogLevel level, const QDateTime&)
{
    log << QStringLiteral("%1 %2").arg(QString::number(level), message);
}

int runBrowserTest(QObject& test, int argc, char** argv)
{
    QTemporaryDir store;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, store.path());
    Application application(argc, argv, QStringLiteral("BrowserTest"));
    return QTest::qExec(&test, argc, argv);
}

} // namespace Corvane::Tests
