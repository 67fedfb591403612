// The persistent settings, stored with QSettings under the organisation alone.
// SPDX-License-Identifier: MIT
#include "widgets/Settings.h"

#include "base/Product.h"

#include <QSettings>

namespace
{

constexpr char recentFileKey[] = "/%1/Recent File List/File%2";
constexpr char usedInterfaceKey[] = "/%1/Used Interfaces/Interface%2";
constexpr char displayModeKey[] = "/%1/Settings/Display";

// The user's own settings only: a settings file of the whole system must not add to the user's lists.
class CUserSettings : public QSettings
{
public:
    CUserSettings() : QSettings(QLatin1String(product::organisation)) { setFallbacksEnabled(false); }
};

QString slotKey(const char* pattern, int slot)
{
    return QLatin1String(pattern).arg(QLatin1String(product::title), QString::number(slot));
}

QStringList usedSlots(const char* pattern)
{
    const CUserSettings store;
    QStringList list;
    for (int slot = 1; slot <= settings::listSlots; ++slot) {
        const QString text = store.value(slotKey(pattern, slot)).toString();
        if (!text.isEmpty())
            list.append(text);
    }
    return list;
}

// Kept: slots after the end of the list keep their value: compatible behaviour.
void writeSlots(const char* pattern, const QStringList& list)
{
    CUserSettings store;
    for (int slot = 1; slot <= settings::listSlots && slot <= list.size(); ++slot)
        store.setValue(slotKey(pattern, slot), list[slot - 1]);
}

QString displayKey()
{
    return QLatin1String(displayModeKey).arg(QLatin1String(product::title));
}

} // namespace

QStringList settings::recentFiles()
{
    return usedSlots(recentFileKey);
}

void settings::setRecentFiles(const QStringList& files)
{
    writeSlots(recentFileKey, files);
}

QStringList settings::usedInterfaces()
{
    return usedSlots(usedInterfaceKey);
}

void settings::setUsedInterfaces(const QStringList& interfaces)
{
    writeSlots(usedInterfaceKey, interfaces);
}

valueFormats::TDisplayMode settings::displayMode()
{
    return static_cast<valueFormats::TDisplayMode>(CUserSettings().value(displayKey(), valueFormats::modeHex).toInt());
}

void settings::setDisplayMode(valueFormats::TDisplayMode mode)
{
    CUserSettings().setValue(displayKey(), int{ mode });
}

QStringList settings::promoted(const QStringList& list, const QString& name)
{
    return QStringList(name) + without(list, name);
}

QStringList settings::without(const QStringList& list, const QString& name)
{
    QStringList rest = list;
    rest.removeAll(name);
    return rest;
}
