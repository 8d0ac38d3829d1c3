#ifndef PANELWINDOW_H
#define PANELWINDOW_H

#include <vorn/input/Input.h>

#include <QTimer>
#include <QWidget>

/// A front panel with a display: it shows the last command, and lights the key that is down.
class PanelWindow : public QWidget
{
public:
    explicit PanelWindow(QWidget *parent = nullptr);

    void showInput(const InputEvent &event);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void goOut();

    InputEvent m_last;
    bool m_isLit = false;
    QTimer m_afterglow;
};

#endif
