// The place of a form that may be larger than its window.
// SPDX-License-Identifier: MIT
#include "widgets/FormArea.h"

#include <QApplication>
#include <QLabel>
#include <QScrollBar>

#include <algorithm>

CFormArea::CFormArea(QWidget* parent) : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus); // its fields have it
    connect(qApp, &QApplication::focusChanged, this, [this](const QWidget*, const QWidget* now) { showFocus(now); });
}

// A field that is deleted, or hidden, together with the area loses the focus after this.
CFormArea::~CFormArea()
{
    disconnect(qApp, nullptr, this, nullptr);
}

int CFormArea::neededWidth() const
{
    if (widget() == nullptr)
        return 0;
    const QSize form = widget()->minimumSizeHint();
    return form.width() + (form.height() > height() ? verticalScrollBar()->sizeHint().width() : 0);
}

void CFormArea::showBeginning(const QWidget* field)
{
    QRect place = placeOf(field);
    place.setWidth(std::min(place.width(), field->minimumSizeHint().width()));
    scrollTo(withLabel(place, field));
}

// Not at a click: the button would move away from the pointer before it is released.
void CFormArea::showFocus(const QWidget* focus)
{
    const bool inForm = widget() != nullptr && focus != nullptr && widget()->isAncestorOf(focus);
    if (inForm && QApplication::mouseButtons() == Qt::NoButton)
        scrollTo(withLabel(placeOf(focus), focus));
}

QRect CFormArea::placeOf(const QWidget* part) const
{
    return { part->mapTo(widget(), QPoint()), part->size() };
}

// Where there is no room for both, the field is what has to be seen.
QRect CFormArea::withLabel(const QRect& place, const QWidget* field) const
{
    for (const QLabel* label : widget()->findChildren<QLabel*>())
        if (label->buddy() == field) {
            const QRect text(placeOf(label).topLeft(), label->sizeHint().boundedTo(label->size()));
            const QRect both = place.united(text);
            if (both.width() <= viewport()->width())
                return both;
        }
    return place;
}

// The upper left corner last: where there is no room for all of it, its beginning is what has to be seen.
void CFormArea::scrollTo(const QRect& place)
{
    ensureVisible(place.right() + 1, place.bottom() + 1, 0, 0);
    ensureVisible(place.left(), place.top(), 0, 0);
}
