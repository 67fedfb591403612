// A document window of the test's own, and how files are opened in it.
// SPDX-License-Identifier: MIT
#pragma once

#include "DocumentDriver.h"
#include "SheetFile.h"

#include <memory>

/// Shows a new window, which it owns.
class CNewDocument : public CDocumentDriver
{
public:
    static constexpr int cancels = -1; ///< in place of a node: the connect dialog is closed
    static constexpr int offline = 0;  ///< in place of a node: the connect dialog's Offline button

    CNewDocument();

    /// Opens a file of this content; in the connect dialog, which comes up with an access, chooses the node.
    bool open(const QByteArray& sheet, CCANopenAccess* access = nullptr, int node = offline);
    bool openFile(const QString& name, CCANopenAccess* access = nullptr, int node = offline);
    /// The file that `open` made.
    QString fileName() const { return m_sheet->name(); }

    int connectDialogs = 0; ///< how many came up in the last opening

private:
    const std::unique_ptr<CMDIWindow> m_owner;
    std::unique_ptr<CSheetFile> m_sheet;
};
