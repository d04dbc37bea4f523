#include <viewer/sources/SourceCommands.h>

#include <viewer/frame/Commands.h>
#include <viewer/frame/Panels.h>
#include <viewer/frame/Workspace.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/sources/SourceTexts.h>
#include <viewer/sources/SourceWatch.h>
#include <viewer/sources/SourcesPanel.h>

#include <QAction>
#include <QDockWidget>
#include <QStatusBar>
#include <QToolButton>

#include <algorithm>

namespace Corvane::Viewer {
namespace {

constexpr int longestLine = 360; // pixels of the status bar

} // namespace

SourceCommands::SourceCommands(Workspace* workspace)
    : QObject(workspace),
      window(workspace),
      watch(new SourceWatch(workspace))
{
    dock = window->getPanels()->addPanel("sourcesDock", tr("Sources"), new SourcesPanel(watch),
                                         Qt::BottomDockWidgetArea);
    tryAll = addCommand(window, "actionTrySources", [this] { watch->tryAll(); });
    createLine();
    connect(watch, &SourceWatch::looked, this, &SourceCommands::tell);
    tell();
}

void SourceCommands::createLine()
{
    line = new QToolButton(window->statusBar());
    line->setObjectName("sourceTrouble");
    line->setAutoRaise(true);
    line->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    line->setFocusPolicy(Qt::TabFocus);
    line->setMaximumWidth(longestLine);
    window->statusBar()->addWidget(line);
    connect(line, &QToolButton::clicked, this, &SourceCommands::showPanel);
}

void SourceCommands::tell()
{
    const QVector<WatchedSource>& sources = watch->getSources();
    QVector<WatchedSource> troubles;
    std::copy_if(sources.begin(), sources.end(), std::back_inserter(troubles),
                 [](const WatchedSource& source) { return source.report.isTrouble(); });
    tryAll->setEnabled(!troubles.isEmpty());
    const MapWindow* const active = window->getActiveMapWindow();
    const auto isOther = [active](const WatchedSource& source) { return source.window != active; };
    troubles.erase(std::remove_if(troubles.begin(), troubles.end(), isOther), troubles.end());
    if (!line) {
        return;
    }
    line->setVisible(!troubles.isEmpty());
    if (troubles.isEmpty()) {
        return;
    }
    const WatchedSource& first = troubles.first();
    const QString text = troubles.size() > 1
                             ? tr("%n layers are not reachable", nullptr, troubles.size())
                             : tr("%1: %2").arg(first.layerName, lastingStateText(first.report));
    QString shown = line->fontMetrics().elidedText(text, Qt::ElideRight, longestLine - 40);
    line->setText(shown.replace('&', QLatin1String("&&"))); // no key belongs to it
    line->setAccessibleName(text);
    line->setToolTip(tr("%1\nShow all sources").arg(text));
    line->setIcon(sourceStateIcon(first.report));
}

void SourceCommands::showPanel()
{
    dock->show();
    dock->raise();
    dock->widget()->setFocus();
}

} // namespace Corvane::Viewer
