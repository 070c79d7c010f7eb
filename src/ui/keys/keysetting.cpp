#include "keysetting.h"

#include "ui_keysetting.h"

#include <QStringList>

KeySetting::KeySetting(QWidget *parent) : QWidget(parent), ui(new Ui::KeySetting)
{
    ui->setupUi(this);
}

KeySetting::~KeySetting()
{
    delete ui;
}

void KeySetting::SetKeySetting(int number, const QString &function)
{
    ui->label_number->setNum(number);
    const QStringList fields = function.split(QLatin1Char('|'));
    // Custom strings of keys have three or four fields, those of wheels six.
    const bool custom = fields.size() == 3 || fields.size() == 4 || fields.size() == 6;
    ui->label_function->setText(custom ? fields[1] : function);
}
