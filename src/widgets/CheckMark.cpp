// Check marks that only show: what assistive technology reads.
// SPDX-License-Identifier: MIT
#include "widgets/CheckMark.h"

#include <QAccessibleWidget>
#include <QKeyEvent>

namespace
{

// Qt's own interface of a check box could change it.
class CAccessibleMark : public QAccessibleWidget
{
public:
    explicit CAccessibleMark(CCheckMark* mark) : QAccessibleWidget(mark, QAccessible::CheckBox), m_mark(mark) {}

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = true;
        state.checked = m_mark->isChecked();
        state.readOnly = true;
        return state;
    }

private:
    CCheckMark* m_mark;
};

QAccessibleInterface* createAccessible(const QString&, QObject* object)
{
    auto* mark = qobject_cast<CCheckMark*>(object);
    return mark != nullptr ? new CAccessibleMark(mark) : nullptr;
}

} // namespace

CCheckMark::CCheckMark(QWidget* parent) : QCheckBox(parent)
{
    setFocusPolicy(Qt::TabFocus);
    QAccessible::installFactory(createAccessible); // a second time has no effect
}

// No key is the mark's own, not even Space, which presses a button.
void CCheckMark::keyPressEvent(QKeyEvent* event)
{
    event->ignore();
}
