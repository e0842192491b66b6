#pragma once

#include <QAbstractButton>
#include <QAbstractItemModel>
#include <QList>
#include <QPersistentModelIndex>
#include <QString>
#include <QTreeView>
#include <QWidget>

#include <optional>
#include <utility>

/// The entries' columns, as far as the host speaks of them. The display role is the text shown, the edit role the
/// value.
enum class EntryColumn : int {
    Tick = 0,
    Name = 1,
    Status = 2,
    DeviceType = 3,
    ConnectionType = 4,
    DeviceAddress = 5,
    DriverAddress = 6,
    LinkSpeed = 7,
    Timeout = 8,
    Subsystem = 9,
};
constexpr int kEntryColumnCount = 10;

/// The plug-in's connect dialog as the host sees it: nothing but Qt's public object tree, found by object names.
///
/// Rows are those of the list itself, in its own order, whatever the views filter and sort. Owns nothing; not to be
/// used once the plug-in's instance is destroyed. GUI thread only.
class ConnectDialog
{
public:
    static constexpr int kFree = 0;

    /// The dialog among this application's top-level windows. None, with `error` saying in a sentence what is missing,
    /// when there is none or it lacks a part.
    static std::optional<ConnectDialog> Find(QString& error);

    QWidget* Window() const { return m_pWindow; }
    QAbstractButton* ConnectButton() const { return m_pConnectButton; }
    /// Left (basic) and right (details) view.
    const QList<QTreeView*>& Views() const { return m_views; }
    /// The list of entries.
    QAbstractItemModel* Entries() const { return m_pEntries; }

    int Count() const;
    QString Name(int row) const;
    int Status(int row) const;
    bool IsTicked(int row) const;
    /// Tells the dialog even when the tick already is as asked, so that it sets its button by it.
    void SetTicked(int row, bool ticked) const;
    /// The rows of the entries called `name`, exactly.
    QList<int> RowsNamed(const QString& name) const;

    /// Appends the entries of a connection list document, all "Free". On an error, or where there is no entry, the list
    /// stays as it was and the result is false.
    bool Append(const QByteArray& document) const;
    /// The whole list as such a document.
    QByteArray Document() const;

    /// "&Connect". What it starts is started when this returns.
    void PressConnect() const { m_pConnectButton->click(); }

    /// Shows the dialog in front of other windows.
    void BringToFront() const;

private:
    ConnectDialog() = default;
    QVariant Value(int row, EntryColumn column) const;

    QWidget* m_pWindow = nullptr;
    QAbstractButton* m_pConnectButton = nullptr;
    QList<QTreeView*> m_views;
    QAbstractItemModel* m_pEntries = nullptr;
};

/// Keeps the ticks of all entries and gives them back when it goes, exactly as they were. Entries may be added, moved
/// and removed meanwhile.
class TickRestorer
{
public:
    explicit TickRestorer(const ConnectDialog& dialog);
    ~TickRestorer();

    TickRestorer(const TickRestorer&) = delete;
    TickRestorer& operator=(const TickRestorer&) = delete;

private:
    const ConnectDialog& m_dialog;
    QList<std::pair<QPersistentModelIndex, bool>> m_ticks;
};
