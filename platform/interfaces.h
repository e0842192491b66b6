#pragma once

#include "platform/platformexport.h"

#include <QString>
#include <QtGlobal>

/// @file
/// The product's connections library: servers and clients behind one interface, reported through one callback.
///
/// An interface is made by `CInterfaceCreator` from an address:
///
/// - "TCP::PORT" is a server. It listens on this machine's loopback addresses, 127.0.0.1 and ::1, and nowhere else:
///   every program of this machine may call, no other machine can. It is one server, however many of the two the
///   machine has; if somebody else has the port on one of them, it is taken.
/// - "TCP:HOST:PORT" is a client of that host, by name or number. An IPv6 address stands in brackets: "TCP:[::1]:PORT".
///
/// PORT is a decimal number from 1 to 65535. No proxy is used, and nothing is sent but what is given to `Write`.
///
/// **Threads.** An interface belongs to the thread that made it, which must run an event loop: it is used and deleted
/// there, and every callback comes there. A callback never comes from within a call of an interface, and callbacks
/// about the same peer never nest: where one runs an event loop of its own, the next about that peer waits until it has
/// returned. No exception may leave a callback.
///
/// **Order.** A peer gets exactly one `OnOpen`, then any number of `OnRead` and `OnWritten`, then exactly one
/// `OnClose`. A caller that has already gone when its turn comes gets all of them, with what it sent. However abruptly
/// a peer leaves, that is no error. An error of an open connection is `OnError`, then `OnClose`; a client that could
/// not connect gets `OnError` alone.
///
/// **Ownership.** The caller owns what `CreateInterface` returns and ends it by `delete`, also from within a callback.
/// From then on no callback comes, not even the `OnClose` of what was open. The callback is not owned and must outlive
/// the interface.
///
/// **Bounds**, so that no stranger can fill the memory or keep others out:
///
/// - A server has at most `kMaximumPeers` peers at once. Who calls beyond that waits, unanswered, in the system's queue
///   until a place is free. When none gets free by itself, the peer that has been there longest is closed, once it had
///   `kAssuredTime` milliseconds. So honest callers that are many at once are all served, and silent ones cannot lock
///   them out. A peer whose callback runs an event loop keeps its place until that has returned.
/// - A peer that has sent nothing for the time-out of its interface is closed.
/// - At most `kMaximumBytesPerCall` bytes are taken from one peer, from its `OnOpen` to its `OnClose`. A peer that
///   sends more is closed.
/// - At most `kMaximumBytesPerRead` bytes are handed over in one `OnRead`, and no more than that is held of a peer in
///   memory. What the callback leaves unread is dropped when it returns.
/// - At most `kMaximumBytesUnsent` bytes wait for a peer to take them. A peer that makes more of them wait is in error.
///
/// A client keeps the same bounds against its one peer, the server. What is closed for its bounds is traced.

class IInterfaceCallback;

/// A server, a client, or one peer of a server.
///
/// Callbacks are given the interface that they are about: a server's peer has an interface of its own, owned by the
/// server and valid from its `OnOpen` until its `OnClose` has returned, or until the server is deleted. A client is its
/// own. The order of the virtual operations is part of the product's interface.
class VEXELPLATFORM_EXPORT IInterface
{
public:
    IInterface() = default;
    virtual ~IInterface();

    IInterface(const IInterface&) = delete;
    IInterface& operator=(const IInterface&) = delete;

    /// Begins to listen or to connect; does nothing on an interface that does so already. Returns false, with a trace,
    /// when a server cannot listen; when the `OnClose` of a client's last connection is still to come; and for a peer,
    /// which cannot be opened again. For a client true means that it tries: `OnOpen` or `OnError` follows.
    virtual bool Open() = 0;
    /// Ends a connection, or a server with the connections to all its peers: what the system takes at once of the bytes
    /// still unsent is sent. `OnClose` follows for every peer that had its `OnOpen`. `Open` may follow.
    virtual void Close() = 0;
    /// Whether a server listens; whether a client or a peer is connected, has had its `OnOpen` and not its `OnClose`.
    virtual bool IsOpen() const = 0;
    /// Sends `length` bytes of `data`; a server sends them to each of its peers. Copies the bytes and does not wait. On
    /// an interface that is not open the bytes are dropped.
    virtual void Write(const char* data, quint64 length) = 0;
    /// Takes waiting bytes: `*length` is the size of `buffer` before, and the number of bytes put there after. Only
    /// within `OnRead` bytes are waiting, at any other time the number is 0. With `flag` they are only looked at: the
    /// next read finds them again.
    /// @throw std::runtime_error on a server, on a connection that is not open, and without `buffer` or `length`.
    virtual void Read(char* buffer, quint64* length, bool flag) = 0;
};

/// What an interface reports, and to whom. The order of the virtual operations is part of the product's interface.
class VEXELPLATFORM_EXPORT IInterfaceCallback
{
public:
    IInterfaceCallback() = default;
    IInterfaceCallback(const IInterfaceCallback&) = delete;
    IInterfaceCallback& operator=(const IInterfaceCallback&) = delete;

    /// A peer has connected to a server, or a client to its host.
    virtual void OnOpen(IInterface* pInterface) = 0;
    /// The connection has ended, by whomever.
    virtual void OnClose(IInterface* pInterface) = 0;
    /// `length` bytes, at least one, wait to be read from `pInterface`.
    virtual void OnRead(IInterface* pInterface, quint64 length) = 0;
    /// A connection has failed, a client could not connect, or a server (then `pInterface` is the server) could not
    /// take a call; the server goes on and tries again.
    virtual void OnError(IInterface* pInterface) = 0;
    /// `length` bytes of what was given to `Write` have been taken by the system.
    virtual void OnWritten(IInterface* pInterface, quint64 length) = 0;

    virtual ~IInterfaceCallback();
};

/// Makes interfaces. Without state; made on the spot.
class CInterfaceCreator
{
public:
    static constexpr int kMaximumPeers = 16;
    static constexpr int kAssuredTime = 250;
    static constexpr int kMaximumBytesPerCall = 64 * 1024;
    static constexpr int kMaximumBytesPerRead = 4 * 1024;
    static constexpr int kMaximumBytesUnsent = 64 * 1024;

    /// Makes the server or client that `address` names, and opens it.
    /// @param callback who is told; must not be null.
    /// @param number the time-out in milliseconds: a peer that has sent nothing for so long is closed, and a client's
    ///        attempt to connect that takes so long has failed. 0: none. It is a coarse one, exact to a twentieth.
    /// @param flag false: the interface is open when it is returned. True: it is returned closed, for `Open`.
    /// @return the interface, which the caller owns; null, with a trace that says why, when the address is malformed,
    ///         the callback is null, the port is taken or cannot be listened at, or servers are not allowed.
    VEXELPLATFORM_EXPORT IInterface* CreateInterface(const QString& address, IInterfaceCallback* callback,
                                                     quint64 number, bool flag);

    /// Host side: whether servers of this process may listen, which they may at first. While they may not, opening one
    /// fails as if the port were taken; one that listens already goes on. For a host without a person at it: what it
    /// loads would have whoever calls believe that a dialog came to the front. To be called where interfaces are made.
    VEXELPLATFORM_EXPORT static void SetServersAllowed(bool bAllowed);
    /// Host side.
    VEXELPLATFORM_EXPORT static bool AreServersAllowed();
};
