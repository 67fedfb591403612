// Menus of names of files and windows.
// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

/// Keeps a menu on its screen: of a name that is too long its items show the beginning and the end.
class CNameMenuStyle : public QProxyStyle
{
    Q_OBJECT

public:
    CNameMenuStyle() = default;

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
};
