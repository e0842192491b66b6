// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QFile>
#include <QGenericPlugin>
#include <QTimer>

#include <cstdlib>

namespace {

/// Copies /proc/self/status to the file named by VEXEL_FIRSTPAINT_MEMORY, if set.
void ReportMemory()
{
    QFile report(qEnvironmentVariable("VEXEL_FIRSTPAINT_MEMORY"));
    QFile status(QStringLiteral("/proc/self/status"));
    if (!report.fileName().isEmpty() && report.open(QIODevice::WriteOnly) && status.open(QIODevice::ReadOnly))
        report.write(status.readAll());
}

/// Exits at once with code 0 after a dialog of this process was painted for the first time.
class FirstPaint : public QObject
{
protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        // A dialog paints its contents when it handles this event, so the timer fires after that.
        if (event->type() == QEvent::UpdateRequest && qobject_cast<QDialog*>(watched))
            QTimer::singleShot(0, qApp, [] {
                ReportMemory();
                std::_Exit(0);
            });
        return false;
    }
};

} // namespace

/// Measures the time from the start of any Qt program to its first painted dialog, without changing the program: Qt
/// loads this plug-in if QT_QPA_GENERIC_PLUGINS names it.
class FirstPaintPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "firstpaint.json")

public:
    QObject* create(const QString& /*name*/, const QString& /*settings*/) override
    {
        auto* const filter = new FirstPaint;
        qApp->installEventFilter(filter);
        return filter;
    }
};

#include "firstpaint.moc"
