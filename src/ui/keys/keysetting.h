#pragma once

#include <QString>
#include <QWidget>

namespace Ui
{
class KeySetting;
}

// Shows what one key does: its number and the name of its function.
class KeySetting : public QWidget
{
    Q_OBJECT
public:
    explicit KeySetting(QWidget *parent = nullptr);
    ~KeySetting() override;

    // `function` is an action's text or a custom function string, which shows its name.
    void SetKeySetting(int number, const QString &function);

private:
    Ui::KeySetting *ui;
};
