#pragma once

#include <QList>
#include <QStringList>
#include <QWidget>

class QButtonGroup;
class QHBoxLayout;
class QToolButton;

// The strip of connected devices: one button each, at most five. Each button carries its
// place in the strip as the property "select_index".
class QDeviceItemWidget : public QWidget
{
    Q_OBJECT
public:
    explicit QDeviceItemWidget(QWidget *parent = nullptr);

    static constexpr int kMaxItems = 5;

    bool addItem(const QString &name, const QString &picture);
    void removeItem(int index);
    // Removes the first entry of that name.
    void removeChildDevice(const QString &name);
    int count() const { return m_Names.size(); }
    QString currentText() const;
    int currentIndex() const { return m_Current; }

signals:
    void onSelectAppItem(QString name, int index);

private slots:
    void onToolClick();

private:
    void select(int index);
    // Shows the entry at `index` as the selected one.
    void doSetDeviceNameImage(int index);

    QHBoxLayout *m_Layout;
    QButtonGroup *m_Group;
    QList<QToolButton *> m_Buttons;
    QStringList m_Names;
    int m_Current = -1;
};
