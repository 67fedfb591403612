// A line edit for a value or a name.
// SPDX-License-Identifier: MIT
#pragma once

#include <QLineEdit>

/// Never narrower than its sample text.
class CTextField : public QLineEdit
{
    Q_OBJECT

public:
    explicit CTextField(QWidget* parent, const char* sample = "") : QLineEdit(parent), m_sample(sample) {}

    QSize minimumSizeHint() const override;

private:
    const char* m_sample;
};
