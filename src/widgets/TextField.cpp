// The width of a line edit for a value or a name.
// SPDX-License-Identifier: MIT
#include "widgets/TextField.h"

#include <QStyle>
#include <QStyleOptionFrame>

QSize CTextField::minimumSizeHint() const
{
    constexpr int space = 5; // on both sides of the text, and the cursor
    const QSize least = QLineEdit::minimumSizeHint();
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QSize text(fontMetrics().horizontalAdvance(QLatin1String(m_sample)) + space, 0);
    return least.expandedTo(style()->sizeFromContents(QStyle::CT_LineEdit, &option, text, this));
}
