// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// A minimal program with the product's form and a list, including fonts, to compare the product's start with. The
// argument is the number of entries.

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
