#pragma once

#include <QString>
#include <QWidget>

class QKeyEvent;

namespace Ui
{
class InputKeyForm;
}

// Takes one key combination that goes with the Super key, in a window of its own, since the
// Super key itself does not reach the key editor reliably.
class InputKeyForm : public QWidget
{
    Q_OBJECT
public:
    explicit InputKeyForm(QWidget *parent = nullptr);
    ~InputKeyForm() override;

signals:
    // The names and the tokens of the keys, without the Super key.
    void InputKeyBoard(QString names, QString tokens);
    void CloseKeyForm();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private slots:
    void on_pushButton_cancel_clicked();

private:
    void InitLanguageUI();
    void keyPressed(const QKeyEvent &event);
    void keyReleased(const QKeyEvent &event);

    Ui::InputKeyForm *ui;
    QString m_keyScanCodes;
    QString m_keyNames;
    bool m_keyHeld = false;
};
