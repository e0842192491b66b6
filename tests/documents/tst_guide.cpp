// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/translationcenter.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSet>
#include <QTest>
#include <QXmlStreamReader>

namespace {

/// What the test compares of one page of the guide.
struct Page
{
    QStringList sections; // identifiers of the headings, in order
    QStringList targets;  // of the links, in order
    QSet<QString> pictures;
    QSet<QString> controls; // texts marked as those of the dialog
    QString error;
};

QString Folder()
{
    return QStringLiteral(VEXEL_GUIDE);
}

/// The pages are HTML that is also well-formed XML.
Page ReadPage(const QString& language)
{
    Page page;
    QFile file(QStringLiteral("%1/guide_%2.html").arg(Folder(), language));
    if (!file.open(QIODevice::ReadOnly)) {
        page.error = QStringLiteral("%1: %2").arg(file.fileName(), file.errorString());
        return page;
    }
    QXmlStreamReader reader(&file);
    while (reader.readNext() != QXmlStreamReader::Invalid && !reader.atEnd()) {
        if (!reader.isStartElement())
            continue;
        const QXmlStreamAttributes attributes = reader.attributes();
        if (reader.name() == u"h2")
            page.sections += attributes.value(QLatin1String("id")).toString();
        else if (reader.name() == u"a")
            page.targets += attributes.value(QLatin1String("href")).toString();
        else if (reader.name() == u"img")
            page.pictures += attributes.value(QLatin1String("src")).toString();
        else if (reader.name() == u"b" && attributes.value(QLatin1String("class")) == u"ui")
            page.controls += reader.readElementText().simplified();
    }
    if (reader.hasError())
        page.error = QStringLiteral("line %1: %2").arg(reader.lineNumber()).arg(reader.errorString());
    return page;
}

/// Removes the mark of the keyboard shortcut.
QString Plain(QString text)
{
    return text.remove(QLatin1Char('&'));
}

/// The lines of all texts of the dialog and the host, up to the first placeholder.
QSet<QString> TextsOfTheProduct(const QString& language)
{
    const QString element = language == u"en" ? QStringLiteral("source") : QStringLiteral("translation");
    QSet<QString> texts;
    for (const char* catalogue : {"VexelConnectDlg_de.ts", "vexelhost_de.ts"}) {
        QFile file(QStringLiteral(VEXEL_CATALOGUES "/") + QLatin1String(catalogue));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        QXmlStreamReader reader(&file);
        while (!reader.atEnd()) {
            reader.readNext();
            if (!reader.isStartElement() || reader.name() != element)
                continue;
            const QString text = reader.readElementText(QXmlStreamReader::IncludeChildElements);
            for (const QString& line : text.split(QLatin1Char('\n'))) {
                QString start = Plain(line.section(QLatin1Char('%'), 0, 0)).trimmed();
                if (start.endsWith(u" ("))
                    start.chop(2);
                texts += start;
            }
        }
        if (reader.hasError())
            return {};
    }
    return texts;
}

/// The texts of everything in the dialog that can be used.
QSet<QString> ControlsOfTheDialog()
{
    ConnectionsModel model(nullptr, QString());
    AppCounter appCounter(&model, QString());
    const VexelConnectDlgGUI dialog(nullptr, &model, &appCounter);
    QSet<QString> texts;
    for (const QAction* action : dialog.findChild<QMenu*>()->actions())
        texts += Plain(action->text());
    for (const QPushButton* button : dialog.findChildren<QPushButton*>())
        texts += Plain(button->text());
    for (const QLabel* label : dialog.findChildren<QLabel*>())
        texts += Plain(label->text());
    const auto* const modes = dialog.findChild<QComboBox*>(QStringLiteral("m_pRegExpComboBox"));
    for (int i = 0; i < modes->count(); ++i)
        texts += modes->itemText(i);
    for (int column = 0; column < model.columnCount(); ++column)
        texts += model.headerData(column, Qt::Horizontal).toString();
    texts.remove(QString());
    return texts;
}

QString Joined(QSet<QString> texts)
{
    QStringList list(texts.cbegin(), texts.cend());
    list.sort();
    return list.join(u"; ");
}

} // namespace

/// The operator's guide, as it is in the build tree.
class TestGuide : public QObject
{
    Q_OBJECT

private slots:
    void pagesAreWellFormed_data() { Languages(); }
    void pagesAreWellFormed();
    void pagesHaveTheSameSections();
    void picturesExistAndAreUsed();
    void quotedTextsAreTheProducts_data() { Languages(); }
    void quotedTextsAreTheProducts();
    void everyControlIsDescribed_data() { Languages(); }
    void everyControlIsDescribed();

private:
    static void Languages();
};

void TestGuide::Languages()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("en") << QStringLiteral("en");
    QTest::newRow("de") << QStringLiteral("de");
}

void TestGuide::pagesAreWellFormed()
{
    QFETCH(const QString, language);
    const Page page = ReadPage(language);
    QVERIFY2(page.error.isEmpty(), qPrintable(page.error));
    // The contents lead to each section, in order.
    QStringList contents;
    for (const QString& section : page.sections)
        contents += u'#' + section;
    QCOMPARE(page.targets.first(contents.size()), contents);
    for (const QString& target : page.targets)
        QVERIFY2(contents.contains(target), qPrintable(target));
}

void TestGuide::pagesHaveTheSameSections()
{
    const Page english = ReadPage(QStringLiteral("en"));
    QVERIFY(english.sections.size() > 5);
    QCOMPARE(ReadPage(QStringLiteral("de")).sections, english.sections);
}

void TestGuide::picturesExistAndAreUsed()
{
    QSet<QString> used;
    for (const char* language : {"en", "de"}) {
        const QString ending = QStringLiteral("_%1.png").arg(QLatin1String(language));
        for (const QString& picture : ReadPage(QLatin1String(language)).pictures) {
            QVERIFY2(picture.endsWith(ending), qPrintable(picture));
            used += picture;
        }
    }
    const QStringList files = QDir(Folder()).entryList({QStringLiteral("*.png")});
    QVERIFY(!files.isEmpty());
    QCOMPARE(Joined(used), Joined(QSet<QString>(files.cbegin(), files.cend())));
}

void TestGuide::quotedTextsAreTheProducts()
{
    QFETCH(const QString, language);
    const QSet<QString> texts = TextsOfTheProduct(language);
    QVERIFY(!texts.isEmpty());
    const QSet<QString> controls = ReadPage(language).controls;
    QVERIFY(!controls.isEmpty());
    QCOMPARE(Joined(controls - texts), QString());
}

void TestGuide::everyControlIsDescribed()
{
    QFETCH(const QString, language);
    TranslationCenter& translations = TranslationCenter::Instance();
    translations.SetDirectory(QStringLiteral(VEXEL_TRANSLATIONS));
    translations.SetLocale(QLocale(language));
    translations.Register(QStringLiteral("VexelConnectDlg"));
    const QSet<QString> controls = ControlsOfTheDialog();
    translations.Unregister(QStringLiteral("VexelConnectDlg"));
    QVERIFY(controls.contains(language == u"en" ? QStringLiteral("Close") : QStringLiteral("Schließen")));
    QCOMPARE(Joined(controls - ReadPage(language).controls), QString());
}

VEXEL_TEST(QTEST_MAIN, TestGuide)
#include "tst_guide.moc"
