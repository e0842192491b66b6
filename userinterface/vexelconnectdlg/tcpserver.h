#pragma once

#include "platform/interfaces.h"

#include <QObject>

class QWidget;

/// The server that the product's starter application calls to bring the dialog of the running product to the front.
///
/// The call itself is the whole message: whatever the starter sends is read and dropped. Listens on "TCP::8451" from
/// construction to destruction, or not at all where that fails, which is traced and harmless otherwise. GUI thread
/// only; there the connections library calls back.
class TCPServer : public QObject, public IInterfaceCallback
{
    Q_OBJECT

public:
    /// @param pWidget the widget to raise; not owned. It may be gone before the server is, if no event is processed in
    ///        between.
    explicit TCPServer(QWidget* pWidget);
    ~TCPServer() override;

    /// Shows the widget and activates it, whether it is visible or not.
    void OnOpen(IInterface* pInterface) override;
    void OnClose(IInterface* pInterface) override;
    /// Takes `length` bytes from `pInterface`. What that throws is caught and traced.
    void OnRead(IInterface* pInterface, quint64 length) override;
    void OnError(IInterface* pInterface) override;
    /// Nothing: the server never answers.
    void OnWritten(IInterface* pInterface, quint64 length) override;

private:
    IInterface* m_pInterface = nullptr; // owned; null where the creation failed
    QWidget* const m_pWidget;
};
