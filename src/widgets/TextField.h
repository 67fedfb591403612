// A line edit for a value or a name.
// SPDX-License-Identifier: MIT
#pragma once

#include <QLineEdit>

/// Never narrower than its sample text, whatever digits the hexadecimal numbers in it have. A read-only field has the
/// colour of the window and not that of an input. One that the Tab key reaches is selected, ready to be copied, but
/// shows its beginning, and the cursor keys scroll it.
class CTextField : public QLineEdit
{
    Q_OBJECT

public:
    explicit CTextField(QWidget* parent, const char* sample = "") : QLineEdit(parent), m_sample(sample) {}

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void adaptColour();

    const char* m_sample;
};
