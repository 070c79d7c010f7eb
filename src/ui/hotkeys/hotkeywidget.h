#pragma once

#include "keyslot.h"

#include <QWidget>

class FixLengTextLabel;
class QComboBox;
class QLabel;

// One cell of key boxes: two slots, each a key number, its choice box and the name of its
// custom function underneath. The key dialog uses the first slot alone.
class HotKeyWidget : public QWidget
{
    Q_OBJECT
public:
    explicit HotKeyWidget(QWidget *parent = nullptr);

    void setHotKeyItem1(int number, QString name);
    void setHotKeyItem2(int number, QString name);
    void setHiddenItem1(bool hidden);
    void setHiddenItem2(bool hidden);
    KeySlot slot1() const;
    KeySlot slot2() const;

private:
    struct Item {
        QWidget *row;
        QLabel *number;
        QComboBox *box;
        FixLengTextLabel *label;
    };

    Item makeItem(int index);
    static void setItem(const Item &item, int number, const QString &name);

    Item m_Items[2];
};
