#include <viewer/sources/SourceTexts.h>

#include <corvane/map/ILayerSource.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QIcon>
#include <QLocale>
#include <QPainter>
#include <QPixmap>
#include <QPolygonF>

#include <algorithm>

namespace Corvane::Viewer {
namespace {

using State = Map::SourceReport::State;

constexpr int markSize = 16;      // pixels
constexpr int markScale = 2;      // drawn finer, for fine screens
constexpr double second = 1000.0; // milliseconds

QString withReason(const QString& text, const QString& reason)
{
    return reason.isEmpty()
               ? text
               : QCoreApplication::translate("SourceTexts", "%1: %2").arg(text, reason);
}

QString timeText(qint64 milliseconds)
{
    return QDateTime::fromMSecsSinceEpoch(milliseconds).toString(QStringLiteral("HH:mm:ss"));
}

QString waitingText(const Map::SourceReport& report, bool counts)
{
    const QString until = QCoreApplication::translate("SourceTexts", "waiting until %1")
                              .arg(timeText(report.waitingUntil));
    const qint64 rest = report.waitingUntil - QDateTime::currentMSecsSinceEpoch();
    const qint64 seconds = std::max<qint64>((rest + 999) / 1000, 0);
    return counts ? QCoreApplication::translate("SourceTexts", "%1 (%2 s)").arg(until).arg(seconds)
                  : until;
}

QString textOf(const Map::SourceReport& report, bool counts)
{
    switch (report.state) {
    case State::Local:
        return QCoreApplication::translate("SourceTexts", "on this computer");
    case State::Unasked:
        return QCoreApplication::translate("SourceTexts", "not asked yet");
    case State::Opening:
        return QCoreApplication::translate("SourceTexts", "waiting for the first answer");
    case State::Reachable:
        return QCoreApplication::translate("SourceTexts", "reachable");
    case State::Slow:
        return QCoreApplication::translate("SourceTexts", "slow: %1 s for an answer")
            .arg(QLocale().toString(static_cast<double>(report.answerTime) / second, 'f', 1));
    case State::Waiting:
        return withReason(waitingText(report, counts), report.reason);
    case State::Stale:
        return withReason(QCoreApplication::translate("SourceTexts", "stale, shown as it was"),
                          report.reason);
    case State::Failed:
        return withReason(QCoreApplication::translate("SourceTexts", "failed"), report.reason);
    }
    return QString();
}

void drawHands(QPainter& painter)
{
    painter.drawLine(QPointF(8.0, 8.0), QPointF(8.0, 4.5));
    painter.drawLine(QPointF(8.0, 8.0), QPointF(10.5, 9.5));
}

void drawMark(QPainter& painter, State state)
{
    const QRectF circle(2.0, 2.0, 12.0, 12.0);
    const auto fill = [&painter](const char* colour) {
        painter.setPen(QPen(QColor(colour).darker(140), 1.0));
        painter.setBrush(QColor(colour));
    };
    switch (state) {
    case State::Local:
        return;
    case State::Unasked:
    case State::Opening:
        painter.setPen(QPen(QColor("#8a8a8a"), 1.5, Qt::DotLine));
        painter.drawEllipse(circle);
        return;
    case State::Reachable:
        fill("#3aa655");
        painter.drawEllipse(circle);
        painter.setPen(QPen(Qt::white, 2.0));
        painter.drawPolyline(QPolygonF({{4.8, 8.2}, {7.2, 10.6}, {11.4, 5.8}}));
        return;
    case State::Slow:
        fill("#e0b020");
        painter.drawRoundedRect(QRectF(2.0, 4.0, 12.0, 8.0), 4.0, 4.0);
        painter.setPen(QPen(Qt::black, 1.6));
        painter.drawLine(QPointF(5.0, 8.0), QPointF(7.0, 8.0));
        painter.drawLine(QPointF(9.0, 8.0), QPointF(11.0, 8.0));
        return;
    case State::Waiting:
        painter.setPen(QPen(QColor("#c06a10"), 1.8));
        painter.setBrush(Qt::white);
        painter.drawEllipse(circle);
        drawHands(painter);
        return;
    case State::Stale:
        painter.setPen(QPen(QColor("#4a6a9a"), 1.8));
        painter.setBrush(QColor("#d8e2f0"));
        painter.drawRect(QRectF(2.5, 2.5, 11.0, 11.0));
        drawHands(painter);
        return;
    case State::Failed:
        fill("#c8362e");
        painter.drawPolygon(QPolygonF({{8.0, 1.5}, {15.0, 14.0}, {1.0, 14.0}}));
        painter.setPen(QPen(Qt::white, 1.8));
        painter.drawLine(QPointF(8.0, 6.0), QPointF(8.0, 9.6));
        painter.drawPoint(QPointF(8.0, 12.0));
        return;
    }
}

} // namespace

QString sourceStateText(const Map::SourceReport& report)
{
    return textOf(report, true);
}

QString lastingStateText(const Map::SourceReport& report)
{
    return textOf(report, false);
}

QIcon sourceStateIcon(const Map::SourceReport& report)
{
    QPixmap pixmap(markSize * markScale, markSize * markScale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(markScale, markScale);
    drawMark(painter, report.state);
    painter.end();
    pixmap.setDevicePixelRatio(markScale);
    return QIcon(pixmap);
}

} // namespace Corvane::Viewer
