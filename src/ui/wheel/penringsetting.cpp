#include "penringsetting.h"

#include "languagetexts.h"
#include "ringtipnumber.h"
#include "textfield.h"
#include "ui_penringsetting.h"

#include <QButtonGroup>
#include <QDebug>
#include <QSignalBlocker>

namespace
{

// The engine knows one slow speed, which acts on every second step; any other is the full
// rate.
constexpr int kSlowSpeed = 1;
constexpr int kStandardSpeed = 0;
constexpr int kSlowPosition = 0;
constexpr int kStandardPosition = 1;

} // namespace

PenRingSetting::PenRingSetting(QWidget *parent)
    : ScriboraDialog(parent), ui(new Ui::PenRingSetting), m_Radios(new QButtonGroup(this))
{
    ui->setupUi(this);
    SetQGraphicsDropShadowEffect(ui->main_frame);
    QComboBox *boxes[kRingItemCount] = {ui->comboBox_ring1, ui->comboBox_ring2, ui->comboBox_ring3,
                                        ui->comboBox_ring4};
    QRadioButton *radios[kRingItemCount] = {ui->radioButton_ring1, ui->radioButton_ring2,
                                            ui->radioButton_ring3, ui->radioButton_ring4};
    for (int slot = 0; slot < kRingItemCount; ++slot) {
        m_Slots[slot] = WheelSlot(boxes[slot]);
        connect(boxes[slot], QOverload<int>::of(&QComboBox::activated), this,
                [this, slot] { onWheelComboBoxActivated(slot); });
        m_Radios->addButton(radios[slot], slot);
    }
    connect(m_Radios, &QButtonGroup::idClicked, this, &PenRingSetting::onWheelRadioClick);
    connect(ui->horizontalSlider_speed, &QSlider::valueChanged, this,
            &PenRingSetting::onSpeedChanged);
    InitLanguageUI();
}

PenRingSetting::~PenRingSetting()
{
    delete ui;
}

void PenRingSetting::InitLanguageUI()
{
    setLanguageText(ui->label_title, "Pen.Ring.Title");
    setLanguageText(ui->label_functions, "TR.Functions");
    setLanguageText(ui->label_speed, "Pen.Ring.Speed");
    setLanguageText(ui->label_slow, "Pen.MouseMode.Slow");
    setLanguageText(ui->label_standard, "Pen.MouseMode.Standard");
    setLanguageText(ui->pushButton_ok, "Common.ok");
}

stRingConfig *PenRingSetting::ring() const
{
    if (!m_Record || m_Ring < 0 || m_Ring >= kRingCount)
        return nullptr;
    return &m_Record->Ring[m_Ring];
}

void PenRingSetting::LoadDefaultHotkeyInfo(_stAppConfigNode *record, stTablet_XMLData *settings)
{
    m_Record = record;
    m_Settings = settings;
    m_Ring = settings ? settings->DeviceRingNum : -1;
    const stRingConfig *roller = ring();
    if (!roller)
        return;
    for (int slot = 0; slot < kRingItemCount; ++slot)
        m_Slots[slot].Show(roller->Item[slot], ringItemNumber(m_Ring + roller->type, slot));
    if (QAbstractButton *radio = m_Radios->button(roller->id))
        radio->setChecked(true);
    const QSignalBlocker blocker(ui->horizontalSlider_speed);
    ui->horizontalSlider_speed->setValue(roller->Speed == kSlowSpeed ? kSlowPosition
                                                                     : kStandardPosition);
}

void PenRingSetting::onWheelComboBoxActivated(int slot)
{
    stRingConfig *roller = ring();
    if (!roller || slot < 0 || slot >= kRingItemCount)
        return;
    stRingItem &item = roller->Item[slot];
    m_Slots[slot].Activate(
        item, [this](QString &func) { return WheelSlot::EditWheelFunction(this, func); });
    emit SendJsonDataToServer(wheelActivatedEvent(
        roller->mode, slot, item, fieldText(m_Record->path), fieldText(m_Settings->szPidName)));
}

void PenRingSetting::onWheelRadioClick(int slot)
{
    stRingConfig *roller = ring();
    if (!roller || slot < 0 || slot >= kRingItemCount)
        return;
    qDebug() << "onWheelRadioClick" << slot;
    roller->id = static_cast<int16_t>(slot);
}

void PenRingSetting::onSpeedChanged(int value)
{
    if (stRingConfig *roller = ring())
        roller->Speed = value == kSlowPosition ? kSlowSpeed : kStandardSpeed;
}

void PenRingSetting::on_pushButton_ok_clicked()
{
    accept();
}

// The choices are in the record already; closing keeps them as OK does.
void PenRingSetting::on_CloseButton_clicked()
{
    reject();
}
