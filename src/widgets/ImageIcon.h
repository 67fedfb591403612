// The icons from the images that are compiled in.
// SPDX-License-Identifier: MIT
#pragma once

class QIcon;
class QString;

/// The icon of the image ":/images/NAME". The image is read when the icon is painted for the first time: most of them
/// are in menus, and reading them all takes long when the program starts. No image can be added to it, and it cannot be
/// written to a data stream.
QIcon imageIcon(const QString& name);
