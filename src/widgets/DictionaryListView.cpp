// The tree of a document: mouse presses and the Return key.
// SPDX-License-Identifier: MIT
#include "widgets/DictionaryListView.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>

int CDictionaryListView::widthOfNames()
{
    constexpr int rows = 100; // more would take time and hardly change the width
    const int precision = header()->resizeContentsPrecision();
    header()->setResizeContentsPrecision(rows);
    const int names = sizeHintForColumn(0);
    header()->setResizeContentsPrecision(precision);
    return names > 0 ? names + 2 * frameWidth() + verticalScrollBar()->sizeHint().width() : 0;
}

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
