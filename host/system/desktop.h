// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

/// Returns whether there is a display on which windows can be shown.
bool HasDesktop();

/// Makes fonts available to Qt's offscreen platform. Call this before creating the application object.
void SetUpOffscreenFonts();

/// Selects the usual desktop font for offscreen windows, if available. Call this after creating the application object.
void ChooseOffscreenFont();
