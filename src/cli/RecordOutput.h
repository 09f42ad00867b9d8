#pragma once

#include "model/records/TwitterStatus.h"
#include "model/records/TwitterUser.h"

#include <QJsonObject>

/// How records are printed: as JSON, whose members are named as the records' fields, or as text for people.
namespace RecordOutput {

[[nodiscard]] QJsonObject jsonObject(const TwitterStatus& status);
[[nodiscard]] QJsonObject jsonObject(const TwitterUser& user);

[[nodiscard]] QString text(const TwitterStatus& status);
[[nodiscard]] QString text(const TwitterUser& user);

/// The text without what a terminal would take for commands.
[[nodiscard]] QString safeForTerminal(QString text);

} // namespace RecordOutput
