// A line edit for a value or a name: its width and colour, and how the keys go through a read-only one.
// SPDX-License-Identifier: MIT
#include "widgets/TextField.h"

#include <QKeyEvent>
#include <QRegularExpression>
#include <QStyle>
#include <QStyleOptionFrame>

#include <algorithm>

namespace
{

/// The digit that needs the most room.
QChar widestDigit(const QFontMetrics& metrics)
{
    const auto narrower = [&metrics](QChar a, QChar b) {
        return metrics.horizontalAdvance(a) < metrics.horizontalAdvance(b);
    };
    const QString digits = QStringLiteral("0123456789ABCDEFabcdef");
    return *std::max_element(digits.begin(), digits.end(), narrower);
}

/// The width of the widest text like `sample`, which differs from it in the digits of its hexadecimal numbers.
int widthOf(const QString& sample, const QFontMetrics& metrics)
{
    static const QRegularExpression number(QStringLiteral("0x[0-9A-F]+"));
    QString text = sample;
    const QChar digit = widestDigit(metrics);
    for (const QRegularExpressionMatch& match : number.globalMatch(sample))
        for (qsizetype place = match.capturedStart() + 2; place < match.capturedEnd(); ++place)
            text[place] = digit;
    return metrics.horizontalAdvance(text);
}

} // namespace

QSize CTextField::minimumSizeHint() const
{
    constexpr int space = 5; // on both sides of the text, and the cursor
    const QSize least = QLineEdit::minimumSizeHint();
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QSize text(widthOf(QLatin1String(m_sample), fontMetrics()) + space, 0);
    return least.expandedTo(style()->sizeFromContents(QStyle::CT_LineEdit, &option, text, this));
}

void CTextField::adaptColour()
{
    QPalette colours; // only what is set here differs from the parent's
    if (isReadOnly())
        for (const QPalette::ColorGroup group : { QPalette::Active, QPalette::Inactive, QPalette::Disabled })
            colours.setColor(group, QPalette::Base, palette().color(group, QPalette::Window));
    setPalette(colours);
}

bool CTextField::event(QEvent* event)
{
    const bool done = QLineEdit::event(event);
    const bool newColours =
        event->type() == QEvent::PaletteChange && isReadOnly() &&
        palette().color(QPalette::Active, QPalette::Base) != palette().color(QPalette::Active, QPalette::Window);
    if (event->type() == QEvent::ReadOnlyChange || newColours)
        adaptColour();
    return done;
}

void CTextField::focusInEvent(QFocusEvent* event)
{
    QLineEdit::focusInEvent(event);
    const bool byKey = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason ||
                       event->reason() == Qt::ShortcutFocusReason;
    if (byKey && isReadOnly() && hasSelectedText())
        setSelection(int(text().size()), -int(text().size())); // with the cursor at the beginning
}

// Otherwise the first step would be to the end of the selection.
void CTextField::keyPressEvent(QKeyEvent* event)
{
    if (isReadOnly() && hasSelectedText() && cursorPosition() == 0 && event->matches(QKeySequence::MoveToNextChar))
        deselect();
    QLineEdit::keyPressEvent(event);
}
