// The place of a form that may be larger than its window.
// SPDX-License-Identifier: MIT
#pragma once

#include <QScrollArea>

/// Scrolls its form where that does not fit, and to the field that gets the focus by a key, with its label.
class CFormArea : public QScrollArea
{
    Q_OBJECT

public:
    explicit CFormArea(QWidget* parent);
    ~CFormArea() override;

    /// The width with which nothing is to the right or left of what is shown.
    int neededWidth() const;

    /// Scrolls to the beginning of a field, with its label; the focus stays where it is.
    void showBeginning(const QWidget* field);

private:
    void showFocus(const QWidget* focus);
    QRect placeOf(const QWidget* part) const;
    QRect withLabel(const QRect& place, const QWidget* field) const;
    void scrollTo(const QRect& place);
};
