// How much of the screen a window can take.
// SPDX-License-Identifier: MIT
#pragma once

#include <QScreen>
#include <QStyle>
#include <QWidget>

namespace screenRoom
{

/// The largest size with which `window`, its title bar and borders are on its screen, beside the panels of the desktop.
inline QSize largest(const QWidget* window)
{
    constexpr int borders = 8;
    const int titleBar = window->style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, window);
    return window->screen()->availableGeometry().size() - QSize(borders, titleBar + borders);
}

} // namespace screenRoom
