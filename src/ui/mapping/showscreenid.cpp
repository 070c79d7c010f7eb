#include "showscreenid.h"

#include <QLabel>

namespace
{
constexpr int kShowTime = 2000;
constexpr int kPointSize = 100;
const QSize kWindowSize(200, 200);
} // namespace

ShowScreenID::ShowScreenID(QWidget *parent) : QWidget(parent), m_Label(new QLabel(this))
{
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_DeleteOnClose);
    setFixedSize(kWindowSize);
    setObjectName(QStringLiteral("ShowScreenID"));
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet(QStringLiteral("#ShowScreenID { background: #1e293b; }"
                                 "QLabel { color: #ffffff; background: transparent;"
                                 " border-bottom: 4px solid #0d9488; }"));
    QFont font = m_Label->font();
    font.setPointSize(kPointSize);
    font.setBold(true);
    m_Label->setFont(font);
    m_Label->setAlignment(Qt::AlignCenter);
    m_Label->setGeometry(rect());
    m_Timer.setSingleShot(true);
    connect(&m_Timer, &QTimer::timeout, this, &QWidget::close);
}

void ShowScreenID::SetScreenNum(int number)
{
    m_Label->setText(QString::number(number));
    show();
    StartTimer();
}

void ShowScreenID::StartTimer()
{
    m_Timer.start(kShowTime);
}
