#pragma once

#include <QMenu>

// The tray's context menu. Setting and update stay wired but out of the menu: it reads
// Show, Exit.
class TrayMenu : public QMenu
{
    Q_OBJECT
public:
    explicit TrayMenu(QWidget *parent = nullptr);

signals:
    void showAction();
    void settingAction();
    void updateAction();
    void quitAction();

private:
    void initActions();
};
