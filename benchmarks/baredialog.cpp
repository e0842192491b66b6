// The least that a program with a dialog can be: what starting the product is compared with.

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
