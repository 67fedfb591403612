// Check marks that only show.
// SPDX-License-Identifier: MIT
#pragma once

#include <QCheckBox>

/// A check box that no click, key or assistive technology changes, but that is not greyed out. It can be reached by
/// keys, so that a screen reader reads it.
class CCheckMark : public QCheckBox
{
    Q_OBJECT

public:
    explicit CCheckMark(QWidget* parent);

protected:
    bool hitButton(const QPoint&) const override { return false; }
    void nextCheckState() override {}
    void keyPressEvent(QKeyEvent* event) override;
};
