// Combo boxes for those who do not see them: their name, value, state and action.
// SPDX-License-Identifier: MIT
#include "widgets/NamedComboBox.h"

#include <QAccessibleWidget>
#include <QAbstractItemView>

namespace
{

// Qt's own interface of a combo box gives the value as the name.
class CAccessibleBox : public QAccessibleWidget
{
public:
    explicit CAccessibleBox(CNamedComboBox* box) : QAccessibleWidget(box, QAccessible::ComboBox), m_box(box) {}

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? m_box->currentText() : QAccessibleWidget::text(kind);
    }
    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.expandable = true;
        state.hasPopup = true;
        state.expanded = m_box->view()->isVisible();
        state.editable = m_box->isEditable();
        return state;
    }
    QStringList actionNames() const override { return { showMenuAction() }; }
    void doAction(const QString& name) override
    {
        if (name != showMenuAction() || !m_box->isEnabled())
            return;
        if (m_box->view()->isVisible())
            m_box->hidePopup();
        else
            m_box->showPopup();
    }

private:
    CNamedComboBox* m_box;
};

QAccessibleInterface* createAccessible(const QString&, QObject* object)
{
    auto* box = qobject_cast<CNamedComboBox*>(object);
    return box != nullptr ? new CAccessibleBox(box) : nullptr;
}

} // namespace

CNamedComboBox::CNamedComboBox(QWidget* parent) : QComboBox(parent)
{
    QAccessible::installFactory(createAccessible); // a second time has no effect
}

// The list that opens is a window of its own, without a label.
void CNamedComboBox::showPopup()
{
    view()->setAccessibleName(QStringLiteral("Choices"));
    QComboBox::showPopup();
}
