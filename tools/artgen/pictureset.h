#pragma once

#include "modeltable.h"

#include <QImage>
#include <QPair>
#include <QVector>

// Every picture of the resource file, drawn from the table of models, and the resource list
// that packs them with the style sheet.
class PictureSet
{
public:
    explicit PictureSet(const ModelTable &table);
    bool write(const QString &folder, const QString &styleSheet) const;
    int size() const { return m_pictures.size(); }

private:
    void addWindowPictures();
    void addPens();
    void addModel(const ModelTraits &model);
    void addKeypadPreview();
    void add(const QString &path, const QImage &image);
    bool writeList(const QString &file, const QString &styleSheet) const;

    const ModelTable &m_table;
    QVector<QPair<QString, QImage>> m_pictures; // path below ":/image/"
};
