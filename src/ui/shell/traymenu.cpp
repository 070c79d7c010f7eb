#include "traymenu.h"

#include "cglobaldata.h"

TrayMenu::TrayMenu(QWidget *parent) : QMenu(parent)
{
    initActions();
}

void TrayMenu::initActions()
{
    auto *show =
        new QAction(QIcon(":/image/Res/show.png"), languageText("Tray.show", "Show"), this);
    auto *setting = new QAction(QIcon(":/image/Res/setting.png"), QString::fromUtf8("设置"), this);
    auto *update =
        new QAction(QIcon(":/image/Res/update.png"), QString::fromUtf8("检查更新"), this);
    auto *quit =
        new QAction(QIcon(":/image/Res/close.png"), languageText("Tray.exit", "Exit"), this);
    connect(show, &QAction::triggered, this, &TrayMenu::showAction);
    connect(setting, &QAction::triggered, this, &TrayMenu::settingAction);
    connect(update, &QAction::triggered, this, &TrayMenu::updateAction);
    connect(quit, &QAction::triggered, this, &TrayMenu::quitAction);
    addAction(show);
    addAction(quit);
}
