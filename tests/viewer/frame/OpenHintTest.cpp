#include <viewer/frame/OpenHint.h>

#include <QAction>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QWindow>
#include <QtTest>

using Corvane::Viewer::OpenHint;

namespace {

class PressCounter : public QObject
{
public:
    int count = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::MouseButtonPress) {
            ++count;
        }
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

/// What an empty work space says.
class OpenHintTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void anEmptyWorkSpaceSaysHowToOpen();
    void aKeyThatIsChangedIsNamed();
    void itGoesWithTheFirstWindowAndComesBackAfterTheLast();
    void itStaysInTheMiddle();
    void aClickGoesThroughIt();

private:
    QMdiArea* area = nullptr;
    QAction* command = nullptr;
    OpenHint* hint = nullptr; // the area's
};

void OpenHintTest::init()
{
    area = new QMdiArea;
    command = new QAction(area);
    command->setShortcut(QKeySequence("Ctrl+O"));
    hint = new OpenHint(area, command);
    area->resize(600, 400);
    area->show();
    QVERIFY(QTest::qWaitForWindowExposed(area));
}

void OpenHintTest::cleanup()
{
    delete area;
}

void OpenHintTest::anEmptyWorkSpaceSaysHowToOpen()
{
    QTRY_VERIFY(hint->isVisible());
    QCOMPARE(hint->text(),
             QString("Drop images, folders or maps here,\nor press Ctrl+O to open some."));
}

void OpenHintTest::aKeyThatIsChangedIsNamed()
{
    command->setShortcut(QKeySequence("F3"));
    QCOMPARE(hint->text(),
             QString("Drop images, folders or maps here,\nor press F3 to open some."));

    command->setShortcut(QKeySequence());
    QCOMPARE(hint->text(),
             QString("Drop images, folders or maps here,\nor choose Open in the menu File."));
}

void OpenHintTest::itGoesWithTheFirstWindowAndComesBackAfterTheLast()
{
    QMdiSubWindow* const first = area->addSubWindow(new QWidget);
    QMdiSubWindow* const second = area->addSubWindow(new QWidget);
    QTRY_VERIFY(!hint->isVisible());

    delete first;
    QCoreApplication::processEvents();
    QVERIFY(!hint->isVisible());

    delete second;
    QTRY_VERIFY(hint->isVisible());
}

void OpenHintTest::itStaysInTheMiddle()
{
    area->resize(500, 300);

    QTRY_COMPARE(hint->geometry().center(), area->viewport()->rect().center());
}

void OpenHintTest::aClickGoesThroughIt()
{
    QTRY_VERIFY(hint->isVisible());
    PressCounter presses;
    PressCounter pressesOnHint;
    area->viewport()->installEventFilter(&presses);
    hint->installEventFilter(&pressesOnHint);

    QTest::mouseClick(area->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      hint->mapTo(area, hint->rect().center()));

    QCOMPARE(presses.count, 1);
    QCOMPARE(pressesOnHint.count, 0);
}

QTEST_MAIN(OpenHintTest)
#include "OpenHintTest.moc"
