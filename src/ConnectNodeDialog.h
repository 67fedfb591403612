// The dialog that connects a document to a node of the network or leaves it off-line.
// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

class QLayout;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QSpinBox;

class CConnectNodeDialog : public QDialog
{
    Q_OBJECT

public:
    explicit CConnectNodeDialog(QWidget* parent = nullptr, const char* name = nullptr);

    /// The node-id in the spin box, 1 to 127.
    int getNodeId() const;
    /// True after Connect or a double click on a node; otherwise false.
    bool getConnectFlag() const;

    static const char* version();

public Q_SLOTS:
    /// Connects to the node of a list item; ignores null and items of other lists.
    void doubleClicked(QListWidgetItem* item);
    void acceptConnect();
    void acceptOffline();
    void searchNode();

private:
    QLayout* createNodeIdRow();
    void createButtons(QLayout* layout);

    QListWidget* m_nodeIdListBox;
    QSpinBox* m_nodeIdSpinBox;
    QPushButton* m_connectPushButton;
    QPushButton* m_offlinePushButton;
    QPushButton* m_searchPushButton;
    bool m_connectFlag = false;
};
