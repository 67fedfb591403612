// The persistent settings, stored with QSettings under the organisation alone.
// SPDX-License-Identifier: MIT
#include "widgets/Settings.h"

#include "base/Product.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QMap>
#include <QSettings>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

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
    QList<QByteArray> lines = file.readAll().split('\n');
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    lines.removeLast(); // what has no line end
    return std::count_if(lines.begin(), lines.end(),
                         [](const QByteArray& line) { return line.contains('=') && !line.startsWith(';'); });
}

// Whether `store` holds what is in its file: one that cannot be read looks like an empty one.
bool holdsItsFile(const QSettings& store)
{
    if (!store.allKeys().isEmpty())
        return true;
    std::error_code error;
    const bool exists = std::filesystem::exists(QFile::encodeName(store.fileName()).toStdString(), error);
    return (!exists && !error) || valuesIn(store.fileName()) == 0;
}

// Keeps a second name of the settings file while it is written: the library puts an empty file in its place, and says
// nothing, when there is no room for the last bytes.
class CKeptFile
{
public:
    explicit CKeptFile(const QString& fileName)
        : m_name(QFileInfo(fileName).canonicalFilePath()), // where a link leads; empty when there is no file
          m_copy(QStringLiteral("%1.%2").arg(m_name).arg(QCoreApplication::applicationPid()))
    {
        if (m_name.isEmpty())
            return;
        QFile::remove(m_copy); // left by a process that was killed
        std::error_code error;
        std::filesystem::create_hard_link(pathOf(m_name), pathOf(m_copy), error);
    }
    ~CKeptFile()
    {
        if (!m_name.isEmpty())
            QFile::remove(m_copy);
    }
    CKeptFile(const CKeptFile&) = delete;
    CKeptFile& operator=(const CKeptFile&) = delete;

    void putBack(const QString& fileName) const
    {
        std::error_code error;
        if (m_name.isEmpty())
            QFile::remove(fileName);
        else
            std::filesystem::rename(pathOf(m_copy), pathOf(m_name), error);
    }

private:
    static std::filesystem::path pathOf(const QString& name) { return QFile::encodeName(name).toStdString(); }

    QString m_name;
    QString m_copy;
};

void write(const QMap<QString, QVariant>& values)
{
    CUserSettings store;
    if (!holdsItsFile(store))
        return;
    const CKeptFile kept(store.fileName());
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        store.setValue(value.key(), value.value());
    const qsizetype count = store.allKeys().size();
    store.sync();
    if (valuesIn(store.fileName()) != count)
        kept.putBack(store.fileName());
}

// Kept: slots after the end of the list keep their value: compatible behaviour.
void writeSlots(const char* pattern, const QStringList& list)
{
    QMap<QString, QVariant> values;
    for (int slot = 1; slot <= settings::listSlots && slot <= list.size(); ++slot)
        values.insert(slotKey(pattern, slot), list[slot - 1]);
    write(values);
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
    write({ { displayKey(), int{ mode } } });
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
