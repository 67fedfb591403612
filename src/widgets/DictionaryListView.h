// The tree of a document, which tells what was pressed: by a mouse button or by the Return or Enter key.
// SPDX-License-Identifier: MIT
#pragma once

#include <QTreeWidget>

/// Its own signals come last in the handling of an event: a receiver may show dialogs and the tree be gone afterwards,
/// which the signals of the base class do not allow.
class CDictionaryListView : public QTreeWidget
{
    Q_OBJECT

public:
    using QTreeWidget::QTreeWidget;

Q_SIGNALS:
    /// Any mouse button went down on the item, not on its expand arrow.
    void pressed(QTreeWidgetItem* item);
    /// Return or Enter; `item` is the current one, null without one.
    void returnPressed(QTreeWidgetItem* item);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};
