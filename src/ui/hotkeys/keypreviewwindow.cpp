#include "keypreviewwindow.h"

#include "groupnumeral.h"
#include "keyslot.h"
#include "languagetexts.h"
#include "textfield.h"
#include "ui_keypreviewwindow.h"

#include <QMouseEvent>

namespace
{
constexpr int kOrientations = 4;

// Where each label stands on the keypad picture, per orientation.
const QPoint kLabelPositions[KeyPreviewWindow::kLabelCount][kOrientations] = {
    {{0, 203}, {653, 237}, {760, 307}, {100, 277}},
    {{310, 64}, {653, 296}, {455, 445}, {100, 220}},
    {{490, 64}, {653, 355}, {270, 445}, {100, 161}},
    {{0, 274}, {110, 176}, {760, 244}, {642, 338}},
    {{310, 444}, {653, 176}, {455, 65}, {100, 338}},
    {{723, 274}, {110, 355}, {40, 244}, {642, 161}},
    {{723, 208}, {653, 415}, {40, 307}, {100, 102}},
    {{0, 332}, {110, 237}, {760, 186}, {642, 277}},
    {{490, 444}, {110, 296}, {270, 65}, {642, 220}},
    {{723, 332}, {110, 415}, {40, 186}, {642, 102}},
    {{0, 65}, {110, 80}, {40, 65}, {100, 60}},
};

const char *const kLabelStyle =
    "font-size: 21px;color: #FFFFFF;font-weight: 400;line-height: 20px;";
constexpr int kCloseTop = 40;
constexpr int kCloseFromRight = 79;

// A label leans towards the keypad: right-aligned on its left, left-aligned on its right,
// centred above and below it.
Qt::Alignment alignmentAt(const QRect &label, const QSize &picture)
{
    const int x = label.center().x();
    if (x < picture.width() * 3 / 10)
        return Qt::AlignRight | Qt::AlignVCenter;
    if (x > picture.width() * 7 / 10)
        return Qt::AlignLeft | Qt::AlignVCenter;
    const bool above = label.center().y() < picture.height() / 2;
    return Qt::AlignHCenter | (above ? Qt::AlignBottom : Qt::AlignTop);
}
} // namespace

KeyPreviewWindow::KeyPreviewWindow(QWidget *parent) : QWidget(parent), ui(new Ui::KeyPreviewWindow)
{
    ui->setupUi(this);
    setWindowFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::Tool);
    setAttribute(Qt::WA_TranslucentBackground);
    m_Labels = {ui->label_1, ui->label_2, ui->label_3, ui->label_4,  ui->label_5, ui->label_6,
                ui->label_7, ui->label_8, ui->label_9, ui->label_10, ui->label_11};
    for (QLabel *label : qAsConst(m_Labels))
        label->setStyleSheet(kLabelStyle);
    setLanguageText(ui->label_groupName, "HotKey.group.name");
    ui->label_bg->installEventFilter(this);
}

KeyPreviewWindow::~KeyPreviewWindow()
{
    delete ui;
}

QString KeyPreviewWindow::keyText(const stKeyConfig &key)
{
    if (key.id != KeySlot::kCustomEntry)
        return KeySlot::ActionText(key.Actid);
    const QString name = KeySlot::LabelOf(fieldText(key.func));
    return name.isEmpty() ? KeySlot::CustomText() : name;
}

void KeyPreviewWindow::LoadKeypadHotkeysFunctionsPreview(_stAppConfigNode *record, int orientation,
                                                         bool withPicture)
{
    if (!record)
        return;
    if (withPicture) {
        const QPixmap picture(QString(":/image/tablet/Pre_Keypad_H_%1.png").arg(orientation));
        if (!picture.isNull())
            ui->label_picture->setPixmap(picture.scaled(
                ui->label_picture->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
        UpdateLabelsPosition(orientation);
        placeCloseButton();
    }
    const int group = record->SelectID;
    ui->label_group->setText(groupNumeral(group));
    if (group < 0 || group >= kKeyGroupCount)
        return;
    for (int i = 0; i < m_Labels.size(); ++i)
        m_Labels[i]->setText(keyText(record->KeyGroup[group].Key[i]));
}

void KeyPreviewWindow::UpdateLabelsPosition(int orientation)
{
    if (orientation < 0 || orientation >= kOrientations)
        return;
    for (int i = 0; i < m_Labels.size(); ++i) {
        QLabel *label = m_Labels[i];
        label->move(kLabelPositions[i][orientation]);
        label->setAlignment(alignmentAt(label->geometry(), ui->label_picture->size()));
    }
}

void KeyPreviewWindow::UpdateWidgetFrame(QRect rect)
{
    setGeometry(rect);
    ui->label_bg->setGeometry(0, 0, rect.width(), rect.height());
    QRect picture = ui->label_picture->geometry();
    picture.moveCenter(QPoint(rect.width() / 2, rect.height() / 2));
    ui->label_picture->setGeometry(picture);
    placeCloseButton();
}

void KeyPreviewWindow::placeCloseButton()
{
    ui->KeyCloseButton->move(ui->label_picture->width() - kCloseFromRight, kCloseTop);
}

bool KeyPreviewWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == ui->label_bg && event->type() == QEvent::MouseButtonPress) {
        close();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void KeyPreviewWindow::on_KeyCloseButton_clicked()
{
    close();
}
