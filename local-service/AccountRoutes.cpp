#include "RestDocuments.h"
#include "RestRoutes.h"

namespace localservice {

namespace {

// The service counts nobody's requests, so everybody has all of them left.
constexpr std::int64_t requestsPerHour = 150;

std::string rateLimitDocument()
{
    const std::int64_t reset = currentTime() + 3600;
    XmlWriter xml;
    xml.beginElement("hash");
    xml.element("remaining-hits", std::string_view(std::to_string(requestsPerHour)), "type=\"integer\"");
    xml.element("hourly-limit", std::string_view(std::to_string(requestsPerHour)), "type=\"integer\"");
    xml.element("reset-time", std::string_view(isoDate(reset)), "type=\"datetime\"");
    xml.element("reset_time_in_seconds", std::string_view(std::to_string(reset)), "type=\"integer\"");
    xml.endElement();
    return xml.take();
}

std::string configurationDocument()
{
    XmlWriter xml;
    xml.beginElement("config");
    xml.beginElement("site");
    xml.element("name", "Local Community");
    xml.element("textlimit", static_cast<std::int64_t>(longestStatus));
    xml.endElement();
    xml.beginElement("attachments");
    xml.element("uploads", true);
    xml.endElement();
    xml.endElement();
    return xml.take();
}

} // namespace

void addAccountRoutes(Router& router, Site& site)
{
    router.get("account/verify_credentials.xml", Router::Access::SignedIn, [&site](const Call& call) {
        return xmlAnswer(RestDocuments(site, call.viewerID()).user(*call.viewer));
    });
    router.get("account/rate_limit_status.xml", Router::Access::Anyone, [](const Call&) {
        return xmlAnswer(rateLimitDocument());
    });
    // Where clients learn what the site is called and what it takes.
    router.get("statusnet/config.xml", Router::Access::Anyone, [](const Call&) {
        return xmlAnswer(configurationDocument());
    });
}

} // namespace localservice
