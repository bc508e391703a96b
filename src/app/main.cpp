#include "app/runprogram.h"

#include <QApplication>

int main(int count, char **values)
{
    QApplication application(count, values);
    return corvane::runProgram(QApplication::applicationDirPath(), QApplication::arguments().sliced(1));
}
