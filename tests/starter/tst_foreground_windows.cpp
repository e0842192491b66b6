// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/foreground.h"
#include "starter/starter.h"
#include "tests/starter/peers.h"
#include "tests/support/testmain.h"

#include <QTemporaryDir>

#include <atomic>
#include <cstring>

#include <windows.h>

namespace {

using namespace std::chrono_literals;

std::atomic<int> g_handedOver = 0;
std::atomic<DWORD> g_to = 0;

BOOL WINAPI Recorded(DWORD process)
{
    g_to = process;
    ++g_handedOver;
    return TRUE;
}

/// Where this program keeps the address of a function of another library, as the loader has put it there.
FARPROC* ImportedAddress(const char* library, const char* function)
{
    auto* const base = reinterpret_cast<char*>(GetModuleHandleW(nullptr));
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* import = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
    for (; import->Name != 0; ++import) {
        if (_stricmp(base + import->Name, library) != 0)
            continue;
        const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA64*>(base + import->OriginalFirstThunk);
        auto* address = reinterpret_cast<FARPROC*>(base + import->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++address) {
            const auto* const byName = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            if (!IMAGE_SNAP_BY_ORDINAL64(name->u1.Ordinal) && std::strcmp(byName->Name, function) == 0)
                return address;
        }
    }
    return nullptr;
}

} // namespace

/// Whether the dialog may come to the front when it is called: only who has the right can hand it on.
class TestForeground : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        FARPROC* const address = ImportedAddress("user32.dll", "AllowSetForegroundWindow");
        QVERIFY(address);
        DWORD before = 0;
        QVERIFY(VirtualProtect(address, sizeof *address, PAGE_READWRITE, &before));
        *address = reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(&Recorded));
        QVERIFY(VirtualProtect(address, sizeof *address, before, &before));
    }

    void foregroundRightIsHandedOverBeforeTheCall()
    {
        const QTemporaryDir directory;
        TestServer server(10'000);
        int handedOver = -1;
        server.callback.onOpen = [&](IInterface*) {
            handedOver = g_handedOver;
        };
        Starter::Settings settings;
        settings.port = server.port;
        settings.lockFile = directory.filePath(QStringLiteral("lock"));
        settings.timeOut = 30s;
        settings.callOnly = true;
        const auto outcome = Beside([settings] { return Starter(settings).Run(); });
        QVERIFY2(outcome.code == StarterExit::Called, qPrintable(outcome.message));
        // Whoever answers, which is known only then.
        QCOMPARE(handedOver, 1);
        QCOMPARE(g_to.load(), DWORD{ASFW_ANY});
    }

    void foregroundRightIsHandedOverToOneProgram()
    {
        AllowForegroundActivation(4711);
        QCOMPARE(g_to.load(), DWORD{4711});
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestForeground)
#include "tst_foreground_windows.moc"
