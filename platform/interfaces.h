// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/platformexport.h"

#include <QString>
#include <QtGlobal>

/// @file
/// The product's connections library: TCP servers and clients behind one interface, with events reported through one
/// callback.
///
/// `CInterfaceCreator` creates an interface from an address:
///
/// - "TCP::PORT" is a server. It listens on the loopback addresses 127.0.0.1 and ::1 only, so only programs on this
///   machine can connect. If one of the two does not exist, it listens on the other; if another program uses the port
///   on either of them, the port counts as taken.
/// - "TCP:HOST:PORT" is a client of HOST, a name or a numeric address. An IPv6 address is put in brackets:
///   "TCP:[::1]:PORT".
///
/// PORT is a decimal number from 1 to 65535. No proxy is used, and only the bytes passed to `Write` are sent.
///
/// **Threads.** An interface belongs to the thread that created it, which must run an event loop. Use and delete it in
/// that thread; all callbacks come there. They come from the event loop, never from within a call of an interface.
/// Callbacks about the same peer do not nest: if one runs an event loop itself, the next one about that peer waits
/// until it has returned. Callbacks must not throw.
///
/// **Order.** A peer gets exactly one `OnOpen`, then any number of `OnRead` and `OnWritten`, then exactly one
/// `OnClose`. This includes a peer that has disconnected before the server accepts it; the bytes it sent are delivered.
/// A disconnect by the peer, even a reset, is not an error. An error on an open connection is reported by `OnError`,
/// then `OnClose`; a client that cannot connect gets `OnError` only.
///
/// **Ownership.** The caller owns the interface that `CreateInterface` returns and ends it by deleting it, which is
/// allowed within a callback. After that no callback comes, not even `OnClose` for open connections. The callback is
/// not owned and must outlive the interface.
///
/// **Limits**, so that no other program can exhaust the memory or block the server:
///
/// - A server has at most `kMaximumPeers` peers at a time. Further callers wait in the system's queue until one leaves.
///   If none does, the oldest peer is closed as soon as it has been connected for `kMinimumPeerTime`. While callers
///   keep coming, each peer closed like this halves that time, down to `kShortestPeerTime`. So many callers at once are
///   all served, and silent peers cannot lock others out. A peer whose callback runs an event loop keeps its place
///   until that callback returns.
/// - A peer that sends nothing for the interface's time-out is closed.
/// - At most `kMaximumBytesPerCall` bytes are read from one connection. A peer that sends more is closed.
/// - One `OnRead` delivers at most `kMaximumBytesPerRead` bytes, and no more than that is buffered per peer. Bytes that
///   the callback does not read are discarded when it returns.
/// - All peers of a server together have at most `kReadBurst` bytes delivered at once, and `kReadBytesPerSecond` after
///   that, where each `OnRead` counts as some bytes more, because the callback may allocate memory for it. What exceeds
///   this is discarded, and its sender is closed. A client has no such limit.
/// - At most `kMaximumBytesUnsent` bytes wait to be sent to a peer. Writing more is an error of the connection.
///
/// A client applies the other limits to its server. Closing a connection because of a limit is traced.

class IInterfaceCallback;

/// A server, a client, or one peer of a server.
///
/// Each peer of a server has a separate interface, which the server passes to the callbacks. The server owns it; it is
/// valid from its `OnOpen` until its `OnClose` returns or the server is deleted. A client passes itself. The order of
/// the virtual functions is part of the product's interface.
class VEXELPLATFORM_EXPORT IInterface
{
public:
    IInterface() = default;
    virtual ~IInterface();

    IInterface(const IInterface&) = delete;
    IInterface& operator=(const IInterface&) = delete;

    /// Starts to listen or to connect; does nothing if already listening, connecting or connected. For a client, true
    /// means that it is connecting: `OnOpen` or `OnError` follows. Returns false, with a trace, if a server cannot
    /// listen, if the `OnClose` of a client's previous connection is still pending, and for a peer of a server, which
    /// cannot be reopened.
    virtual bool Open() = 0;
    /// Closes the connection, or stops the server and closes the connections of all its peers. Unsent bytes are sent as
    /// far as the system accepts them at once. `OnClose` follows for every connection that had its `OnOpen`. A server
    /// or client can be opened again.
    virtual void Close() = 0;
    /// Returns whether a server is listening, or whether a client or peer is connected and between `OnOpen` and
    /// `OnClose`.
    virtual bool IsOpen() const = 0;
    /// Sends `length` bytes of `data`; a server sends them to each of its peers. Copies the bytes and returns without
    /// waiting. Bytes for a connection that is not open are discarded.
    virtual void Write(const char* data, quint64 length) = 0;
    /// Copies received bytes to `buffer`. Bytes are available only within `OnRead`.
    /// @param buffer takes the bytes.
    /// @param length in: the size of `buffer`; out: the number of bytes copied, which may be 0.
    /// @param flag true to leave the bytes for the next read.
    /// @throw std::runtime_error on a server, if the connection is not open, or if `buffer` or `length` is null.
    virtual void Read(char* buffer, quint64* length, bool flag) = 0;
};

/// Receives the events of interfaces. The order of the virtual functions is part of the product's interface.
class VEXELPLATFORM_EXPORT IInterfaceCallback
{
public:
    IInterfaceCallback() = default;
    IInterfaceCallback(const IInterfaceCallback&) = delete;
    IInterfaceCallback& operator=(const IInterfaceCallback&) = delete;

    /// A peer has connected to a server, or a client to its server.
    virtual void OnOpen(IInterface* pInterface) = 0;
    /// The connection has been closed, by either side.
    virtual void OnClose(IInterface* pInterface) = 0;
    /// `length` bytes, at least one, can be read from `pInterface`.
    virtual void OnRead(IInterface* pInterface, quint64 length) = 0;
    /// A connection has failed, a client could not connect, or a server could not accept a connection. In the last case
    /// `pInterface` is the server, which keeps listening and tries again.
    virtual void OnError(IInterface* pInterface) = 0;
    /// The system has accepted `length` of the bytes passed to `Write`.
    virtual void OnWritten(IInterface* pInterface, quint64 length) = 0;

    virtual ~IInterfaceCallback();
};

/// Creates interfaces. Stateless.
class CInterfaceCreator
{
public:
    // The limits; see the top of this file.
    static constexpr int kMaximumPeers = 16;               ///< peers of a server at a time
    static constexpr int kMinimumPeerTime = 250;           ///< milliseconds
    static constexpr int kShortestPeerTime = 10;           ///< milliseconds
    static constexpr int kMaximumBytesPerCall = 64 * 1024; ///< bytes read from one connection
    static constexpr int kMaximumBytesPerRead = 4 * 1024;  ///< bytes of one `OnRead`
    static constexpr int kReadBurst = 1024 * 1024;         ///< bytes from all peers at once
    static constexpr int kReadBytesPerSecond = 4 * 1024;   ///< bytes from all peers per second after that
    static constexpr int kMaximumBytesUnsent = 64 * 1024;  ///< bytes waiting to be sent to a peer

    /// Creates the server or client for `address` and opens it.
    /// @param address "TCP::PORT" or "TCP:HOST:PORT"; see the top of this file.
    /// @param callback receives the events; must not be null.
    /// @param number time-out in milliseconds, accurate to 5 %; 0 for none. A peer that sends nothing for this time is
    ///        closed; an attempt to connect that takes this long fails.
    /// @param flag true to return the interface without opening it.
    /// @return the interface, owned by the caller. Null, with a trace of the reason, if the address is malformed, the
    ///         callback is null, the server cannot listen on the port, or servers are not allowed.
    VEXELPLATFORM_EXPORT IInterface* CreateInterface(const QString& address, IInterfaceCallback* callback,
                                                     quint64 number, bool flag);

    /// Host side: sets whether servers of this process may listen; the default is true. While they may not, opening a
    /// server fails as if the port were taken; servers that already listen are not affected. For hosts without a user
    /// interface: a caller would otherwise conclude that a dialog came to the front. Call from the thread that creates
    /// the interfaces.
    VEXELPLATFORM_EXPORT static void SetServersAllowed(bool bAllowed);
    /// Host side: returns the value set by `SetServersAllowed`.
    VEXELPLATFORM_EXPORT static bool AreServersAllowed();
};
