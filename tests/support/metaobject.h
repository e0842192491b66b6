// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaProperty>
#include <QString>
#include <QStringList>

/// Lists a class's name and base, then the signals, slots and properties that it declares itself.
inline QStringList Declaration(const QMetaObject& meta)
{
    QStringList lines{QLatin1String(meta.className()) + QLatin1String(" : ") +
                      QLatin1String(meta.superClass()->className())};
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QStringList parameters;
        for (int j = 0; j < method.parameterCount(); ++j)
            parameters += QString::fromLatin1(method.parameterTypes().at(j) + ' ' + method.parameterNames().at(j));
        const bool isSignal = method.methodType() == QMetaMethod::Signal;
        const bool isPublicSlot = method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Public;
        lines += QStringLiteral("%1 %2(%3)")
                     .arg(QLatin1String(isSignal       ? "signal"
                                        : isPublicSlot ? "slot"
                                                       : "other"),
                          QLatin1String(method.name()), parameters.join(QLatin1String(", ")));
    }
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
        lines += QLatin1String("property ") + QLatin1String(meta.property(i).name());
    return lines;
}
