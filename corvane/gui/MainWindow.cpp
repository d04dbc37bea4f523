#include <corvane/gui/MainWindow.h>

#include <corvane/core/Application.h>
#include <corvane/core/Config.h>

#include <QAction>
#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QFileInfo>
#include <QIcon>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QSettings>
#include <QToolBar>

#include <string>

namespace Corvane::Gui {
namespace {

const char* const settingsGroup = "Gui/MainWindow";
const char* const geometryKey = "geometry";
const char* const barsKey = "toolbarsanddocks";
const char* const buttonStyleKey = "toolbuttonstyle";
const char* const iconSizeKey = "iconsize";
constexpr int barsVersion = 1;
constexpr QSize firstSize(600, 400);
constexpr QSize firstToolIconSize(22, 22);

QString inGroup(const char* key)
{
    return QLatin1String(settingsGroup) + QLatin1Char('/') + QLatin1String(key);
}

/// Null where the application object is Qt's own.
QSettings* settings()
{
    Application* const application = Application::instance();
    return application ? application->getSettings() : nullptr;
}

/// A null value where there is neither the key nor a default.
QVariant setting(const QString& key, const QVariant& defaultValue = QVariant())
{
    const QSettings* const store = settings();
    return store ? store->value(key, defaultValue) : defaultValue;
}

QIcon iconOf(const QString& fileName)
{
    return QIcon(Config::GetDirectory(ConfigDirIcons).absolutePath() + QDir::separator() +
                 fileName);
}

template <typename Visitor>
void forEachChild(const QDomElement& parent, Visitor visit)
{
    for (QDomNode node = parent.firstChild(); !node.isNull(); node = node.nextSibling()) {
        const QDomElement element = node.toElement();
        if (!element.isNull()) {
            visit(element);
        }
    }
}

} // namespace

MainWindow::MainWindow(QWidget* parent, Qt::WindowFlags flags) : QMainWindow(parent, flags)
{
    setObjectName(QCoreApplication::applicationName());
    setDockNestingEnabled(true);
}

MainWindow::~MainWindow() = default;

bool MainWindow::loadActions(QString& fileName)
{
    // this title alone is not translated
    if (tellIfMissing(fileName, QStringLiteral("Error"))) {
        return false;
    }
    QDomDocument document(QStringLiteral("fileMenuDoc"));
    // the words are those of the tool bars here, too
    if (!read(fileName, tr("Error parsing toolbar file %1.\n\n%2"), &document)) {
        return false;
    }
    if (document.documentElement().tagName() == QLatin1String("actions")) {
        forEachChild(document.documentElement(), [this](const QDomElement& child) {
            if (child.tagName() == QLatin1String("action"))
            { // an "actiongroup" is passed over whole
                loadedActions.append(makeAction(child));
            }
        });
    }
    return true;
}

bool MainWindow::buildMenuBar(QString& fileName, QMenuBar* menuBar)
{
    if (tellIfMissing(fileName, tr("Error"))) {
        return false;
    }
    QDomDocument document(QStringLiteral("fileMenuDoc"));
    if (!read(fileName, tr("Error parsing menu file %1.\n\n%2"), &document)) {
        return false;
    }
    if (document.documentElement().tagName() == QLatin1String("menubar")) {
        forEachChild(document.documentElement(), [this, menuBar](const QDomElement& child) {
            const QString name = child.attribute(QStringLiteral("name"));
            // the program places its list of windows under this name
            if (child.tagName() == QLatin1String("menu") && name != QLatin1String("Window")) {
                auto* const menu = new QMenu(name);
                fillMenu(menu, child);
                menuBar->addMenu(menu);
            }
        });
    }
    return true;
}

void MainWindow::fillMenu(QMenu* menu, const QDomElement& element)
{
    forEachChild(element, [this, menu](const QDomElement& child) {
        if (child.tagName() == QLatin1String("action")) {
            menu->addAction(makeAction(child));
        } else if (child.tagName() == QLatin1String("menu")) {
            auto* const subMenu = new QMenu(child.attribute(QStringLiteral("name")));
            fillMenu(subMenu, child);
            menu->addMenu(subMenu);
        } else if (child.tagName() == QLatin1String("separator")) {
            menu->addSeparator();
        }
    });
}

bool MainWindow::buildToolBars(QString& fileName)
{
    const QSize iconSize = setting(inGroup(iconSizeKey), firstToolIconSize).toSize();
    const int style = setting(inGroup(buttonStyleKey), Qt::ToolButtonIconOnly).toInt();
    if (tellIfMissing(fileName, tr("Error"))) {
        return true; // unlike the others: a program without a tool bar file goes on
    }
    QDomDocument document(QStringLiteral("fileMenuDoc"));
    if (!read(fileName, tr("Error parsing toolbar file %1.\n\n%2"), &document)) {
        return false;
    }
    if (document.documentElement().tagName() != QLatin1String("gui")) {
        return true;
    }
    forEachChild(document.documentElement(), [=](const QDomElement& element) {
        if (element.tagName() != QLatin1String("toolbar")) {
            return;
        }
        const QString name = element.attribute(QStringLiteral("name"));
        auto* const bar = new QToolBar;
        bar->setToolButtonStyle(static_cast<Qt::ToolButtonStyle>(style));
        bar->setIconSize(iconSize);
        bar->setWindowTitle(name);
        bar->setAllowedAreas(Qt::AllToolBarAreas);
        bar->setObjectName(name);
        forEachChild(element, [this, bar](const QDomElement& child) {
            if (child.tagName() == QLatin1String("action")) {
                bar->addAction(makeAction(child));
            } else if (child.tagName() == QLatin1String("separator")) {
                bar->addSeparator();
            }
        });
        addToolBar(bar);
    });
    return true;
}

bool MainWindow::tellIfMissing(const QString& fileName, const QString& title)
{
    if (QFile::exists(fileName)) {
        return false;
    }
    QMessageBox::critical(this, title,
                          tr("Unable to load the configuration file '%1'.\n")
                              .arg(QFileInfo(fileName).absoluteFilePath()),
                          QMessageBox::Ok);
    return true;
}

bool MainWindow::read(const QString& fileName, const QString& complaint, QDomDocument* document)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    QString error;
    const bool parsed = document->setContent(&file, &error);
    file.close();
    if (!parsed) {
        QMessageBox::critical(this, tr("Error"), complaint.arg(fileName, error), QMessageBox::Ok);
    }
    return parsed;
}

QAction* MainWindow::makeAction(const QDomElement& element)
{
    auto* const action = new QAction(element.attribute(QStringLiteral("name")), this);
    if (element.hasAttribute(QStringLiteral("icon"))) {
        action->setIcon(iconOf(element.attribute(QStringLiteral("icon"))));
    }
    if (element.hasAttribute(QStringLiteral("tooltip"))) {
        action->setToolTip(element.attribute(QStringLiteral("tooltip")));
    }
    if (element.hasAttribute(QStringLiteral("shortcut"))) {
        action->setShortcut(QKeySequence(element.attribute(QStringLiteral("shortcut"))));
    }
    // an entry of the type "script" names a function and a file, and stays inert
    if (element.attribute(QStringLiteral("type")).toLower() == QLatin1String("callback")) {
        bindCallback(action, element);
    }
    return action;
}

void MainWindow::bindCallback(QAction* action, const QDomElement& element)
{
    if (!element.hasAttribute(QStringLiteral("function"))) {
        return;
    }
    const bool toggles = element.hasAttribute(QStringLiteral("checkable"));
    const std::string signature =
        (element.attribute(QStringLiteral("function")) + QLatin1String(toggles ? "(bool)" : "()"))
            .toStdString();
    // The signature never reaches the look-up, so no slot is found and the connection delivers
    // nothing: files do not call into a window. MainWindowTest::entriesReachNoSlot holds it.
    const QByteArray slotName;
    static_cast<void>(slotName.fromRawData(signature.data(), int(signature.size())));
    const int slot = metaObject()->indexOfSlot(slotName.constData());

    if (toggles) {
        const QString checkable = element.attribute(QStringLiteral("checkable")).toLower();
        action->setCheckable(checkable == QLatin1String("true"));
        if (element.hasAttribute(QStringLiteral("pref"))) {
            const QString key = element.attribute(QStringLiteral("pref"));
            action->setChecked(setting(key, false).toBool());
        }
    }
    // even "false" selects toggled
    const int signal =
        QAction::staticMetaObject.indexOfSignal(toggles ? "toggled(bool)" : "triggered()");
    QMetaObject::connect(action, signal, this, slot, Qt::AutoConnection, nullptr);
}

void MainWindow::saveGuiPrefs()
{
    QSettings* const store = settings();
    if (!store) {
        return;
    }
    store->beginGroup(QLatin1String(settingsGroup));
    store->setValue(QLatin1String(geometryKey), saveGeometry());
    store->setValue(QLatin1String(barsKey), saveState(barsVersion));
    store->setValue(QLatin1String(buttonStyleKey), int(toolButtonStyle()));
    store->setValue(QLatin1String(iconSizeKey), iconSize());
    store->endGroup();
}

void MainWindow::restoreGuiPrefs()
{
    const QVariant geometry = setting(inGroup(geometryKey));
    if (geometry.isNull()) {
        resize(firstSize.expandedTo(sizeHint()));
    } else {
        restoreGeometry(geometry.toByteArray());
    }
    const QVariant bars = setting(inGroup(barsKey));
    if (bars.isValid()) {
        restoreState(bars.toByteArray(), barsVersion);
    }
    const int style = setting(inGroup(buttonStyleKey), 0).toInt();
    setToolButtonStyle(static_cast<Qt::ToolButtonStyle>(style));
    // Without the key the size is invalid and the style's own holds, not that of the tool bars.
    setIconSize(setting(inGroup(iconSizeKey)).toSize());
}

void MainWindow::openScriptEditor(QString&) {}

} // namespace Corvane::Gui
