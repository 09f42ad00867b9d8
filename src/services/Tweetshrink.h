#pragma once

#include "api/TwitterServiceHosts.h"
#include "transport/KRCallback.h"

#include <QString>

class KRHTTPRequest;
class KRXMLParser;

/// An answer of the service that abbreviates texts, and the way to it. A value; what the answer does not hold
/// stays empty.
class Tweetshrink {
public:
    /// Asks for a shorter wording of the text. The callback is invoked once, on the shared background thread.
    /// Any thread.
    static void
    shrink(const TwitterServiceHosts& hosts, const QString& text, KRCallback<Tweetshrink> callback);

    [[nodiscard]] const QString& text() const { return m_text; }
    /// How many characters were saved.
    [[nodiscard]] qint32 difference() const { return m_difference; }

private:
    static KRResult<Tweetshrink> didShrink(const KRHTTPRequest& request);
    void parseXML(KRXMLParser& parser);

    QString m_text;
    qint32 m_difference = 0;
};
