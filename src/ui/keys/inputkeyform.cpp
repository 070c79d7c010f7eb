#include "inputkeyform.h"

#include "keycapture.h"
#include "languagetexts.h"
#include "scriboradialog.h"
#include "ui_inputkeyform.h"

#include <QKeyEvent>
#include <QPropertyAnimation>

namespace
{
constexpr int kFadeInMs = 200;
const QString kSuperPrefix = QStringLiteral("Super+");
} // namespace

InputKeyForm::InputKeyForm(QWidget *parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint), ui(new Ui::InputKeyForm)
{
    ui->setupUi(this);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_DeleteOnClose);
    // Faded in when shown.
    setWindowOpacity(0.0);
    ScriboraDialog::SetQGraphicsDropShadowEffect(ui->main_frame);
    ui->lineEdit_keys->installEventFilter(this);
    ui->lineEdit_keys->setAttribute(Qt::WA_InputMethodEnabled, false);
    ui->lineEdit_keys->setText(kSuperPrefix);
    InitLanguageUI();
}

InputKeyForm::~InputKeyForm()
{
    delete ui;
}

void InputKeyForm::InitLanguageUI()
{
    setLanguageText(ui->label_tips, "HotKeySetting.superKey");
    setLanguageText(ui->pushButton_cancel, "Common.cancel");
}

void InputKeyForm::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    auto *fade = new QPropertyAnimation(this, "windowOpacity", this);
    fade->setDuration(kFadeInMs);
    fade->setStartValue(0.0);
    fade->setEndValue(1.0);
    fade->start(QAbstractAnimation::DeleteWhenStopped);
    ui->lineEdit_keys->setFocus();
}

void InputKeyForm::closeEvent(QCloseEvent *event)
{
    emit CloseKeyForm();
    QWidget::closeEvent(event);
}

bool InputKeyForm::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != ui->lineEdit_keys)
        return QWidget::eventFilter(watched, event);
    if (event->type() == QEvent::KeyPress) {
        keyPressed(*static_cast<QKeyEvent *>(event));
        return true;
    }
    if (event->type() == QEvent::KeyRelease) {
        keyReleased(*static_cast<QKeyEvent *>(event));
        return true;
    }
    return false;
}

// The Super key stands in front already.
void InputKeyForm::keyPressed(const QKeyEvent &event)
{
    if (event.isAutoRepeat() || event.key() == Qt::Key_Meta)
        return;
    const CapturedKey key = captureKey(event, m_keyScanCodes);
    const QString separator = m_keyHeld ? QStringLiteral("+") : QString();
    m_keyNames += separator + key.name;
    m_keyScanCodes += separator + key.token;
    m_keyHeld = true;
    ui->lineEdit_keys->setText(kSuperPrefix + m_keyNames);
}

// The first key to come up ends the combination.
void InputKeyForm::keyReleased(const QKeyEvent &event)
{
    if (event.isAutoRepeat() || !m_keyHeld)
        return;
    emit InputKeyBoard(m_keyNames, m_keyScanCodes);
    m_keyNames.clear();
    m_keyScanCodes.clear();
    m_keyHeld = false;
    ui->lineEdit_keys->setText(kSuperPrefix);
    close();
}

void InputKeyForm::on_pushButton_cancel_clicked()
{
    close();
}
