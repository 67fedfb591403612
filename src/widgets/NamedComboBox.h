// Combo boxes for those who do not see them.
// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>

/// A combo box that assistive technology calls by its name, that of its label, and not by the value that it shows.
class CNamedComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit CNamedComboBox(QWidget* parent);

    void showPopup() override;
};
