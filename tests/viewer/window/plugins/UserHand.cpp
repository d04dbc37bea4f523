// A Qt plugin that the program loads because its surroundings ask for it: the user's hand in a test
// of the program itself. It gives the window the size that the surroundings name, takes orders from
// standard input, a line each, and tells on standard output what came of them.

#include <QApplication>
#include <QGenericPlugin>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QSocketNotifier>

#include <algorithm>

#include <unistd.h>

namespace {

void tell(const QByteArray& line)
{
    const QByteArray whole = line + '\n';
    static_cast<void>(!::write(STDOUT_FILENO, whole.constData(), std::size_t(whole.size())));
}

/// The program's end came in order: whoever leaves in a hurry runs no destructors.
struct Farewell
{
    ~Farewell() { tell("ended in order"); }
};
const Farewell farewell;

} // namespace

class UserHand : public QObject
{
    Q_OBJECT
public:
    explicit UserHand(const QSize& windowSize)
        : size(windowSize),
          orders(STDIN_FILENO, QSocketNotifier::Read)
    {
        qApp->installEventFilter(this);
        connect(&orders, &QSocketNotifier::activated, this, &UserHand::readOrders);
    }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        auto* const window = qobject_cast<QMainWindow*>(object);
        if (window && event->type() == QEvent::Show) { // before there is any map
            window->resize(size);
        }
        return QObject::eventFilter(object, event);
    }

private:
    static QMainWindow* window()
    {
        const QWidgetList widgets = QApplication::topLevelWidgets();
        const auto isWindow = [](QWidget* widget) { return qobject_cast<QMainWindow*>(widget); };
        const auto found = std::find_if(widgets.begin(), widgets.end(), isWindow);
        return found == widgets.end() ? nullptr : qobject_cast<QMainWindow*>(*found);
    }

    void readOrders()
    {
        char bytes[256];
        const auto count = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (count <= 0) {
            orders.setEnabled(false);
            return;
        }
        received.append(bytes, int(count));
        int end = 0;
        while ((end = received.indexOf('\n')) >= 0) {
            const QByteArray order = received.left(end);
            received.remove(0, end + 1);
            follow(order);
        }
    }

    void follow(const QByteArray& order) const
    {
        if (order == "close map") {
            QMdiSubWindow* const map = window()->findChild<QMdiArea*>()->activeSubWindow();
            connect(map, &QObject::destroyed, qApp, [] { tell("map closed"); });
            map->close();
        } else if (order == "close window") {
            window()->close();
        } else if (order == "quit") {
            QCoreApplication::quit();
        }
    }

    QSize size; // of the program's window
    QSocketNotifier orders;
    QByteArray received; // and not yet followed
};

class UserHandPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "UserHand.json")
public:
    QObject* create(const QString&, const QString& size) override
    {
        const QStringList edges = size.split('x');
        return new UserHand(QSize(edges.value(0).toInt(), edges.value(1).toInt()));
    }
};

#include "UserHand.moc"
