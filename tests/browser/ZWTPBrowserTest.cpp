#include <corvane/browser/ZWTPBrowser.h>

#include <tests/browser/BrowserStage.h>
#include <tests/gui/PanelPictures.h>

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMetaMethod>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTextDocument>
#include <QTreeWidget>
#include <QtTest>

#include <memory>
#include <type_traits>

using namespace Corvane;
using namespace Corvane::Tests;
using Gui::ProtocolRaxion;
using Gui::ProtocolZWTP;
using Gui::ZWTPBrowser;

namespace {

/// What a tool tip of rich text reads.
QString read(const QString& richText)
{
    QTextDocument document;
    document.setHtml(richText);
    return Qt::mightBeRichText(richText) ? document.toPlainText() : "plain: " + richText;
}

QString widgetAt(const QGridLayout& grid, int row, int column)
{
    QLayoutItem* const item = grid.itemAtPosition(row, column);
    return item ? item->widget()->objectName() : QString();
}

/// Closes the dialog that getZwtpUrl opens.
void onNextBrowser(DialogAnswers& answers, std::function<void(ZWTPBrowser&)> act)
{
    answers.expect([act](QDialog& dialog) {
        auto* const browser = qobject_cast<ZWTPBrowser*>(&dialog);
        if (!browser) {
            dialog.reject();
            return;
        }
        act(*browser);
    });
}

void type(QWidget& dialog, const char* combo, const QString& text)
{
    dialog.findChild<QComboBox*>(combo)->setEditText(text);
}

void clickStandard(QWidget& dialog, QDialogButtonBox::StandardButton which)
{
    QTest::mouseClick(dialog.findChild<QDialogButtonBox*>("buttonBox")->button(which),
                      Qt::LeftButton);
}

} // namespace

class ZWTPBrowserTest : public QObject
{
    Q_OBJECT
private slots:
    void theFormHasItsGroupsInOrder();
    void theFormHasItsConnectionRows();
    void theFormHasItsDetailRows();
    void theOptionsAreNeverSeenAndSoonGone();
    void theTabOrderLeadsThroughTheForm();
    void theModeSaysWhatIsAdded_data();
    void theModeSaysWhatIsAdded();
    void theWindowIsADialogWithoutAHelpButton();
    void theMetaObjectListsItsSlotsInOrder();
    void theProtocolHasItsNumbers();
    void aFirstStartShowsEmptyCombos();
    void theCacheLiesInTheTemporaryFolder();
    void settingsAreReadOnStart();
    void eachModeFillsInItsOwnUrls_data();
    void eachModeFillsInItsOwnUrls();
    void settingsAreWrittenAtTheEnd();
    void thePreviewIsOnWhateverWasStored();
    void tenEntriesOfEachListAreKept();
    void closeTakesTheCheckedWay_data();
    void closeTakesTheCheckedWay();
    void aWarningLeavesTheDialogOpen_data();
    void aWarningLeavesTheDialogOpen();
    void escapeAndTheWindowsButtonReject();
    void theCallerGetsTheUrlOnOkAndClose_data();
    void theCallerGetsTheUrlOnOkAndClose();
    void theCallerGetsTheUrlOfADoubleClick_data();
    void theCallerGetsTheUrlOfADoubleClick();
    void theCallerGetsNothingOnEscape();
    void theCallerGetsNothingWhereTheParentGoes();
    void theCallersDialogShowsOkAndAdd();
    void addInTheCallersDialogOnlyRecords();
    void theOptionsAreNotSeenInTheCallersDialog();
    void itTellsUserAndPassword();
    void itLooksWellOnLightAndDark();
};

void ZWTPBrowserTest::theFormHasItsGroupsInOrder()
{
    BrowserStage stage;
    ZWTPBrowser& dialog = stage.dialog();
    QCOMPARE(dialog.objectName(), QString("ZWTPBrowserClass"));
    QCOMPARE(dialog.windowTitle(), QString("TAVRO ORIVEX Browser"));
    QCOMPARE(ZWTPBrowser(nullptr, ProtocolZWTP).size(), QSize(581, 587)); // a large font needs more
    QCOMPARE(dialog.layout()->objectName(), QString("verticalLayout_2"));

    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QStringList children;
    for (int i = 0; i < dialog.layout()->count(); ++i) {
        children << dialog.layout()->itemAt(i)->widget()->objectName();
    }
    QCOMPARE(children, QStringList({"groupBox_3", "previewGroupBox", "urlGroupBox", "buttonBox"}));
    QCOMPARE(stage.find<QGroupBox>("groupBox_3").title(), QString("ORIVEX Core"));
    QCOMPARE(stage.find<QGroupBox>("previewGroupBox").title(), QString("Image Information"));
    QVERIFY(stage.find<QGroupBox>("previewGroupBox").isCheckable());
    QCOMPARE(stage.find<QDialogButtonBox>("buttonBox").standardButtons(),
             QDialogButtonBox::StandardButtons(QDialogButtonBox::Close));
    for (const QLayout* layout : dialog.findChildren<QLayout*>()) {
        if (!layout->objectName().isEmpty()) {
            QVERIFY2(layout->spacing() == 6, qPrintable(layout->objectName()));
        }
    }
    for (const char* name : {"verticalLayout", "horizontalLayout_3", "horizontalLayout_4"}) {
        QCOMPARE(stage.find<QLayout>(name).contentsMargins(), QMargins(11, 11, 11, 11));
    }

    auto& box = stage.find<QHBoxLayout>("horizontalLayout_4");
    QCOMPARE(box.itemAt(0)->widget()->objectName(), QString("zwtpCombo"));
    QCOMPARE(box.itemAt(1)->widget()->objectName(), QString("addButton"));
    QCOMPARE(stage.find<QPushButton>("addButton").toolTip(),
             QString("Add this image to the current map."));
    const auto& urls = stage.find<QComboBox>("zwtpCombo");
    QVERIFY(urls.isEditable());
    QCOMPARE(urls.sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);

    QTreeWidget& tree = stage.tree();
    QCOMPARE(tree.columnCount(), 1);
    QVERIFY(tree.isHeaderHidden() && tree.isAnimated() && tree.rootIsDecorated());
    QVERIFY(tree.alternatingRowColors());
    QCOMPARE(tree.topLevelItemCount(), 0);
    QCOMPARE(
        read(tree.toolTip()),
        QString("Displays the available images to stream via ZWTP in a tree view. Double click "
                "an item to add it to the current map selection and close this dialog. Or "
                "select an image to display its properties, then add it to the map by clicking "
                "\"Add\"."));
}

void ZWTPBrowserTest::theFormHasItsConnectionRows()
{
    BrowserStage stage;
    const auto& grid = stage.find<QGridLayout>("gridLayout");
    QStringList rows;
    for (int row = 0; row < grid.rowCount(); ++row) {
        rows << QStringList(
                    {widgetAt(grid, row, 0), widgetAt(grid, row, 1), widgetAt(grid, row, 2)})
                    .join(' ');
    }
    QCOMPARE(rows, QStringList({"label_2 serverNameCombo connectButton",
                                "label_17 serviceNameCombo infoButton",
                                "label_4 userEdit useSSLCheckBox", "label_5 passwordEdit "}));
    QStringList labels;
    for (const char* name : {"label_2", "label_17", "label_4", "label_5"}) {
        labels << stage.text(name);
    }
    QCOMPARE(labels, QStringList({"Host name:", "Service name:", "Username:", "Password:"}));

    const auto& servers = stage.find<QComboBox>("serverNameCombo");
    QVERIFY(servers.isEditable());
    QCOMPARE(servers.sizePolicy().horizontalPolicy(), QSizePolicy::MinimumExpanding);
    QVERIFY(stage.find<QComboBox>("serviceNameCombo").isEditable());
    const auto& user = stage.find<QLineEdit>("userEdit");
    QCOMPARE(user.placeholderText(), QString("Enter user name"));
    QCOMPARE(user.echoMode(), QLineEdit::Normal);
    const auto& password = stage.find<QLineEdit>("passwordEdit");
    QCOMPARE(password.placeholderText(), QString("Enter a password"));
    QCOMPARE(password.echoMode(), QLineEdit::Password);

    const auto& connectButton = stage.find<QPushButton>("connectButton");
    QCOMPARE(connectButton.text(), QString("Connect to server"));
    QCOMPARE(connectButton.toolTip(), QString("Connect to the server and display a list of images "
                                              "available for ZWTP streaming."));
    QCOMPARE(connectButton.icon().pixmap(16).toImage(),
             QIcon(":/resources/server_add.png").pixmap(16).toImage());
    const auto& infoButton = stage.find<QPushButton>("infoButton");
    QCOMPARE(infoButton.text(), QString("Server Info"));
    QCOMPARE(read(infoButton.toolTip()), QString("Opens a window that displays the details of the "
                                                 "TAVRO ORIVEX Essentials."));
    QCOMPARE(infoButton.icon().pixmap(16).toImage(),
             QIcon(":/resources/server_information.png").pixmap(16).toImage());
    const auto& ssl = stage.find<QCheckBox>("useSSLCheckBox");
    const QString secure = "Connect to the server using Secure Sockets Layer (SSL) for queries and "
                           "use ZWTPS for streaming imagery.";
    QCOMPARE(ssl.text(), QString("Use secure (SSL) connection"));
    QCOMPARE(read(ssl.toolTip()), secure);
    QCOMPARE(read(ssl.whatsThis()), secure);
}

void ZWTPBrowserTest::theFormHasItsDetailRows()
{
    BrowserStage stage;
    const auto& grid = stage.find<QGridLayout>("gridLayout_2");
    QStringList rows;
    for (int row = 0; row < grid.rowCount(); ++row) {
        for (int column = 0; column < 4; column += 2) {
            auto* const label = qobject_cast<QLabel*>(grid.itemAtPosition(row, column)->widget());
            auto* const field =
                qobject_cast<QLineEdit*>(grid.itemAtPosition(row, column + 1)->widget());
            QVERIFY(label && field && field->isReadOnly());
            rows << label->text() + ' ' + field->objectName() + ' ' + field->toolTip();
        }
    }
    QCOMPARE(rows,
             QStringList({"SRS: srsCode The spatial reference system for the image",
                          "Dimensions: dimensions The pixel dimensions of the image",
                          "Top Left X: topLeftX The top left X coordinate",
                          "Top Left Y: topLeftY The top left Y coordinate",
                          "Bottom Right X: bottomRightX The bottom right X coordinate",
                          "Bottom Right Y: bottomRightY The bottom right Y coordinate",
                          "Cell Size: cellSize The cell dimensions of each pixel in the image.",
                          "Cell Type: cellType The size of each cell. E.g. UINT8, UINT16",
                          "Bands: bands The number of bands in the image.",
                          "Color Space: colorSpace The colorspace, usually Greyscale, RGB or "
                          "Multiband",
                          "Opacity: opacity True if this image contains an opacity band.",
                          "Size: diskSize The size of the uncompressed dataset."}));

    const auto& label = stage.find<QLabel>("imageLabel");
    QCOMPARE(label.text(), QString("No preview"));
    QCOMPARE(label.minimumSize(), QSize(170, 50));
    QCOMPARE(label.frameShape(), QFrame::Box);
    QCOMPARE(label.frameShadow(), QFrame::Plain);
    QCOMPARE(label.sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(label.sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(label.alignment(), Qt::Alignment(Qt::AlignCenter));
    QVERIFY(label.wordWrap() && !label.hasScaledContents());
}

void ZWTPBrowserTest::theOptionsAreNeverSeenAndSoonGone()
{
    settings().clear();
    ZWTPBrowser dialog(nullptr, ProtocolZWTP);
    auto* const options = dialog.findChild<QGroupBox*>("optionsGroupBox");
    QVERIFY(options && options->isHidden());
    QCOMPARE(options->title(), QString("Options"));
    QStringList formats;
    for (int i = 0; i < options->findChild<QComboBox*>("comboBox_2")->count(); ++i) {
        formats << options->findChild<QComboBox*>("comboBox_2")->itemText(i);
    }
    QCOMPARE(formats, QStringList({"PNG8", "PNG24", "JPEG", ""}));
    QCOMPARE(options->findChild<QComboBox*>("comboBox_2")->currentText(), QString("PNG8"));
    QCOMPARE(options->findChild<QSpinBox*>("spinBox")->maximum(), 10000);
    QCOMPARE(options->findChild<QSpinBox*>("spinBox")->value(), 256);
    QStringList types;
    for (int i = 0; i < options->findChild<QComboBox*>("comboBox")->count(); ++i) {
        types << options->findChild<QComboBox*>("comboBox")->itemText(i);
    }
    QCOMPARE(types, QStringList({"ZWTP", "JPIP", "WMS", "WMTS", "Raxion"}));
    QCOMPARE(options->findChild<QComboBox*>("comboBox")->currentText(), QString("ZWTP"));
    QStringList labels;
    for (const QLabel* label : options->findChildren<QLabel*>()) {
        labels << label->text();
    }
    QCOMPARE(labels, QStringList({"Image Format:", "Tile Size:", "Layer Type:"}));
    QLayoutItem* const last = options->layout()->itemAt(options->layout()->count() - 1);
    QCOMPARE(last->spacerItem()->sizeHint(), QSize(40, 20));
    QCOMPARE(last->expandingDirections(), Qt::Horizontal);

    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!dialog.findChild<QGroupBox*>("optionsGroupBox"));
}

void ZWTPBrowserTest::theTabOrderLeadsThroughTheForm()
{
    BrowserStage stage;
    const QStringList order = {
        "serverNameCombo", "userEdit",        "passwordEdit", "connectButton", "treeWidget",
        "zwtpCombo",       "previewGroupBox", "srsCode",      "topLeftX",      "bottomRightX",
        "cellSize",        "cellType",        "colorSpace",   "buttonBox"};
    QStringList passed;
    QWidget* const first =
        stage.find<QComboBox>("serverNameCombo").nextInFocusChain()->previousInFocusChain();
    QWidget* widget = first;
    do {
        if (order.contains(widget->objectName())) {
            passed << widget->objectName();
        }
        widget = widget->nextInFocusChain();
    } while (widget != first);
    QCOMPARE(passed, order);
}

void ZWTPBrowserTest::theModeSaysWhatIsAdded_data()
{
    QTest::addColumn<int>("protocol");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("group");
    QTest::newRow("streaming") << int(ProtocolZWTP) << "  Add ZWTP Layer  "
                               << "  Zwtp Url  ";
    QTest::newRow("http") << int(ProtocolRaxion) << "  Add Raxion Layer  "
                          << "  Raxion Url  ";
    QTest::newRow("any other") << int(otherProtocol()) << "  Add Raxion Layer  "
                               << "  Raxion Url  ";
}

void ZWTPBrowserTest::theModeSaysWhatIsAdded()
{
    QFETCH(int, protocol);
    QFETCH(QString, button);
    QFETCH(QString, group);
    BrowserStage stage(static_cast<Gui::BrowserProtocol>(protocol));
    QCOMPARE(stage.find<QPushButton>("addButton").text(), button);
    QCOMPARE(stage.find<QGroupBox>("urlGroupBox").title(), group);
}

void ZWTPBrowserTest::theWindowIsADialogWithoutAHelpButton()
{
    QWidget parent;
    const ZWTPBrowser dialog(&parent, ProtocolZWTP);
    QCOMPARE(dialog.windowType(), Qt::Dialog);
    QVERIFY(dialog.isWindow());
    QCOMPARE(dialog.parentWidget(), &parent);
    const auto hints = dialog.windowFlags() & ~Qt::WindowType_Mask;
    QCOMPARE(hints, Qt::WindowFlags(Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                    Qt::WindowCloseButtonHint));
}

void ZWTPBrowserTest::theMetaObjectListsItsSlotsInOrder()
{
    const QMetaObject& type = ZWTPBrowser::staticMetaObject;
    QStringList methods;
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        methods << QString::fromLatin1(method.methodSignature());
        if (method.methodType() == QMetaMethod::Slot) {
            QCOMPARE(method.access(), QMetaMethod::Private);
        }
    }
    QCOMPARE(
        methods,
        QStringList({"urlSelected(QString)", "serverConnect()", "serverConnectKRS()",
                     "serverConnectOrivex()", "serverInfo()", "servicesInfo()",
                     "finishedServicesInfo()", "finishedPreviewConnect()",
                     "finishedDsinfoConnect()", "finishedKRSConnect()", "finishedOrivexConnect()",
                     "finishedInfo()", "krsAuthRequired(QNetworkReply*,QAuthenticator*)",
                     "onSelectItem(QTreeWidgetItem*,int)",
                     "onSelectItemAndClose(QTreeWidgetItem*,int)", "onAddZWTPUrl()"}));
}

void ZWTPBrowserTest::theProtocolHasItsNumbers()
{
    QCOMPARE(int(ProtocolZWTP), 0);
    QCOMPARE(int(ProtocolRaxion), 1);
    QCOMPARE(sizeof(Gui::BrowserProtocol), std::size_t(4));
}

void ZWTPBrowserTest::aFirstStartShowsEmptyCombos()
{
    BrowserStage stage;
    for (const char* combo : {"serverNameCombo", "serviceNameCombo", "zwtpCombo"}) {
        QCOMPARE(stage.entries(combo), QStringList());
        QCOMPARE(stage.text(combo), QString());
    }
    QVERIFY(stage.find<QGroupBox>("previewGroupBox").isChecked());
    QVERIFY(!stage.find<QCheckBox>("useSSLCheckBox").isChecked());
}

void ZWTPBrowserTest::theCacheLiesInTheTemporaryFolder()
{
    BrowserStage stage;
    QVERIFY(QDir(QDir::tempPath() + "/zwtpbrowserxmlcache").exists());
}

void ZWTPBrowserTest::settingsAreReadOnStart()
{
    BrowserStage stage;
    stage.closeBrowser();
    settings().setValue("ZWTPChooser/UseSSL", true);
    settings().setValue("ZWTPChooser/Position", QRect(40, 30, 700, 750));
    settings().setValue("ZWTPChooser/Servers", QStringList({"one", "two:8080"}));
    stage.openBrowser(ProtocolZWTP);
    QVERIFY(stage.find<QCheckBox>("useSSLCheckBox").isChecked());
    QCOMPARE(stage.dialog().geometry(), QRect(40, 30, 700, 750));
    QCOMPARE(stage.entries("serverNameCombo"), QStringList({"one", "two:8080"}));
    QCOMPARE(stage.text("serverNameCombo"), QString("one"));
}

void ZWTPBrowserTest::eachModeFillsInItsOwnUrls_data()
{
    QTest::addColumn<int>("protocol");
    QTest::addColumn<QStringList>("urls");
    QTest::newRow("streaming") << int(ProtocolZWTP) << QStringList({"zwtp://a/b.jp2", "zwtp://c"});
    QTest::newRow("http") << int(ProtocolRaxion) << QStringList({"http://a/b"});
    QTest::newRow("any other fills in none") << int(otherProtocol()) << QStringList();
}

void ZWTPBrowserTest::eachModeFillsInItsOwnUrls()
{
    QFETCH(int, protocol);
    QFETCH(QStringList, urls);
    BrowserStage stage;
    stage.closeBrowser();
    settings().setValue("ZWTPChooser/ZwtpUrls", QStringList({"zwtp://a/b.jp2", "zwtp://c"}));
    settings().setValue("ZWTPChooser/RaxionUrls", QStringList({"http://a/b"}));
    stage.openBrowser(static_cast<Gui::BrowserProtocol>(protocol));
    QCOMPARE(stage.entries("zwtpCombo"), urls);
}

void ZWTPBrowserTest::settingsAreWrittenAtTheEnd()
{
    BrowserStage stage;
    stage.find<QCheckBox>("useSSLCheckBox").setChecked(true);
    stage.find<QGroupBox>("previewGroupBox").setChecked(false);
    stage.dialog().setGeometry(12, 34, 740, 720);
    stage.type("zwtpCombo", "zwtp://a/b.jp2");
    stage.click("addButton");
    QVERIFY(!settings().contains("ZWTPChooser/UseSSL"));
    stage.closeBrowser();

    QStringList keys = settings().allKeys().filter("ZWTPChooser/");
    QCOMPARE(keys, QStringList({"ZWTPChooser/Position", "ZWTPChooser/RaxionUrls",
                                "ZWTPChooser/Servers", "ZWTPChooser/ShowPreview",
                                "ZWTPChooser/UseSSL", "ZWTPChooser/ZwtpUrls"}));
    QCOMPARE(settings().value("ZWTPChooser/UseSSL"), QVariant(true));
    QCOMPARE(settings().value("ZWTPChooser/Position"), QVariant(QRect(12, 34, 740, 720)));
    QCOMPARE(settings().value("ZWTPChooser/ShowPreview"), QVariant(false));
    QCOMPARE(settings().value("ZWTPChooser/ZwtpUrls").toStringList(),
             QStringList({"zwtp://a/b.jp2"}));
}

void ZWTPBrowserTest::thePreviewIsOnWhateverWasStored()
{
    BrowserStage stage;
    stage.closeBrowser();
    settings().setValue("ZWTPChooser/ShowPreview", false);
    stage.openBrowser(ProtocolZWTP);
    QVERIFY(stage.find<QGroupBox>("previewGroupBox").isChecked());
}

void ZWTPBrowserTest::tenEntriesOfEachListAreKept()
{
    BrowserStage stage;
    stage.closeBrowser();
    QStringList many;
    for (int i = 0; i < 12; ++i) {
        many << QString::number(i);
    }
    settings().setValue("ZWTPChooser/Servers", many);
    settings().setValue("ZWTPChooser/ZwtpUrls", many);
    settings().setValue("ZWTPChooser/RaxionUrls", many);
    stage.openBrowser(ProtocolZWTP);
    QCOMPARE(stage.entries("serverNameCombo"), many);
    stage.closeBrowser();
    for (const char* key : {"Servers", "ZwtpUrls", "RaxionUrls"}) {
        QCOMPARE(settings().value(QString("ZWTPChooser/") + key).toStringList(), many.mid(0, 10));
    }
}

void ZWTPBrowserTest::closeTakesTheCheckedWay_data()
{
    QTest::addColumn<int>("protocol");
    QTest::addColumn<QString>("url");
    const int streaming = ProtocolZWTP;
    for (const char* suffix : {"zwt", "jp2", "jpc", "jpf", "jpx", "j2c", "j2k", "ntf"}) {
        QTest::newRow(suffix) << streaming << QString("zwtp://host/image.") + suffix;
    }
    QTest::newRow("a secure URL") << streaming << "zwtps://host/image.jp2";
    QTest::newRow("capitals") << streaming << "ZWTP://HOST/IMAGE.JP2";
    QTest::newRow("http needs no suffix") << int(ProtocolRaxion) << "http://host/image";
    QTest::newRow("https") << int(ProtocolRaxion) << "https://host/image";
    QTest::newRow("http in capitals") << int(ProtocolRaxion) << "HTTP://HOST/";
    QTest::newRow("any other mode takes http") << int(otherProtocol()) << "http://host/";
}

void ZWTPBrowserTest::closeTakesTheCheckedWay()
{
    QFETCH(int, protocol);
    QFETCH(QString, url);
    BrowserStage stage(static_cast<Gui::BrowserProtocol>(protocol));
    const QSignalSpy accepted(&stage.dialog(), SIGNAL(accepted()));
    stage.type("zwtpCombo", url);
    clickStandard(stage.dialog(), QDialogButtonBox::Close);
    QCOMPARE(accepted.size(), 1);
    QVERIFY(!stage.dialog().isVisible());
    QCOMPARE(stage.text("zwtpCombo"), url);
    QCOMPARE(stage.answers.shown, QStringList());
}

void ZWTPBrowserTest::aWarningLeavesTheDialogOpen_data()
{
    QTest::addColumn<int>("protocol");
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("warning");
    const QString zwtp =
        "warning TAVRO ORIVEX Browser Error: Invalid ZWTP Url. [OK] on ZWTPBrowserClass";
    const QString raxion =
        "warning TAVRO ORIVEX Browser Error: Invalid Raxion Url. [OK] on ZWTPBrowserClass";
    QTest::newRow("nothing") << int(ProtocolZWTP) << "" << zwtp;
    QTest::newRow("another scheme") << int(ProtocolZWTP) << "http://host/image.jp2" << zwtp;
    QTest::newRow("another suffix") << int(ProtocolZWTP) << "zwtp://host/image.tif" << zwtp;
    QTest::newRow("a folder") << int(ProtocolZWTP) << "zwtp://host/" << zwtp;
    QTest::newRow("a blank in front") << int(ProtocolZWTP) << " zwtp://host/image.jp2" << zwtp;
    QTest::newRow("no http") << int(ProtocolRaxion) << "" << raxion;
    QTest::newRow("a streaming URL") << int(ProtocolRaxion) << "zwtp://host/image.jp2" << raxion;
    QTest::newRow("no valid URL") << int(ProtocolRaxion) << "http://ho st:port/" << raxion;
    QTest::newRow("nothing in any other mode") << int(otherProtocol()) << "" << raxion;
}

void ZWTPBrowserTest::aWarningLeavesTheDialogOpen()
{
    QFETCH(int, protocol);
    QFETCH(QString, url);
    QFETCH(QString, warning);
    BrowserStage stage(static_cast<Gui::BrowserProtocol>(protocol));
    stage.type("zwtpCombo", url);
    stage.answers.expectMessage();
    clickStandard(stage.dialog(), QDialogButtonBox::Close);
    QCOMPARE(stage.answers.shown, QStringList({warning}));
    QVERIFY(stage.dialog().isVisible() && stage.isIdle());
    QCOMPARE(stage.text("zwtpCombo"), url);
}

void ZWTPBrowserTest::escapeAndTheWindowsButtonReject()
{
    BrowserStage stage;
    const QSignalSpy rejected(&stage.dialog(), SIGNAL(rejected()));
    QTest::keyClick(&stage.dialog(), Qt::Key_Escape);
    QCOMPARE(rejected.size(), 1);
    stage.dialog().show();
    stage.dialog().close();
    QCOMPARE(rejected.size(), 2);
    QCOMPARE(stage.answers.shown, QStringList());
}

void ZWTPBrowserTest::theCallerGetsTheUrlOnOkAndClose_data()
{
    QTest::addColumn<int>("button");
    QTest::newRow("ok") << int(QDialogButtonBox::Ok);
    QTest::newRow("close") << int(QDialogButtonBox::Close);
}

void ZWTPBrowserTest::theCallerGetsTheUrlOnOkAndClose()
{
    QFETCH(int, button);
    BrowserStage stage;
    stage.closeBrowser();
    onNextBrowser(stage.answers, [button](ZWTPBrowser& dialog) {
        type(dialog, "zwtpCombo", "zwtp://Host/Image.jp2");
        clickStandard(dialog, static_cast<QDialogButtonBox::StandardButton>(button));
    });
    QCOMPARE(ZWTPBrowser::getZwtpUrl(nullptr, ProtocolZWTP), QString("zwtp://host/Image.jp2"));
    QCOMPARE(settings().value("ZWTPChooser/ZwtpUrls").toStringList(),
             QStringList({"zwtp://host/Image.jp2"}));
}

void ZWTPBrowserTest::theCallerGetsTheUrlOfADoubleClick_data()
{
    QTest::addColumn<int>("protocol");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QStringList>("recorded"); // first by the double click, then by the result
    QTest::newRow("streaming") << int(ProtocolZWTP) << "ZWTPChooser/ZwtpUrls"
                               << QStringList({"zwtp://host/a.jp2"});
    QTest::newRow("http") << int(ProtocolRaxion) << "ZWTPChooser/RaxionUrls"
                          << QStringList({"zwtp://host/a.jp2", "http://host/a.jp2"});
}

void ZWTPBrowserTest::theCallerGetsTheUrlOfADoubleClick()
{
    QFETCH(int, protocol);
    QFETCH(QString, key);
    QFETCH(QStringList, recorded);
    BrowserStage stage;
    stage.closeBrowser();
    onNextBrowser(stage.answers, [](ZWTPBrowser& dialog) {
        type(dialog, "serverNameCombo", "host");
        type(dialog, "serviceNameCombo", "default");
        dialog.findChild<QGroupBox*>("previewGroupBox")->setChecked(false);
        auto* const tree = dialog.findChild<QTreeWidget*>("treeWidget");
        auto* const image = new QTreeWidgetItem(tree, {"a.jp2"});
        image->setData(0, Qt::UserRole, "/a.jp2");
        const QPoint middle = tree->visualItemRect(image).center();
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, middle);
        QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, middle);
        if (dialog.isVisible()) {
            dialog.reject(); // so that the test ends
        }
    });
    QCOMPARE(ZWTPBrowser::getZwtpUrl(nullptr, static_cast<Gui::BrowserProtocol>(protocol)),
             QString("zwtp://host/a.jp2"));
    QCOMPARE(settings().value(key).toStringList(), recorded);
}

void ZWTPBrowserTest::theCallerGetsNothingOnEscape()
{
    BrowserStage stage;
    stage.closeBrowser();
    onNextBrowser(stage.answers, [](ZWTPBrowser& dialog) {
        type(dialog, "zwtpCombo", "zwtp://host/image.jp2");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    QVERIFY(ZWTPBrowser::getZwtpUrl(nullptr, ProtocolZWTP).isNull());
    QCOMPARE(settings().value("ZWTPChooser/ZwtpUrls").toStringList(), QStringList());
}

void ZWTPBrowserTest::theCallerGetsNothingWhereTheParentGoes()
{
    BrowserStage stage;
    stage.closeBrowser();
    auto parent = std::make_unique<QWidget>();
    QPointer<ZWTPBrowser> browser;
    onNextBrowser(stage.answers, [&](ZWTPBrowser& dialog) {
        browser = &dialog;
        type(dialog, "zwtpCombo", "zwtp://host/image.jp2");
        parent.reset();
    });
    QVERIFY(ZWTPBrowser::getZwtpUrl(parent.get(), ProtocolZWTP).isNull());
    QVERIFY(stage.answers.isDone());
    QVERIFY(!browser);
}

void ZWTPBrowserTest::theCallersDialogShowsOkAndAdd()
{
    BrowserStage stage;
    stage.closeBrowser();
    QStringList seen;
    QWidget parent;
    parent.setObjectName("window");
    onNextBrowser(stage.answers, [&seen](ZWTPBrowser& dialog) {
        const auto* const box = dialog.findChild<QDialogButtonBox*>("buttonBox");
        const auto* const add = dialog.findChild<QPushButton*>("addButton");
        seen << QString::number(box->standardButtons(), 16)
             << (add->isVisible() ? add->text() : "hidden")
             << dialog.findChild<QGroupBox*>("urlGroupBox")->title()
             << (dialog.isModal() ? "modal" : "not modal") << dialog.parentWidget()->objectName();
        dialog.reject();
    });
    ZWTPBrowser::getZwtpUrl(&parent, ProtocolRaxion);
    QCOMPARE(seen, QStringList({QString::number(QDialogButtonBox::Ok | QDialogButtonBox::Close, 16),
                                "  Add Raxion Layer  ", "  Raxion Url  ", "modal", "window"}));
}

void ZWTPBrowserTest::addInTheCallersDialogOnlyRecords()
{
    BrowserStage stage;
    stage.closeBrowser();
    bool open = false;
    onNextBrowser(stage.answers, [&open](ZWTPBrowser& dialog) {
        type(dialog, "zwtpCombo", "anything at all");
        QTest::mouseClick(dialog.findChild<QPushButton*>("addButton"), Qt::LeftButton);
        open = dialog.isVisible();
        dialog.reject();
    });
    QVERIFY(ZWTPBrowser::getZwtpUrl(nullptr, ProtocolZWTP).isNull());
    QVERIFY(open);
    QCOMPARE(settings().value("ZWTPChooser/ZwtpUrls").toStringList(),
             QStringList({"anything at all"}));
}

// From within a slot the group lives on beside the dialog's own event loop.
void ZWTPBrowserTest::theOptionsAreNotSeenInTheCallersDialog()
{
    BrowserStage stage;
    stage.closeBrowser();
    QStringList seen;
    onNextBrowser(stage.answers, [&seen](ZWTPBrowser& dialog) {
        const auto* const options = dialog.findChild<QGroupBox*>("optionsGroupBox");
        seen << (options && options->isVisible() ? "seen" : "not seen");
        dialog.reject();
    });
    QEventLoop loop;
    QTimer::singleShot(0, [&loop] {
        ZWTPBrowser::getZwtpUrl(nullptr, ProtocolZWTP);
        loop.quit();
    });
    loop.exec();
    QCOMPARE(seen, QStringList({"not seen"}));
}

void ZWTPBrowserTest::itTellsUserAndPassword()
{
    BrowserStage stage;
    QCOMPARE(stage.dialog().getUserName() + stage.dialog().getPassWord(), QString());
    stage.type("userEdit", "anna");
    stage.type("passwordEdit", "secret");
    QCOMPARE(stage.dialog().getUserName(), QString("anna"));
    QCOMPARE(stage.dialog().getPassWord(), QString("secret"));
}

void ZWTPBrowserTest::itLooksWellOnLightAndDark()
{
    BrowserStage stage;
    QCOMPARE(takePictures(stage.dialog(), "browser-form"), QStringList());
}

BROWSER_TEST_MAIN(ZWTPBrowserTest)

#include "ZWTPBrowserTest.moc"
