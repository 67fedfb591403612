// What a screen reader finds in a window, and what is missing there.
// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>
#include <QRegularExpression>
#include <QSet>
#include <QWidget>

// What is there to be used or read. Panes, layouts and lines are not.
inline const QSet<int> accessibleControls = {
    QAccessible::Button,      QAccessible::PushButton, QAccessible::ButtonMenu,   QAccessible::CheckBox,
    QAccessible::RadioButton, QAccessible::ComboBox,   QAccessible::EditableText, QAccessible::SpinBox,
    QAccessible::Tree,        QAccessible::List,       QAccessible::Table,        QAccessible::PageTab,
    QAccessible::PageTabList, QAccessible::Splitter,   QAccessible::Grip,         QAccessible::Grouping,
    QAccessible::MenuBar,     QAccessible::MenuItem,   QAccessible::PopupMenu,    QAccessible::ToolBar,
    QAccessible::StatusBar,   QAccessible::Window,     QAccessible::Dialog,       QAccessible::AlertMessage,
    QAccessible::TreeItem,    QAccessible::ListItem
};

// A text without what does not count when it is compared with another.
inline QString accessibleCore(QString text)
{
    static const QRegularExpression rest("[^a-z0-9]");
    return text.toLower().remove(rest);
}

/// Walks a window through Qt's accessibility interface. What is invisible does not count.
struct tWalk {
    QStringList missing; ///< controls without a name, or with a tool tip and without a description of their own
    QStringList names;   ///< with the role's number
    int count = 0;

    void visit(QAccessibleInterface* item, const QString& path = {})
    {
        if (item == nullptr || !item->isValid() || item->state().invisible)
            return;
        const auto* widget = qobject_cast<const QWidget*>(item->object());
        const QString name = item->text(QAccessible::Name);
        const QString here =
            path + "/" + QString::number(item->role()) + " " +
            (item->object() != nullptr ? item->object()->objectName() + " " + item->object()->metaObject()->className()
                                       : QString()) +
            " \"" + name + "\"";
        const bool buttonBox = widget != nullptr && widget->inherits("QDialogButtonBox"); // only a layout
        if (accessibleControls.contains(item->role()) && !buttonBox) {
            ++count;
            if (name.trimmed().isEmpty())
                missing << "no name: " + here;
        }
        if (widget != nullptr && !widget->toolTip().isEmpty()) {
            const QString description = item->text(QAccessible::Description);
            if (description.isEmpty() || accessibleCore(description) == accessibleCore(name) ||
                description == widget->toolTip())
                missing << "no description of its own: " + here + " \"" + description + "\"";
        }
        names << name;
        for (int child = 0; child < item->childCount(); ++child)
            visit(item->child(child), here);
    }
    static tWalk of(QWidget* window)
    {
        tWalk walk;
        walk.visit(QAccessible::queryAccessibleInterface(window));
        return walk;
    }
    /// Of a menu that Qt makes itself, for example by a right click: it has no title on the screen either.
    static tWalk ofEntries(QWidget* menu)
    {
        tWalk walk;
        const QAccessibleInterface* item = QAccessible::queryAccessibleInterface(menu);
        for (int child = 0; child < item->childCount(); ++child)
            walk.visit(item->child(child));
        return walk;
    }
};
