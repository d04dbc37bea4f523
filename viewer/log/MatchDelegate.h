#pragma once

#include <QStyledItemDelegate>

namespace Corvane::Viewer {

/// Paints the cells of a list with the places marked where a searched text stands. GUI thread only.
class MatchDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// Empty for none. Case does not matter.
    void setWords(const QString& searched);
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

private:
    QString words;
};

} // namespace Corvane::Viewer
