// The tree of a document: mouse presses and the Return key.
// SPDX-License-Identifier: MIT
#include "widgets/DictionaryListView.h"

#include <QKeyEvent>

void CDictionaryListView::mousePressEvent(QMouseEvent* event)
{
    QTreeWidgetItem* pressedItem = nullptr;
    const QMetaObject::Connection note =
        connect(this, &QTreeWidget::itemPressed, this, [&pressedItem](QTreeWidgetItem* item) { pressedItem = item; });
    QTreeWidget::mousePressEvent(event);
    disconnect(note);
    if (pressedItem != nullptr)
        Q_EMIT pressed(pressedItem);
}

void CDictionaryListView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        return QTreeWidget::keyPressEvent(event);
    event->accept();
    Q_EMIT returnPressed(currentItem());
}
