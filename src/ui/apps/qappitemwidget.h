#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QWidget>

class QIcon;
class QTextIconButton;

// The strip of application profiles: "Other", the profile for everything, and up to seven
// programs, one icon button each. Buttons are numbered from 1 in strip order; the path list
// holds their paths in the same order, "Other.app" first.
class QAppItemWidget : public QWidget
{
    Q_OBJECT
public:
    static constexpr int kButtonCount = 8;

    explicit QAppItemWidget(QWidget *parent = nullptr);

    // False when refused: a full list, an empty path or one already in the strip.
    bool doAddItem(QString path);
    void removeSelectItem();
    // Back to "Other" alone, selected.
    void cleanAppItem();
    int getAppCount() const { return m_Paths.size(); }
    QString getSelectAppPath() const { return m_CurrentPath; }
    // Shows button `index` (0-based) as the selected one.
    void setSelectAppItem(int index);

signals:
    void onSelectAppItem(QString path, int index);

public slots:
    void onToolClick(bool checked);

private:
    void createButtons();
    void showItem(QTextIconButton *button, const QString &path, const QIcon &icon);
    // Makes button `number` the selected one and its path the current one.
    void select(int number);

    QList<QTextIconButton *> m_Buttons;
    QStringList m_Paths;
    QString m_CurrentPath;
    int m_SelectIndex = 1;
    QString m_NormalStyle;
    QString m_SelectStyle;
};
