// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// A minimal program with an empty dialog, to compare the product's start with.

#include <QApplication>
#include <QDialog>

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    QDialog dialog;
    dialog.resize(1200, 800);
    dialog.show();
    return QApplication::exec();
}
