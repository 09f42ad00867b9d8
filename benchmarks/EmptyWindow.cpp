// The yardsticks of starting: a window of the toolkit with nothing in it, or with the text it is given. Text
// makes the difference, as it loads the fonts.

#include <QApplication>
#include <QLabel>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    QWidget empty;
    QLabel text(arguments.value(1));
    QWidget& window = arguments.size() > 1 ? text : empty;
    window.resize(500, 700);
    window.show();
    return QApplication::exec();
}
