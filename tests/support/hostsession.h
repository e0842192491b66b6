// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/desktop/dialogsession.h"
#include "host/output/notices.h"
#include "tests/support/fakedialog.h"

#include <QSignalSpy>
#include <QTimer>

#include <memory>
#include <optional>

/// A session of the host, not yet started, whose dialog contains one entry, "mast". The test decides whether saving
/// works.
struct HostSession
{
    explicit HostSession(const MenuSettings& settings = {})
    {
        fake.Add(QStringLiteral("mast"));
        dialog = FindDialog();
        session = std::make_unique<DialogSession>(
            *dialog, notices,
            [this] {
                ++saved;
                return Result();
            },
            [this](const auto& done) {
                ++autoSaved;
                done(Result());
            },
            settings);
        end = std::make_unique<QSignalSpy>(session.get(), &DialogSession::QuitRequested);
    }

    QTimer* AutoSaveTimer() const { return session->findChild<QTimer*>(QStringLiteral("m_autoSaveTimer")); }
    QString Result() const { return canSave ? QString() : QStringLiteral("the disk is full"); }

    FakeDialog fake;
    std::optional<ConnectDialog> dialog;
    Notices notices;
    int saved = 0;
    int autoSaved = 0;
    bool canSave = true;
    std::unique_ptr<DialogSession> session;
    std::unique_ptr<QSignalSpy> end;
};
