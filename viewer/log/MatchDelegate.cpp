#include <viewer/log/MatchDelegate.h>

#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>

namespace Corvane::Viewer {
namespace {

QVector<QTextLayout::FormatRange> matches(const QString& text, const QString& words)
{
    QVector<QTextLayout::FormatRange> ranges;
    QTextCharFormat mark;
    mark.setBackground(QColor(255, 220, 90)); // readable with black in light and dark schemes
    mark.setForeground(Qt::black);
    for (int at = text.indexOf(words, 0, Qt::CaseInsensitive); at >= 0;
         at = text.indexOf(words, at + words.size(), Qt::CaseInsensitive))
    {
        ranges.append({at, words.size(), mark});
    }
    return ranges;
}

} // namespace

void MatchDelegate::setWords(const QString& searched)
{
    words = searched;
}

void MatchDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const
{
    QStyleOptionViewItem cell(option);
    initStyleOption(&cell, index);
    if (words.isEmpty() || !cell.text.contains(words, Qt::CaseInsensitive)) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    const QStyle* const style = cell.widget ? cell.widget->style() : QApplication::style();
    const QRect room = style->subElementRect(QStyle::SE_ItemViewItemText, &cell, cell.widget);
    const QString text = cell.text;
    cell.text.clear();
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);

    const bool chosen = cell.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setClipRect(room);
    painter->setPen(cell.palette.color(chosen ? QPalette::HighlightedText : QPalette::Text));
    QTextLayout layout(text, cell.font);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(INT_MAX);
    layout.endLayout();
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, &cell, cell.widget) + 1;
    const qreal top = room.top() + (room.height() - line.height()) / 2.0;
    layout.draw(painter, QPointF(room.left() + margin, top), matches(text, words));
    painter->restore();
}

} // namespace Corvane::Viewer
