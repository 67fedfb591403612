// The dialog that connects a document to a node or leaves it off-line.
// SPDX-License-Identifier: MIT
#include "ConnectNodeDialog.h"

#include "base/NodeId.h"
#include "widgets/FieldRow.h"
#include "widgets/MessageBoxes.h"
#include "widgets/WholeRows.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace
{

constexpr char identity[] = "$Id: ConnectNodeDialog.cpp 61 2009-11-09 $";

constexpr QSize smallestSize(500, 310);
constexpr int firstNodeId = 1;

constexpr tFieldText listText = { "node-id list box", "", "Select a node-id.",
                                  "Select the node-id. for the device to connect.", "Nodes" };
constexpr tFieldText spinText = { "node-id spin box", "&Node-Id.:", "Enter a node-id.",
                                  "Enter the node-id. for the device to connect." };
constexpr tFieldText connectText = { "connect push button", "&Connect", "On-line mode ", // sic
                                     "Connect the object dictionary to a CANopen device." };
constexpr tFieldText offlineText = { "offline push button", "&Offline", "Off-line mode",
                                     "Operate on the object dictionary in off-line mode." };
constexpr tFieldText searchText = { "search push button", "&Search node", "Search a node",
                                    "Try to find a CANopen Node to connect the object dictionary to." };

} // namespace

CConnectNodeDialog::CConnectNodeDialog(QWidget* parent, const char* name) : QDialog(parent)
{
    setObjectName(QString::fromUtf8(name));
    setWindowTitle(QStringLiteral("Connect a Node"));

    // Kept: selecting an item leaves the spin box alone, and Connect takes the node-id of the spin box. A double click
    // takes that of the item.
    m_nodeIdListBox = new CWholeRows<QListWidget>(this);
    for (int nodeId = firstNodeId; nodeId <= highestNodeId; ++nodeId)
        m_nodeIdListBox->addItem(QStringLiteral("Node %1").arg(nodeId));
    fieldRow::describe(m_nodeIdListBox, listText);
    connect(m_nodeIdListBox, &QListWidget::itemDoubleClicked, this, &CConnectNodeDialog::doubleClicked);

    auto* side = new QVBoxLayout;
    side->addLayout(createNodeIdRow());
    side->addStretch();
    createButtons(side);

    auto* layout = new QHBoxLayout(this);
    layout->addWidget(m_nodeIdListBox, 1);
    layout->addLayout(side);

    setMinimumSize(smallestSize.expandedTo(minimumSizeHint()));
    resize(minimumSize());
    m_nodeIdSpinBox->setFocus();
}

QLayout* CConnectNodeDialog::createNodeIdRow()
{
    m_nodeIdSpinBox = new QSpinBox(this);
    m_nodeIdSpinBox->setRange(firstNodeId, highestNodeId);
    fieldRow::describe(m_nodeIdSpinBox, spinText);

    auto* range = new QLabel(QStringLiteral("(1,..,127)"), this);
    range->setObjectName(QStringLiteral("node-id range text label"));
    range->setWhatsThis(QLatin1String(spinText.whatsThis));

    auto* row = new QHBoxLayout;
    row->addWidget(fieldRow::createLabel(m_nodeIdSpinBox, spinText));
    row->addWidget(m_nodeIdSpinBox, 1);
    row->addWidget(range);
    return row;
}

void CConnectNodeDialog::createButtons(QLayout* layout)
{
    const struct {
        QPushButton*& button;
        const tFieldText& texts;
        Qt::Key key; // with Alt
        void (CConnectNodeDialog::*slot)();
    } buttons[] = {
        { m_connectPushButton, connectText, Qt::Key_C, &CConnectNodeDialog::acceptConnect },
        { m_offlinePushButton, offlineText, Qt::Key_O, &CConnectNodeDialog::acceptOffline },
        { m_searchPushButton, searchText, Qt::Key_S, &CConnectNodeDialog::searchNode },
    };
    for (const auto& [button, texts, key, slot] : buttons) {
        button = new QPushButton(QLatin1String(texts.label), this);
        button->setShortcut(QKeySequence(Qt::ALT | key));
        fieldRow::describe(button, texts);
        connect(button, &QPushButton::clicked, this, slot);
        layout->addWidget(button);
    }
    m_connectPushButton->setDefault(true);
}

void CConnectNodeDialog::doubleClicked(QListWidgetItem* item)
{
    if (item == nullptr || item->listWidget() != m_nodeIdListBox)
        return;
    m_nodeIdSpinBox->setValue(m_nodeIdListBox->row(item) + firstNodeId);
    acceptConnect();
}

void CConnectNodeDialog::acceptConnect()
{
    const int nodeId = m_nodeIdSpinBox->value();
    if (nodeId < firstNodeId || nodeId > highestNodeId)
        return messageBox::warning(this, messageBox::titleOf("Connect a Node"),
                                   QStringLiteral("Invalid node-id. given!\n\nPlease retry."));
    m_connectFlag = true;
    accept();
}

void CConnectNodeDialog::acceptOffline()
{
    m_connectFlag = false;
    accept();
}

void CConnectNodeDialog::searchNode()
{
    messageBox::critical(this, messageBox::titleOf("Search node"), QStringLiteral("Sorry, not realized yet!"));
}

int CConnectNodeDialog::getNodeId() const
{
    return m_nodeIdSpinBox->value();
}

bool CConnectNodeDialog::getConnectFlag() const
{
    return m_connectFlag;
}

const char* CConnectNodeDialog::version()
{
    return identity;
}
