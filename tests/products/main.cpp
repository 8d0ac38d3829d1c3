#include "Behaviour.h"
#include "Input.h"
#include "ProductInput.h"
#include "vorn.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    const Behaviour *its = behaviour(QString::fromLocal8Bit(argc > 1 ? argv[1] : "plain"));
    if (!its) {
        std::fprintf(stderr, "usage: product [%s] [ARGUMENT]\n",
                     qPrintable(behaviourNames().join(QLatin1Char('|'))));
        return 2;
    }
    const QString argument = QString::fromLocal8Bit(argc > 2 ? argv[2] : "");
    if (its->beforeApplication)
        its->beforeApplication();
    const QCoreApplication application(argc, argv);
    if (its->beforeLoop)
        its->beforeLoop(argument);
    ProductInput input;
    bool isFirst = true;
    Vorn::connect(Input::instance(), &Input::inputEvent, &input, [&](const InputEvent &event) {
        std::printf("%s\n", qPrintable(event.toString()));
        std::fflush(stdout);
        if (isFirst && its->onEvent)
            its->onEvent(argument);
        isFirst = false;
    });
    return QCoreApplication::exec();
}
