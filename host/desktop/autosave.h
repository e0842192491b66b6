// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/plugin/connectdialog.h"
#include "host/store/storedset.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <functional>
#include <future>

/// Saves the list some seconds after the last change of it, and at least once a minute while it is being changed, so
/// that the sudden end of the host loses nothing older. A change of statuses alone is not saved.
///
/// The list is copied on the GUI thread; another thread turns the copy into text and writes it.
class AutoSave : public QObject
{
    Q_OBJECT

public:
    /// Saves the configuration in another thread and calls the function with the reason for a failure, empty on
    /// success.
    using Save = std::function<void(std::function<void(const QString& error)>)>;

    /// `dialog` must outlive this object.
    AutoSave(const ConnectDialog& dialog, Save save, QObject* parent = nullptr);
    ~AutoSave() override;

    /// Saves at once, also the statuses. The list is copied and turned into text only if it has changed.
    void SaveNow();
    /// Drops what has not been handed to the configuration yet, because all is being saved otherwise.
    void Cancel();

signals:
    /// A save has ended; `error` says why it failed, empty on success.
    void Saved(const QString& error);

private:
    void OnChange();
    void OnDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight);
    void Start();
    void Write(const StoredText& text);
    void SaveStored();

    const ConnectDialog& m_dialog;
    const Save m_save;
    QTimer m_timer;
    QElapsedTimer m_firstChange; // that is not being saved yet
    bool m_isChanged = false;    // since the list was last copied
    bool m_isBusy = false;       // a text is being made
    bool m_isDue = false;        // another text, when this one is ready
    QByteArray m_beforeImport;   // copied already; see ListCopy::document
    int m_run = 0;               // changes whenever the text that is being made is of no use any more
    std::future<void> m_text;
};
