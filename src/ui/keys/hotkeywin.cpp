#include "hotkeywin.h"

#include "functionnamevalidator.h"
#include "keysequencefield.h"
#include "languagetexts.h"
#include "ui_hotkeywin.h"

#include <QButtonGroup>
#include <QDebug>
#include <QFileDialog>
#include <utility>

namespace
{

// Ids of the mode group.
constexpr int kModeMouse = 0;
constexpr int kModeProgram = 1;
constexpr int kModeSystem = 2;
constexpr int kModeKeyboard = 3;

constexpr int kFunctionColumns = 2;
// A wheel key's dialog shows the key group and key preview on the radios of ids 6 and 7;
// its strings carry them as 10 and 11.
constexpr int kRingFunctionShift = 4;
constexpr int kFirstMouseId = 6;

// Function ids of the dialog are action ids less these.
constexpr int kSystemActionBase = 100;
constexpr int kModifierActionBase = 200;

QByteArray actionKey(int action)
{
    return "Actions." + QByteArray::number(action);
}

} // namespace

HotKeyWin::HotKeyWin(QWidget *parent)
    : ScriboraDialog(parent), ui(new Ui::HotKeyWin), m_modeGroup(new QButtonGroup(this)),
      m_functionGroup(new QButtonGroup(this)), m_modifierGroup(new QButtonGroup(this)),
      m_mouseGroup(new QButtonGroup(this))
{
    ui->setupUi(this);
    SetQGraphicsDropShadowEffect(ui->main_frame);
    InitButtonGroups();
    ui->gridLayout_system->setAlignment(Qt::AlignTop);
    m_keys = new KeySequenceField(ui->lineEdit_keys);
    connect(m_keys, &KeySequenceField::changed, this, &HotKeyWin::UpdateFunctionNameShow);
    ui->lineEdit_name->setValidator(new FunctionNameValidator(ui->lineEdit_name));
    connect(ui->pushButton_delete, &QPushButton::clicked, this, &HotKeyWin::BtnClickDeleteFuc);
    connect(ui->pushButton_clear, &QPushButton::clicked, this, &HotKeyWin::BtnClickClearFuc);
    connect(ui->pushButton_browse, &QPushButton::clicked, this, &HotKeyWin::BtnSelectFile);
    connect(ui->lineEdit_path, &QLineEdit::textChanged, this, &HotKeyWin::UpdateFunctionNameShow);
    connect(ui->checkBox_customName, &QCheckBox::toggled, this, &HotKeyWin::UseCustomFunName);
    connect(ui->lineEdit_name, &QLineEdit::textEdited, this, &HotKeyWin::CustomNameTextChange);
    InitLanguageUI();
    m_modeGroup->button(kModeKeyboard)->setChecked(true);
}

HotKeyWin::~HotKeyWin()
{
    delete ui;
}

void HotKeyWin::InitButtonGroups()
{
    m_modeGroup->addButton(ui->checkBox_mouse, kModeMouse);
    m_modeGroup->addButton(ui->checkBox_program, kModeProgram);
    m_modeGroup->addButton(ui->checkBox_system, kModeSystem);
    m_modeGroup->addButton(ui->checkBox_keyboard, kModeKeyboard);
    connect(m_modeGroup, &QButtonGroup::idToggled, this, [this](int mode, bool checked) {
        if (checked)
            setMode(mode);
    });

    m_modifierGroup->setExclusive(false);
    int id = 1;
    for (QAbstractButton *box : {ui->checkBox_shift, ui->checkBox_leftAlt, ui->checkBox_rightAlt,
                                 ui->checkBox_ctrl, ui->checkBox_space})
        m_modifierGroup->addButton(box, id++);
    for (QAbstractButton *radio :
         {ui->radioButton_leftClick, ui->radioButton_rightClick, ui->radioButton_middleClick,
          ui->radioButton_doubleClick, ui->radioButton_wheelUp, ui->radioButton_wheelDown})
        m_mouseGroup->addButton(radio, id++);

    // In the order of the dialog.
    const std::pair<QAbstractButton *, int> functions[] = {
        {ui->radioButton_function1, 1}, {ui->radioButton_function2, 2},
        {ui->radioButton_function3, 3}, {ui->radioButton_function4, 4},
        {ui->radioButton_function5, 5}, {ui->radioButton_function6, 6},
        {ui->radioButton_function7, 7}, {ui->radioButton_function9, 9},
        {ui->radioButton_function8, 8}, {ui->radioButton_function12, 12}};
    for (const auto &[radio, function] : functions)
        m_functionGroup->addButton(radio, function);

    for (QButtonGroup *group : {m_modifierGroup, m_mouseGroup, m_functionGroup})
        connect(group, &QButtonGroup::idToggled, this, &HotKeyWin::UpdateFunctionNameShow);
}

void HotKeyWin::InitLanguageUI()
{
    setLanguageText(ui->label_title, "HotKeySetting.Title");
    setLanguageText(ui->checkBox_keyboard, "HotKeySetting.Group1.checkbox");
    setLanguageText(ui->checkBox_mouse, "HotKeySetting.Group2.checkbox");
    setLanguageText(ui->checkBox_program, "HotKeySetting.Group3.checkbox");
    setLanguageText(ui->checkBox_system, "HotKeySetting.Group4.checkbox");
    setLanguageText(ui->label_mouse, "HotKeySetting.Group1.Mousecheckbox");
    setLanguageText(ui->pushButton_super, "HotKeySetting.superKey");
    setLanguageText(ui->checkBox_customName, "HotKeySetting.customName");
    ui->lineEdit_keys->setPlaceholderText(
        languageText("HotKeySetting.Group1.tips", ui->lineEdit_keys->placeholderText()));
    for (QButtonGroup *group : {m_modifierGroup, m_mouseGroup}) {
        for (QAbstractButton *button : group->buttons())
            setLanguageText(button, actionKey(kModifierActionBase + group->id(button)).constData());
    }
    for (QAbstractButton *button : m_functionGroup->buttons()) {
        const int function = m_functionGroup->id(button);
        if (function < 8 || function == 9)
            setLanguageText(button, actionKey(kSystemActionBase + function).constData());
    }
    setLanguageText(ui->radioButton_function8, "TR.Item.Null");
    setLanguageText(ui->radioButton_function12, "Pen.Ring.SwitchFunction");
    setLanguageText(ui->pushButton_delete, "Common.delete");
    setLanguageText(ui->pushButton_clear, "Common.clear");
    setLanguageText(ui->pushButton_browse, "Common.scan");
    setLanguageText(ui->pushButton_cancel, "Common.cancel");
    setLanguageText(ui->hotkeywin_ok_button, "Common.ok");
}

void HotKeyWin::setMode(int mode)
{
    ui->widget_mouse->setEnabled(mode == kModeMouse);
    ui->widget_program->setEnabled(mode == kModeProgram);
    ui->widget_system->setEnabled(mode == kModeSystem);
    ui->widget_keys->setEnabled(mode == kModeKeyboard);
    if (mode == kModeKeyboard)
        ui->lineEdit_keys->setFocus();
    UpdateFunctionNameShow();
}

void HotKeyWin::LoadCustomQString(QString str)
{
    const QStringList fields = str.split(QLatin1Char('|'));
    const QString form = fields.first();
    if (fields.size() == 4 && form == QLatin1String("1")) {
        m_modeGroup->button(kModeKeyboard)->setChecked(true);
        m_keys->Load(fields[2], fields[3]);
        ui->lineEdit_keys->setFocus();
    } else if (fields.size() == 3 && form == QLatin1String("0")) {
        m_modeGroup->button(kModeMouse)->setChecked(true);
        loadMouseAndModifierIds(fields[2]);
    } else if (fields.size() == 3 && form == QLatin1String("3")) {
        m_modeGroup->button(kModeSystem)->setChecked(true);
        loadFunction(fields[2].toInt());
    } else if (fields.size() == 3 && form == QLatin1String("2")) {
        m_modeGroup->button(kModeProgram)->setChecked(true);
        ui->lineEdit_path->setText(fields[2]);
    } else {
        return;
    }
    // A stored name other than the one the dialog makes was the user's own.
    ui->checkBox_customName->setChecked(fields[1] != generatedName());
    ui->lineEdit_name->setText(fields[1]);
}

void HotKeyWin::loadMouseAndModifierIds(const QString &ids)
{
    for (const QString &value : ids.split(QLatin1Char('+'))) {
        const int id = value.toInt();
        QAbstractButton *button =
            id >= kFirstMouseId ? m_mouseGroup->button(id) : m_modifierGroup->button(id);
        if (button)
            button->setChecked(true);
    }
}

void HotKeyWin::loadFunction(int id)
{
    if (id == 6 + kRingFunctionShift || id == 7 + kRingFunctionShift)
        id -= kRingFunctionShift;
    if (QAbstractButton *radio = m_functionGroup->button(id))
        radio->setChecked(true);
}

QString HotKeyWin::GetData(QString &out)
{
    const QString name = ui->lineEdit_name->text();
    const QString head = QLatin1Char('|') + name + QLatin1Char('|');
    switch (m_modeGroup->checkedId()) {
    case kModeMouse:
        out = QLatin1Char('0') + head + mouseAndModifierIds();
        break;
    case kModeProgram:
        out = QLatin1Char('2') + head + ui->lineEdit_path->text();
        break;
    case kModeSystem: {
        int function = m_functionGroup->checkedId();
        if (m_ringFunctions && (function == 6 || function == 7))
            function += kRingFunctionShift;
        out = QLatin1Char('3') + head + (function > 0 ? QString::number(function) : QString());
        break;
    }
    default:
        out = QLatin1Char('1') + head + m_keys->keys() + QLatin1Char('|') + m_keys->tokens();
        break;
    }
    return name;
}

// The checked modifiers by id, then the first mouse function.
QString HotKeyWin::mouseAndModifierIds() const
{
    QStringList ids;
    for (QAbstractButton *box : m_modifierGroup->buttons()) {
        if (box->isChecked())
            ids << QString::number(m_modifierGroup->id(box));
    }
    if (m_mouseGroup->checkedId() >= kFirstMouseId)
        ids << QString::number(m_mouseGroup->checkedId());
    return ids.join(QLatin1Char('+'));
}

QString HotKeyWin::mouseAndModifierNames() const
{
    QStringList names;
    for (QAbstractButton *box : m_modifierGroup->buttons()) {
        if (box->isChecked())
            names << box->text();
    }
    if (m_mouseGroup->checkedButton())
        names << m_mouseGroup->checkedButton()->text();
    return names.join(QLatin1Char('+'));
}

QString HotKeyWin::generatedName() const
{
    switch (m_modeGroup->checkedId()) {
    case kModeMouse:
        return mouseAndModifierNames();
    case kModeProgram:
        return ui->lineEdit_path->text().section(QLatin1Char('/'), -1);
    case kModeSystem:
        return m_functionGroup->checkedButton() ? m_functionGroup->checkedButton()->text()
                                                : QString();
    default:
        return ui->lineEdit_keys->text().isEmpty() ? ui->checkBox_keyboard->text()
                                                   : ui->lineEdit_keys->text();
    }
}

void HotKeyWin::UpdateFunctionNameShow()
{
    if (ui->checkBox_customName->isChecked())
        return;
    ui->lineEdit_name->setText(generatedName());
}

// Turned off, the name is made by the dialog again.
void HotKeyWin::UseCustomFunName()
{
    UpdateFunctionNameShow();
}

// A name typed by hand is kept from then on.
void HotKeyWin::CustomNameTextChange()
{
    ui->checkBox_customName->setChecked(true);
}

void HotKeyWin::LoadForRingNumber(short ringNum, short trackPad, int third)
{
    qDebug() << "LoadForRingNumber" << ringNum << trackPad << third;
    const auto setShown = [this](int function, bool visible) {
        m_functionGroup->button(function)->setHidden(!visible);
    };
    setShown(12, third == 3);
    setShown(7, trackPad > 0);
    setShown(5, ringNum >= 1);
    setShown(6, ringNum >= 2 || (ringNum == 1 && trackPad > 0));
    m_ringFunctions = ringNum == 11;
    if (m_ringFunctions) {
        setShown(6, true);
        setShown(7, true);
        ui->radioButton_function6->setText(languageText("Actions.110", "Key Group"));
        ui->radioButton_function7->setText(languageText("Actions.111", "Key Preview"));
    }
    arrangeFunctions();
    UpdateFunctionNameShow();
}

// The eraser end already switches between pen and eraser, so the two switches are left out.
void HotKeyWin::InitUIForEraser(bool eraser)
{
    ui->radioButton_function3->setHidden(eraser);
    ui->radioButton_function9->setHidden(eraser);
    arrangeFunctions();
}

// Visible functions close up in the grid, in the order of the dialog.
void HotKeyWin::arrangeFunctions()
{
    int cell = 0;
    for (QAbstractButton *radio : m_functionGroup->buttons()) {
        ui->gridLayout_system->removeWidget(radio);
        if (radio->isHidden())
            continue;
        ui->gridLayout_system->addWidget(radio, cell / kFunctionColumns, cell % kFunctionColumns);
        ++cell;
    }
}

// The key field does the capture; the buttons and the Super key's window hand it entries.
void HotKeyWin::AddKeyboardString(QString text, bool held)
{
    m_keys->AddKeyboardString(text, held);
}

void HotKeyWin::BtnClickClearFuc()
{
    m_keys->Clear();
}

void HotKeyWin::BtnClickDeleteFuc()
{
    m_keys->DeleteLast();
}

void HotKeyWin::on_pushButton_super_clicked()
{
    m_keys->OpenSuperKeyForm();
}

void HotKeyWin::onGetInputKeyFormString(QString title, QString codes)
{
    m_keys->onGetInputKeyFormString(title, codes);
}

void HotKeyWin::onCloseInputKeyForm()
{
    m_keys->onCloseInputKeyForm();
}

void HotKeyWin::BtnSelectFile()
{
    const QString path = QFileDialog::getOpenFileName(
        this, languageText("HotKeySetting.selectexe", QStringLiteral("Select EXE")),
        QStringLiteral("."), QStringLiteral("All file(*)"));
    if (!path.isEmpty())
        ui->lineEdit_path->setText(path);
}

void HotKeyWin::on_hotkeywin_ok_button_clicked()
{
    accept();
}

void HotKeyWin::on_pushButton_cancel_clicked()
{
    reject();
}

void HotKeyWin::on_CloseButton_clicked()
{
    reject();
}
