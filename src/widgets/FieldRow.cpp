// Names and help texts of a field and its label.
// SPDX-License-Identifier: MIT
#include "widgets/FieldRow.h"

#include <QLabel>
#include <QString>

void fieldRow::describe(QWidget* field, const tFieldText& texts)
{
    field->setObjectName(QLatin1String(texts.name));
    field->setToolTip(QLatin1String(texts.toolTip));
    field->setWhatsThis(QLatin1String(texts.whatsThis));
    field->setAccessibleDescription(QLatin1String(texts.whatsThis));
    if (*texts.spokenName != '\0')
        field->setAccessibleName(QLatin1String(texts.spokenName));
}

QLabel* fieldRow::createLabel(QWidget* field, const tFieldText& texts)
{
    const QString subject = QLatin1String(texts.name).toString().section(QLatin1Char(' '), 0, -3);
    auto* label = new QLabel(QLatin1String(texts.label), field->parentWidget());
    label->setObjectName(subject + QStringLiteral(" text label"));
    label->setWhatsThis(QLatin1String(texts.whatsThis));
    label->setBuddy(field);
    return label;
}
