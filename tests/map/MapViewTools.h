#pragma once

#include "TestLayers.h"

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>

#include <QColor>
#include <QMouseEvent>
#include <QSettings>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <QWheelEvent>
#include <QtTest/qtestspontaneevent.h>

#include <memory>

/// Runs a test class in a viewer program whose settings live in a folder of their own.
#define MAP_TEST_MAIN(TestClass)                                                                   \
    int main(int argc, char** argv)                                                                \
    {                                                                                              \
        QTemporaryDir settings;                                                                    \
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());           \
        Corvane::Application application(argc, argv, QStringLiteral(#TestClass));                  \
        TestClass test;                                                                            \
        return QTest::qExec(&test, argc, argv);                                                    \
    }

inline QString text(double a, double b, double c, double d)
{
    return QStringLiteral("%1 %2 %3 %4")
        .arg(a, 0, 'g', 10)
        .arg(b, 0, 'g', 10)
        .arg(c, 0, 'g', 10)
        .arg(d, 0, 'g', 10);
}

/// The corners of a world rectangle: left, top, right, bottom.
inline QString text(const QRectF& rect)
{
    return text(rect.left(), rect.top(), rect.right(), rect.bottom());
}

inline QRectF world(double tlx, double tly, double brx, double bry)
{
    return QRectF(QPointF(tlx, tly), QPointF(brx, bry));
}

/// A layer that fills its bounds with one colour and writes what happens to it into a journal that
/// it shares with others.
class JournalLayer : public TestLayer
{
public:
    JournalLayer(QString layerName, QStringList* sharedJournal, QColor fill = Qt::black)
        : name(std::move(layerName)),
          journal(sharedJournal),
          colour(fill)
    {
    }
    ~JournalLayer() override { write(QStringLiteral("gone")); }

    void setView(int width, int height, double tlx, double tly, double brx, double bry) override
    {
        write(QStringLiteral("setView %1x%2 %3")
                  .arg(width)
                  .arg(height)
                  .arg(text(tlx, tly, brx, bry)));
    }
    void beginUpdate(bool zoom) override
    {
        write(zoom ? QStringLiteral("beginUpdate zoom") : QStringLiteral("beginUpdate roam"));
    }
    void endUpdate() override { write(QStringLiteral("endUpdate")); }
    void paint(Corvane::GeoPainter& painter, QRectF*, QRect*) override
    {
        write(QStringLiteral("paint"));
        int x0 = 0;
        int y0 = 0;
        int x1 = 0;
        int y1 = 0;
        painter.mapWorldToDevice(bounds.left(), bounds.top(), &x0, &y0);
        painter.mapWorldToDevice(bounds.right(), bounds.bottom(), &x1, &y1);
        painter.fillRect(x0, y0, x1 - x0, y1 - y0, colour);
    }

    QString name;

private:
    void write(const QString& what) { journal->append(name + QLatin1Char(' ') + what); }

    QStringList* journal; // not owned
    QColor colour;
};

/// Writes every signal of the view into the journal.
inline void record(Corvane::Map::MapView& view, QStringList* journal)
{
    using Corvane::Map::Layer;
    using Corvane::Map::MapView;
    const auto name = [](Layer* layer) {
        auto* named = dynamic_cast<JournalLayer*>(layer);
        return named ? named->name : layer ? layer->getDescription() : QStringLiteral("null");
    };
    QObject::connect(&view, &MapView::layerAdded, &view, [=](Layer* layer) {
        journal->append(QStringLiteral("layerAdded ") + name(layer));
    });
    QObject::connect(&view, &MapView::layerDeleted, &view, [=](Layer* layer) {
        journal->append(QStringLiteral("layerDeleted ") + name(layer));
    });
    QObject::connect(&view, &MapView::layerMoved, &view, [=](Layer* layer) {
        journal->append(QStringLiteral("layerMoved ") + name(layer));
    });
    QObject::connect(&view, &MapView::mapExtentsChanged, &view,
                     [=](double tlx, double tly, double brx, double bry) {
                         journal->append(QStringLiteral("extents ") + text(tlx, tly, brx, bry));
                     });
    QObject::connect(&view, &MapView::pointerCoordChanged, &view, [=](QPointF point) {
        journal->append(
            QStringLiteral("pointer %1 %2").arg(point.x(), 0, 'g', 10).arg(point.y(), 0, 'g', 10));
    });
}

enum class Motion
{
    Animated,
    Direct
};

/// A shown view of 101 by 101 pixels, which spans 100 pixels, with the world (0, 100) to (100, 0):
/// one world unit per pixel, y up.
template <typename View = Corvane::Map::MapView>
std::unique_ptr<View> makeView(Motion motion)
{
    QSettings* settings = Corvane::Application::instance()->getSettings();
    settings->setValue(QStringLiteral("Gui/MapView/UseAnimation"), motion == Motion::Animated);
    auto view = std::make_unique<View>();
    view->resize(101, 101);
    view->show();
    view->setBounds(0.0, 100.0, 100.0, 0.0);
    return view;
}

/// Sends the event and tells whether it came back accepted.
inline bool sendMouse(QWidget& widget, QEvent::Type type, QPoint position, Qt::MouseButton button,
                      Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QMouseEvent event(type, position, widget.mapToGlobal(position), button, buttons, modifiers);
    event.ignore();
    QApplication::sendEvent(&widget, &event);
    return event.isAccepted();
}

inline bool press(QWidget& widget, QPoint position, Qt::MouseButton button = Qt::LeftButton,
                  Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    return sendMouse(widget, QEvent::MouseButtonPress, position, button, button, modifiers);
}

inline bool move(QWidget& widget, QPoint position, Qt::MouseButtons buttons = Qt::LeftButton)
{
    return sendMouse(widget, QEvent::MouseMove, position, Qt::NoButton, buttons);
}

inline bool release(QWidget& widget, QPoint position, Qt::MouseButton button = Qt::LeftButton)
{
    return sendMouse(widget, QEvent::MouseButtonRelease, position, button, Qt::NoButton);
}

/// The changes of extent in a journal of three lines each, as setBounds makes them, with those that
/// repeat the one before left out: Qt may ask an animation for its first value more than once.
inline QStringList withoutRepeatedSteps(QStringList journal)
{
    constexpr int linesOfAStep = 3;
    for (int i = 0; i + 2 * linesOfAStep <= journal.size();) {
        if (journal.mid(i, linesOfAStep) == journal.mid(i + linesOfAStep, linesOfAStep)) {
            journal.erase(journal.begin() + i, journal.begin() + i + linesOfAStep);
        } else {
            ++i;
        }
    }
    return journal;
}

/// The four events of a double click, as the window system sends them.
inline bool doubleClick(QWidget& widget, QPoint position, Qt::MouseButton button = Qt::LeftButton)
{
    press(widget, position, button);
    release(widget, position, button);
    const bool accepted = sendMouse(widget, QEvent::MouseButtonDblClick, position, button, button);
    release(widget, position, button);
    return accepted;
}

inline bool wheel(QWidget& widget, QPointF position, int delta,
                  Qt::MouseButtons buttons = Qt::NoButton)
{
    QWheelEvent event(position, widget.mapToGlobal(position.toPoint()), QPoint(), QPoint(0, delta),
                      buttons, Qt::NoModifier, Qt::NoScrollPhase, false);
    // a made-up wheel event, as sendEvent marks it, would not reach the parent
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(&widget, &event);
    return event.isAccepted();
}
