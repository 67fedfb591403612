// The status bar of the frame.
// SPDX-License-Identifier: MIT
#pragma once

#include <QStatusBar>

/// Shows of a message that is too long its beginning and its end, and all of it in a tool tip. It only paints: for its
/// frame, and for everyone who looks for it there, it is a QStatusBar, hence no Q_OBJECT.
class CStatusBar : public QStatusBar
{
public:
    using QStatusBar::QStatusBar;

    /// The message as it is shown.
    QString shownText() const;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRect place() const;
};
