#pragma once

#include "model/records/TwitterDirectMessage.h"
#include "model/records/TwitterStatus.h"
#include "model/records/TwitterUser.h"
#include "model/streams/TwitterDirectMessageConversation.h"

#include <QJsonObject>

/// How records are printed: as JSON, whose members are named as the records' fields, or as text for people.
namespace RecordOutput {

[[nodiscard]] QJsonObject jsonObject(const TwitterStatus& status);
[[nodiscard]] QJsonObject jsonObject(const TwitterUser& user);
[[nodiscard]] QJsonObject jsonObject(const TwitterDirectMessage& message);
[[nodiscard]] QJsonObject jsonObject(const TwitterDirectMessageConversation& conversation);

[[nodiscard]] QString text(const TwitterStatus& status);
[[nodiscard]] QString text(const TwitterUser& user);
[[nodiscard]] QString text(const TwitterDirectMessage& message);
[[nodiscard]] QString text(const TwitterDirectMessageConversation& conversation);

/// The text without what a terminal would take for commands.
[[nodiscard]] QString safeForTerminal(QString text);

} // namespace RecordOutput
