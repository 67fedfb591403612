// A field of a form and its label: their object names and help texts.
// SPDX-License-Identifier: MIT
#pragma once

class QLabel;
class QWidget;

/// The words of one field. `name` is its object name and ends with its kind: "vendor name line edit". A field without
/// a label has its spoken name, for those who do not see its place.
struct tFieldText {
    const char* name;
    const char* label;
    const char* toolTip;
    const char* whatsThis;
    const char* spokenName = "";
};

namespace fieldRow
{

/// Characters that a field for a text of a data sheet can hold: as many as the longest line, so that none is cut.
inline constexpr int longestText = 0x10000;

/// Gives a field or button its object name, tool tip and what's-this text, which also describes it to assistive
/// technology; without that, the tool tip would, which often repeats the label.
void describe(QWidget* field, const tFieldText& texts);

/// Creates the label that stands before a field: a sibling of the field, which is its buddy, with the same what's-this
/// text. Its object name is that of the field with the kind, the last two words, replaced: "vendor name text label".
QLabel* createLabel(QWidget* field, const tFieldText& texts);

} // namespace fieldRow
