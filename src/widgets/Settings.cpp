// The persistent settings, stored with QSettings under the organisation alone.
// SPDX-License-Identifier: MIT
#include "widgets/Settings.h"

#include "base/Product.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <optional>

#include <unistd.h>

namespace
{

constexpr char recentFileKey[] = "%1/Recent File List/File%2";
constexpr char usedInterfaceKey[] = "%1/Used Interfaces/Interface%2";
constexpr char displayModeKey[] = "%1/Settings/Display";

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

// The number of whole lines with values in a file; none when it cannot be read.
std::optional<qsizetype> valuesIn(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    qsizetype count = 0;
    for (QByteArray line = file.readLine(); !line.isEmpty(); line = file.readLine())
        count += line.endsWith('\n') && line.contains('=') && !line.startsWith(';') ? 1 : 0;
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    return count;
}

// Whether `store` holds what is in its file: one that cannot be read looks like an empty one.
bool holdsItsFile(const QSettings& store)
{
    if (!store.allKeys().isEmpty())
        return true;
    const bool isMissing = access(QFile::encodeName(store.fileName()).constData(), F_OK) != 0 && errno == ENOENT;
    return isMissing || valuesIn(store.fileName()) == 0;
}

// Keeps a second name of the settings file while it is written: the library puts an empty file in its place, and says
// nothing, when there is no room for the last bytes.
class CKeptFile
{
public:
    explicit CKeptFile(const QString& fileName)
        // Where a link leads; empty when there is no file.
        : m_name(QFile::encodeName(QFileInfo(fileName).canonicalFilePath())),
          m_copy(m_name + '.' + QByteArray::number(getpid()))
    {
        if (m_name.isEmpty())
            return;
        unlink(m_copy.constData()); // left by a process that was killed
        m_isKept = link(m_name.constData(), m_copy.constData()) == 0;
    }
    ~CKeptFile()
    {
        if (m_isKept)
            unlink(m_copy.constData());
    }
    CKeptFile(const CKeptFile&) = delete;
    CKeptFile& operator=(const CKeptFile&) = delete;

    void putBack(const QString& fileName) const
    {
        if (m_name.isEmpty())
            QFile::remove(fileName);
        else if (m_isKept)
            (void)std::rename(m_copy.constData(), m_name.constData());
    }

private:
    QByteArray m_name;
    QByteArray m_copy;
    bool m_isKept = false;
};

// `change` sets the values.
void write(const std::function<void(QSettings&)>& change)
{
    CUserSettings store;
    if (!holdsItsFile(store))
        return;
    const CKeptFile kept(store.fileName());
    change(store);
    const qsizetype count = store.allKeys().size();
    store.sync();
    if (valuesIn(store.fileName()) != count)
        kept.putBack(store.fileName());
}

// Kept: slots after the end of the list keep their value: compatible behaviour.
void writeSlots(const char* pattern, const QStringList& list)
{
    write([pattern, &list](QSettings& store) {
        for (int slot = 1; slot <= settings::listSlots && slot <= list.size(); ++slot)
            store.setValue(slotKey(pattern, slot), list[slot - 1]);
    });
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
    write([mode](QSettings& store) { store.setValue(displayKey(), int{ mode }); });
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
