#include "rollerkey.h"

#include "functionnamevalidator.h"
#include "keysequencefield.h"
#include "languagetexts.h"
#include "ui_rollerkey.h"

#include <QButtonGroup>
#include <QStringList>

namespace
{

constexpr int kWheelForm = 4;
constexpr int kWheelFields = 6;

// Each field has three buttons; buttonNumslot gets field * kButtonsPerField + the button.
constexpr int kDeleteButton = 0;
constexpr int kClearButton = 1;
constexpr int kSuperButton = 2;
constexpr int kButtonsPerField = 3;

} // namespace

RollerKey::RollerKey(QWidget *parent)
    : ScriboraDialog(parent), ui(new Ui::RollerKey), m_buttons(new QButtonGroup(this))
{
    ui->setupUi(this);
    SetQGraphicsDropShadowEffect(ui->main_frame);
    // The log tells the two fields apart as input box 1 and 2.
    m_fields[0] = new KeySequenceField(ui->lineEdit_keys1, QStringLiteral("输入框1"));
    m_fields[1] = new KeySequenceField(ui->lineEdit_keys2, QStringLiteral("输入框2"));
    for (KeySequenceField *field : m_fields)
        connect(field, &KeySequenceField::changed, this, &RollerKey::UpdateFunctionNameShow);
    InitButtons();
    ui->lineEdit_name->setValidator(new FunctionNameValidator(ui->lineEdit_name));
    connect(ui->checkBox_customName, &QCheckBox::toggled, this, &RollerKey::UseCustomFunName);
    connect(ui->lineEdit_name, &QLineEdit::textEdited, this, &RollerKey::CustomNameTextChange);
    connect(ui->pushButton_ok, &QPushButton::clicked, this, &RollerKey::onButtonOkClick);
    InitLanguageUI();
    UpdateFunctionNameShow();
}

RollerKey::~RollerKey()
{
    delete ui;
}

void RollerKey::InitButtons()
{
    QAbstractButton *const buttons[kFieldCount][kButtonsPerField] = {
        {ui->pushButton_delete1, ui->pushButton_clear1, ui->pushButton_super1},
        {ui->pushButton_delete2, ui->pushButton_clear2, ui->pushButton_super2}};
    for (int field = 0; field < kFieldCount; ++field) {
        for (int button = 0; button < kButtonsPerField; ++button)
            m_buttons->addButton(buttons[field][button], field * kButtonsPerField + button);
    }
    connect(m_buttons, &QButtonGroup::idClicked, this, &RollerKey::buttonNumslot);
}

void RollerKey::InitLanguageUI()
{
    setLanguageText(ui->label_title, "RollSetting.Title");
    setLanguageText(ui->label_keys1, "RollerKey.Keys1");
    setLanguageText(ui->label_keys2, "RollerKey.Keys2");
    for (QLineEdit *edit : {ui->lineEdit_keys1, ui->lineEdit_keys2})
        edit->setPlaceholderText(
            languageText("HotKeySetting.Group1.tips", edit->placeholderText()));
    for (QPushButton *button : {ui->pushButton_super1, ui->pushButton_super2})
        setLanguageText(button, "HotKeySetting.superKey");
    for (QPushButton *button : {ui->pushButton_delete1, ui->pushButton_delete2})
        setLanguageText(button, "Common.delete");
    for (QPushButton *button : {ui->pushButton_clear1, ui->pushButton_clear2})
        setLanguageText(button, "Common.clear");
    setLanguageText(ui->checkBox_customName, "HotKeySetting.customName");
    setLanguageText(ui->pushButton_cancel, "Common.cancel");
    setLanguageText(ui->pushButton_ok, "Common.ok");
}

void RollerKey::LoadDataForDialog(QString str)
{
    const QStringList fields = str.split(QLatin1Char('|'));
    if (fields.size() != kWheelFields)
        return;
    m_fields[0]->Load(fields[2], fields[4]);
    m_fields[1]->Load(fields[3], fields[5]);
    // A stored name other than the one the dialog makes was the user's own.
    ui->checkBox_customName->setChecked(fields[1] != generatedName());
    ui->lineEdit_name->setText(fields[1]);
}

QString RollerKey::GetData(QString &out)
{
    const QString name = ui->lineEdit_name->text();
    const QStringList fields{QString::number(kWheelForm), name,
                             m_fields[0]->keys(),         m_fields[1]->keys(),
                             m_fields[0]->tokens(),       m_fields[1]->tokens()};
    out = fields.join(QLatin1Char('|'));
    return name;
}

void RollerKey::AddKeyboardString(QString text, bool held, int field)
{
    if (field < 0 || field >= kFieldCount)
        return;
    m_fields[field]->AddKeyboardString(text, held);
}

void RollerKey::buttonNumslot(int button)
{
    KeySequenceField *field = m_fields[button / kButtonsPerField];
    switch (button % kButtonsPerField) {
    case kDeleteButton:
        field->DeleteLast();
        break;
    case kClearButton:
        field->Clear();
        break;
    case kSuperButton:
        field->OpenSuperKeyForm();
        break;
    }
}

// Both ways, down first; the name of the keyboard kind while no key is set.
QString RollerKey::generatedName() const
{
    QStringList keys;
    for (const KeySequenceField *field : m_fields) {
        if (!field->keys().isEmpty())
            keys << field->keys();
    }
    if (keys.isEmpty())
        return languageText("HotKeySetting.Group1.checkbox", QStringLiteral("Keyboard Shortcut"));
    return keys.join(QStringLiteral(" / "));
}

void RollerKey::UpdateFunctionNameShow()
{
    if (ui->checkBox_customName->isChecked())
        return;
    ui->lineEdit_name->setText(generatedName());
}

// Turned off, the name is made by the dialog again.
void RollerKey::UseCustomFunName()
{
    UpdateFunctionNameShow();
}

// A name typed by hand is kept from then on.
void RollerKey::CustomNameTextChange()
{
    ui->checkBox_customName->setChecked(true);
}

void RollerKey::onButtonOkClick()
{
    accept();
}

void RollerKey::on_pushButton_cancel_clicked()
{
    reject();
}

void RollerKey::on_CloseButton_clicked()
{
    reject();
}
