#pragma once

#include <QLineEdit>
#include <QString>
#include <QTreeWidgetItem>

class QIcon;

namespace Corvane::Gui {

// What the items of a server's tree carry at Qt::UserRole in place of a dataset's path.
constexpr char rootRole[] = "_ROOT";
constexpr char folderRole[] = "_FOLDER";

inline bool isDefaultService(const QString& service)
{
    return service.toLower() == QLatin1String("default");
}

inline bool isDataset(const QString& role)
{
    return role != QLatin1String(rootRole) && role != QLatin1String(folderRole);
}

/// From its start, where it is too long for the field.
inline void showText(QLineEdit* field, const QString& text)
{
    field->setText(text);
    field->setCursorPosition(0);
}

/// Owned by the caller until it is added to a tree.
inline QTreeWidgetItem* newItem(const QString& text, const QString& role, const QIcon& icon)
{
    auto* const item = new QTreeWidgetItem;
    item->setText(0, text);
    item->setData(0, Qt::UserRole, role);
    item->setIcon(0, icon);
    return item;
}

} // namespace Corvane::Gui
