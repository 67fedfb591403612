// Settings in a new folder for each object, so that no test sees what another has stored.
// SPDX-License-Identifier: MIT
#pragma once

#include <QSettings>
#include <QTemporaryDir>

class CTempSettings
{
public:
    CTempSettings()
    {
        qputenv("XDG_CONFIG_HOME", m_folder.path().toLocal8Bit());
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_folder.path());
    }

    /// The stored value of a key such as "Settings/Display", as text.
    QString value(const QString& key) const { return store()->value(fullKey(key)).toString(); }

    /// Stores a value as another run of the program would have done.
    void setValue(const QString& key, const QVariant& value) const { store()->setValue(fullKey(key), value); }

    bool contains(const QString& key) const { return store()->contains(fullKey(key)); }

    /// Path of the settings file.
    QString fileName() const { return store()->fileName(); }

private:
    static std::unique_ptr<QSettings> store()
    {
        auto settings = std::make_unique<QSettings>(QStringLiteral("Brask Works"));
        settings->setFallbacksEnabled(false);
        return settings;
    }
    static QString fullKey(const QString& key) { return QStringLiteral("/CANopen Object Browser/") + key; }

    QTemporaryDir m_folder;
};
