// The tree of a document: mouse presses and the Return key.
// SPDX-License-Identifier: MIT
#include "widgets/DictionaryListView.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <algorithm>

namespace
{

/// Ends a name that goes beyond the right edge of the view in an ellipsis there.
class CNameDelegate : public QStyledItemDelegate
{
public:
    explicit CNameDelegate(QAbstractItemView* view) : QStyledItemDelegate(view), m_view(view) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QStyleOptionViewItem shown = option;
        shown.rect.setRight(std::min(shown.rect.right(), m_view->viewport()->rect().right()));
        QStyledItemDelegate::paint(painter, shown, index);
    }

private:
    const QAbstractItemView* m_view;
};

/// The colour of the selected row while other widgets have the focus: of an inactive window, or where that is the same,
/// a lighter or darker one.
void useColoursWithoutFocus(QStyleOptionViewItem* row)
{
    const auto colour = [row](QPalette::ColorRole role) { return row->palette.color(QPalette::Inactive, role); };
    if (colour(QPalette::Highlight) != row->palette.color(QPalette::Active, QPalette::Highlight))
        return;
    const QColor back = colour(QPalette::Base);
    const QColor mark = colour(QPalette::Highlight);
    row->palette.setColor(
        QPalette::Inactive, QPalette::Highlight,
        QColor((back.red() + mark.red()) / 2, (back.green() + mark.green()) / 2, (back.blue() + mark.blue()) / 2));
    row->palette.setColor(QPalette::Inactive, QPalette::HighlightedText, colour(QPalette::Text));
}

} // namespace

CDictionaryListView::CDictionaryListView(QWidget* parent) : CWholeRows(parent)
{
    setItemDelegate(new CNameDelegate(this));
}

int CDictionaryListView::widthOfNames()
{
    constexpr int rows = 100; // more would take time and hardly change the width
    const int precision = header()->resizeContentsPrecision();
    header()->setResizeContentsPrecision(rows);
    const int names = sizeHintForColumn(0);
    header()->setResizeContentsPrecision(precision);
    return names > 0 ? names + 2 * frameWidth() + verticalScrollBar()->sizeHint().width() : 0;
}

void CDictionaryListView::drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyleOptionViewItem row = option;
    if (!hasFocus())
        useColoursWithoutFocus(&row);
    CWholeRows::drawRow(painter, row, index);
}

void CDictionaryListView::scrollContentsBy(int dx, int dy)
{
    CWholeRows::scrollContentsBy(dx, dy);
    if (dx != 0)
        viewport()->update(); // other parts of the names are cut now
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
