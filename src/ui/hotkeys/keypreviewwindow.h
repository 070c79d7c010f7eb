#pragma once

#include "settingsrecords.h"

#include <QRect>
#include <QVector>
#include <QWidget>

class QLabel;

namespace Ui
{
class KeyPreviewWindow;
}

// What the keys of a grouped keypad do, over the desktop: the keypad turned as the device is,
// each key's function beside it, the group in use on top. A click anywhere closes it.
class KeyPreviewWindow : public QWidget
{
    Q_OBJECT
public:
    static constexpr int kLabelCount = 11;

    explicit KeyPreviewWindow(QWidget *parent = nullptr);
    ~KeyPreviewWindow() override;

    // The texts of the record's group in use; with `withPicture` also the keypad's picture for
    // the orientation, and the labels placed around it.
    void LoadKeypadHotkeysFunctionsPreview(_stAppConfigNode *record, int orientation,
                                           bool withPicture);
    // Covers `rect`, a screen, with the keypad in the middle.
    void UpdateWidgetFrame(QRect rect);
    void UpdateLabelsPosition(int orientation);

public slots:
    void on_KeyCloseButton_clicked();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void placeCloseButton();
    static QString keyText(const stKeyConfig &key);

    Ui::KeyPreviewWindow *ui;
    QVector<QLabel *> m_Labels;
};
