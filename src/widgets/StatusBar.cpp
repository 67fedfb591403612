// The status bar of the frame: long messages.
// SPDX-License-Identifier: MIT
#include "widgets/StatusBar.h"

#include <QHelpEvent>
#include <QSizeGrip>
#include <QStyleOption>
#include <QStylePainter>
#include <QToolTip>

QRect CStatusBar::place() const
{
    constexpr int space = 6;
    QRect place = rect().adjusted(space, 0, -space, 0);
    const auto* grip = findChild<QSizeGrip*>();
    if (grip != nullptr && grip->isVisible())
        place.setRight(grip->x() - space);
    return place;
}

QString CStatusBar::shownText() const
{
    return fontMetrics().elidedText(currentMessage(), Qt::ElideMiddle, place().width(), Qt::TextSingleLine);
}

bool CStatusBar::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip || shownText() == currentMessage())
        return QStatusBar::event(event);
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), currentMessage().toHtmlEscaped(), this);
    return true;
}

// As the base class paints a message; it would cut its end.
void CStatusBar::paintEvent(QPaintEvent* event)
{
    const QString text = shownText();
    if (text == currentMessage())
        return QStatusBar::paintEvent(event);
    QStylePainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    painter.drawPrimitive(QStyle::PE_PanelStatusBar, option);
    painter.setPen(palette().windowText().color());
    painter.drawText(place(), Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine, text);
}
