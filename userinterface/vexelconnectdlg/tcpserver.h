// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/interfaces.h"

#include <QObject>

class QWidget;

/// The server to which the product's starter connects to bring the dialog of the running product to the front.
///
/// The connection itself is the message; data from the starter is read and discarded. Listens on "TCP::8451" for the
/// lifetime of the object. If that fails, the failure is only traced. GUI thread only; the callbacks come there, too.
class TCPServer : public QObject, public IInterfaceCallback
{
    Q_OBJECT

public:
    /// @param pWidget the widget to raise; not owned. May be destroyed before the server if no event is processed in
    ///        between.
    explicit TCPServer(QWidget* pWidget);
    ~TCPServer() override;

    /// Shows and activates the widget, even if it is already visible.
    void OnOpen(IInterface* pInterface) override;
    void OnClose(IInterface* pInterface) override;
    /// Reads `length` bytes from `pInterface`. Catches and traces exceptions.
    void OnRead(IInterface* pInterface, quint64 length) override;
    void OnError(IInterface* pInterface) override;
    /// Does nothing; the server never sends data.
    void OnWritten(IInterface* pInterface, quint64 length) override;

private:
    IInterface* m_pInterface = nullptr; // owned; null if creation failed
    QWidget* const m_pWidget;
};
