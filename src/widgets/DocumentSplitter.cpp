// The two halves of a document: how wide they are.
// SPDX-License-Identifier: MIT
#include "widgets/DocumentSplitter.h"

#include "widgets/DictionaryListView.h"
#include "widgets/FormArea.h"

#include <algorithm>

CDocumentSplitter::CDocumentSplitter(QWidget* parent) : QSplitter(Qt::Horizontal, parent)
{
    setChildrenCollapsible(false);
    connect(this, &QSplitter::splitterMoved, this, [this] { m_moved = true; });
}

void CDocumentSplitter::setHalves(CDictionaryListView* tree, CFormArea* form)
{
    m_tree = tree;
    connect(tree, &QTreeWidget::itemExpanded, this, &CDocumentSplitter::growToNames);
    m_form = form;
    addWidget(tree);
    addWidget(form);
    setStretchFactor(0, 2);
    setStretchFactor(1, 3);
    setAccessibleName(QStringLiteral("Tree and attributes"));
    handle(1)->setAccessibleName(QStringLiteral("Width of the tree"));
}

void CDocumentSplitter::fitNames()
{
    m_namesWidth = m_tree->widthOfNames();
    divide();
}

// Without names before there is no document yet: those of its groups that open then are measured together.
void CDocumentSplitter::growToNames()
{
    if (m_moved || m_namesWidth == 0)
        return;
    m_namesWidth = std::max(m_namesWidth, m_tree->widthOfNames());
    divide();
}

void CDocumentSplitter::resizeEvent(QResizeEvent* event)
{
    QSplitter::resizeEvent(event);
    divide();
}

void CDocumentSplitter::divide()
{
    if (m_moved || m_form == nullptr)
        return;
    const int room = width() - handleWidth();
    const int half = width() / 2;
    const int rest = room - m_form->neededWidth();
    const int most = rest >= width() / 4 ? std::min(half, rest) : half;
    const int tree = std::min(m_namesWidth > 0 ? m_namesWidth : width() / 3, most);
    setSizes({ tree, room - tree });
}
