// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Damages a document in random ways and opens it. VEXEL_CORRUPTIONS sets their number; VEXEL_CORRUPTIONS_START repeats
// those of an earlier run.

#include "tests/platform/storefixture.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTest>

namespace {

constexpr int kDefaultCorruptions = 60;
const QString kList = QStringLiteral("List");
const QString kName = QStringLiteral("Name");

QByteArray RandomBytes(QRandomGenerator& random, qsizetype size)
{
    QByteArray bytes(size, 0);
    for (char& byte : bytes)
        byte = static_cast<char>(random.bounded(256));
    return bytes;
}

/// `text`, damaged as a disk, a crash or an editor damages files.
QByteArray Corrupt(QRandomGenerator& random, QByteArray text)
{
    const auto at = [&] {
        return random.bounded(static_cast<int>(text.size()));
    };
    const qsizetype begin = at();
    const qsizetype size = random.bounded(2) == 0 ? 1 + random.bounded(16) : 1 + at();
    switch (random.bounded(7)) {
    case 0:
        text[begin] = static_cast<char>(text.at(begin) ^ (1 << random.bounded(8)));
        return text;
    case 1:
        return text.remove(begin, size);
    case 2:
        return text.first(begin);
    case 3:
        return text.insert(at(), text.mid(begin, size));
    case 4:
        return text.replace(begin, qMin(size, text.size() - begin), QByteArray(size, '\0'));
    case 5:
        return text.replace(begin, qMin(size, text.size() - begin), RandomBytes(random, size));
    default:
        return text.remove(begin, size).insert(random.bounded(static_cast<int>(text.size()) + 1), text.left(size));
    }
}

} // namespace

class TestCorruption : public QObject
{
    Q_OBJECT

private slots:
    // Whatever is read differs from what was saved only with a notice, and the damaged text is still there.
    void corruptionIsToldOf()
    {
        const int count = qEnvironmentVariableIsSet("VEXEL_CORRUPTIONS")
                              ? qMax(1, qEnvironmentVariableIntValue("VEXEL_CORRUPTIONS"))
                              : kDefaultCorruptions;
        const quint32 start = qEnvironmentVariableIsSet("VEXEL_CORRUPTIONS_START")
                                  ? qEnvironmentVariable("VEXEL_CORRUPTIONS_START").toUInt()
                                  : QRandomGenerator::global()->generate();
        qInfo("corruptions from random start %u", start);
        QRandomGenerator random(start);
        for (int i = 1; i <= count && !QTest::currentTestFailed(); ++i)
            CorruptOnce(random, i);
        CfgCenter::SetNoticeSink({});
        qInfo("%d corruptions: %d recovered from a version, %d used with a notice, %d without effect", count,
              m_recovered, m_used, m_harmless);
        QVERIFY(m_recovered > 0 && m_used > 0);
    }

private:
    void CorruptOnce(QRandomGenerator& random, int number)
    {
        const StoreFixture store;
        const QString list = QString::fromLatin1(RandomBytes(random, 1 + random.bounded(2000)).toHex());
        store.Root()->SetString(kList, list.left(list.size() / 4 * 2), 0);
        QVERIFY(CfgCenter::SaveDocument());
        store.Root()->SetString(kList, list, 0);
        store.Root()->SetString(kName, QStringLiteral("mast \u00e4 %1").arg(number), 0);
        QVERIFY(CfgCenter::SaveDocument());
        const QByteArray text = Files::Read(store.Document());
        const QByteArray corrupt = Corrupt(random, text);
        if (corrupt == text)
            return;
        QVERIFY(Files::Write(store.Document(), corrupt));

        QStringList notices;
        CfgCenter::SetNoticeSink([&](const QString& line) { notices += line; });
        store.Reopen();
        const QString read = store.Root()->GetString(kList, {}, 0);
        const bool isWhole = read == list && store.Root()->GetString(kName, {}, 0).endsWith(QString::number(number));
        if (notices.isEmpty()) {
            QVERIFY2(isWhole, corrupt.constData());
            ++m_harmless; // another order or white space
            return;
        }
        const bool isUsed = notices.front().contains(QLatin1String("was changed by something else"));
        ++(isUsed ? m_used : m_recovered);
        QVERIFY2(isUsed || read == list.left(list.size() / 4 * 2), qPrintable(notices.front()));
        QVERIFY2(IsKept(store, corrupt), qPrintable(notices.front()));
    }

    static bool IsKept(const StoreFixture& store, const QByteArray& text)
    {
        QDirIterator files(store.Path(QStringLiteral("shared")), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString file = files.next();
            if (file != store.Document() && Files::Read(file) == text)
                return true;
        }
        return false;
    }

    int m_recovered = 0;
    int m_used = 0;
    int m_harmless = 0;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCorruption)
#include "tst_corruption.moc"
