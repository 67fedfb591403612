// The icons from the images that are compiled in.
// SPDX-License-Identifier: MIT
#pragma once

class QIcon;
class QString;

/// The icon of the image ":/images/NAME". The image is read when the icon is painted for the first time: most of them
/// are in menus, and reading them all would take a tenth of the time in which the program starts.
QIcon imageIcon(const QString& name);
