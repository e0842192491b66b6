// The least that a program with the product's form and a list in it can be: what starting the product is compared with,
// fonts and all. The argument is the number of entries.

#include "benchmarks/bareparts.h"
#include "benchmarks/lists.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    BareTable table;
    table.Append(BareTable::Rows(Lists::Entries(QCoreApplication::arguments().value(1).toInt())));
    const BareWindow window(&table);
    return QApplication::exec();
}
