// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Lets one part of the product read one hostile document, and prints how that went:
//
//     vexel_soak_documents PLACE SHAPE MIB
//     vexel_soak_documents --list
//
// One line: place, shape, size of the document, seconds, seconds of processor time, peak memory, result.

#include "host/store/storedset.h"
#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "userinterface/kitecontrol/launchreport.h"
#include "userinterface/kitecontrol/legacyrecords.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"
#include "vexelctl/support/machinereport.h"
#include "vexelctl/support/supportreport.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLoggingCategory>
#include <QMessageBox>
#include <QMimeData>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>

#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include <sys/resource.h>

namespace {

/// `head`, then `unit` as often as `size` bytes have room for it, then `tail`.
QByteArray Filled(const QByteArray& head, const QByteArray& unit, const QByteArray& tail, qsizetype size)
{
    return head + unit.repeated((size - head.size() - tail.size()) / unit.size()) + tail;
}

/// `part(0)`, `part(1)` and so on, up to `size` bytes.
QByteArray Numbered(qsizetype size, const std::function<QByteArray(const QByteArray& number)>& part)
{
    QByteArray parts;
    for (int i = 0;; ++i) {
        const QByteArray next = part(QByteArray::number(i));
        if (parts.size() + next.size() > size)
            return parts;
        parts += next;
    }
}

QByteArray Utf16(const QByteArray& document)
{
    const QString text = QString::fromLatin1(document);
    return QByteArray("\xFF\xFE") + QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
}

QByteArray InList(const QByteArray& unit, qsizetype size)
{
    return Filled("<ConnectionEntries>", unit, "</ConnectionEntries>", size);
}

QByteArray InField(const QByteArray& unit, qsizetype size)
{
    return Filled("<ConnectionEntries><Connection><ConnectionName>", unit,
                  "</ConnectionName></Connection></ConnectionEntries>", size);
}

QByteArray Records(const QByteArray& count, const QByteArray& values)
{
    return "{\"values\":{\"ConnectionCount\":\"" + count + "\"" + values + "}}";
}

struct Shape
{
    const char* name;
    std::function<QByteArray(qsizetype size)> make;
};

/// A list as the dialog writes it, and whatever XML can be made to take long.
const std::vector<Shape>& XmlShapes()
{
    static const QByteArray entry =
        "<Connection><ConnectionName><![CDATA[Station %]]></ConnectionName><DeviceType>4</DeviceType>"
        "<ConnectionType>0</ConnectionType><DeviceAddress><![CDATA[10.1.2.3]]></DeviceAddress>"
        "<DriverAddress><![CDATA[]]></DriverAddress><LinkSpeed>0</LinkSpeed><TimeoutSeconds>0</TimeoutSeconds>"
        "<ConnectionStatus>0</ConnectionStatus><Selected>true</Selected><Subsystem><![CDATA[]]></Subsystem>"
        "</Connection>";
    static const std::vector<Shape> shapes{
        {"list",
         [](qsizetype size) {
             const QByteArray line = QByteArray(entry).replace("><", ">\n    <");
             return "<ConnectionEntries>" +
                    Numbered(size, [&](const QByteArray& i) { return QByteArray(line).replace("%", i); }) +
                    "</ConnectionEntries>";
         }},
        {"dense-list",
         [](qsizetype size) {
             return "<ConnectionEntries>" +
                    Numbered(size, [&](const QByteArray& i) { return QByteArray(entry).replace("%", i); }) +
                    "</ConnectionEntries>";
         }},
        {"empty-entries",
         [](qsizetype size) {
             return InList("<Connection/>", size);
         }},
        {"200000-entries",
         [](qsizetype) {
             return InList("<Connection/>", 200'000 * 13 + 50);
         }},
        {"fields",
         [](qsizetype size) {
             return Filled("<a><Connection>", "<Subsystem>x</Subsystem>", "</Connection></a>", size);
         }},
        {"field-with-children",
         [](qsizetype size) {
             return InField("x<a/>", size);
         }},
        {"field-with-comments",
         [](qsizetype size) {
             return InField("x<!---->", size);
         }},
        {"carriage-returns",
         [](qsizetype size) {
             return InField("&#13;", size);
         }},
        {"section-ends",
         [](qsizetype size) {
             return InField("]]&gt;", size);
         }},
        {"default-attributes",
         [](qsizetype size) {
             const auto defaults = [](const QByteArray& i) {
                 return " a" + i + " CDATA \"\"";
             };
             return "<!DOCTYPE r [<!ATTLIST z" + Numbered(size / 2, defaults) + ">]><r>" +
                    QByteArray("<z/>").repeated(size / 8) + "</r>";
         }},
        {"nested-namespaces",
         [](qsizetype size) {
             return Filled("", "<a xmlns:b=\"c\">", "", size);
         }},
        {"namespaces",
         [](qsizetype size) {
             const auto namespaces = [](const QByteArray& i) {
                 return " xmlns:a" + i + "='b'";
             };
             return "<r" + Numbered(size / 2, namespaces) + ">" + QByteArray("<a/>").repeated(size / 8) + "</r>";
         }},
        {"attributes",
         [](qsizetype size) {
             return "<a" + Numbered(size, [](const QByteArray& i) { return " a" + i + "=''"; }) + "/>";
         }},
        {"elements-of-16-attributes",
         [](qsizetype size) {
             return InList("<a a='' b='' c='' d='' e='' f='' g='' h='' i='' j='' k='' l='' m='' n='' o='' p=''/>",
                           size);
         }},
        {"elements",
         [](qsizetype size) {
             return InList("<a/>", size);
         }},
        {"4-million-elements",
         [](qsizetype size) {
             return Filled("<r>" + QByteArray("<a/>").repeated(3'999'000), "<![CDATA[]]>", "</r>", size);
         }},
        {"2-million-attributes",
         [](qsizetype size) {
             return Filled("<r>" + QByteArray("<a b=''/>").repeated(1'999'000), "<![CDATA[]]>", "</r>", size);
         }},
        {"depth",
         [](qsizetype size) {
             return Filled("", "<a>", "", size);
         }},
        {"text",
         [](qsizetype size) {
             return InField("abcdefgh", size);
         }},
        {"lines",
         [](qsizetype size) {
             return InField("\r\n", size);
         }},
        {"blanks",
         [](qsizetype size) {
             return InList(" ", size);
         }},
        {"value",
         [](qsizetype size) {
             return Filled("<a b='", "abcdefgh", "'/>", size);
         }},
        {"name",
         [](qsizetype size) {
             return Filled("<", "abcdefgh", "/>", size);
         }},
        {"references",
         [](qsizetype size) {
             return InField("&amp;", size);
         }},
        {"8-million-references",
         [](qsizetype size) {
             return Filled("<r>" + QByteArray("&lt;").repeated(7'999'000), "<![CDATA[]]>", "</r>", size);
         }},
        {"references-in-value",
         [](qsizetype size) {
             return Filled("<a b='", "&#9;", "'/>", size);
         }},
        {"undeclared-references",
         [](qsizetype size) {
             return Filled("<!DOCTYPE r SYSTEM 'a'><r>", "&a;", "</r>", size);
         }},
        {"nested-entities",
         [](qsizetype size) {
             const auto entities = [](const QByteArray& i) {
                 return "<!ENTITY a" + i + " '&b;&b;'>";
             };
             return "<!DOCTYPE r [" + Numbered(size, entities) + "]><r>&a1;</r>";
         }},
        {"comments",
         [](qsizetype size) {
             return InList("<!---->", size);
         }},
        {"comment",
         [](qsizetype size) {
             return Filled("<a><!--", "- ", "--></a>", size);
         }},
        {"instructions",
         [](qsizetype size) {
             return InList("<?a?>", size);
         }},
        {"instruction",
         [](qsizetype size) {
             return Filled("<a><?b ", "?", "?></a>", size);
         }},
        {"sections",
         [](qsizetype size) {
             return InField("<![CDATA[]]>", size);
         }},
        {"section",
         [](qsizetype size) {
             return InField("<![CDATA[]]]]]]]]]]]]]]]]]]]]]]]]]]]]>", size);
         }},
        {"declaration",
         [](qsizetype size) {
             return "<?xml version='1.0'" + Numbered(size, [](const QByteArray& i) { return " a" + i + "=''"; }) +
                    "?><r/>";
         }},
        {"document-types",
         [](qsizetype size) {
             return Filled("", "<!DOCTYPE a>", "<a/>", size);
         }},
        {"elements-in-utf16",
         [](qsizetype size) {
             return Utf16(InList("<a/>", size / 2));
         }},
        {"list-in-latin1",
         [](qsizetype size) {
             return Filled("<?xml version='1.0' encoding='ISO-8859-1'?><a>", "\xFC", "</a>", size);
         }},
        {"list-in-shift-jis",
         [](qsizetype size) {
             return Filled("<?xml version='1.0' encoding='Shift_JIS'?><a>", "\x83\x65", "</a>", size);
         }},
        {"applications",
         [](qsizetype size) {
             const auto application = [](const QByteArray& i) {
                 return "<A" + i + "><Startup><exe>a.exe</exe></Startup></A" + i + ">";
             };
             return "<Machine>" + Numbered(size, application) + "</Machine>";
         }},
        {"applications-without-startup",
         [](qsizetype size) {
             return "<Machine>" + Numbered(size, [](const QByteArray& i) { return "<A" + i + "/>"; }) + "</Machine>";
         }},
        {"parameters",
         [](qsizetype size) {
             const auto parameter = [](const QByteArray& i) {
                 return "<Param" + i + "/>";
             };
             return "<Machine><A><Startup>" + Numbered(size, parameter) + "</Startup></A></Machine>";
         }},
        {"parameter-counts",
         [](qsizetype size) {
             return Filled("<Machine>", "<A><Startup><NumParam>1000</NumParam></Startup></A>", "</Machine>", size);
         }},
        {"mappings",
         [](qsizetype size) {
             const auto mapping = [](const QByteArray& i) {
                 return "<Mapping><DeviceType>" + i + "</DeviceType><Application>a.exe</Application></Mapping>";
             };
             return "<TypeApplicationMappings>" + Numbered(size, mapping) + "</TypeApplicationMappings>";
         }},
        {"mappings-to-nothing",
         [](qsizetype size) {
             return Filled("<TypeApplicationMappings>",
                           "<Mapping><DeviceType>1</DeviceType><Application>a</Application></Mapping>",
                           "</TypeApplicationMappings>", size);
         }},
    };
    return shapes;
}

/// Configuration documents with legacy records.
const std::vector<Shape>& RecordShapes()
{
    static const std::vector<Shape> shapes{
        {"no-records",
         [](qsizetype) {
             return Records("2147483647", {});
         }},
        {"records",
         [](qsizetype size) {
             const auto record = [](const QByteArray& i) {
                 return ",\"ConnectData" + i + "/StationName\":\"Station\",\"ConnectData" + i +
                        "/DeviceType\":\"Kite Echo\",\"ConnectData" + i + "/RemoteAddress\":\"a\"";
             };
             return Records("2147483647", Numbered(size, record));
         }},
        {"old-records",
         [](qsizetype size) {
             const auto record = [](const QByteArray& i) {
                 QByteArray keys;
                 for (const char* key : {"Type", "Access", "StationAddress", "TimeoutFlag", "Timeout"})
                     keys += ",\"ConnectData" + i + "/" + key + "\":\"1\"";
                 return keys;
             };
             return Records("2147483647", Numbered(size, record));
         }},
        {"keys-below-a-key",
         [](qsizetype size) {
             return Records("2147483647", Numbered(size, [](const QByteArray& i) {
                                return ",\"ConnectData" + i + "/Type/x\":\"\"";
                            }));
         }},
        {"long-texts",
         [](qsizetype size) {
             const QByteArray text(size / 1000, 'x');
             QByteArray values;
             for (int i = 0; i < 1000; ++i)
                 values += ",\"ConnectData" + QByteArray::number(i) + "/StationName\":\"" + text + "\"";
             return Records("1000", values);
         }},
        {"long-device-types",
         [](qsizetype size) {
             return Records("1", ",\"ConnectData0/DeviceType\":\"" + QByteArray(size, '+') + "\"");
         }},
        {"keys",
         [](qsizetype size) {
             return Records("0", Numbered(size, [](const QByteArray& i) { return ",\"" + i + "\":\"\""; }));
         }},
        {"brackets",
         [](qsizetype size) {
             return QByteArray(size, '[');
         }},
        {"escapes",
         [](qsizetype size) {
             return Filled("{\"values\":{\"a\":\"", "\\u0041", "\"}}", size);
         }},
    };
    return shapes;
}

void Write(const QString& fileName, const QByteArray& content)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(fileName));
}

QString Plural(qsizetype count, const char* what)
{
    return QStringLiteral("%1 %2").arg(count).arg(QLatin1String(what));
}

class Soak
{
public:
    explicit Soak(QByteArray document)
        : m_document(std::move(document))
    {
        QDir(m_directory.path()).mkdir(QStringLiteral("store"));
        CfgCenter::CreateCfg(QStringLiteral("Administration"), View::Application, QString())
            ->SetString(QStringLiteral("VexelDataDir"), m_directory.path(), 0);
    }

    double Seconds() const { return m_seconds; }
    double ProcessorSeconds() const { return m_processorSeconds; }

    /// The dialog with both views, "Import..." from a file, up to the painted rows.
    QString Import()
    {
        return InDialog([&](ConnectionsModel& model, VexelConnectDlgGUI& dialog) {
            const bool imported = dialog.Import(Path("list.xml"));
            return imported ? Plural(model.rowCount(), "entries") : QStringLiteral("refused");
        });
    }

    /// The same, with the document dropped onto the views.
    QString Drop()
    {
        return InDialog([&](ConnectionsModel& model, VexelConnectDlgGUI& dialog) {
            QMimeData data;
            data.setData(ConnectionList::MimeType(), m_document);
            const bool taken = dialog.m_pBasicView->model()->dropMimeData(&data, Qt::CopyAction, -1, -1, QModelIndex());
            return taken ? Plural(model.rowCount(), "entries") : QStringLiteral("refused");
        });
    }

    QString Start()
    {
        Store();
        std::unique_ptr<ConnectionsModel> model;
        Time([&] { model = std::make_unique<ConnectionsModel>(nullptr, QStringLiteral("ConnectionsModel")); });
        return Plural(model->rowCount(), "entries");
    }

    QString StoredSummary()
    {
        Store();
        StoredSet set;
        Time([&] { set = ReadStoredSet(*CfgCenter::GetAppCfg(View::Application)); });
        return Plural(set.entries, set.state == StoredSet::State::Whole ? "entries" : "entries, malformed");
    }

    QString Machine()
    {
        Write(Path("CfgVEXEL.xml"), m_document);
        Write(Path("TypeApplicationMappings.xml"), Mappings());
        return Applications();
    }

    QString Mapping()
    {
        Write(Path("CfgVEXEL.xml"), Applications(2'000));
        Write(Path("TypeApplicationMappings.xml"), m_document);
        return Applications();
    }

    QString Diagnosis()
    {
        Write(Path("CfgVEXEL.xml"), m_document);
        Write(Path("TypeApplicationMappings.xml"), Mappings());
        return Report();
    }

    QString MappingDiagnosis()
    {
        Write(Path("CfgVEXEL.xml"), Applications(2'000));
        Write(Path("TypeApplicationMappings.xml"), m_document);
        return Report();
    }

    QString ReadRecords()
    {
        QDir(m_directory.path()).mkpath(QStringLiteral("store/shared/KiteResources"));
        Write(Path("store/shared/KiteResources/ConnectData.json"), m_document);
        LaunchReport report;
        Time([&] {
            report = LaunchReport::Make(QStringLiteral("kitecontrol"),
                                        {QStringLiteral("App1:1"), QStringLiteral("Server"), QStringLiteral("Station")},
                                        LegacyRecords::FromDirectory(Path("store")));
            report.Lines();
        });
        return Plural(report.recordCount, "records");
    }

private:
    QString Path(const char* name) const { return m_directory.filePath(QString::fromLatin1(name)); }

    template <typename Work>
    void Time(const Work& work)
    {
        QElapsedTimer timer;
        timer.start();
        const std::clock_t before = std::clock();
        work();
        m_processorSeconds = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
        m_seconds = static_cast<double>(timer.elapsed()) / 1000;
    }

    void Store()
    {
        const std::unique_ptr<ICfg> node(
            CfgCenter::GetAppCfg(View::Application)->OpenChild(QStringLiteral("ConnectionsModel"), 0));
        node->SetString(QStringLiteral("ModelMimeData"), QString::fromLatin1(m_document.toHex()), 0);
    }

    QString InDialog(const std::function<QString(ConnectionsModel&, VexelConnectDlgGUI&)>& work)
    {
        Write(Path("list.xml"), m_document);
        ConnectionsModel model(nullptr, QString());
        AppCounter counter(&model, QString());
        VexelConnectDlgGUI dialog(nullptr, &model, &counter);
        dialog.show();
        dialog.m_pDetailsAction->trigger();
        QCoreApplication::processEvents();
        QTimer answer;
        QObject::connect(&answer, &QTimer::timeout, [] {
            if (auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
                box->accept();
        });
        answer.start(0);
        QString result;
        Time([&] {
            result = work(model, dialog);
            answer.stop();
            QCoreApplication::processEvents();
        });
        return result;
    }

    QString Applications()
    {
        std::unique_ptr<AppCounter> counter;
        Time([&] { counter = std::make_unique<AppCounter>(nullptr, QString()); });
        return Plural(counter->InstalledList().size(), "applications");
    }

    QString Report()
    {
        SupportReport report;
        const QString path = QProcessEnvironment::systemEnvironment().value(QStringLiteral("PATH"));
        Time([&] { ReportMachine(report, {m_directory.path(), QString(), path.split(QDir::listSeparator())}); });
        return {};
    }

    static QByteArray Applications(int count)
    {
        QByteArray document = "<Machine>";
        for (int i = 0; i < count; ++i) {
            const QByteArray name = "A" + QByteArray::number(i);
            document += "<" + name + "><Startup><exe>a.exe</exe></Startup></" + name + ">";
        }
        return document + "</Machine>";
    }

    static QByteArray Mappings()
    {
        return "<TypeApplicationMappings><Mapping><DeviceType>4</DeviceType><Application>a.exe</Application></Mapping>"
               "</TypeApplicationMappings>";
    }

    const QTemporaryDir m_directory;
    const QByteArray m_document;
    double m_seconds = 0;
    double m_processorSeconds = 0;
};

struct Place
{
    const char* name;
    QString (Soak::*run)();
    const std::vector<Shape>& (*shapes)();
};

constexpr Place kPlaces[] = {
    {"import", &Soak::Import, XmlShapes},
    {"drop", &Soak::Drop, XmlShapes},
    {"start", &Soak::Start, XmlShapes},
    {"stored-set", &Soak::StoredSummary, XmlShapes},
    {"machine-file", &Soak::Machine, XmlShapes},
    {"mapping-file", &Soak::Mapping, XmlShapes},
    {"diagnosis", &Soak::Diagnosis, XmlShapes},
    {"mapping-diagnosis", &Soak::MappingDiagnosis, XmlShapes},
    {"records", &Soak::ReadRecords, RecordShapes},
};

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    // A little less, for what the shapes put around their parts.
    const qsizetype size = arguments.value(2).toInt() * qsizetype{1024} * 1024 - 200;
    const bool list = arguments == QStringList{QStringLiteral("--list")};
    for (const Place& place : kPlaces) {
        for (const Shape& shape : place.shapes()) {
            if (list)
                std::printf("%s %s\n", place.name, shape.name);
            if (size <= 0 || arguments.first() != QLatin1String(place.name) ||
                arguments.at(1) != QLatin1String(shape.name))
                continue;
            QByteArray document = shape.make(size);
            const double mebibytes = static_cast<double>(document.size()) / (1024 * 1024);
            Soak soak(std::move(document));
            const QString result = (soak.*place.run)();
            rusage usage{};
            getrusage(RUSAGE_SELF, &usage);
            std::printf("%-18s%-36s%8.1f%9.2f%11.2f%8ld  %s\n", place.name, shape.name, mebibytes, soak.Seconds(),
                        soak.ProcessorSeconds(), usage.ru_maxrss / 1024, qPrintable(result));
            return 0;
        }
    }
    if (!list)
        std::fputs("usage: vexel_soak_documents --list | PLACE SHAPE MIB\n", stderr);
    return list ? 0 : 2;
}
