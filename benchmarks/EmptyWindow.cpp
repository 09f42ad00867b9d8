// The yardstick of starting: a window of the toolkit with nothing in it.

#include <QApplication>
#include <QWidget>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(500, 700);
    window.show();
    return QApplication::exec();
}
