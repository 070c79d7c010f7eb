#pragma once

#include <QWidget>

class QCheckBox;
class QPushButton;

// The tab of one key group: a click on its text shows the group, its box turns the group on
// or off. The window marks the group shown as current and the group in use as function.
class CheckTextButton : public QWidget
{
    Q_OBJECT
public:
    explicit CheckTextButton(QWidget *parent = nullptr);

    void setText(const QString &text);
    void setCurrent(bool current);
    void setFunction(bool function);
    bool isCurrent() const;
    bool isFunction() const;

signals:
    void clicked();
    // The user ticked or cleared the box.
    void switched(bool on);

private:
    QCheckBox *m_Check;
    QPushButton *m_Text;
};
