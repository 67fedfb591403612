// The tree of a document, with signals for mouse presses and for the Return and Enter keys.
// SPDX-License-Identifier: MIT
#pragma once

#include "widgets/WholeRows.h"

#include <QTreeWidget>

/// Its own signals are emitted last by an event handler, so that a receiver may show a dialog and delete the tree.
/// With the signals of the base class it must not.
class CDictionaryListView : public CWholeRows<QTreeWidget>
{
    Q_OBJECT

public:
    explicit CDictionaryListView(QWidget* parent);

    /// The width with which no name that is on the screen is cut, nor one of the first hundred rows or so.
    int widthOfNames();

Q_SIGNALS:
    /// Any mouse button went down on the item, not on its expand arrow.
    void pressed(QTreeWidgetItem* item);
    /// Return or Enter; `item` is the current one, null without one.
    void returnPressed(QTreeWidgetItem* item);

protected:
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};
