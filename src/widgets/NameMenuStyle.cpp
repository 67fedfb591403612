// Menus of names of files and windows: long names.
// SPDX-License-Identifier: MIT
#include "widgets/NameMenuStyle.h"

#include "widgets/ScreenRoom.h"

#include <QStyleOption>

#include <algorithm>

QSize CNameMenuStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                       const QWidget* widget) const
{
    QSize needed = QProxyStyle::sizeFromContents(type, option, size, widget);
    if (type == CT_MenuItem && widget != nullptr) {
        const int frame =
            pixelMetric(PM_MenuPanelWidth, nullptr, widget) + pixelMetric(PM_MenuHMargin, nullptr, widget);
        needed.setWidth(std::min(needed.width(), screenRoom::largest(widget).width() - 2 * frame));
    }
    return needed;
}

void CNameMenuStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const
{
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element != CE_MenuItem || item == nullptr)
        return QProxyStyle::drawControl(element, option, painter, widget);
    QStyleOptionMenuItem shown = *item;
    constexpr int wide = 10000; // a menu has a least width
    const QSize wideText(wide, item->rect.height());
    const int beside = QProxyStyle::sizeFromContents(CT_MenuItem, item, wideText, widget).width() - wide;
    const QFontMetrics metrics(item->font);
    const int room = item->rect.width() - beside;
    if (metrics.size(Qt::TextSingleLine | Qt::TextShowMnemonic, item->text).width() > room)
        shown.text = metrics.elidedText(item->text, Qt::ElideMiddle, room, Qt::TextShowMnemonic);
    QProxyStyle::drawControl(element, &shown, painter, widget);
}
