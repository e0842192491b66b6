// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include "files/atomicfile.h"
#include "platform/cfgcenter.h"
#include "platform/documentwriter.h"
#include "platform/guibase.h"
#include "platform/icfg.h"
#include "platform/tracing.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/applicationinstance.h"
#include "userinterface/vexelconnectdlg/connect/entryconnector.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/filter/connectionfilter.h"
#include "userinterface/vexelconnectdlg/filter/filtersettings.h"
#include "userinterface/vexelconnectdlg/import/listimport.h"
#include "userinterface/vexelconnectdlg/views/editorrouting.h"
#include "userinterface/vexelconnectdlg/views/filedragfilter.h"
#include "userinterface/vexelconnectdlg/views/hiddenitems.h"
#include "userinterface/vexelconnectdlg/views/listkeys.h"
#include "userinterface/vexelconnectdlg/views/secondclick.h"
#include "userinterface/vexelconnectdlg/views/selectedrows.h"
#include "userinterface/vexelconnectdlg/views/sizingdelegate.h"
#include "userinterface/vexelconnectdlg/views/synchronizedscrolling.h"
#include "userinterface/vexelconnectdlg/views/viewsizing.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QScopeGuard>
#include <QSet>
#include <QUrl>

#include <algorithm>
#include <optional>
#include <utility>

namespace {

constexpr const char* kIsConnecting = "isConnecting";
constexpr const char* kTraceSource = "userinterface/vexelconnectdlg/vexelconnectdlggui";
constexpr quint16 kCannotReadLine = 383;
constexpr quint16 kNothingToReadLine = 388;
constexpr quint16 kCannotWriteLine = 421;
constexpr quint16 kNothingToWriteLine = 426;

QString UriListType()
{
    return QStringLiteral("text/uri-list");
}

QString FileFilter()
{
    return QStringLiteral("*.xml");
}

/// Returns whether an open modal window blocks `window`. One that belongs to another window does not.
bool IsBlocked(const QWidget& window)
{
    const QWidgetList others = QApplication::topLevelWidgets();
    return std::any_of(others.begin(), others.end(), [&window](const QWidget* other) {
        if (other == &window || !other->isVisible() || !other->isModal())
            return false;
        const QWidget* owner = other;
        while (owner && owner != &window)
            owner = owner->parentWidget();
        return owner || other->windowModality() == Qt::ApplicationModal;
    });
}

/// Asks for a file. Returns an empty name if the user cancels, and none if `parent` is destroyed meanwhile, which the
/// static functions of QFileDialog do not survive.
std::optional<QString> AskForFile(QWidget* parent, const QString& title, QFileDialog::AcceptMode mode)
{
    auto* const dialog = new QFileDialog(parent, title, QString(), FileFilter());
    const QPointer<QFileDialog> alive(dialog);
    dialog->setSupportedSchemes({QStringLiteral("file")});
    dialog->setAcceptMode(mode);
    dialog->setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    const bool isAccepted = dialog->exec() == QDialog::Accepted;
    if (!alive)
        return std::nullopt;
    const QString fileName = isAccepted ? dialog->selectedFiles().value(0) : QString();
    delete dialog;
    return fileName;
}

} // namespace

VexelConnectDlgGUI::VexelConnectDlgGUI(QWidget* parent, ConnectionsModel* model, AppCounter* appCounter)
    : QDialog(parent)
    , m_pModel(model)
    , m_pAppCounter(appCounter)
{
    setupUi(this);
    setObjectName(QStringLiteral("VexelConnectDlgGUI"));
    setAcceptDrops(true);
    // A tool tip refers to the "?" button, which dialogs do not have by default.
    setWindowFlag(Qt::WindowContextHelpButtonHint);

    connect(
        m_pModel, &QAbstractItemModel::dataChanged, this,
        [this](const QModelIndex& topLeft, const QModelIndex& bottomRight) { SlotDataChanged(topLeft, bottomRight); });
    m_pScrolling = new SynchronizedScrolling(m_pBasicView, m_pDetailsView);

    m_pContextMenu = new QMenu(this);
    m_pContextMenu->addAction(m_pDetailsAction);
    m_pContextMenu->addAction(m_pFilterAction);
    m_pContextMenu->addSeparator();
    m_pContextMenu->addAction(m_pNewAction);
    m_pContextMenu->addAction(m_pDeleteAction);
    m_pContextMenu->addSeparator();
    m_pContextMenu->addAction(m_pImportAction);
    m_pContextMenu->addAction(m_pExportAction);

    m_pProxyModel = new ConnectionFilterModel(this);
    m_pProxyModel->setSourceModel(m_pModel);
    m_pImport = new ListImport(this, m_pModel, m_pProxyModel, m_pAppCounter);
    auto* const sizingDelegate = new SizingDelegate(this);
    m_pDelegate = sizingDelegate;
    SetUpViews();
    FillFilterColumns();
    DistributeColumns();
    new ViewSizing({m_pBasicView, m_pDetailsView}, sizingDelegate);
    SetUpHeaders();

    SlotShowDetails(false);
    SlotShowFilter(false);
    UpdateFilterColumns();
    RestoreFilterSettings();
}

VexelConnectDlgGUI::~VexelConnectDlgGUI()
{
    StoreFilterSettings();
    // The model stores the entries next.
    delete m_pImport;
    // Destroying the window commits an open editor. This object must not handle the change any more.
    disconnect(m_pModel, nullptr, this, nullptr);
    m_pModel = nullptr;
    m_pProxyModel = nullptr;
    m_pDelegate = nullptr;
    // An open box may have been chosen from the menu, which accesses itself when the choice has been handled.
    if (findChild<QDialog*>(QString(), Qt::FindDirectChildrenOnly)) {
        m_pContextMenu->setParent(nullptr);
        m_pContextMenu->deleteLater();
    }
    m_pContextMenu = nullptr;
}

void VexelConnectDlgGUI::SetUpViews()
{
    for (QTreeView* view : {m_pBasicView, m_pDetailsView}) {
        view->setModel(m_pProxyModel);
        view->setItemDelegate(m_pDelegate);
        // So Qt need not measure ten thousand rows. The delegate gives all the same height.
        view->setUniformRowHeights(true);
    }
    m_pBasicView->setAccessibleName(tr("Connections"));
    m_pDetailsView->setAccessibleName(tr("Connection Details"));
    QItemSelectionModel* const ownSelection = m_pDetailsView->selectionModel();
    m_pDetailsView->setSelectionModel(m_pBasicView->selectionModel());
    delete ownSelection;

    RouteEditors(m_pDelegate, {m_pBasicView, m_pDetailsView});

    auto* const fileDrags = new FileDragFilter(this);
    fileDrags->Watch(m_pBasicView->viewport());
    fileDrags->Watch(m_pFilterPatternLineEdit);

    new ListKeys({m_pBasicView, m_pDetailsView}, ConnectionsModel::ColumnSelected, this);
    for (QTreeView* view : {m_pBasicView, m_pDetailsView})
        new SecondClick(view, ConnectionsModel::ColumnSelected);
}

void VexelConnectDlgGUI::FillFilterColumns()
{
    m_pFilterColumnComboBox->clear();
    for (int column = 0; column < ConnectionsModel::kColumnCount; ++column) {
        m_pFilterColumnComboBox->addItem(
            m_pModel->headerData(column, Qt::Horizontal, Qt::DecorationRole).value<QIcon>(),
            m_pModel->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
    }
}

void VexelConnectDlgGUI::DistributeColumns()
{
    m_basicColumns = {ConnectionsModel::ColumnSelected, ConnectionsModel::ColumnName, ConnectionsModel::ColumnStatus,
                      ConnectionsModel::ColumnDeviceType};
    for (int column = 0; column < ConnectionsModel::kColumnCount; ++column) {
        const bool basic = m_basicColumns.contains(column);
        m_pBasicView->setColumnHidden(column, !basic);
        m_pDetailsView->setColumnHidden(column, basic);
    }
}

void VexelConnectDlgGUI::SetUpHeaders()
{
    QHeaderView* const basicHeader = m_pBasicView->header();
    QHeaderView* const detailsHeader = m_pDetailsView->header();
    basicHeader->setIconSize(QSize(14, 14));
    // Both views share one order: the sort indicator is on the sorted column, in the view that shows it.
    basicHeader->setSortIndicator(ConnectionsModel::ColumnName, Qt::AscendingOrder);
    detailsHeader->setSortIndicator(ConnectionsModel::ColumnName, Qt::AscendingOrder);
    basicHeader->setSectionResizeMode(QHeaderView::ResizeToContents);
    detailsHeader->setSectionResizeMode(QHeaderView::ResizeToContents);

    connect(basicHeader, &QHeaderView::sortIndicatorChanged, detailsHeader, &QHeaderView::setSortIndicator);
    connect(detailsHeader, &QHeaderView::sortIndicatorChanged, basicHeader, &QHeaderView::setSortIndicator);
}

void VexelConnectDlgGUI::UpdateFilterColumns()
{
    for (int column = 0; column < ConnectionsModel::kColumnCount; ++column) {
        const bool shown = column != ConnectionsModel::ColumnSelected &&
                           (m_basicColumns.contains(column) || m_pDetailsView->isVisible());
        SetItemHidden(m_pFilterColumnComboBox, column, !shown);
    }
}

void VexelConnectDlgGUI::SlotConnect()
{
    ConnectWhere([this](const QModelIndex& entry) { return m_pModel->GetConnection(entry.row()).Selected; });
}

bool VexelConnectDlgGUI::ConnectEntries(const QList<int>& rows)
{
    QSet<QPersistentModelIndex> entries;
    for (const int row : rows)
        entries.insert(m_pModel->index(row, ConnectionsModel::ColumnName));
    return ConnectWhere([&entries](const QModelIndex& entry) { return entries.contains(entry); });
}

bool VexelConnectDlgGUI::ConnectWhere(std::function<bool(const QModelIndex& entry)> isWanted)
{
    // The host may destroy the instance during a break or while a message box is open.
    const QPointer<VexelConnectDlgGUI> guard(this);
    const auto restore = qScopeGuard([guard, before = property(kIsConnecting)] {
        if (guard)
            guard->setProperty(kIsConnecting, before);
    });
    setProperty(kIsConnecting, true);
    hide();

    EntryConnector connector(
        *this, *m_pModel, *m_pAppCounter, std::move(isWanted),
        [this](const std::function<bool()>& whileWaiting) { WriteLegacyConnectData(whileWaiting); });
    return connector.Run();
}

void VexelConnectDlgGUI::WriteLegacyConnectData(const std::function<bool()>& whileWaiting)
{
    auto* const writer = dynamic_cast<IDocumentWriter*>(CfgCenter::GetAppCfg(View::Application));
    ExportLegacyConnectData(*m_pModel, writer, whileWaiting);
}

QVariantMap VexelConnectDlgGUI::ApplicationOf(int row) const
{
    if (!m_pModel || row < 0 || row >= m_pModel->rowCount())
        return {};
    const ApplicationInstance* const instance = m_pAppCounter->InstanceOf(m_pModel->GetConnection(row));
    if (!instance)
        return {};
    QVariantMap application{{QStringLiteral("program"), instance->GetProgram()},
                            {QStringLiteral("process"), instance->GetProcess()},
                            {QStringLiteral("since"), instance->GetStartTime()}};
    if (const auto& end = instance->GetEnd()) {
        if (end->status == QProcess::NormalExit) {
            application.insert(QStringLiteral("exitCode"), end->code);
        } else {
            application.insert(QStringLiteral("crashed"), true);
#ifdef Q_OS_UNIX
            application.insert(QStringLiteral("signal"), end->code);
#endif
        }
    }
    return application;
}

void VexelConnectDlgGUI::SlotClose()
{
    hide();
}

void VexelConnectDlgGUI::SlotNew()
{
    if (m_pModel->IsFull()) {
        ShowInfo(tr("The list is full.\n\nPlease delete entries before you add a new one."));
        return;
    }
    const int row = m_pModel->rowCount();
    m_pModel->AddConnection(Connection());
    const QModelIndex added = m_pProxyModel->mapFromSource(m_pModel->index(row, ConnectionsModel::ColumnName));
    if (!added.isValid())
        return;
    m_pDetailsView->scrollTo(added); // first, because its scroll range from before would limit the basic view's
    m_pBasicView->selectionModel()->setCurrentIndex(added, QItemSelectionModel::NoUpdate);
}

void VexelConnectDlgGUI::SlotEdit()
{
    ShowInfo(tr("Not yet implemented."));
}

void VexelConnectDlgGUI::SlotDelete()
{
    QItemSelectionModel* const selection = m_pBasicView->selectionModel();
    if (!selection)
        return;
    QList<int> rows = SelectedRows(*selection);
    if (rows.isEmpty()) {
        ShowInfo(tr("No entry selected!\n\nPlease select the entries you want to delete."));
        return;
    }
    for (int& row : rows)
        row = m_pProxyModel->mapToSource(m_pProxyModel->index(row, 0)).row();
    // No selection remains after the removal, and updating it at every step would take most of the time.
    selection->clearSelection();
    m_pModel->RemoveEntries(rows);
}

void VexelConnectDlgGUI::SlotShowDetails(bool bShow)
{
    m_pDetailsView->setVisible(bShow);
    UpdateFilterColumns();
    m_pScrolling->UpdateHorizontalBars();
}

void VexelConnectDlgGUI::SlotShowFilter(bool bShow)
{
    m_pFilterFrame->setVisible(bShow);
    if (bShow) {
        m_pFilterPatternLineEdit->setFocus(Qt::OtherFocusReason);
        m_pFilterPatternLineEdit->selectAll();
    }
    SlotUpdateFilter();
}

void VexelConnectDlgGUI::SlotUpdateFilter()
{
    ApplyFilter();
    UpdateFilterSign();
}

void VexelConnectDlgGUI::ApplyFilter()
{
    m_pProxyModel->SetFilter(m_pFilterColumnComboBox->currentIndex(), m_pFilterPatternLineEdit->text(),
                             m_pRegExpComboBox->currentIndex(), m_pBasicView->selectionModel());
}

void VexelConnectDlgGUI::UpdateFilterSign()
{
    m_pFilterActiveLabel->setVisible(!m_pFilterFrame->isVisible() && !m_pFilterPatternLineEdit->text().isEmpty());
}

void VexelConnectDlgGUI::RestoreFilterSettings()
{
    const FilterSettings settings = FilterSettings::Load();
    m_pFilterColumnComboBox->setCurrentIndex(settings.column);
    m_pFilterPatternLineEdit->setText(settings.pattern);
    m_pRegExpComboBox->setCurrentIndex(settings.searchMode);
}

void VexelConnectDlgGUI::StoreFilterSettings()
{
    const FilterSettings settings{m_pFilterColumnComboBox->currentIndex(), m_pFilterPatternLineEdit->text(),
                                  m_pRegExpComboBox->currentIndex()};
    settings.Save();
}

void VexelConnectDlgGUI::SlotClicked(QModelIndex index)
{
    if (index.column() != ConnectionsModel::ColumnSelected || !index.flags().testFlag(Qt::ItemIsEnabled))
        return;
    const bool selected = m_pProxyModel->data(index, Qt::EditRole).toBool();
    m_pProxyModel->setData(index, !selected, Qt::EditRole);
}

void VexelConnectDlgGUI::SlotDoubleClicked(QModelIndex index)
{
    if (index.column() == ConnectionsModel::ColumnSelected)
        return;
    QTreeView* const view = m_pDetailsView->hasFocus() ? m_pDetailsView : m_pBasicView;
    if (index.flags().testFlag(Qt::ItemIsEditable))
        view->edit(index);
}

void VexelConnectDlgGUI::SlotDataChanged(QModelIndex topLeft, QModelIndex bottomRight)
{
    const auto touches = [&](int column) {
        return topLeft.column() <= column && bottomRight.column() >= column;
    };
    if (touches(ConnectionsModel::ColumnSelected) || touches(ConnectionsModel::ColumnStatus))
        m_pConnectButton->setEnabled(m_pModel->CountSelectedFree() != 0);
}

void VexelConnectDlgGUI::SlotImport()
{
    if (const auto fileName = AskForFile(this, tr("Import Connection Settings"), QFileDialog::AcceptOpen))
        Import(*fileName);
}

void VexelConnectDlgGUI::SlotExport()
{
    if (const auto fileName = AskForFile(this, tr("Export Connection Settings"), QFileDialog::AcceptSave))
        Export(*fileName);
}

bool VexelConnectDlgGUI::Import(const QString& fileName)
{
    // Of an earlier import that is still running, or whose message box is still open.
    m_pImport->Cancel();
    m_pImport->RollBack();
    if (fileName.isEmpty()) {
        Trace(
            kTraceSource, kNothingToReadLine,
            [] { return QStringLiteral("VexelConnectDlgGUI::Import(): no file name given"); });
    } else {
        const ListImport::Result result = m_pImport->Run(fileName);
        // Cancelled also by the destruction of this object.
        if (result == ListImport::Result::Done || result == ListImport::Result::Cancelled)
            return result == ListImport::Result::Done;
        if (result == ListImport::Result::NoFile) {
            Trace(
                kTraceSource, kCannotReadLine,
                [&fileName] {
                    return QStringLiteral("VexelConnectDlgGUI::Import(): could not open file \"%1\" for reading")
                        .arg(fileName);
                });
        }
    }
    m_pImport->Fail();
    const QPointer<VexelConnectDlgGUI> guard(this);
    ShowInfo(tr("Could not import connection entries from file\n\"%1\"\n\nProbably the file does not include proper "
                "connection data.\n\nWill keep old connections.")
                 .arg(fileName));
    if (guard)
        RollBackImport();
    return false;
}

void VexelConnectDlgGUI::RollBackImport()
{
    m_pImport->RollBack();
}

QByteArray VexelConnectDlgGUI::EntriesBeforeImport() const
{
    return m_pImport->EntriesBefore();
}

void VexelConnectDlgGUI::Export(const QString& fileName)
{
    if (fileName.isEmpty()) {
        Trace(kTraceSource, kNothingToWriteLine,
              [] { return QStringLiteral("VexelConnectDlgGUI::Export(): no file name given"); });
        return;
    }
    if (!ReplaceRegularFile(fileName, m_pModel->ToByteArray()).isEmpty()) {
        Trace(
            kTraceSource, kCannotWriteLine,
            [&fileName] {
                return QStringLiteral("VexelConnectDlgGUI::Export(): could not open file \"%1\" for writing")
                    .arg(fileName);
            });
    }
}

void VexelConnectDlgGUI::contextMenuEvent(QContextMenuEvent* event)
{
    const bool nothingInUse = m_pModel->CountInUse() == 0;
    m_pImportAction->setEnabled(nothingInUse);
    m_pExportAction->setEnabled(nothingInUse);
    m_pContextMenu->popup(event->globalPos());
}

void VexelConnectDlgGUI::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasFormat(UriListType()))
        event->acceptProposedAction();
}

void VexelConnectDlgGUI::dropEvent(QDropEvent* event)
{
    if (!event->mimeData()->hasFormat(UriListType())) {
        event->ignore();
        return;
    }
    const QList<QUrl> urls = event->mimeData()->urls();
    // Not while a message box may tell about the entries: its text would become wrong.
    if (urls.size() == 1 && IsBlocked(*this)) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    const auto handle = [this, urls] {
        if (urls.isEmpty())
            ShowInfo(tr("Not enough files dropped.\n\nPlease drop at least one file."));
        else if (urls.size() > 1)
            ShowInfo(tr("Too much files dropped (%1 files).\n\nPlease drop at most one file.").arg(urls.size()));
        else
            Import(urls.first().toLocalFile());
    };
    // The program from which the files come waits until this event has been handled, however long a box is open.
    QMetaObject::invokeMethod(this, handle, event->spontaneous() ? Qt::QueuedConnection : Qt::DirectConnection);
}

void VexelConnectDlgGUI::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    // Qt would centre the dialog again whenever it is shown.
    setAttribute(Qt::WA_Moved);
    // The frame does not count as visible while the dialog is hidden.
    UpdateFilterSign();
    GuiBase& guiBase = GuiBase::Instance();
    if (!guiBase.GetMainWidget()) {
        guiBase.SetMainWidget(this);
        guiBase.RestoreWidgetSize(this);
    }
    show();
}

void VexelConnectDlgGUI::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    // Spontaneous if the user minimises the window.
    if (event->type() == QEvent::WindowStateChange && isMinimized() && !event->spontaneous()) {
        m_bStayMinimized = true;
        QMetaObject::invokeMethod(
            this, [this] { m_bStayMinimized = false; }, Qt::QueuedConnection);
    }
}

void VexelConnectDlgGUI::setVisible(bool visible)
{
    // Qt leaves a minimised window minimised. showMinimized() sets the state before it calls this.
    if (visible && isMinimized() && !m_bStayMinimized)
        setWindowState(windowState() & ~Qt::WindowMinimized);
    QDialog::setVisible(visible);
    m_bStayMinimized = false;
}

void VexelConnectDlgGUI::ShowInfo(const QString& text)
{
    // Not on the stack: the host may destroy the instance, and with it the dialog and its children, while the box is
    // open.
    const QPointer<QMessageBox> box =
        new QMessageBox(QMessageBox::Information, tr("Info"), text, QMessageBox::Ok, this);
    // File names may contain markup.
    box->setTextFormat(Qt::PlainText);
    box->exec();
    // No member access after this.
    delete box;
}
