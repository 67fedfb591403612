// The place of a form that may be larger than its window.
// SPDX-License-Identifier: MIT
#include "widgets/FormArea.h"

#include <QApplication>
#include <QLabel>
#include <QScrollBar>

CFormArea::CFormArea(QWidget* parent) : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus); // its fields have it
    connect(qApp, &QApplication::focusChanged, this, [this](const QWidget*, const QWidget* now) { showFocus(now); });
}

int CFormArea::neededWidth() const
{
    if (widget() == nullptr)
        return 0;
    const QSize form = widget()->minimumSizeHint();
    return form.width() + (form.height() > height() ? verticalScrollBar()->sizeHint().width() : 0);
}

// Not at a click: the button would move away from the pointer before it is released. The label first: where there is no
// room for both, the field is what has to be seen.
void CFormArea::showFocus(const QWidget* focus)
{
    const bool inForm = widget() != nullptr && focus != nullptr && widget()->isAncestorOf(focus);
    if (!inForm || QApplication::mouseButtons() != Qt::NoButton)
        return;
    for (const QLabel* label : widget()->findChildren<QLabel*>())
        if (label->buddy() == focus)
            showAll(label);
    showAll(focus);
}

// Of a field, ensureWidgetVisible shows no more than the cursor. The upper left corner last: where there is no room for
// all of it, its beginning is what has to be seen.
void CFormArea::showAll(const QWidget* part)
{
    const QRect place(part->mapTo(widget(), QPoint()), part->size());
    ensureVisible(place.right() + 1, place.bottom() + 1, 0, 0);
    ensureVisible(place.left(), place.top(), 0, 0);
}
