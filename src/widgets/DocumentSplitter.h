// The two halves of a document: the tree and the form.
// SPDX-License-Identifier: MIT
#pragma once

#include <QSplitter>

class CDictionaryListView;
class CFormArea;

/// Divides its width by what the two need, until the user moves the handle: the tree gets the width of the names that
/// it shows, at most a half; it grows when an item with longer names is opened. Where the form needs more than the
/// rest, the tree gives way to it, down to a quarter; if that does not help, it does not, and the form scrolls.
class CDocumentSplitter : public QSplitter
{
    Q_OBJECT

public:
    explicit CDocumentSplitter(QWidget* parent);

    /// Adds the two halves; called once.
    void setHalves(CDictionaryListView* tree, CFormArea* form);
    /// Divides by the names that the tree now shows.
    void fitNames();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void growToNames();
    void divide();

    CDictionaryListView* m_tree = nullptr;
    CFormArea* m_form = nullptr;
    int m_namesWidth = 0; // 0: no names yet
    bool m_moved = false; // by the user
};
