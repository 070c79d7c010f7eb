#pragma once

#include "scriboradialog.h"

#include <QPixmap>
#include <QRect>
#include <QString>

class CTablet;

namespace Ui
{
class SelectAreaSettingDialog;
}

// Where the mapping page's areas are picked: the screen area by band or by two clicks on the
// desktop, the tablet's work area by band or by two taps of the pen.
class SelectAreaSettingDialog : public ScriboraDialog
{
    Q_OBJECT
public:
    explicit SelectAreaSettingDialog(QWidget *parent = nullptr);
    ~SelectAreaSettingDialog() override;

    // True for the tablet side.
    void SetSelectTabletType(bool tablet);
    // `full` is the whole tablet in its orientation, `area` the first choice, `box` where the
    // picture may lie on the tablet side.
    void InitUI(CTablet *tablet, QRect full, QRect area, QRect box, QString picture,
                short orientation);
    // `logicScreens` 1 to `screenNum` are drawn and numbered as Identify Screens numbers them;
    // `entry` is the screen entry to choose in, the whole desktop `screens[0]` when empty.
    void InitScreenUI(CTablet *tablet, QRect *screens, QRect *logicScreens, int &screenNum,
                      QRect entry, QPixmap *picture);
    void on_SetScreenRect(QRect rect);
    QRect GetWorkRect() const;
    QRect GetScreenRect() const;
    // 1 titles the tablet side, 0 the screen side.
    void InitLanguageUI(int type);

public slots:
    void done(int result) override;
    void SetTabletValue(short x, short y, short w, short h);
    void onCustomSetScreenRect(QRect rect);
    void onClickAreaSetting();

private slots:
    void on_pushButton_ok_clicked();
    void on_pushButton_cancel_clicked();
    void on_CloseButton_clicked();

private:
    Ui::SelectAreaSettingDialog *ui;
    CTablet *m_Tablet = nullptr;
    bool m_TabletType = false;
    QRect m_ScreenEntry;
};
