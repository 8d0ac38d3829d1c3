#include "PanelWindow.h"

#include "PanelKeys.h"

#include <vorn/core/vorn.h>

#include <QPainter>

namespace {

constexpr QRect display(20, 20, 440, 76);
constexpr QRect firstKey(20, 116, 80, 64);
constexpr int keyDistance = 90;
// A click of a deferred key is a press and a release at once. It is to be seen nevertheless.
constexpr int afterglowMs = 250;

QString stateText(InputEvent::State state)
{
    switch (state) {
    case InputEvent::KeyPressed:
        return QStringLiteral("pressed");
    case InputEvent::KeyReleased:
        return QStringLiteral("released");
    case InputEvent::KeyLongPress:
        return QStringLiteral("long press");
    default:
        return {};
    }
}

} // namespace

PanelWindow::PanelWindow(QWidget *parent)
    : QWidget(parent)
{
    setWindowTitle(QStringLiteral("Front panel"));
    setFixedSize(480, 200);
    m_afterglow.setSingleShot(true);
    Vorn::connect(&m_afterglow, &QTimer::timeout, this, &PanelWindow::goOut);
    Vorn::connect(Input::instance(), &Input::inputEvent, this, &PanelWindow::showInput);
}

void PanelWindow::showInput(const InputEvent &event)
{
    m_last = event;
    m_isLit = true;
    if (event.state() == InputEvent::KeyReleased)
        m_afterglow.start(afterglowMs);
    else
        m_afterglow.stop();
    update();
}

void PanelWindow::goOut()
{
    m_isLit = false;
    update();
}

void PanelWindow::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor(0x22, 0x26, 0x2b));

    painter.fillRect(display, Qt::black);
    painter.setPen(QColor(0x7c, 0xe0, 0xff));
    QFont font = painter.font();
    font.setPixelSize(28);
    painter.setFont(font);
    const bool isEmpty = m_last.command() == InputEvent::None;
    painter.drawText(display.adjusted(16, 6, -16, -30), Qt::AlignVCenter,
                     isEmpty ? QStringLiteral("Press a key") : m_last.cmdToString());
    font.setPixelSize(15);
    painter.setFont(font);
    painter.drawText(display.adjusted(16, 44, -16, -6), Qt::AlignVCenter,
                     stateText(m_last.state()));

    QRect place = firstKey;
    for (const PanelKey &key : panelKeys) {
        const bool isLit = m_isLit && key.command == m_last.command();
        painter.setPen(Qt::NoPen);
        painter.setBrush(isLit ? QColor(0xff, 0xb3, 0x00) : QColor(0x3d, 0x44, 0x4d));
        painter.drawRoundedRect(place, 8, 8);
        painter.setPen(isLit ? Qt::black : Qt::white);
        painter.drawText(place, Qt::AlignCenter, QString::fromLatin1(key.label));
        place.translate(keyDistance, 0);
    }
}
