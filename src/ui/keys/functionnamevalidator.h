#pragma once

#include <QRegExpValidator>

// "|" separates the fields of a function string, so a name must not hold one: typed, it is
// refused; pasted or set, it is dropped.
class FunctionNameValidator : public QRegExpValidator
{
public:
    explicit FunctionNameValidator(QObject *parent)
        : QRegExpValidator(QRegExp(QStringLiteral("[^\\|]+$")), parent)
    {
    }

    State validate(QString &input, int &pos) const override
    {
        pos -= input.leftRef(pos).count(QLatin1Char('|'));
        input.remove(QLatin1Char('|'));
        return QRegExpValidator::validate(input, pos);
    }
};
