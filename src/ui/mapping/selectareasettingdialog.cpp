#include "selectareasettingdialog.h"

#include "ctablet.h"
#include "selectscreenarea.h"
#include "tipwindow.h"
#include "ui_selectareasettingdialog.h"

#include <QPushButton>

namespace
{
constexpr int kScreenPage = 0;
constexpr int kTabletPage = 1;
} // namespace

SelectAreaSettingDialog::SelectAreaSettingDialog(QWidget *parent)
    : ScriboraDialog(parent), ui(new Ui::SelectAreaSettingDialog)
{
    ui->setupUi(this);
    SetQGraphicsDropShadowEffect(ui->main_frame);
    connect(ui->ScreenAreaWidget->pickButton(), &QPushButton::clicked, this,
            &SelectAreaSettingDialog::onClickAreaSetting);
    connect(ui->WorkAreaWidget->pickButton(), &QPushButton::clicked, this,
            &SelectAreaSettingDialog::onClickAreaSetting);
    InitLanguageUI(0);
}

SelectAreaSettingDialog::~SelectAreaSettingDialog()
{
    delete ui;
}

void SelectAreaSettingDialog::InitLanguageUI(int type)
{
    ui->label_title->setText(type == 1 ? languageText("Area.TabletTitle", "Set Work Area")
                                       : languageText("Area.ScreenTitle", "Set Screen Area"));
    setLanguageText(ui->pushButton_cancel, "Common.cancel");
    setLanguageText(ui->pushButton_ok, "Common.ok");
}

void SelectAreaSettingDialog::SetSelectTabletType(bool tablet)
{
    m_TabletType = tablet;
    ui->stackedWidget->setCurrentIndex(tablet ? kTabletPage : kScreenPage);
    InitLanguageUI(tablet ? 1 : 0);
}

void SelectAreaSettingDialog::InitUI(CTablet *tablet, QRect full, QRect area, QRect box,
                                     QString picture, short orientation)
{
    m_Tablet = tablet;
    ui->WorkAreaWidget->SetTablet(full, area, box, picture, orientation);
}

void SelectAreaSettingDialog::InitScreenUI(CTablet *tablet, QRect *screens, QRect *logicScreens,
                                           int &screenNum, QRect entry, QPixmap *picture)
{
    m_Tablet = tablet;
    m_ScreenEntry = entry.isEmpty() ? screens[0] : entry;
    ui->ScreenAreaWidget->SetScreens(logicScreens, screenNum, m_ScreenEntry, picture);
}

void SelectAreaSettingDialog::on_SetScreenRect(QRect rect)
{
    ui->ScreenAreaWidget->on_SetScreenRect(rect);
}

void SelectAreaSettingDialog::onCustomSetScreenRect(QRect rect)
{
    ui->ScreenAreaWidget->on_SetScreenRect(rect);
}

QRect SelectAreaSettingDialog::GetWorkRect() const
{
    return ui->WorkAreaWidget->GetWorkRect();
}

QRect SelectAreaSettingDialog::GetScreenRect() const
{
    return ui->ScreenAreaWidget->GetScreenRect();
}

void SelectAreaSettingDialog::SetTabletValue(short x, short y, short w, short h)
{
    ui->WorkAreaWidget->SetTabletValue(x, y, w, h);
}

// The tablet side hands the pen to the area selection of the device; the screen side covers
// the screen entry with a window that takes two clicks.
void SelectAreaSettingDialog::onClickAreaSetting()
{
    if (m_TabletType) {
        if (!m_Tablet)
            return;
        TipWindow::show("Device.TabeltHelpInfo1");
        m_Tablet->m_AreaSelecting = true;
        connect(m_Tablet, &CTablet::SetAreaOk, this, &SelectAreaSettingDialog::SetTabletValue,
                Qt::UniqueConnection);
        return;
    }
    auto *pick = new SelectScreenArea();
    pick->setAttribute(Qt::WA_ShowModal);
    pick->SetScreenArea(m_ScreenEntry, 1.0, 1.0);
    connect(pick, &SelectScreenArea::SetScreenRect, this,
            &SelectAreaSettingDialog::onCustomSetScreenRect);
    pick->show();
    pick->setFocus();
    pick->activateWindow();
}

// Every way out, Escape included, ends a pick that is still waiting for the pen.
void SelectAreaSettingDialog::done(int result)
{
    TipWindow::close();
    if (m_Tablet)
        m_Tablet->m_AreaSelecting = false;
    ScriboraDialog::done(result);
}

void SelectAreaSettingDialog::on_pushButton_ok_clicked()
{
    accept();
}

void SelectAreaSettingDialog::on_pushButton_cancel_clicked()
{
    reject();
}

void SelectAreaSettingDialog::on_CloseButton_clicked()
{
    reject();
}
