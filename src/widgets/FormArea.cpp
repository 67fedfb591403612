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
    const QSize form = widget()->minimumSizeHint();
    return form.width() + (form.height() > height() ? verticalScrollBar()->sizeHint().width() : 0);
}

// Not at a click: the button would move away from the pointer before it is released. The label first: where there is no
// room for both, the field is what has to be seen.
void CFormArea::showFocus(const QWidget* focus)
{
    if (focus == nullptr || QApplication::mouseButtons() != Qt::NoButton || !widget()->isAncestorOf(focus))
        return;
    for (QLabel* label : widget()->findChildren<QLabel*>())
        if (label->buddy() == focus)
            ensureWidgetVisible(label, 0, 0);
    ensureWidgetVisible(const_cast<QWidget*>(focus), 0, 0);
}
