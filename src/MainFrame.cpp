// The main frame: its construction and end, the document windows, the files and the help.
// SPDX-License-Identifier: MIT
#include "MainFrame.h"

#include "CANopenAccess.h"
#include "MDIWindow.h"
#include "base/Product.h"
#include "widgets/ImageIcon.h"
#include "widgets/MessageBoxes.h"
#include "widgets/ScreenRoom.h"
#include "widgets/Settings.h"
#include "widgets/StatusBar.h"
#include "widgets/WindowTitle.h"

#include <QAbstractItemView>
#include <QCloseEvent>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QIcon>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPointer>
#include <QSizeGrip>
#include <QSplitter>
#include <QVBoxLayout>

// The images are part of a static library and have to be registered. The macro must stand outside any namespace.
static void registerImages()
{
    Q_INIT_RESOURCE(velmora);
}

namespace
{

constexpr char identity[] = "$Id: MainFrame.cpp 61 2009-11-09 $";

constexpr int statusTime = 2000; // milliseconds
constexpr QSize initialSize(960, 640);

QString productTitle()
{
    return QLatin1String(product::title);
}

// As large as the document, where the workspace has that room: otherwise the workspace would choose a size.
QMdiSubWindow* createSubWindow(CMDIWindow* document, QMdiArea* workspace)
{
    const QSize documentSize = document->size();
    auto* frame = new QMdiSubWindow(workspace);
    frame->setAttribute(Qt::WA_DeleteOnClose);
    frame->setWidget(document);
    frame->setWindowIcon(document->windowIcon()); // otherwise that of the program
    frame->resize(documentSize.grownBy(frame->contentsMargins()));
    if (workspace->isVisible()) // its size is known
        frame->resize(frame->size().boundedTo(workspace->viewport()->size()).expandedTo(frame->minimumSizeHint()));

    // The system menu also has Ctrl+W, the shortcut of the program's Close; with two owners the key would do nothing.
    for (QAction* action : frame->systemMenu()->actions())
        if (!action->shortcuts().isEmpty())
            action->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F4));
    QObject::connect(document, &QObject::destroyed, frame, &QWidget::close);
    return frame;
}

void nameGrip(const QWidget* window)
{
    for (QSizeGrip* grip : window->findChildren<QSizeGrip*>())
        grip->setAccessibleName(QStringLiteral("Size of the window"));
}

// Qt leaves some parts of its dialog without a name.
void nameParts(const QFileDialog* dialog)
{
    nameGrip(dialog);
    for (QSplitter* splitter : dialog->findChildren<QSplitter*>()) {
        splitter->setAccessibleName(QStringLiteral("Places and files"));
        if (QSplitterHandle* handle = splitter->handle(1))
            handle->setAccessibleName(QStringLiteral("Width of the places"));
    }
    for (const QComboBox* box : dialog->findChildren<QComboBox*>())
        box->view()->setAccessibleName(QStringLiteral("Choices"));
}

} // namespace

CMainFrame::CMainFrame(QWidget* parent, const char* name, Qt::WindowFlags flags) : QMainWindow(parent, flags)
{
    registerImages();
    setStatusBar(new CStatusBar(this));
    nameGrip(statusBar());
    setObjectName(name != nullptr ? QString::fromUtf8(name) : QStringLiteral("main window"));
    setWindowIcon(imageIcon(QStringLiteral("program.png")));

    createActions();
    createMenus();
    createToolBar();
    createWorkspace();
    connectActionsAndMenus();
    connect(this, &QWidget::windowTitleChanged, this, &CMainFrame::keepCaption);

    resize(initialSize.boundedTo(screenRoom::largest(this)));
    status(QStringLiteral("Ready"));
}

CMainFrame::~CMainFrame()
{
    disconnect(this, nullptr, this, nullptr); // a sub-window that is deleted changes the title once more
    deleteAccess();
    delete m_workspace;
}

void CMainFrame::createWorkspace()
{
    auto* box = new QFrame(this);
    box->setObjectName(QStringLiteral("workspace frame"));
    box->setAccessibleName(QStringLiteral("Workspace"));
    box->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    m_workspace = new QMdiArea(box);
    m_workspace->setObjectName(QStringLiteral("workspace"));
    m_workspace->setAccessibleName(QStringLiteral("Documents"));
    m_workspace->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_workspace->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_workspace->setOption(QMdiArea::DontMaximizeSubWindowOnActivation);

    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_workspace);
    setCentralWidget(box);
}

// A maximised document appends " - [its caption]" to the title of the frame; this takes it off again.
void CMainFrame::keepCaption(const QString& title)
{
    for (const QMdiSubWindow* frame : m_workspace->subWindowList()) {
        const QString decoration = QStringLiteral(" - [%1]").arg(frame->windowTitle());
        if (title.endsWith(decoration))
            return setWindowTitle(title.chopped(decoration.size()));
    }
}

void CMainFrame::closeEvent(QCloseEvent* event)
{
    for (QMdiSubWindow* frame : m_workspace->subWindowList())
        if (!frame->close()) {
            event->ignore();
            return;
        }
    deleteAccess();
    QMainWindow::closeEvent(event);
}

void CMainFrame::status(const QString& text)
{
    statusBar()->showMessage(text, statusTime);
}

bool CMainFrame::hasWindow() const
{
    return !m_workspace->subWindowList().isEmpty();
}

// Unlike the workspace's active window, also known while the frame is hidden or minimised.
QMdiSubWindow* CMainFrame::activeSubWindow() const
{
    return m_workspace->currentSubWindow();
}

CMDIWindow* CMainFrame::newDocument()
{
    const bool first = !hasWindow();
    auto* document = new CMDIWindow(m_workspace);
    document->setAttribute(Qt::WA_DeleteOnClose);
    connect(document, &CMDIWindow::message, statusBar(), &QStatusBar::showMessage);
    document->setWindowTitle(QStringLiteral("unnamed document"));
    document->setWindowIcon(imageIcon(QStringLiteral("document.png")));

    QMdiSubWindow* frame = createSubWindow(document, m_workspace);
    m_workspace->addSubWindow(frame);
    if (first)
        frame->showMaximized();
    else
        frame->show();
    return document;
}

void CMainFrame::fileOpen()
{
    const QPointer<QFileDialog> dialog = new QFileDialog(this);
    dialog->setObjectName(QStringLiteral("file open dialog"));
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilter(QStringLiteral("CANopen EDS-files (*.eds);;Any files (*)"));
    messageBox::removeButtonIcons(dialog);
    const messageBox::CBoxCare care; // of its boxes
    nameParts(dialog);
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (dialog.isNull()) // deleted together with the frame
        return;
    const QString chosen = accepted ? dialog->selectedFiles().value(0) : QString();
    delete dialog;

    const QString canonical = QFileInfo(chosen).canonicalFilePath(); // empty for a missing file
    openFile(canonical.isEmpty() ? chosen : canonical);
}

void CMainFrame::openFile(const QString& fileName)
{
    if (fileName.isEmpty())
        return status(QStringLiteral("Operation aborted"));

    const QPointer<CMainFrame> self = this;
    const bool loaded = newDocument()->openDocument(fileName, m_CANopen); // runs a dialog: the frame may be deleted
    if (self.isNull())
        return;
    if (loaded)
        setRecentFile(fileName);
    else
        deleteFileName(fileName);
    setWindowTitle(productTitle()); // Kept: without version and build from now on
}

void CMainFrame::setRecentFile(const QString& name)
{
    settings::setRecentFiles(settings::promoted(settings::recentFiles(), name));
}

void CMainFrame::deleteFileName(const QString& name)
{
    settings::setRecentFiles(settings::without(settings::recentFiles(), name));
}

void CMainFrame::filePrint()
{
    messageBox::critical(this, messageBox::titleOf("Print"), QStringLiteral("Sorry, not realized yet!"));
}

void CMainFrame::fileClose()
{
    if (QMdiSubWindow* frame = activeSubWindow())
        frame->close();
}

void CMainFrame::fileCloseAll()
{
    for (QMdiSubWindow* frame : m_workspace->subWindowList())
        frame->close();
}

void CMainFrame::deviceInfo()
{
    const QMdiSubWindow* frame = activeSubWindow();
    if (auto* document = frame != nullptr ? qobject_cast<CMDIWindow*>(frame->widget()) : nullptr)
        document->showDeviceInfo();
}

// Qt takes the documents in the order in which they have been opened, and the one that it makes smaller becomes the
// active one.
void CMainFrame::arrange(void (QMdiArea::*arrangement)())
{
    QMdiSubWindow* active = activeSubWindow();
    for (QMdiSubWindow* frame : m_workspace->subWindowList())
        if (frame->isMaximized())
            frame->showNormal();
    m_workspace->setActiveSubWindow(active);
    (m_workspace->*arrangement)();
    m_workspace->setActiveSubWindow(active);
}

void CMainFrame::tile()
{
    arrange(&QMdiArea::tileSubWindows);
}

// Each lies over those that are placed before it, and the active one over all. Qt gives every document the size that it
// would like, even one that goes beyond the workspace.
void CMainFrame::cascade()
{
    const QMdiArea::WindowOrder order = m_workspace->activationOrder();
    m_workspace->setActivationOrder(QMdiArea::StackingOrder);
    arrange(&QMdiArea::cascadeSubWindows);
    m_workspace->setActivationOrder(order);
    const QSize room = m_workspace->viewport()->size();
    for (QMdiSubWindow* frame : m_workspace->subWindowList()) {
        const QSize most(room.width() - frame->x(), room.height() - frame->y());
        frame->resize(frame->size().boundedTo(most).expandedTo(frame->minimumSizeHint()));
    }
}

void CMainFrame::helpTopic()
{
    messageBox::critical(this, messageBox::titleOf("Help Topic"), QStringLiteral("Sorry, not realized yet!"));
}

void CMainFrame::helpAbout()
{
    messageBox::about(this, productTitle(),
                      QStringLiteral("%1 - %2 for Linux\n\nVersion %3 of Nov  9 2009 (Build %4)\n\n   %5\n\n" // sic
                                     "Copyright %6\n\nInternet URL: %7\n\n")
                          .arg(QLatin1String(product::name), productTitle(), QLatin1String(product::version),
                               QString::number(product::buildNumber()), QLatin1String(product::licence),
                               QLatin1String(product::copyright), QLatin1String(product::homePage)));
}

void CMainFrame::helpAboutQt()
{
    messageBox::aboutQt(this, productTitle());
}

void CMainFrame::fileMenuAboutToShow()
{
    for (QAction* action : { m_fileCloseAction, m_fileCloseAllAction, m_filePrintAction })
        action->setEnabled(hasWindow());
}

void CMainFrame::fileListMenuAboutToShow()
{
    m_fileListMenu->clear();
    const QStringList files = settings::recentFiles();
    for (int position = 0; position < files.size(); ++position)
        connect(m_fileListMenu->addAction(files[position]), &QAction::triggered, this,
                [this, position] { fileListMenuActivated(position); });
    if (files.isEmpty())
        m_fileListMenu->addAction(QStringLiteral("<recently used files>"))->setEnabled(false);
}

void CMainFrame::fileListMenuActivated(int position)
{
    const QAction* item = m_fileListMenu->actions().value(position);
    openFile(item != nullptr ? item->text() : QString());
}

void CMainFrame::deviceMenuAboutToShow()
{
    m_deviceInfoAction->setEnabled(hasWindow());
}

void CMainFrame::interfaceMenuAboutToShow()
{
    // Both actions are always enabled.
}

void CMainFrame::windowsMenuAboutToShow()
{
    m_windowsMenu->clear();
    for (QAction* action : { m_windowsCascadeAction, m_windowsTileAction }) {
        action->setEnabled(hasWindow());
        m_windowsMenu->addAction(action);
    }
    if (!hasWindow())
        return;

    m_windowsMenu->addSeparator();
    const QList<QMdiSubWindow*> frames = m_workspace->subWindowList();
    for (int position = 0; position < frames.size(); ++position) {
        QAction* item = m_windowsMenu->addAction(windowTitle::textOf(frames[position]->windowTitle()));
        item->setCheckable(true);
        item->setChecked(frames[position] == activeSubWindow());
        connect(item, &QAction::triggered, this, [this, position] { windowsMenuActivated(position); });
    }
}

void CMainFrame::windowsMenuActivated(int position)
{
    QMdiSubWindow* frame = m_workspace->subWindowList().value(position);
    if (frame == nullptr)
        return;
    frame->showNormal();
    m_workspace->setActiveSubWindow(frame);
}

const char* CMainFrame::version()
{
    return identity;
}
