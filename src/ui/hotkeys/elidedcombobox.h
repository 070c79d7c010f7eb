#pragma once

#include <QComboBox>

// A combo box too narrow for some function names: the closed box shows a long name cut short
// with "…", and its tool tip the whole name.
class ElidedComboBox : public QComboBox
{
    Q_OBJECT
public:
    explicit ElidedComboBox(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    int textRoom(const QStyleOptionComboBox &option) const;
    void updateToolTip();
};
