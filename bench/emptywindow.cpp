// What a Qt program costs before it does anything: a window with a menu bar and one menu. bench/run starts it beside
// the real program.

#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::StringLiterals;

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QMainWindow window;
    window.setWindowTitle(u"Empty Window"_s);
    QMenu *menu = window.menuBar()->addMenu(u"&File"_s);
    menu->addAction(u"E&xit"_s, &window, &QWidget::close);
    window.resize(800, 600);
    window.show();
    return QApplication::exec();
}
