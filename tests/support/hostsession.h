#pragma once

#include "host/desktop/dialogsession.h"
#include "host/output/notices.h"
#include "tests/support/fakedialog.h"

#include <QSignalSpy>

#include <memory>
#include <optional>

/// A session of the host, not yet started, whose dialog contains one entry, "mast". The test decides whether saving
/// works.
struct HostSession
{
    HostSession()
    {
        fake.Add(QStringLiteral("mast"));
        dialog = FindDialog();
        session = std::make_unique<DialogSession>(*dialog, notices, [this] {
            ++saved;
            return canSave;
        });
        end = std::make_unique<QSignalSpy>(session.get(), &DialogSession::QuitRequested);
    }

    FakeDialog fake;
    std::optional<ConnectDialog> dialog;
    Notices notices;
    int saved = 0;
    bool canSave = true;
    std::unique_ptr<DialogSession> session;
    std::unique_ptr<QSignalSpy> end;
};
