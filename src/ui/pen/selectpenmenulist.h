#pragma once

#include <QMenu>
#include <QString>
#include <QWidget>

class QAction;
class QLabel;

// One entry of the pen menu: the pen's name and a small delete button on the right.
class SelectPenMenuWidget : public QWidget
{
    Q_OBJECT
public:
    explicit SelectPenMenuWidget(QWidget *parent = nullptr);

    // The pen's number, 1 to 8, which DeletePen carries.
    void SetPenID(int id) { m_PenID = id; }
    void SetPenTextName(const QString &name);

signals:
    void DeletePen(int id);

private:
    QLabel *m_Name;
    int m_PenID = 0;
};

// The menu of the device's pens, an entry for each pen it has in use.
class SelectPenMenuList : public QMenu
{
    Q_OBJECT
public:
    explicit SelectPenMenuList(QWidget *parent = nullptr);

    void CreateMenuList();
    // Removes every entry whose bit (bit 0 for the first pen) is clear.
    void SetPenShowInMenu(short mask);

signals:
    // The pen's name and its index, 0 to 7.
    void MenuSelected(QString name, int index);
    void DeletePenSelected(QString name, int index);

public slots:
    void OnDeletePen(int id);
    void OnActionKeyStoke(QAction *action);

private:
    QAction *entryOf(int index) const;
};
