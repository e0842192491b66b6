// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QObject>

/// Makes a widget ignore drags that carry files, so that its window gets them.
///
/// File managers also offer a dragged file as plain text, which a view would read as entries and a line edit would
/// insert. Qt offers a drag that a widget ignores to its parents.
class FileDragFilter : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// @param receiver the widget that gets the drag events; for a view its viewport.
    void Watch(QObject* receiver);

    bool eventFilter(QObject* watched, QEvent* event) override;
};
