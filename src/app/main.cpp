#include "app/runprogram.h"

#include <QApplication>

int main(int count, char **values)
{
    // Memory shared with the display comes as a file descriptor. A program that has none left when it draws waits for
    // it for good; drawn through the connection, its window lives.
    constexpr auto *drawThroughConnection = "QT_XCB_NO_MITSHM";
    const bool unset = !qEnvironmentVariableIsSet(drawThroughConnection);
    if (unset) {
        qputenv(drawThroughConnection, "1");
    }
    QApplication application(count, values);
    if (unset) {
        qunsetenv(drawThroughConnection); // it is for this program, not for those that it starts
    }
    return corvane::runProgram(QApplication::applicationDirPath(), QApplication::arguments().sliced(1));
}
