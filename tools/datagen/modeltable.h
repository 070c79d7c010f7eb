#pragma once

#include <QString>
#include <QVector>

// One USB product of a model: one row of the compiled catalogue.
struct ProductRow {
    quint32 pid = 0;
    quint32 interfaceNumber = 0;
    quint32 collection = 0;
    quint16 reportMode = 0;
    QString dongleName;
};

// A model: the traits of its profile section and the products that share it.
struct ModelTraits {
    QString name;
    QString showName;
    int deviceType = 0;
    int keyNum = 0;
    int ringNum = 0;
    int trackPad = 0;
    int penNum = 0;
    int penType = 0;
    int groupKeys = 0;
    int control = 0;
    int keyDirection = 0;
    bool penRoller = false;
    QVector<int> keyMotids;
    QVector<int> keyActions;
    QVector<ProductRow> products;
};

struct ModelTable {
    quint32 vendor = 0;
    QString configVersion;
    QString copyright;
    QVector<int> penButtons;
    QVector<ModelTraits> models;
};
