#include "foundation/KRLog.h"
#include "model/records/TwitterDirectMessage.h"
#include "model/records/TwitterStatus.h"
#include "parsing/KRXMLForbiddenCharacters.h"

#include <cstdint>

// Any bytes a server may answer: records come out or an error does, and once the forbidden characters are
// replaced there are none left.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    static const KRLogSink standardError = KRSetLogSink([](const QString&) {});
    QByteArray page(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    if (const auto repaired = KRXMLByReplacingForbiddenCharacters(page)) {
        page = *repaired;
        if (KRXMLByReplacingForbiddenCharacters(page))
            __builtin_trap();
    }
    (void)TwitterStatus::statusesWithXML(page);
    (void)TwitterUser::userWithXML(page);
    (void)TwitterDirectMessage::messagesWithXML(page);
    return 0;
}
