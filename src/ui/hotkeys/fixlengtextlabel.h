#pragma once

#include <QLabel>

// A label of fixed width that shows a long function name cut short with "…"; text() keeps the
// whole name.
class FixLengTextLabel : public QLabel
{
    Q_OBJECT
public:
    explicit FixLengTextLabel(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};
