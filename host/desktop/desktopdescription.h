// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>

/// Returns a JSON object that describes the desktop as the host finds it: "platform" and "style" of the widgets, and
/// "screens", each with "name", "size" in pixels of the user interface, "scale" and "dotsPerInch". Needs the
/// QApplication.
QByteArray DesktopDescription();
