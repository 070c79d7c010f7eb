#pragma once

#include <QString>
#include <QToolButton>

// A tool button with its title under the icon, where the height leaves room for it; the
// title is its tool tip as well. It carries its number in a strip and whether it is the
// selected one.
class QTextIconButton : public QToolButton
{
    Q_OBJECT
public:
    explicit QTextIconButton(QWidget *parent = nullptr);

    void setButtonTitle(const QString &title);
    QString getButtonTitle() const { return m_Title; }

    void setId(int id) { m_Id = id; }
    int getId() const { return m_Id; }

    void setSelected(bool selected) { m_Selected = selected; }
    bool isSelected() const { return m_Selected; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void fitTitle();

    QString m_Title;
    int m_Id = 0;
    bool m_Selected = false;
};
