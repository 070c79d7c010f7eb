#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

class InputKeyForm;
class QKeyEvent;
class QLineEdit;

// Keys typed into one line edit, kept as the key text the edit shows and as the tokens the
// engine plays: up to 20 entries, a modifier opening a combination until it is let go, and
// the Super key through a window of its own.
class KeySequenceField : public QObject
{
    Q_OBJECT
public:
    // `logName` marks this field's key presses in the log when a dialog has several.
    explicit KeySequenceField(QLineEdit *edit, const QString &logName = QString());

    QLineEdit *edit() const { return m_edit; }
    QString keys() const;
    QString tokens() const { return m_keyScanCodes; }
    // A stored key text and its tokens; the entries are counted from the tokens.
    void Load(const QString &keys, const QString &tokens);
    // "-1" closes the open combination instead of adding text.
    void AddKeyboardString(const QString &text, bool held);
    void Clear();
    void DeleteLast();
    // Opens the Super key's window over the field's dialog.
    void OpenSuperKeyForm();

public slots:
    void onGetInputKeyFormString(QString title, QString codes);
    void onCloseInputKeyForm();

signals:
    // The key text changed.
    void changed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void keyPressed(const QKeyEvent &event);
    void keyReleased(const QKeyEvent &event);
    QString openCombination() const;
    void appendToken(const QString &token, bool held);

    QLineEdit *m_edit;
    QString m_logName;
    QPointer<InputKeyForm> m_inputKeyForm;
    QString m_keyScanCodes;
    int m_keyNum = 0;
    bool m_keyHeld = false;
};
