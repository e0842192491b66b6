// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/system/system.h"
#include "tests/support/testmain.h"
#include "tests/support/waitforend.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cwchar>

#include <windows.h>

namespace {

// No library has this name.
const wchar_t* const kLibrary = L"vexelplanted.dll";

/// Lets the process load the library by its bare name, as if one of its own libraries did so. Returns whether it has
/// found it: "found", "not found", or "not told" where it cannot be told to.
QString Loaded(qint64 number)
{
    const HANDLE process = OpenProcess(PROCESS_ALL_ACCESS, FALSE, static_cast<DWORD>(number));
    if (!process)
        return QStringLiteral("not told");
    const auto length = (std::wcslen(kLibrary) + 1) * sizeof(wchar_t);
    void* const name = VirtualAllocEx(process, nullptr, length, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    // The system's libraries are at one place in all processes.
    const FARPROC load = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "LoadLibraryW");
    const auto routine = reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(load));
    QString result = QStringLiteral("not told");
    if (name && WriteProcessMemory(process, name, kLibrary, length, nullptr)) {
        if (const HANDLE thread = CreateRemoteThread(process, nullptr, 0, routine, name, 0, nullptr)) {
            constexpr DWORD timeoutMs = 30'000;
            DWORD code = 0;
            // The lower half of where it is loaded.
            if (WaitForSingleObject(thread, timeoutMs) == WAIT_OBJECT_0 && GetExitCodeThread(thread, &code))
                result = code != 0 ? QStringLiteral("found") : QStringLiteral("not found");
            CloseHandle(thread);
        }
    }
    CloseHandle(process);
    return result;
}

} // namespace

/// What the programs load of which somebody else has put one of the same name into the current folder or along the
/// PATH.
class TestPlantedLibrary : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        for (const QString& folder : {Current(), Listed(), Elsewhere()})
            QVERIFY(QDir().mkpath(folder));
    }

    // Without this the others would say nothing: a program that takes no care does load it.
    void unprotectedProgramLoadsThePlantedLibrary_data() { Places(); }
    void unprotectedProgramLoadsThePlantedLibrary()
    {
        QFETCH(const QString, place);
        QProcess process;
        Start(process, QStringLiteral(VEXEL_TESTCHILD), {}, place);
        QTRY_VERIFY_WITH_TIMEOUT(!QDir(Elsewhere()).isEmpty(), 60'000);
        QCOMPARE(Loaded(process.processId()), QStringLiteral("found"));
        End(process);
    }

    void host_data() { Places(); }
    void host()
    {
        QFETCH(const QString, place);
        QProcess process;
        const QString config = Elsewhere() + QStringLiteral("/config");
        Start(process, QStringLiteral(VEXELHOST), {QStringLiteral("--config"), config}, place);
        // Only a running program can protect itself.
        QTRY_VERIFY_WITH_TIMEOUT(QDir(config).exists(), 60'000);
        QCOMPARE(Loaded(process.processId()), QStringLiteral("not found"));
        End(process);
    }

    void starter_data() { Places(); }
    void starter()
    {
        QFETCH(const QString, place);
        QProcess process;
        Start(process, QStringLiteral(VEXEL_KITESTARTER),
              {QStringLiteral("--host"), QDir().absoluteFilePath(QStringLiteral(VEXEL_TESTCHILD))}, place);
        // The program it starts writes a report.
        QTRY_VERIFY_WITH_TIMEOUT(!QDir(Elsewhere()).isEmpty(), 60'000);
        QCOMPARE(Loaded(process.processId()), QStringLiteral("not found"));
        End(process);
        const QString report = QDir(Elsewhere()).entryList({QStringLiteral("*.json")}).constFirst();
        const qint64 child = report.section(u'.', 0, 0).toLongLong();
        System::AskToEnd(child);
        QTRY_VERIFY_WITH_TIMEOUT(!System::IsProcess(child), 60'000);
    }

    void sampleApplication_data() { Places(); }
    void sampleApplication()
    {
        QFETCH(const QString, place);
        QProcess process;
        Start(process, QStringLiteral(KITECONTROL), {}, place);
        QTRY_VERIFY_WITH_TIMEOUT(!QDir(Elsewhere()).isEmpty(), 60'000);
        QCOMPARE(Loaded(process.processId()), QStringLiteral("not found"));
        End(process);
    }

    void cleanup() { QVERIFY(QDir(Elsewhere()).removeRecursively() && QDir().mkpath(Elsewhere())); }

private:
    static void Places()
    {
        QTest::addColumn<QString>("place");
        QTest::newRow("current folder") << QStringLiteral("current");
        QTest::newRow("PATH") << QStringLiteral("listed");
    }

    QString Current() const { return m_directory.filePath(QStringLiteral("current")); }
    QString Listed() const { return m_directory.filePath(QStringLiteral("listed")); }
    /// Where programs tell that they run.
    QString Elsewhere() const { return m_directory.filePath(QStringLiteral("elsewhere")); }

    /// Starts it with the library in the folder `place`.
    void Start(QProcess& process, const QString& program, const QStringList& arguments, const QString& place) const
    {
        const QString name = QString::fromWCharArray(kLibrary);
        for (const QString& folder : {Current(), Listed()})
            QFile::remove(folder + u'/' + name);
        QVERIFY(QFile::copy(QStringLiteral(VEXEL_LIBRARY), m_directory.filePath(place) + u'/' + name));

        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("PATH"),
                           QDir::toNativeSeparators(Listed()) + u';' + environment.value(QStringLiteral("PATH")));
        environment.insert(QStringLiteral("VEXEL_TESTCHILD_MODE"), QStringLiteral("polite"));
        environment.insert(QStringLiteral("VEXEL_TESTCHILD_REPORTS"), Elsewhere());
        environment.insert(QStringLiteral("KITECONTROL_REPORT_DIR"), Elsewhere());
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(Current());
        process.start(QDir().absoluteFilePath(program), arguments);
        QVERIFY(process.waitForStarted());
    }

    static void End(QProcess& process)
    {
        process.kill();
        QVERIFY(WaitForEnd(process));
    }

    QTemporaryDir m_directory;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestPlantedLibrary)
#include "tst_plantedlibrary_windows.moc"
