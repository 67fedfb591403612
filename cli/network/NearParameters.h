// Names of parameters that may be meant by a text that is none.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

class CCANopen;
class CCANopenObject;

/// The names of an object's entries: "Identity object/Vendor-ID"; that of the object where it has but one.
QStringList entryNames(const CCANopenObject& object);

/// Some names that may be meant: those that differ in upper and lower case only, entries of that name, the entries of
/// an object of that name, or else the nearest one. In the order of the sheet.
QStringList nearNames(const QString& text, const CCANopen& sheet);

/// The names in quotes, separated by commas; of many the first ones, followed by "...".
QString quotedNames(const QStringList& names);
