#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;

// A screen's number in large digits near its corner, gone after two seconds.
class ShowScreenID : public QWidget
{
    Q_OBJECT
public:
    explicit ShowScreenID(QWidget *parent = nullptr);

    // Sets the number, shows the window and starts its timer.
    void SetScreenNum(int number);
    void StartTimer();

private:
    QLabel *m_Label;
    QTimer m_Timer;
};
