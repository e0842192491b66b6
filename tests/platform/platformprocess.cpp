// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// The second process of the tests. Commands:
//   read STORE DOCUMENT NODE KEY      prints the value; an empty NODE is the root
//   write STORE DOCUMENT PREFIX COUNT writes keys PREFIX0, PREFIX1, ... of the root, and saves after each
//   rewrite STORE DOCUMENT COUNT      endlessly: sets COUNT keys of the root to the next number, prints it, saves
//   rewrite-in-thread STORE DOCUMENT COUNT   the same with CfgCenter::WriteDocument
//   translate                         prints "Street" in the system's language, from the product's translations

#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "platform/translationcenter.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringList>

#include <cstdio>

namespace {

constexpr int kAttempts = 20;

void Print(const QString& text)
{
    QFile out;
    if (out.open(stdout, QIODevice::WriteOnly))
        out.write(text.toUtf8() + '\n');
    std::fflush(stdout);
}

int Read(const QString& document, const QString& node, const QString& key)
{
    Print(CfgCenter::CreateCfg(document, View::Shared, node)->GetString(key, QStringLiteral("(none)"), 0));
    return 0;
}

int Write(const QString& document, const QString& prefix, int count)
{
    ICfg* const root = CfgCenter::CreateCfg(document, View::Shared, {});
    for (int i = 0; i < count; ++i) {
        root->SetString(prefix + QString::number(i), prefix, 0);
        // With many simultaneous writers, a save may time out. The document stays modified, so retry.
        int attempts = 1;
        while (!CfgCenter::SaveDocument())
            if (++attempts > kAttempts)
                return 3;
    }
    return 0;
}

int Rewrite(const QString& document, int count)
{
    ICfg* const root = CfgCenter::CreateCfg(document, View::Shared, {});
    const int last = root->GetInt(QStringLiteral("Key0"), 0, 0);
    for (int number = last + 1;; ++number) {
        for (int i = 0; i < count; ++i)
            root->SetInt(QStringLiteral("Key%1").arg(i), number, 0);
        Print(QString::number(number));
        if (!CfgCenter::SaveDocument())
            return 3;
    }
}

int RewriteInThread(const QString& document, int count)
{
    const int last = CfgCenter::CreateCfg(document, View::Shared, {})->GetInt(QStringLiteral("Key0"), 0, 0);
    for (int number = last + 1;; ++number) {
        Print(QString::number(number));
        CfgCenter::WriteDocument(
            document, View::Shared,
            [count, number](ICfg& root) {
                for (int i = 0; i < count; ++i)
                    root.SetInt(QStringLiteral("Key%1").arg(i), number, 0);
            },
            [] { return true; });
        if (!CfgCenter::SaveError().isEmpty())
            return 3;
    }
}

int Translate()
{
    const QString domain = QStringLiteral("PlatformTest");
    TranslationCenter::Instance().Register(domain);
    Print(QCoreApplication::translate("PlatformTest", "Street"));
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString command = arguments.value(1);

    if (command == QLatin1String("translate"))
        return Translate();
    if (!CfgCenter::Open(arguments.value(2)))
        return 2;
    if (command == QLatin1String("read"))
        return Read(arguments.value(3), arguments.value(4), arguments.value(5));
    if (command == QLatin1String("write"))
        return Write(arguments.value(3), arguments.value(4), arguments.value(5).toInt());
    if (command == QLatin1String("rewrite"))
        return Rewrite(arguments.value(3), arguments.value(4).toInt());
    if (command == QLatin1String("rewrite-in-thread"))
        return RewriteInThread(arguments.value(3), arguments.value(4).toInt());
    return 1;
}
