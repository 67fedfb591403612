// A document window of the test's own, and how files are opened in it.
// SPDX-License-Identifier: MIT
#include "NewDocument.h"

#include "InDialog.h"
#include "WhenShown.h"

CNewDocument::CNewDocument() : CDocumentDriver(new CMDIWindow), m_owner(window)
{
    window->show();
}

bool CNewDocument::open(const QByteArray& sheet, CCANopenAccess* access, int node)
{
    m_sheet = std::make_unique<CSheetFile>(sheet);
    return openFile(m_sheet->name(), access, node);
}

bool CNewDocument::openFile(const QString& name, CCANopenAccess* access, int node)
{
    const CWhenShown<CConnectNodeDialog> connecting([node](CConnectNodeDialog* dialog) {
        if (node == cancels)
            dialog->close();
        else
            inDialog::chooseNode(dialog, node);
    });
    const bool opened = window->openDocument(name, access);
    connectDialogs = connecting.count();
    return opened;
}
