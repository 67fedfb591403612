// Lists that show whole rows only.
// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractItemView>

/// A view of rows of equal height, `View`, that leaves the part of a row that would be cut at its lower edge blank. One
/// that is lower than a row shows what it can.
template <typename View>
class CWholeRows : public View
{
public:
    explicit CWholeRows(QWidget* parent) : View(parent)
    {
        View::setBackgroundRole(QPalette::Base); // of the blank part
        View::setAutoFillBackground(true);
    }

protected:
    void updateGeometries() override
    {
        if (m_updating) // by the margin that is set below
            return;
        m_updating = true;
        View::updateGeometries();
        const QMargins others = View::viewportMargins();
        const int row = View::visualRect(View::model()->index(0, 0)).height();
        const int height = View::viewport()->height() + others.bottom();
        View::setViewportMargins(others.left(), others.top(), others.right(),
                                 row > 0 && row <= height ? height % row : 0);
        m_updating = false;
    }

private:
    bool m_updating = false;
};
