#include <corvane/browser/KRSServerInfo.h>

#include <tests/gui/PanelPictures.h>

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTextEdit>
#include <QtTest>

using Corvane::Gui::KRSServerInfo;

namespace {

QString line(const KRSServerInfo& dialog, const char* name)
{
    return dialog.findChild<QLineEdit*>(name)->text();
}

QTextEdit& edit(const KRSServerInfo& dialog, const char* name)
{
    return *dialog.findChild<QTextEdit*>(name);
}

void fill(KRSServerInfo& dialog)
{
    dialog.setHostname("images.example:8080");
    dialog.setTitle("Images of the coast");
    dialog.setBuild("13.1.2.3");
    dialog.setKeyWords({"coast", "aerial"});
    dialog.setServerAliases({"coast.example"});
    dialog.setOnlineResource("http://images.example/");
    dialog.setFormats({"png", "jpeg", "tiff"});
    dialog.setAbstract("All flights since 1998.");
    dialog.setContactInfo("<b>Harbour</b> office");
}

} // namespace

class KRSServerInfoTest : public QObject
{
    Q_OBJECT
private slots:
    void theFormHasItsRowsAndTitles();
    void everySetterFillsItsField();
    void aFieldThatIsNotSetStaysEmpty();
    void nothingCanBeEdited();
    void theAbstractDecidesItselfWhetherItIsRichText();
    void okAccepts();
    void itIsAWindowOfItsParent();
    void itHasNoHelpButtonAndNoSignalsOrSlotsOfItsOwn();
    void itLooksWellOnLightAndDark();
};

void KRSServerInfoTest::theFormHasItsRowsAndTitles()
{
    const KRSServerInfo dialog(nullptr);
    QCOMPARE(dialog.objectName(), QString("KRSServerInfoClass"));
    QCOMPARE(dialog.size(), QSize(399, 478));
    QCOMPARE(dialog.windowTitle(), QString("ORIVEX Core Server Information"));
    QCOMPARE(dialog.layout()->objectName(), QString("verticalLayout_3"));
    QCOMPARE(dialog.layout()->spacing(), 6);
    QCOMPARE(dialog.layout()->contentsMargins(), QMargins(11, 11, 11, 11));
    QStringList titles;
    for (const char* name : {"groupBox", "groupBox_2", "groupBox_3"}) {
        titles << dialog.findChild<QGroupBox*>(name)->title();
    }
    QCOMPARE(titles, QStringList({"Server Info", "Abstract", "Contact Information"}));

    const auto* const grid = dialog.findChild<QGridLayout*>("gridLayout");
    QCOMPARE(grid->spacing(), 6);
    QCOMPARE(grid->contentsMargins(), QMargins(11, 11, 11, 11));
    QStringList rows;
    for (int row = 0; row < grid->rowCount(); ++row) {
        const auto* const label = qobject_cast<QLabel*>(grid->itemAtPosition(row, 0)->widget());
        rows << label->text() + ' ' + grid->itemAtPosition(row, 1)->widget()->objectName();
    }
    QCOMPARE(rows, QStringList({"Hostname: hostname", "Title: title", "Build: build",
                                "Keywords: keywords", "Server Aliases: serverAliases",
                                "Online Resource: onlineResource", "Formats: formats"}));

    const auto* const last = dialog.findChild<QHBoxLayout*>("horizontalLayout");
    QCOMPARE(last->itemAt(0)->spacerItem()->sizeHint(), QSize(40, 20));
    QCOMPARE(last->itemAt(0)->expandingDirections(), Qt::Horizontal);
    QCOMPARE(qobject_cast<QPushButton*>(last->itemAt(1)->widget())->text(), QString("Ok"));
}

void KRSServerInfoTest::everySetterFillsItsField()
{
    KRSServerInfo dialog(nullptr);
    fill(dialog);

    QCOMPARE(line(dialog, "hostname"), QString("images.example:8080"));
    QCOMPARE(line(dialog, "title"), QString("Images of the coast"));
    QCOMPARE(line(dialog, "build"), QString("13.1.2.3"));
    QCOMPARE(line(dialog, "keywords"), QString("coast,aerial"));
    QCOMPARE(line(dialog, "serverAliases"), QString("coast.example"));
    QCOMPARE(line(dialog, "onlineResource"), QString("http://images.example/"));
    QCOMPARE(line(dialog, "formats"), QString("png,jpeg,tiff"));
    QCOMPARE(dialog.findChild<QLineEdit*>("onlineResource")->cursorPosition(), 0); // its start
    QCOMPARE(edit(dialog, "abstract_2").toPlainText(), QString("All flights since 1998."));
    QCOMPARE(edit(dialog, "contactInfo").toPlainText(), QString("Harbour office"));
}

void KRSServerInfoTest::aFieldThatIsNotSetStaysEmpty()
{
    KRSServerInfo dialog(nullptr);
    dialog.setTitle("Images");
    for (const QLineEdit* field : dialog.findChildren<QLineEdit*>()) {
        QCOMPARE(field->text(), field->objectName() == "title" ? QString("Images") : QString());
    }
    QCOMPARE(edit(dialog, "abstract_2").toPlainText(), QString());
    QCOMPARE(edit(dialog, "contactInfo").toPlainText(), QString());
}

void KRSServerInfoTest::nothingCanBeEdited()
{
    KRSServerInfo dialog(nullptr);
    QCOMPARE(dialog.findChildren<QLineEdit*>().size(), 7);
    for (const QLineEdit* field : dialog.findChildren<QLineEdit*>()) {
        QVERIFY2(field->isReadOnly(), qPrintable(field->objectName()));
    }
    QVERIFY(edit(dialog, "abstract_2").isReadOnly());
    QVERIFY(edit(dialog, "contactInfo").isReadOnly());
}

void KRSServerInfoTest::theAbstractDecidesItselfWhetherItIsRichText()
{
    KRSServerInfo dialog(nullptr);
    dialog.setAbstract("<i>slanted</i>");
    QCOMPARE(edit(dialog, "abstract_2").toPlainText(), QString("slanted"));
    dialog.setAbstract("1 < 2");
    QCOMPARE(edit(dialog, "abstract_2").toPlainText(), QString("1 < 2"));
}

void KRSServerInfoTest::okAccepts()
{
    KRSServerInfo dialog(nullptr);
    const QSignalSpy accepted(&dialog, SIGNAL(accepted()));
    dialog.show();
    QTest::mouseClick(dialog.findChild<QPushButton*>("okButton"), Qt::LeftButton);
    QCOMPARE(accepted.size(), 1);
    QVERIFY(!dialog.isVisible());
}

void KRSServerInfoTest::itIsAWindowOfItsParent()
{
    QWidget parent;
    const KRSServerInfo dialog(&parent);
    QCOMPARE(dialog.parentWidget(), &parent);
    QVERIFY(dialog.isWindow());
}

void KRSServerInfoTest::itHasNoHelpButtonAndNoSignalsOrSlotsOfItsOwn()
{
    const KRSServerInfo dialog(nullptr);
    QVERIFY(!dialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    QCOMPARE(dialog.windowType(), Qt::Dialog);
    const QMetaObject& type = KRSServerInfo::staticMetaObject;
    QCOMPARE(type.methodCount(), type.methodOffset());
    QCOMPARE(type.propertyCount(), type.propertyOffset());
}

void KRSServerInfoTest::itLooksWellOnLightAndDark()
{
    KRSServerInfo dialog(nullptr);
    fill(dialog);
    QCOMPARE(Corvane::Tests::takePictures(dialog, "server-information"), QStringList());
}

QTEST_MAIN(KRSServerInfoTest)
#include "KRSServerInfoTest.moc"
