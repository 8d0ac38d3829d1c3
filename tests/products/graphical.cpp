#include "Input.h"
#include "ProductInput.h"
#include "vorn.h"

#include <QGuiApplication>
#include <QRasterWindow>

#include <cstdio>

/// A product with a window, to be run with -platform offscreen where there is no screen.
int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    QRasterWindow window;
    window.show();
    ProductInput input;
    Vorn::connect(Input::instance(), &Input::inputEvent, &window, [&](const InputEvent &event) {
        window.setTitle(event.toString());
        std::printf("%s\n", qPrintable(window.title()));
        std::fflush(stdout);
    });
    return QGuiApplication::exec();
}
