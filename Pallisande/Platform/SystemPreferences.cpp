#include "Pallisande/Platform/SystemPreferences.h"

#include <QFile>

#include <algorithm>

namespace Pallisande {

namespace {

// Sections, comments, and keys with values.
bool isWellFormed(const QByteArray& text)
{
    const auto lines = text.split('\n');
    return !text.contains('\0') && std::all_of(lines.begin(), lines.end(), [](const QByteArray& line) {
        const auto trimmed = line.trimmed();
        return trimmed.isEmpty() || trimmed.startsWith(';') || trimmed.contains('=')
            || (trimmed.startsWith('[') && trimmed.endsWith(']'));
    });
}

} // namespace

SystemPreferences::SystemPreferences()
    : m_settings("Pallisande", "Pallisande")
{
    keepDamagedFile();
}

SystemPreferences::SystemPreferences(const QString& file)
    : m_settings(file, QSettings::IniFormat)
{
    keepDamagedFile();
}

// QSettings passes over what it can't read, and the next store would leave only what it could.
void SystemPreferences::keepDamagedFile() const
{
    QFile file(m_settings.fileName());
    if (!file.fileName().endsWith(".conf") || !file.open(QIODevice::ReadOnly) || isWellFormed(file.readAll()))
        return;
    QFile::remove(file.fileName() + ".damaged");
    QFile::copy(file.fileName(), file.fileName() + ".damaged");
}

std::optional<std::string> SystemPreferences::load(const std::string& key) const
{
    const QVariant value = m_settings.value(QString::fromStdString(key));
    return value.isValid() ? std::optional(value.toString().toStdString()) : std::nullopt;
}

bool SystemPreferences::store(const std::string& key, const std::string& text)
{
    m_settings.setValue(QString::fromStdString(key), QString::fromStdString(text));
    m_settings.sync(); // At once: what was chosen outlives a crash.
    return m_settings.status() == QSettings::NoError;
}

} // namespace Pallisande
