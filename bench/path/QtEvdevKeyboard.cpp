// Qt's own evdev keyboard handler, as a product with a window would use it: the generic plugin
// reads the node and sends key events to the focused window.

#include "Counters.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QWindow>

namespace {

class Window : public QWindow
{
protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        countResult();
        event->accept();
    }
    void keyReleaseEvent(QKeyEvent *event) override
    {
        countResult();
        event->accept();
    }
};

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QPA_GENERIC_PLUGINS", "evdevkeyboard:/dev/input/event0");
    QGuiApplication application(argc, argv);
    Window window;
    window.show();
    window.requestActivate();
    return QGuiApplication::exec();
}
