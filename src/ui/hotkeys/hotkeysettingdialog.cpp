#include "hotkeysettingdialog.h"

#include "customkeyfunction.h"
#include "hotkeywidget.h"
#include "languagetexts.h"
#include "textfield.h"
#include "ui_hotkeysettingdialog.h"

#include <QComboBox>
#include <QDebug>

#include <optional>

namespace
{
const QSize kCellSize(190, 45);
constexpr int kFirstRowY = 20;
constexpr int kRowStep = 50;
constexpr int kFrameWidth = 829;
constexpr int kButtonX = 348;

struct CellGrid {
    int columns;
    int left;
    int step;
};

// New cells stand in rows of four; counts of the device table get their own arrangement.
constexpr CellGrid kRowsOfFour{4, 20, 195};

std::optional<CellGrid> gridFor(int count)
{
    switch (count) {
    case 4:
        return CellGrid{2, 100, 230};
    case 6:
    case 9:
        return CellGrid{3, 100, 230};
    case 8:
    case 10:
    case 12:
    case 16:
    case 20:
        return kRowsOfFour;
    default:
        return std::nullopt;
    }
}

QPoint cellPosition(const CellGrid &grid, int index)
{
    return QPoint(grid.left + grid.step * (index % grid.columns),
                  kFirstRowY + kRowStep * (index / grid.columns));
}

struct DialogSize {
    int height;
    int buttonY;
    int listHeight;
};

std::optional<DialogSize> sizeFor(int count)
{
    switch (count) {
    case 4:
    case 6:
    case 8:
        return DialogSize{409, 356, 120};
    case 9:
    case 10:
        return DialogSize{460, 407, 170};
    case 16:
        return DialogSize{534, 461, 230};
    default:
        return std::nullopt;
    }
}
} // namespace

HotkeySettingDialog::HotkeySettingDialog(QWidget *parent)
    : ScriboraDialog(parent), ui(new Ui::HotkeySettingDialog)
{
    ui->setupUi(this);
    SetQGraphicsDropShadowEffect(ui->main_frame);
    InitLanguageUI();
}

HotkeySettingDialog::~HotkeySettingDialog()
{
    delete ui;
}

void HotkeySettingDialog::InitLanguageUI()
{
    setLanguageText(ui->label_title, "ShortcutKey");
    setLanguageText(ui->pushButton_ok, "Common.ok");
}

void HotkeySettingDialog::initWidget(int count, int pid)
{
    m_Count = qBound(0, count, kKeyCount);
    m_Pid = pid;
    qDeleteAll(m_Cells);
    m_Cells.clear();
    for (int i = 0; i < m_Count; ++i) {
        auto *cell = new HotKeyWidget(ui->HotkeyListWidget);
        cell->setFixedSize(kCellSize);
        cell->setHotKeyItem1(i + 1, QString("nameList.at(%1)").arg(i));
        cell->setHiddenItem2(true);
        cell->move(cellPosition(kRowsOfFour, i));
        connect(cell->slot1().box(), QOverload<int>::of(&QComboBox::activated), this,
                [this, i] { ComboBoxKeyActivated(i); });
        m_Cells.append(cell);
    }
    UpdateHotkeyPositon(m_Count);
}

void HotkeySettingDialog::SetCurUISelectID(int group)
{
    m_Group = group;
}

void HotkeySettingDialog::LoadDefaultHotkeyInfo(_stAppConfigNode *record, QString picture,
                                                stTablet_XMLData *settings)
{
    m_Record = record;
    m_Settings = settings;
    const QPixmap pixmap(picture);
    if (!pixmap.isNull())
        ui->label_picture->setPixmap(pixmap.scaled(ui->label_picture->size(), Qt::KeepAspectRatio,
                                                   Qt::SmoothTransformation));
    for (int i = 0; i < m_Cells.size(); ++i) {
        if (stKeyConfig *key = keyRecord(i))
            m_Cells[i]->slot1().Show(*key);
    }
}

void HotkeySettingDialog::ChangeDialogSize(int count)
{
    const std::optional<DialogSize> size = sizeFor(count);
    if (!size)
        return;
    const QRect frame = ui->main_frame->geometry();
    ui->main_frame->setGeometry(frame.x(), frame.y(), kFrameWidth, size->height);
    ui->pushButton_ok->move(kButtonX, size->buttonY);
    QRect list = ui->scrollArea_hotkey->geometry();
    list.setHeight(size->listHeight);
    ui->scrollArea_hotkey->setGeometry(list);
    resize(frame.x() * 2 + kFrameWidth, frame.y() * 2 + size->height);
}

void HotkeySettingDialog::UpdateHotkeyPositon(int count)
{
    const std::optional<CellGrid> grid = gridFor(count);
    if (grid) {
        for (int i = 0; i < m_Cells.size(); ++i)
            m_Cells[i]->move(cellPosition(*grid, i));
    }
    fitListToCells();
}

// The list scrolls when the cells reach past it.
void HotkeySettingDialog::fitListToCells()
{
    QRect cells;
    for (const HotKeyWidget *cell : qAsConst(m_Cells))
        cells |= cell->geometry();
    ui->HotkeyListWidget->resize(ui->scrollArea_hotkey->width(), cells.bottom() + 1);
}

stKeyConfig *HotkeySettingDialog::keyRecord(int key) const
{
    if (!m_Record || !m_Settings || key < 0 || key >= m_Count)
        return nullptr;
    if (!m_Settings->SupportGroupKeys)
        return &m_Record->Key[key];
    if (m_Group < 0 || m_Group >= kKeyGroupCount)
        return nullptr;
    return &m_Record->KeyGroup[m_Group].Key[key];
}

void HotkeySettingDialog::ComboBoxKeyActivated(int key)
{
    qInfo() << "Function  ComboBoxKeyActivated:" << key;
    stKeyConfig *record = keyRecord(key);
    if (!record)
        return;
    const stTablet_XMLData &settings = *m_Settings;
    m_Cells[key]->slot1().Activate(*record, [this, &settings](QString &func) {
        return EditCustomKeyFunction(this, settings, m_Pid, func);
    });
    emit SendJsonDataToServer(
        keyActivatedEvent(*record, fieldText(m_Record->path), fieldText(m_Settings->szPidName)));
}

void HotkeySettingDialog::on_CloseButton_clicked()
{
    reject();
}

void HotkeySettingDialog::on_pushButton_ok_clicked()
{
    accept();
}
