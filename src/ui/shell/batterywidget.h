#pragma once

#include <QWidget>

namespace Ui
{
class BatteryWidget;
}

// Charge of a wireless device, shown under the page list.
class BatteryWidget : public QWidget
{
    Q_OBJECT
public:
    explicit BatteryWidget(QWidget *parent = nullptr);
    ~BatteryWidget() override;

    void SetBatteryValue(int value, int charging);
    int GetValue() const { return m_Value; }
    QString barStyle() const;

private:
    Ui::BatteryWidget *ui;
    int m_Value = 0;
};
