#include "toolkit/navigation/KRNib.h"

#include "foundation/KRLog.h"

#include <QHash>
#include <QObject>

namespace {

QHash<QString, KRNib::Parse>& descriptions()
{
    static QHash<QString, KRNib::Parse> descriptions;
    return descriptions;
}

} // namespace

void KRNib::registerNib(const QString& name, Parse parse)
{
    descriptions().insert(name, std::move(parse));
}

std::shared_ptr<const KRNib> KRNib::nibNamed(const QString& name)
{
    static QHash<QString, std::shared_ptr<const KRNib>> parsedNibs;
    std::shared_ptr<const KRNib>& nib = parsedNibs[name];
    if (!nib)
        nib = parseNibNamed(name);
    return nib;
}

std::shared_ptr<const KRNib> KRNib::parseNibNamed(const QString& name)
{
    const Parse parse = descriptions().value(name);
    if (!parse) {
        KRLog(QStringLiteral("ERROR: no interface named %1").arg(name));
        return nullptr;
    }
    return std::make_shared<const KRNib>(parse());
}

void KRNib::instantiateWithOwner(KRViewController& owner) const
{
    // Only what the outlets took over survives.
    const TopLevelObjects topLevelObjects = m_instantiate(owner);
}
