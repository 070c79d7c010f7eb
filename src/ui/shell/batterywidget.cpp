#include "batterywidget.h"

#include "cglobaldata.h"
#include "ui_batterywidget.h"

#include <algorithm>

namespace
{
// The sprites hold seven rows of 13 pixels: full charge at the top, empty at the bottom.
constexpr int kRowHeight = 13;
constexpr int kEmptyRow = 6;

int barRow(int value)
{
    if (value < 1)
        return kEmptyRow;
    if (value > 99)
        return 0;
    return 5 - (value - 1) / 20;
}
} // namespace

BatteryWidget::BatteryWidget(QWidget *parent) : QWidget(parent), ui(new Ui::BatteryWidget)
{
    ui->setupUi(this);
    setLanguageText(ui->LabelBatteryShow, "Common.battery");
}

BatteryWidget::~BatteryWidget()
{
    delete ui;
}

void BatteryWidget::SetBatteryValue(int value, int charging)
{
    m_Value = std::clamp(value, 0, 100);
    const int row = barRow(value);
    const QString sprite = charging == 1 ? QStringLiteral(":/image/Res/battery_charging.png")
                                         : QStringLiteral(":/image/Res/battery_uncharing.png");
    ui->BatteryProgressBarlabel->setStyleSheet(QStringLiteral("border-image:url(%1) %2 0 %3 0 0;")
                                                   .arg(sprite)
                                                   .arg(kRowHeight * row)
                                                   .arg(kRowHeight * kEmptyRow - kRowHeight * row));
}

QString BatteryWidget::barStyle() const
{
    return ui->BatteryProgressBarlabel->styleSheet();
}
