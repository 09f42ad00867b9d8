#pragma once

#include "foundation/KRResult.h"

#include <QByteArray>
#include <QString>

/// The forms in which shorteners and expanders answer. Any thread. An answer without a link is an error of
/// the given domain, without a description: there is nothing in it to tell.
namespace URLServiceAnswers {

enum class Trimming { No, Yes };

/// The body itself. Only bytes that are not UTF-8 are an error.
[[nodiscard]] KRResult<QString> plainText(const QByteArray& body, Trimming trimming, const QString& domain);

/// The text of the last member of that name, at any depth. What the parser objects to is logged behind the
/// text given.
[[nodiscard]] KRResult<QString>
JSONMember(const QByteArray& body, const char* name, const QString& domain, const QString& logText);

/// The text of the last member of whatever name; nothing is logged.
[[nodiscard]] KRResult<QString> anyJSONMember(const QByteArray& body, const KRError& errorForNone);

/// The attribute of the last element of that name.
[[nodiscard]] KRResult<QString> XMLAttribute(const QByteArray& body,
    const char* element,
    const QString& attribute,
    const QString& domain,
    const QString& logText);

} // namespace URLServiceAnswers
