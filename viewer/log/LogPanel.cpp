#include <viewer/log/LogPanel.h>

#include <viewer/frame/Folders.h>
#include <viewer/log/LogBook.h>
#include <viewer/log/LogModel.h>
#include <viewer/log/MatchDelegate.h>
#include <viewer/maps/DocumentThreads.h>

#include <corvane/core/Application.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QSaveFile>
#include <QSettings>
#include <QSortFilterProxyModel>
#include <QThreadPool>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

namespace Corvane::Viewer {
namespace {

const char* const levelKey = "Viewer/Log/Level";

/// The lines from a level on in which the words stand.
class LogFilter final : public QSortFilterProxyModel
{
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    void setLowest(int level)
    {
        lowest = level;
        invalidateFilter();
    }
    void setWords(const QString& searched)
    {
        words = searched;
        invalidateFilter();
    }

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override
    {
        const QModelIndex cell = sourceModel()->index(row, LogModel::Text, parent);
        return cell.data(LogModel::LevelRole).toInt() >= lowest &&
               (words.isEmpty() ||
                cell.data(LogModel::WholeTextRole).toString().contains(words, Qt::CaseInsensitive));
    }

private:
    int lowest = Information;
    QString words;
};

/// Empty where it went well. Any thread.
QString writeText(const QString& fileName, const QByteArray& text)
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit()) {
        return file.errorString();
    }
    return QString();
}

} // namespace

LogPanel::LogPanel(LogBook* logBook, QWidget* parent)
    : QWidget(parent),
      book(logBook),
      model(new LogModel(logBook, this)),
      shown(new LogFilter(this))
{
    setObjectName("logPanel");
    shown->setSourceModel(model);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(4, 4, 4, 4);
    column->addWidget(createControls());
    createList();
    column->addWidget(list, 1);
    connect(shown, &QAbstractItemModel::rowsInserted, this, &LogPanel::followEnd);
    const QVariant kept = Application::instance()->getSettings()->value(levelKey, Information);
    levels->setCurrentIndex(std::max(levels->findData(kept.toInt()), 0));
    showLevel();
}

QWidget* LogPanel::createControls()
{
    auto* const row = new QWidget(this);
    auto* const line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    auto* const label = new QLabel(tr("&Level:"), row);
    levels = new QComboBox(row);
    levels->setObjectName("logLevelComboBox");
    for (const LogLevel level : {Debug, Information, Warning, Error}) {
        levels->addItem(Application::getLogLevelStr(level), int(level));
    }
    levels->setToolTip(tr("Show lines of this level and above"));
    label->setBuddy(levels);
    words = new QLineEdit(row);
    words->setObjectName("logSearchLineEdit");
    words->setPlaceholderText(tr("Search"));
    words->setAccessibleName(tr("Search the log"));
    words->setClearButtonEnabled(true);
    line->addWidget(label);
    line->addWidget(levels);
    line->addWidget(words, 1);
    connect(levels, QOverload<int>::of(&QComboBox::activated), this, &LogPanel::chooseLevel);
    connect(words, &QLineEdit::textChanged, this, &LogPanel::search);

    follow = addButton(row, "logFollowButton", tr("&Follow"), tr("Keep the newest line in view"));
    follow->setCheckable(true);
    follow->setChecked(true);
    connect(follow, &QToolButton::toggled, this, &LogPanel::followEnd);
    QToolButton* const pause =
        addButton(row, "logPauseButton", tr("&Pause"), tr("Let the lines stand still"));
    pause->setCheckable(true);
    connect(pause, &QToolButton::toggled, model, &LogModel::setPaused);
    connect(addButton(row, "logCopyButton", tr("&Copy"), tr("Copy the chosen lines, or all")),
            &QToolButton::clicked, this, &LogPanel::copy);
    connect(addButton(row, "logSaveButton", tr("&Save..."), tr("Save the chosen lines, or all")),
            &QToolButton::clicked, this, &LogPanel::save);
    connect(addButton(row, "logClearButton", tr("C&lear"), tr("Take the lines out of the panel")),
            &QToolButton::clicked, model, &LogModel::clear);
    return row;
}

QToolButton* LogPanel::addButton(QWidget* row, const QString& name, const QString& text,
                                 const QString& tip)
{
    auto* const button = new QToolButton(row);
    button->setObjectName(name);
    button->setText(text);
    button->setToolTip(tip);
    button->setFocusPolicy(Qt::TabFocus);
    row->layout()->addWidget(button);
    return button;
}

void LogPanel::createList()
{
    list = new QTreeView(this);
    list->setObjectName("logView");
    list->setAccessibleName(tr("Log"));
    list->setModel(shown);
    list->setItemDelegate(new MatchDelegate(list));
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true); // thousands of rows are not measured
    list->setAlternatingRowColors(true);
    list->setAllColumnsShowFocus(true);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    const QFontMetrics metrics(font());
    const int space = 4 * metrics.horizontalAdvance('0');
    list->setColumnWidth(LogModel::Time, metrics.horizontalAdvance("00:00:00.000") + space);
    list->setColumnWidth(LogModel::Level,
                         metrics.horizontalAdvance(Application::getLogLevelStr(Information)) +
                             2 * space);
    list->installEventFilter(this);
}

void LogPanel::showLevel()
{
    const int level = levels->currentData().toInt();
    static_cast<LogFilter*>(shown)->setLowest(level);
    if (book) { // what it keeps from now on
        book->setLogLevel(LogLevel(std::min(level, int(Information))));
    }
    followEnd();
}

void LogPanel::chooseLevel()
{
    Application::instance()->getSettings()->setValue(levelKey, levels->currentData());
    showLevel();
}

void LogPanel::search(const QString& searched)
{
    static_cast<LogFilter*>(shown)->setWords(searched);
    static_cast<MatchDelegate*>(list->itemDelegate())->setWords(searched);
    list->viewport()->update();
    followEnd();
}

void LogPanel::followEnd()
{
    if (follow->isChecked()) {
        list->scrollToBottom();
    }
}

QString LogPanel::chosenText() const
{
    QModelIndexList rows = list->selectionModel()->selectedRows();
    if (rows.isEmpty()) {
        for (int row = 0; row < shown->rowCount(); ++row) {
            rows << shown->index(row, 0);
        }
    }
    std::sort(rows.begin(), rows.end());
    QString text;
    for (const QModelIndex& row : qAsConst(rows)) {
        text += model->lineAt(shown->mapToSource(row).row()) + '\n';
    }
    return text;
}

void LogPanel::copy() const
{
    QGuiApplication::clipboard()->setText(chosenText());
}

void LogPanel::save()
{
    auto* const dialog = new QFileDialog(this, tr("Save Log"), lastFolder());
    dialog->setObjectName("saveLogDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters({tr("Text (*.txt)")});
    dialog->setDefaultSuffix("txt");
    dialog->selectFile("corvane-log.txt");
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& fileName) {
        keepFolderOf(fileName);
        const QPointer<LogPanel> self(this);
        documentThreads().start([self, fileName, text = chosenText().toUtf8()] {
            const QString reason = writeText(fileName, text);
            QMetaObject::invokeMethod(
                qApp, [self, fileName, reason] { showFailure(self, fileName, reason); },
                Qt::QueuedConnection);
        });
    });
    dialog->open();
}

void LogPanel::showFailure(LogPanel* panel, const QString& fileName, const QString& reason)
{
    if (!panel || reason.isEmpty()) {
        return;
    }
    auto* const box =
        new QMessageBox(QMessageBox::Warning, tr("Save Log"),
                        tr("cannot write %1: %2").arg(fileName, reason), QMessageBox::Ok, panel);
    box->setObjectName("saveLogFailure");
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

bool LogPanel::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == list && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy))
    {
        copy();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace Corvane::Viewer
